// A transport's registry: 20 entries, found by name.
#pragma once

#include <cstddef>
#include <cstring>

#include "tzvio_state.h"

/// The place of an entry in its registry, 0 to 19, or `kNoPort`.
using PortIndex = int;
inline constexpr PortIndex kNoPort = -1;

/// Bytes of an entry's name, the terminating NUL included.
inline constexpr std::size_t kPortNameSize = 100;

/// What the shared logic does with a registry, whatever the transport's entries look like.
struct PortRegistry {
  /// The first open port of exactly that name, or `kNoPort`.
  PortIndex (&find)(const char* portName);
  /// The first entry that is free, or `kNoPort`.
  PortIndex (&find_free)();
  /// The name of an open port; null for a free entry.
  const char* (&name_of)(PortIndex port);
  /// Marks every entry free, without closing anything.
  void (&forget_all)();
};

/// Implements a `PortRegistry` over one transport's exported array of entries.
template <auto& ports>
struct RegistryOf {
  static PortIndex find(const char* portName) {
    for (PortIndex i = 0; i < TZV_PORTS; ++i) {
      if (ports[i].set && std::strcmp(ports[i].portName, portName) == 0) return i;
    }
    return kNoPort;
  }

  static PortIndex find_free() {
    for (PortIndex i = 0; i < TZV_PORTS; ++i) {
      if (!ports[i].set) return i;
    }
    return kNoPort;
  }

  static const char* name_of(PortIndex port) {
    return ports[port].set ? ports[port].portName : nullptr;
  }

  static void forget_all() { std::memset(ports, 0, sizeof ports); }

  static constexpr PortRegistry registry{find, find_free, name_of, forget_all};
};
