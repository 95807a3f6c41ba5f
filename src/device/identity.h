// Small messages to and from the printer: version, serial number, and the caller's own.
#pragma once

#include <span>
#include <string_view>

#include "dispatch/transport.h"

long set_data(const Transport& transport, const char* portName, const char* CustomData,
              long datasize);
long get_data(const Transport& transport, const char* portName, const char* CustomData,
              long datasize, char* ReadBuffer);
long get_fw_version(const Transport& transport, const char* portName, char* ReadVersion);
long get_serial_number(const Transport& transport, const char* portName, char* ReadSerialNum);
long set_serial_number(const Transport& transport, const char* portName, const char* SerialNum,
                       long SerialNumLen);

/// Bytes of an answer that are read at most, and for which callers supply room.
inline constexpr std::size_t kIdentityReplySize = 256;

/// Sends a command, unless it is empty, and reads the answer: its length, 0 when none comes, -1
/// when the port is not open or the printer cannot serve.
long query_data(const Transport& transport, const char* portName, std::string_view command,
                std::span<char> reply);
