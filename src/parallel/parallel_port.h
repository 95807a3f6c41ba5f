// A parallel port behind the kernel's user-space driver: opening, claiming, its bytes in two
// transfer modes, and its status lines.
#pragma once

#include <span>
#include <string_view>

#include "dispatch/device_file.h"
#include "dispatch/transport.h"

/// Gives the port back to the other users of its driver and closes it.
void parallel_hang_up(int descriptor);

using ParPorts = RegistryOf<parPorts, &ParPort::port, parallel_hang_up>;

/// A thread's turn on a port. The driver does not keep one thread's change of mode out of another's
/// transfer, and the callers and the monitor change it all the time.
class ParallelTurn {
 public:
  explicit ParallelTurn(PortHandle port) : lock_(turns_[port.entry]), descriptor_(port) {}
  operator int() const { return descriptor_; }

 private:
  static inline pthread_mutex_t turns_[TZV_PORTS] = {};
  MutexLock lock_;
  ParPorts::Use descriptor_;
};

/// Changes to nibble mode, in which the printer answers. Through compatibility mode, in which alone
/// it listens for a change. Whether the printer took part.
bool enter_nibble_mode(int descriptor);

// What the parallel transport supplies; the contracts are those of `Transport`.

Opened ParallelOpenPort(int entry, const char* portName, const char* portSettings);
long ParallelWritePort(PortHandle port, std::string_view bytes);
void ParallelWriteNow(PortHandle port, std::string_view bytes);
long ParallelReadPort(PortHandle port, std::span<char> buffer, ReadPatience patience);
void ParallelWatchLine(PortHandle port);
long ParallelPoll(PortHandle port, std::span<char> buffer);
