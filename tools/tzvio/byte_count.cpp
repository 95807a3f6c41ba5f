#include "byte_count.h"

#include <dlfcn.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

#include "guardian.h"

namespace cli {
namespace {

thread_local ByteCount* counting = nullptr;

// What the program would have called without us.
template <typename Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

ssize_t counted(ssize_t result) {
  if (result > 0 && counting != nullptr) counting->add(static_cast<std::size_t>(result));
  return result;
}

}  // namespace

ByteCount::ByteCount(Observer observer) : observer_(std::move(observer)) {
  counting = this;
}

ByteCount::~ByteCount() {
  counting = nullptr;
}

void ByteCount::add(std::size_t bytes) {
  bytes_ += bytes;
  show_life();
  if (observer_) observer_(bytes_);
}

}  // namespace cli

extern "C" {

ssize_t write(int descriptor, const void* bytes, size_t size) {
  static auto* const next = cli::real<ssize_t(int, const void*, size_t)>("write");
  return cli::counted(next(descriptor, bytes, size));
}

ssize_t send(int socket, const void* bytes, size_t size, int flags) {
  static auto* const next = cli::real<ssize_t(int, const void*, size_t, int)>("send");
  return cli::counted(next(socket, bytes, size, flags));
}

}  // extern "C"
