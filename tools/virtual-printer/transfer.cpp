#include "transfer.h"

#include <algorithm>
#include <array>

namespace virtual_printer {
namespace {

bool is_loss(int error) {
  return error == ECONNRESET || error == EPIPE || error == ETIMEDOUT;
}

}  // namespace

Received read_some(const Descriptor& source, std::size_t most) {
  std::array<char, 4096> buffer;
  ssize_t length;
  do {
    length = ::read(source.number(), buffer.data(), std::min(buffer.size(), most));
  } while (length < 0 && errno == EINTR);
  if (length < 0 && errno == EAGAIN) return {};
  if (length < 0 && is_loss(errno)) return {{}, true};
  check(static_cast<int>(length), "cannot read the line");
  return {{buffer.data(), static_cast<std::size_t>(length)}, length == 0};
}

std::size_t write_some(const Descriptor& target, std::string_view bytes) {
  ssize_t length;
  do {
    length = ::write(target.number(), bytes.data(), bytes.size());
  } while (length < 0 && errno == EINTR);
  if (length < 0 && (errno == EAGAIN || is_loss(errno))) return 0;
  return static_cast<std::size_t>(check(static_cast<int>(length), "cannot write to the line"));
}

}  // namespace virtual_printer
