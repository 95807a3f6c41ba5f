#include "terminal_link.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <array>
#include <cstdlib>
#include <filesystem>

#include "transfer.h"

namespace virtual_printer {
namespace {

constexpr std::string_view kTerminalFolder = "/dev/pts/";

Descriptor open_printer_end() {
  Descriptor end(check(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC),
                       "cannot make a pseudo-terminal"));
  check(grantpt(end.number()), "cannot grant the pseudo-terminal");
  check(unlockpt(end.number()), "cannot unlock the pseudo-terminal");
  return end;
}

std::string device_of(const Descriptor& printer_end) {
  std::array<char, 128> name{};
  if (ptsname_r(printer_end.number(), name.data(), name.size()) != 0) {
    check(-1, "cannot name the pseudo-terminal");
  }
  return name.data();
}

// A printer's line carries bytes: no echo, no line editing, no translation of line ends.
void make_raw(const Descriptor& end) {
  termios settings{};
  check(tcgetattr(end.number(), &settings), "cannot read the line's settings");
  cfmakeraw(&settings);
  check(tcsetattr(end.number(), TCSANOW, &settings), "cannot set the line");
}

// A link into the terminals' folder whose terminal is gone: only a printer that could not tidy up
// leaves such a thing. The number of its terminal may have come to us meanwhile.
bool is_left_behind(const std::string& name, const std::string& device) {
  std::error_code error;
  const std::string target = std::filesystem::read_symlink(name, error).string();
  return !error && target.starts_with(kTerminalFolder) &&
         (target == device || !std::filesystem::exists(target));
}

void make_room_for(const std::string& name, const std::string& device) {
  if (!std::filesystem::exists(std::filesystem::symlink_status(name))) return;
  if (!is_left_behind(name, device)) {
    throw NameTaken(name +
                    " exists already and is not replaced; give another name with --port, or "
                    "remove it if nothing needs it");
  }
  check(unlink(name.c_str()), "cannot replace the stale link " + name);
}

}  // namespace

PortName::PortName(std::string name, std::string device)
    : name_(std::move(name)), device_(std::move(device)) {
  make_room_for(name_, device_);
  check(symlink(device_.c_str(), name_.c_str()), "cannot make " + name_);
}

// Only our own link goes: somebody may have put another in its place meanwhile.
PortName::~PortName() {
  std::error_code error;
  if (std::filesystem::read_symlink(name_, error) == device_ && !error) unlink(name_.c_str());
}

TerminalLink::TerminalLink(const std::string& name)
    : printer_end_(open_printer_end()),
      till_end_(check(open(device_of(printer_end_).c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC),
                      "cannot open the pseudo-terminal")),
      name_(name, device_of(printer_end_)) {
  make_raw(till_end_);
}

std::string TerminalLink::read_waiting(std::size_t most) {
  return read_some(printer_end_, most).bytes;
}

std::size_t TerminalLink::write(std::string_view bytes) {
  return write_some(printer_end_, bytes);
}

}  // namespace virtual_printer
