// What a transport supplies. Features are written once over this record, and a new link is one
// more record: everything in which links differ is here, as a function or as a number.
#pragma once

#include <optional>
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

/// The exchange at open, in what it differs by link.
struct StatusExchange {
  bool drain_first;     ///< whether to read what waits on the line before the first query
  long after_query_ms;  ///< pause after each DLE EOT, in milliseconds
};

/// How long a link waits for each kind of answer.
struct AnswerPatience {
  ReadPatience data;     ///< to GetData
  ReadPatience version;  ///< to GetFWVersion
  ReadPatience frame;    ///< to a frame
};

/// What an operation returns when its write fell short in a healthy state.
struct ShortWriteResults {
  long cut;
  long drawer;
};

/// What opening a device came to.
struct Opened {
  long result;           ///< 0, or the result of OpenPort
  bool settled = false;  ///< nothing is left to do: neither the state's reset nor the exchange
};

/// How a device is released, once the monitor is told to end.
struct Release {
  std::string_view wake_up;  ///< sent to the printer, whose answer a monitor notices
  long pause_ms;
};

// For links that have nothing to do there.
inline std::optional<long> link_stands(PortHandle, std::string_view) {
  return std::nullopt;
}
inline void nothing_to_watch(PortHandle) {}
inline bool poll_again(PortHandle) {
  return true;
}

struct Transport {
  /// The beginnings of the port names that belong to this transport.
  std::span<const std::string_view> prefixes;

  /// Settings, flags and buffers, shared by all ports of the transport.
  const TransportState& state;

  PortRegistry registry;

  /// Opens and configures the device and fills the free entry; `portName` is shorter than
  /// `kPortNameSize`. After a failure the entry is still free and no descriptor is left open.
  Opened (&open)(int entry, const char* portName, const char* portSettings);

  /// When the link is known to be lost: connects anew and sends the bytes, whatever state the
  /// printer is in. The count sent, or a failure; nothing when the link stands. May pause.
  std::optional<long> (&write_anew)(PortHandle port, std::string_view bytes);

  /// Sends all bytes in the link's own pieces and within its own budget, whatever state the
  /// printer is in. The count sent, or -2. May pause.
  long (&write)(PortHandle port, std::string_view bytes);

  /// Whether that write, when it meets a loss, makes the link anew and sends everything once more:
  /// its count does not tell then what arrived, and it says itself when a job is lost.
  bool write_sends_again;

  /// The same for the monitor: without anything that would wait for the monitor itself.
  long (&resend)(PortHandle port, std::string_view bytes);

  /// Hands a short command to the descriptor in one call that does not pause: for the queries of
  /// an open and for the monitor.
  void (&write_now)(PortHandle port, std::string_view bytes);

  /// Reads up to the buffer's size. The count read; 0, -1 or -2 when nothing came. May pause.
  long (&read)(PortHandle port, std::span<char> buffer, ReadPatience patience);

  /// The monitor's look at the line before each read: sets or clears `bPowerOFF` and `bOffline`
  /// where the link can tell. Does not pause.
  void (&watch_line)(PortHandle port);

  /// The monitor's read: what is there, at once. The count, 0 or -1 when there is nothing. Does
  /// not pause.
  long (&poll)(PortHandle port, std::span<char> buffer);

  /// What the link makes of a poll that gave -1. False ends the monitor. May pause, but not longer
  /// than the monitor may run.
  bool (&after_failed_poll)(PortHandle port);

  StatusExchange status_exchange;
  AnswerPatience patience;
  ShortWriteResults short_write;
  /// Whether UpdateFW tells of a port that is not open; elsewhere only its write meets it.
  bool update_needs_open_port;
  Release release;
};
