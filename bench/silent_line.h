// A serial line that costs nothing: the program's own open(), write() and so on take everything and
// answer an open as a printer that is ready, and nothing is waited for. What is measured is the
// library.
#pragma once

extern const char* const kSilentPort;
inline constexpr const char* kSilentSettings = "9600,none,8,1,none";
