// A serial port: opening, configuring, closing, and its bytes.
#pragma once

#include <span>
#include <string_view>

#include "dispatch/transport.h"

// What the serial transport supplies; the contracts are those of `Transport`.

long SerialOpenPort(PortIndex port, const char* portName, const char* portSettings);
void SerialClosePort(PortIndex port);
long SerialWritePort(PortIndex port, std::string_view bytes);
void SerialWriteNow(PortIndex port, std::string_view bytes);
long SerialReadPortPrv(PortIndex port, std::span<char> buffer, ReadPatience patience);
