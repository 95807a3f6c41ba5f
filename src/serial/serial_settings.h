// The settings string of a serial port.
#pragma once

#include <optional>
#include <string_view>

#include "tzvio_state.h"

/// Parses "baud,parity,data bits,stop bits,flow control"; nothing when a field is missing or
/// holds what is not supported.
std::optional<SerPortSettings> parse_serial_settings(std::string_view settings);
