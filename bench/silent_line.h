// A serial line that costs nothing: the program's own open(), write() and so on take everything and
// answer an open as a printer that is ready. What is measured is the library.
#pragma once

/// The port, open from the program's start on.
extern const char* const kSilentPort;
