// What opening, writing, reading and closing a port have in common on every link.
#pragma once

#include <initializer_list>

#include "dispatch/transport.h"

// The operations of the table.

long match_port_name(const Transport& transport, const char* portName);
long open_port(const Transport& transport, const char* portName, const char* portSettings);
long write_port(const Transport& transport, const char* portName, const char* writeBuffer,
                long length);
long read_port(const Transport& transport, const char* portName, char* readBuffer, long length);
long close_port(const Transport& transport, const char* portName);
void release_ports(const Transport& transport);

/// Whether a port was opened by this process since. A forked child that merely ends has ports to
/// release that are its parent's, and locks that threads may hold which it does not have.
bool opened_by_this_process();

/// 0 when the name begins with one of the prefixes, else -3.
long match_prefixes(std::span<const std::string_view> prefixes, const char* portName);

// The two ways in which features send; `port` is an open port.

/// Sends at once, past any transaction. The count sent (the link may fall short), or -2 when the
/// printer is in an error state (nothing is sent) or the link failed.
long guarded_write(const Transport& transport, PortHandle port, std::string_view bytes);

/// Everything that belongs on the receipt goes this way. While a transaction or reprint mode is
/// on, the bytes are collected instead: their count, or -2 when they do not fit any more (what
/// is held stays). Otherwise a guarded write.
long buffered_write(const Transport& transport, PortHandle port, std::string_view bytes);

/// What an operation does whose pieces go the way of the receipt, each by itself, whatever state
/// the printer is in: within a transaction they are collected even in an error state. 0; -2 in an
/// error state; -1 when the port is not open.
long hand_on(const Transport& transport, const char* portName,
             std::initializer_list<std::string_view> pieces);
