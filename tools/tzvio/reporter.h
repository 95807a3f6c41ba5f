// Telling people and programs what came of a command: once, whichever thread ends it.
#pragma once

#include <string>

#include "options.h"
#include "outcome.h"

namespace cli {

// Who tells: set before anything can end.
void start_reporting(const Invocation& invocation);

// Tells the outcome; what it returns is the exit status. Where another thread tells one already,
// waits until that has ended the program.
int tell(const Result& result);

// A line of a command that goes on: as text, or as JSON.
void tell_line(const std::string& text, const Json& fields);

// What is worth knowing and no outcome: a line on standard error.
void tell_aside(const std::string& words);

}  // namespace cli
