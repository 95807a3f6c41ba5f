// What is to be printed, from wherever it comes.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "outcome.h"

namespace cli {

// A file's content, "-" being standard input; or why there is none. More than a transaction holds
// is not read.
std::variant<std::string, Result> read_text(const std::string& path);

// Text in which \e, \n, \r, \t, \0, \\ and \xHH stand for what cannot be typed; none when anything
// else stands behind a backslash.
std::optional<std::string> unescaped(const std::string& text);

// The same as a result.
Result bad_escape();

}  // namespace cli
