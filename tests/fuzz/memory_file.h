// A file in memory whose content changes from input to input.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "check.h"

namespace fuzz {

class MemoryFile {
 public:
  MemoryFile()
      : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)),
        path_("/proc/self/fd/" + std::to_string(descriptor_)) {}
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  /// Zeros, and the content where it lies.
  void fill(off_t size, off_t at, std::string_view content) {
    check(ftruncate(descriptor_, 0) == 0 && ftruncate(descriptor_, size) == 0, "room for a file");
    const ssize_t written = pwrite(descriptor_, content.data(), content.size(), at);
    check(written == static_cast<ssize_t>(content.size()), "the file is written");
  }
  void fill(std::string_view content) { fill(0, 0, content); }

  const char* path() const { return path_.c_str(); }

 private:
  int descriptor_;
  std::string path_;
};

}  // namespace fuzz
