// A serial port: opening, configuring, closing, its bytes, and its modem lines.
#pragma once

#include <span>
#include <string_view>

#include "dispatch/device_file.h"
#include "dispatch/transport.h"

using SerialPorts = RegistryOf<serPorts, &SerPort::port, flush_and_close>;

/// The printer's DSR line: up while it has power and takes bytes.
enum class Dsr { up, down, unknown };
Dsr read_dsr(PortHandle port);

/// Whether writes wait for DSR: the printer then lowers it also while its buffer is full.
bool has_handshake(PortHandle port);

// What the serial transport supplies; the contracts are those of `Transport`.

Opened SerialOpenPort(int entry, const char* portName, const char* portSettings);
long SerialWritePort(PortHandle port, std::string_view bytes);
void SerialWriteNow(PortHandle port, std::string_view bytes);
long SerialReadPortPrv(PortHandle port, std::span<char> buffer, ReadPatience patience);
void SerialWatchLine(PortHandle port);
long SerialPoll(PortHandle port, std::span<char> buffer);
