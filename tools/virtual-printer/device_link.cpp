#include "device_link.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <termios.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <stdexcept>

#include "runtime_folder.h"
#include "terminal_link.h"
#include "unix_address.h"

namespace virtual_printer {
namespace {

using tzvio_devices::DeviceKind;
using tzvio_devices::DevicePage;

constexpr int kMostWaiting = 8;
constexpr const char* kPreload = "LD_PRELOAD";
constexpr const char* kDevices = "TZVIO_DEVICES";

// Of a page that was left behind, programs may still look at the memory: it is begun anew in place.
DevicePage* make_page(const std::string& path) {
  const Descriptor file(
      check(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600), "cannot make " + path));
  check(ftruncate(file.number(), sizeof(DevicePage)), "cannot make " + path);
  void* const memory =
      mmap(nullptr, sizeof(DevicePage), PROT_READ | PROT_WRITE, MAP_SHARED, file.number(), 0);
  if (memory == MAP_FAILED) check(-1, "cannot map " + path);
  return new (memory) DevicePage{};
}

// As a serial line is when nobody has set it yet.
void set_up_line(DevicePage& page) {
  termios settings{};
  settings.c_cflag = CS8 | CREAD | CLOCAL;
  cfsetspeed(&settings, B9600);
  std::array<std::uint32_t, tzvio_devices::kLineSettingsWords> words{};
  static_assert(sizeof words == sizeof settings);
  std::memcpy(words.data(), &settings, sizeof settings);
  std::copy(words.begin(), words.end(), page.line_settings);
}

// Where the library is built, and where it is installed.
std::filesystem::path preload_folder() {
  const auto program = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const auto built = program / "preload";
  return std::filesystem::is_directory(built) ? built : program.parent_path() / "lib/tzvio/preload";
}

// In the folder of each width; the loader puts the width's name for $LIB.
std::string preload_library() {
  const auto folder = preload_folder();
  // A loader that finds no library goes on without it, and the command would find a real device.
  if (!std::filesystem::is_directory(folder)) {
    throw std::runtime_error("the library that plays devices is missing: " + folder.string());
  }
  std::string path = folder / "$LIB/libtzvio-devices.so";
  if (path.find_first_of(": ") != std::string::npos) {
    throw std::runtime_error("no library can be preloaded from a path with a space or a colon: " +
                             path);
  }
  return path;
}

void expect_nobody_at(const std::string& path) {
  const Descriptor caller(
      check(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "cannot look at " + path));
  if (with_unix_address(connect, caller.number(), path) == 0) {
    throw std::runtime_error("another printer listens at " + path);
  }
}

std::string joined(const std::string& first, const char* variable) {
  const char* const rest = std::getenv(variable);
  return rest == nullptr || *rest == '\0' ? first : first + ":" + rest;
}

struct Shown {
  Condition condition;
  std::uint32_t signals;
};

constexpr std::array kShown{
    Shown{Condition::kCoverOpen, tzvio_devices::kError},
    Shown{Condition::kPaperOut, tzvio_devices::kError | tzvio_devices::kPaperOut},
    Shown{Condition::kCutterJam, tzvio_devices::kError},
    Shown{Condition::kOffline, tzvio_devices::kError | tzvio_devices::kOffline},
    Shown{Condition::kPowerOff, tzvio_devices::kUnpowered},
    Shown{Condition::kConnectionLost, tzvio_devices::kUnpowered},
    Shown{Condition::kConnectionClosed, tzvio_devices::kUnpowered},
    Shown{Condition::kTakesNothing, tzvio_devices::kTakesNothing},
    Shown{Condition::kClaimRefused, tzvio_devices::kClaimRefused},
    Shown{Condition::kNibbleRefused, tzvio_devices::kNibbleRefused},
};

}  // namespace

PrivateFolder::PrivateFolder() : path_(runtime_path("-XXXXXX")) {
  if (mkdtemp(path_.data()) == nullptr) check(-1, "cannot make a folder like " + path_);
}

PrivateFolder::~PrivateFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

DeviceLink::DeviceLink(std::string name, std::string socket)
    : StreamLink(Sharing::kAll),
      name_(std::move(name)),
      kind_(tzvio_devices::kind_of(name_)),
      socket_(std::move(socket)) {
  if (socket_.empty()) {
    socket_ = folder_.emplace().path() + "/line";
  } else {
    expect_nobody_at(socket_);
    // What a printer that was killed has left, and nothing else.
    if (std::filesystem::is_socket(socket_)) unlink(socket_.c_str());
  }
  page_ = make_page(socket_ + ".page");
  set_up_line(*page_);
  page_->room = tzvio_devices::kNoLimit;
  take_connections();
  page_->version = DevicePage::kVersion;
}

DeviceLink::~DeviceLink() {
  munmap(page_, sizeof(DevicePage));
}

std::string DeviceLink::settings() const {
  return kind_ == DeviceKind::kSerial ? TerminalLink::kSerialSettings : "";
}

Environment DeviceLink::environment() const {
  return {{kPreload, joined(preload_library(), kPreload)},
          {kDevices, joined(name_ + "=" + socket_, kDevices)}};
}

// The node is gone before it takes no connection any more, and takes connections before it is back.
void DeviceLink::show(const Conditions& conditions) {
  std::uint32_t signals = 0;
  for (const Shown& shown : kShown) {
    if (conditions.has(shown.condition)) signals |= shown.signals;
  }
  const bool gone = is_gone(conditions);
  if (!gone) take_connections();
  page_->signals = gone ? signals | tzvio_devices::kGone : signals;
  if (gone) refuse_connections(HangUp::kReset);
  show_busy(conditions.has(Condition::kBusy));
}

// A USB device without power or plug is no device; at the other links the till does not notice.
bool DeviceLink::is_gone(const Conditions& conditions) const {
  return kind_ == DeviceKind::kUsb &&
         (conditions.has(Condition::kPowerOff) || conditions.has(Condition::kConnectionLost) ||
          conditions.has(Condition::kConnectionClosed));
}

// Room that was limited before the printer becomes busy stays so until then.
void DeviceLink::show_busy(bool busy) {
  if (busy == busy_) return;
  busy_ = busy;
  page_->room = busy ? 0 : tzvio_devices::kNoLimit;
}

void DeviceLink::limit_room(std::size_t bytes) {
  page_->room = static_cast<std::uint32_t>(std::min<std::size_t>(bytes, tzvio_devices::kNoLimit));
}

void DeviceLink::refuse_nibble_mode(int times) {
  page_->nibble_refusals = static_cast<std::uint32_t>(times);
}

Descriptor DeviceLink::listen_anew() {
  const std::string& path = socket_;
  Descriptor socket(check(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0),
                          "cannot make " + path));
  check(with_unix_address(bind, socket.number(), path), "cannot make " + path);
  check(listen(socket.number(), kMostWaiting), "cannot listen at " + path);
  return socket;
}

void DeviceLink::stop_listening() {
  StreamLink::stop_listening();
  unlink(socket_.c_str());
}

}  // namespace virtual_printer
