// What a transport supplies. Features are written once over this record, and a new link is one
// more record: everything in which links differ is here, as a function or as a number.
#pragma once

#include <span>
#include <string_view>

#include "dispatch/port_registry.h"
#include "dispatch/results.h"
#include "status/transport_state.h"

/// How long a read waits: until `min_length` bytes are there, or nothing more came for
/// `silence_ms` milliseconds.
struct ReadPatience {
  long min_length;
  long silence_ms;
};

/// ReadPort's patience.
inline constexpr ReadPatience kRawRead{.min_length = 1, .silence_ms = 200};

/// The exchange at open and the sensor query, in what they differ by link.
struct StatusExchange {
  bool drain_first;     ///< whether to read what waits on the line before the first query
  long after_query_ms;  ///< pause after each DLE EOT, in milliseconds
};

struct Transport {
  /// The beginnings of the port names that belong to this transport.
  std::span<const std::string_view> prefixes;

  /// Settings, flags and buffers, shared by all ports of the transport.
  const TransportState& state;

  PortRegistry registry;

  /// Opens and configures the device and fills the free entry `port`; `portName` is shorter than
  /// `kPortNameSize`. 0, or the result of OpenPort; after a failure the entry is still free and
  /// no descriptor is left open.
  long (&open)(PortIndex port, const char* portName, const char* portSettings);

  /// Closes the descriptor of an open port and frees its entry.
  void (&close)(PortIndex port);

  /// Sends all bytes in the link's own pieces and within its own budget. The count sent, or -2.
  /// Called only while the printer is not in an error state.
  long (&write)(PortIndex port, std::string_view bytes);

  /// Hands the bytes to the descriptor in one call, whatever state the printer is in: for the
  /// queries of an open and for the monitor.
  void (&write_now)(PortIndex port, std::string_view bytes);

  /// Reads up to the buffer's size. The count read, or 0 or -2 when nothing came.
  long (&read)(PortIndex port, std::span<char> buffer, ReadPatience patience);

  StatusExchange status_exchange;
};
