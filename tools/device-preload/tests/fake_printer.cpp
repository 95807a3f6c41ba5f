#include "fake_printer.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <system_error>

namespace tzvio_devices {
namespace {

int check(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

// Kept for the whole test program, as the library maps it once.
DevicePage* make_page(const std::string& path) {
  const int file = check(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600), "page");
  check(ftruncate(file, sizeof(DevicePage)), "page");
  void* const memory =
      mmap(nullptr, sizeof(DevicePage), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (memory == MAP_FAILED) check(-1, "page");
  close(file);
  auto* const page = new (memory) DevicePage{};
  page->room = kNoLimit;
  page->version = DevicePage::kVersion;
  return page;
}

int listen_at(const std::string& path) {
  unlink(path.c_str());
  const int listener = check(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket");
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  check(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), "bind");
  check(listen(listener, 4), "listen");
  return listener;
}

}  // namespace

std::string socket_of(std::string_view name) {
  std::string file(name);
  std::replace(file.begin(), file.end(), '/', '-');
  const char* const folder = std::getenv(kFolderVariable);
  return (folder == nullptr ? "" : std::string(folder)) + "/" + file;
}

std::string environment_for_all_devices() {
  std::string text;
  for (const char* name : {kSerialName, kParallelName, kUsbName}) {
    text += (text.empty() ? "" : ":") + std::string(name) + "=" + socket_of(name);
  }
  return text;
}

FakePrinter::FakePrinter(const char* name)
    : name_(name),
      page_(make_page(socket_of(name) + ".page")),
      listener_(listen_at(socket_of(name))) {}

FakePrinter::~FakePrinter() {
  hang_up();
  close(listener_);
  munmap(page_, sizeof(DevicePage));
}

void FakePrinter::take_connection() {
  connection_ = check(accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC), "accept");
}

void FakePrinter::hang_up() {
  if (connection_ >= 0) close(connection_);
  connection_ = -1;
}

void FakePrinter::send(std::string_view bytes) const {
  check(static_cast<int>(::send(connection_, bytes.data(), bytes.size(), MSG_NOSIGNAL)), "send");
}

std::string FakePrinter::receive(std::size_t length) const {
  std::string bytes(length, '\0');
  std::size_t received = 0;
  while (received < length) {
    const int some =
        check(static_cast<int>(recv(connection_, &bytes[received], length - received, 0)), "recv");
    if (some == 0) break;
    received += static_cast<std::size_t>(some);
  }
  bytes.resize(received);
  return bytes;
}

std::size_t FakePrinter::waiting() const {
  int length = 0;
  check(ioctl(connection_, FIONREAD, &length), "FIONREAD");
  return static_cast<std::size_t>(length);
}

}  // namespace tzvio_devices
