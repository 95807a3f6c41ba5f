// Memory and files for the length of one call.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

using Bytes = std::unique_ptr<std::uint8_t[], FreeMemory>;

/// Null when there is not so much memory. Sizes beyond 31 bits come from broken files only, and
/// are never there, whatever the machine has.
inline Bytes allocate(std::size_t size) {
  if (size > std::numeric_limits<std::int32_t>::max()) return nullptr;
  return Bytes(static_cast<std::uint8_t*>(std::malloc(size)));
}

/// The same, all zero; what is not written costs nothing. The caller has bounded the size.
inline Bytes allocate_zeroed(std::size_t size) {
  return Bytes(static_cast<std::uint8_t*>(std::calloc(size, 1)));
}

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, CloseFile>;
