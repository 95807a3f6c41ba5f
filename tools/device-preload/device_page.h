// What a printer and the device that plays its till's end share: the names of devices, and a page
// of memory beside the printer's socket in which each finds what the other shows. Programs of
// either width map it, so every field has a fixed one.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tzvio_devices {

enum class DeviceKind { kNone, kSerial, kParallel, kUsb };

// By the names under which applications open them.
constexpr DeviceKind kind_of(std::string_view name) {
  struct Beginning {
    std::string_view text;
    DeviceKind kind;
  };
  constexpr Beginning kBeginnings[] = {{"/dev/ttyS", DeviceKind::kSerial},
                                       {"/dev/parport", DeviceKind::kParallel},
                                       {"/dev/lp", DeviceKind::kParallel},
                                       {"/dev/usb/lp", DeviceKind::kUsb},
                                       {"/dev/usblp", DeviceKind::kUsb}};
  for (const Beginning& beginning : kBeginnings) {
    if (name.starts_with(beginning.text)) return beginning.kind;
  }
  return DeviceKind::kNone;
}

// What a printer shows; nothing set: all is well.
enum Signal : std::uint32_t {
  kUnpowered = 1U << 0U,  // the printer's end drives no line
  kError = 1U << 1U,
  kPaperOut = 1U << 2U,
  kOffline = 1U << 3U,
  kGone = 1U << 4U,          // the node does not exist
  kTakesNothing = 1U << 5U,  // a write succeeds with no byte taken
  kClaimRefused = 1U << 6U,
  kNibbleRefused = 1U << 7U,
};

inline constexpr std::uint32_t kNoLimit = UINT32_MAX;

// Line settings are kept as words, so that no thread sees half of one.
inline constexpr std::size_t kLineSettingsWords = 15;

struct DevicePage {
  static constexpr std::uint32_t kVersion = 0x545A5631;

  std::atomic<std::uint32_t> version;

  // By the printer.
  std::atomic<std::uint32_t> signals;
  std::atomic<std::uint32_t>
      nibble_refusals;  // how often nibble mode is refused before it is granted

  // By both: how many bytes are taken until the printer is busy.
  std::atomic<std::uint32_t> room;

  // By the device, for all who have it open, as a driver keeps it.
  std::atomic<std::uint32_t> claimed;
  std::atomic<std::uint32_t> nibble_mode;
  std::atomic<std::uint32_t> line_settings[kLineSettingsWords];
};

static_assert(std::atomic<std::uint32_t>::is_always_lock_free);
static_assert(sizeof(DevicePage) == 4 * (6 + kLineSettingsWords));

}  // namespace tzvio_devices
