// The request that the printer answers once everything sent before it has been printed.
#pragma once

#include <string_view>

/// GS ( H with the identifier "FFFF".
inline constexpr std::string_view kProcessIdRequest{"\035(H\006\0\060\060FFFF", 11};
