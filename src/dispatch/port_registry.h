// A transport's registry: 20 entries, found by name.
#pragma once

#include <cstddef>
#include <cstring>

#include "dispatch/lock.h"
#include "tzvio_state.h"

/// One opening of one port: an entry of the registry, and which of its successive openings. Once
/// the port is closed the handle names nothing any more, whoever uses the entry next.
struct PortHandle {
  int entry = -1;
  unsigned opening = 0;

  explicit operator bool() const { return entry >= 0; }
};

/// Bytes of an entry's name, the terminating NUL included.
inline constexpr std::size_t kPortNameSize = 100;

/// What the shared logic does with a registry, whatever the transport's entries look like.
struct PortRegistry {
  /// The first open port of exactly that name; none when there is none.
  PortHandle (&find)(const char* portName);
  /// The first entry that is free, or -1.
  int (&find_free)();
  /// The open port of an entry; none when it is free.
  PortHandle (&at)(int entry);
  /// Marks every entry free, without closing anything.
  void (&forget_all)();
};

/// Implements a `PortRegistry` over one transport's exported array of entries. Callers and
/// monitors look up and use descriptors while others open and close, so entries change only
/// under an exclusive lock, and a descriptor is used under a shared one: its number may belong to
/// another file of the application as soon as it is closed.
template <auto& ports, auto descriptor>
class RegistryOf {
 public:
  using Entry = std::remove_reference_t<decltype(ports[0])>;

  /// Keeps a port from being closed for as long as it lives. The descriptor is -1, which every
  /// system call refuses, when the port is closed already.
  class Use {
   public:
    explicit Use(PortHandle port)
        : lock_(access_), descriptor_(holds(port) ? ports[port.entry].*descriptor : -1) {}
    operator int() const { return descriptor_; }

   private:
    SharedLock lock_;
    int descriptor_;
  };

  static PortHandle find(const char* portName) {
    const SharedLock lock(access_);
    for (int entry = 0; entry < TZV_PORTS; ++entry) {
      if (ports[entry].set && std::strcmp(ports[entry].portName, portName) == 0) {
        return {entry, openings_[entry]};
      }
    }
    return {};
  }

  static int find_free() {
    const SharedLock lock(access_);
    for (int entry = 0; entry < TZV_PORTS; ++entry) {
      if (!ports[entry].set) return entry;
    }
    return -1;
  }

  static PortHandle at(int entry) {
    const SharedLock lock(access_);
    return ports[entry].set ? PortHandle{entry, openings_[entry]} : PortHandle{};
  }

  static void forget_all() {
    const ExclusiveLock lock(access_);
    std::memset(ports, 0, sizeof ports);
  }

  /// A copy of an open port's entry; all zero once the port is closed.
  static Entry copy(PortHandle port) {
    const SharedLock lock(access_);
    return holds(port) ? ports[port.entry] : Entry{};
  }

  static void store(int entry, const Entry& opened) {
    const ExclusiveLock lock(access_);
    ports[entry] = opened;
    ++openings_[entry];
  }

  /// Frees the entry of an open port; `hang_up` closes its descriptor.
  template <typename HangUp>
  static void release(PortHandle port, HangUp hang_up) {
    const ExclusiveLock lock(access_);
    if (!holds(port)) return;
    hang_up(ports[port.entry].*descriptor);
    ports[port.entry] = {};
  }

  static constexpr PortRegistry registry{find, find_free, at, forget_all};

 private:
  static bool holds(PortHandle port) {
    return port && ports[port.entry].set && openings_[port.entry] == port.opening;
  }

  static inline pthread_rwlock_t access_ = PTHREAD_RWLOCK_INITIALIZER;
  static inline unsigned openings_[TZV_PORTS] = {};
};
