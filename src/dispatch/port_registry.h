// A transport's registry: 20 entries, found by name.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <utility>

#include "dispatch/lock.h"
#include "dispatch/results.h"
#include "tzvio_state.h"

/// One opening of one port: an entry of the registry, and which of its successive openings. Once
/// the port is closed the handle names nothing any more, whoever uses the entry next.
struct PortHandle {
  int entry = -1;
  unsigned opening = 0;
  unsigned connection = 0;  ///< which of the entry's successive descriptors it was found with

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
  /// Frees the entry of an open port and hangs up.
  void (&release)(PortHandle port);
  /// Marks every entry free, without closing anything.
  void (&forget_all)();
};

/// A descriptor and how many use it: the port that holds it, and each call that is under way. The
/// last one out hangs up, because a number may belong to another file of the application as soon
/// as it is closed.
struct SharedDescriptor {
  int number;
  int users;
  pid_t opener;
};

/// Implements a `PortRegistry` over one transport's exported array of entries. Callers and
/// monitors look up and use ports while others open, close and reconnect them. `hang_up` closes
/// one of the transport's descriptors.
template <auto& ports, auto descriptor, auto hang_up>
class RegistryOf {
 public:
  using Entry = std::remove_reference_t<decltype(ports[0])>;

  /// Keeps a port's descriptor from being closed for as long as it lives. It is -1, which every
  /// system call refuses, when the port is closed already or has none.
  class Use {
   public:
    explicit Use(PortHandle port) {
      const MutexLock lock(mutex_);
      if (!holds(port)) return;
      used_ = current_[port.entry];
      if (used_ != nullptr) ++used_->users;
    }
    ~Use() { leave(used_); }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    operator int() const { return used_ != nullptr ? used_->number : -1; }

   private:
    SharedDescriptor* used_ = nullptr;
  };

  static PortHandle find(const char* portName) {
    const MutexLock lock(mutex_);
    for (int entry = 0; entry < TZV_PORTS; ++entry) {
      if (ports[entry].set && std::strcmp(ports[entry].portName, portName) == 0) {
        return handle_of(entry);
      }
    }
    return {};
  }

  static int find_free() {
    const MutexLock lock(mutex_);
    for (int entry = 0; entry < TZV_PORTS; ++entry) {
      if (!ports[entry].set) return entry;
    }
    return -1;
  }

  static PortHandle at(int entry) {
    const MutexLock lock(mutex_);
    return ports[entry].set ? handle_of(entry) : PortHandle{};
  }

  static void forget_all() {
    const MutexLock lock(mutex_);
    std::memset(ports, 0, sizeof ports);
    for (SharedDescriptor*& current : current_) {
      if (current != nullptr) --current->users;
      current = nullptr;
    }
  }

  /// A copy of an open port's entry; all zero once the port is closed.
  static Entry copy(PortHandle port) {
    const MutexLock lock(mutex_);
    return holds(port) ? ports[port.entry] : Entry{};
  }

  /// A new entry of that name, shorter than `kPortNameSize`.
  static Entry named(const char* portName) {
    Entry entry{};
    entry.set = 1;
    std::memcpy(entry.portName, portName, std::strlen(portName));
    return entry;
  }

  /// Fills a free entry: 0, or -1 after hanging up when there is no room.
  static long store(int entry, const Entry& opened) {
    {
      const MutexLock lock(mutex_);
      current_[entry] = share(opened.*descriptor);
      if (current_[entry] != nullptr) {
        ports[entry] = opened;
        ++openings_[entry];
        return kOk;
      }
    }
    hang_up(opened.*descriptor);
    return kFailed;
  }

  static void release(PortHandle port) {
    SharedDescriptor* released = nullptr;
    {
      const MutexLock lock(mutex_);
      if (!holds(port)) return;
      released = std::exchange(current_[port.entry], nullptr);
      ports[port.entry] = {};
    }
    leave(released);
  }

  /// Hangs up and leaves the port open without a descriptor. False when the port is closed or has
  /// another descriptor by now than the handle was found with.
  static bool give_up(PortHandle port) {
    SharedDescriptor* given_up = nullptr;
    {
      const MutexLock lock(mutex_);
      if (!holds(port) || connections_[port.entry] != port.connection) return false;
      given_up = std::exchange(current_[port.entry], nullptr);
      ports[port.entry].*descriptor = -1;
      ++connections_[port.entry];
    }
    leave(given_up);
    return true;
  }

  /// Gives an open port another descriptor. False, after hanging up the new one, when the port is
  /// closed by now or there is no room.
  static bool replace(PortHandle port, int number) {
    SharedDescriptor* replaced = nullptr;
    SharedDescriptor* shared = nullptr;
    {
      const MutexLock lock(mutex_);
      if (holds(port)) shared = share(number);
      if (shared != nullptr) {
        replaced = std::exchange(current_[port.entry], shared);
        ports[port.entry].*descriptor = number;
      }
    }
    leave(replaced);
    if (shared == nullptr) hang_up(number);
    return shared != nullptr;
  }

  /// Whether an open port has given up its descriptor and got no other yet.
  static bool is_cut_off(PortHandle port) {
    const MutexLock lock(mutex_);
    return holds(port) && current_[port.entry] == nullptr;
  }

  static bool any_is_cut_off() {
    const MutexLock lock(mutex_);
    for (int entry = 0; entry < TZV_PORTS; ++entry) {
      if (ports[entry].set && current_[entry] == nullptr) return true;
    }
    return false;
  }

  static constexpr PortRegistry registry{find, find_free, at, release, forget_all};

 private:
  /// Beside the ports' own, the descriptors that were given up while reads still block on them.
  static constexpr int kDescriptors = TZV_PORTS + 100;

  static bool holds(PortHandle port) {
    return port && ports[port.entry].set && openings_[port.entry] == port.opening;
  }

  static PortHandle handle_of(int entry) { return {entry, openings_[entry], connections_[entry]}; }

  static SharedDescriptor* share(int number) {
    for (SharedDescriptor& free : descriptors_) {
      if (free.users != 0) continue;
      free = {number, 1, getpid()};
      return &free;
    }
    return nullptr;
  }

  static void leave(SharedDescriptor* shared) {
    if (shared == nullptr) return;
    SharedDescriptor last;
    {
      const MutexLock lock(mutex_);
      if (--shared->users > 0) return;
      last = *shared;
    }
    // To a forked child what is under way belongs to its parent, and so does a claim.
    if (last.opener == getpid()) {
      hang_up(last.number);
    } else {
      close(last.number);
    }
  }

  static inline pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
  static inline SharedDescriptor descriptors_[kDescriptors] = {};
  static inline SharedDescriptor* current_[TZV_PORTS] = {};
  static inline unsigned openings_[TZV_PORTS] = {};
  static inline unsigned connections_[TZV_PORTS] = {};
};
