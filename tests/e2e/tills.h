// The programs that print in these tests, as commands of a virtual printer. The shell puts in what
// the printer says about its port.
#pragma once

#include <string>
#include <vector>

using Words = std::vector<std::string>;

// A program that takes a port, its settings, and these words.
Words program(const std::string& path, const Words& words = {});
// A till, by scenario, which waits so long for anything; and the example.
Words till(const std::string& scenario, const std::string& seconds = "30");
Words receipt();
// A till that prints pictures and symbols, by its words.
Words pictures_till(const Words& words);
