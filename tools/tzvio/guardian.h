// Ends the program when nothing moves any more, or when it is told to: some calls of the library
// wait without end for a printer that is mute.
#pragma once

#include <string>

namespace cli {

// From here on, until the program ends. A signal has the port released and closed.
void start_guardian(const std::string& port, int timeout_s);

// Something has moved: the time begins anew.
void show_life();

}  // namespace cli
