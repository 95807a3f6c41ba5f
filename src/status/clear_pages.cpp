#include "status/clear_pages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

namespace {

/// Gives whole pages back. The system may refuse: a till that locks its memory keeps its pages.
bool give_back(char* pages, std::size_t size) {
  return madvise(pages, size, MADV_DONTNEED) == 0;
}

}  // namespace

void clear_pages(char* bytes, std::size_t size) {
  const auto page = static_cast<std::size_t>(getpagesize());
  // Up to the first page's beginning, and behind the last one's end.
  const std::size_t head = -reinterpret_cast<uintptr_t>(bytes) % page;
  const std::size_t whole = size > head ? (size - head) / page * page : 0;
  if (whole == 0 || !give_back(bytes + head, whole)) {
    std::memset(bytes, 0, size);
    return;
  }
  std::memset(bytes, 0, head);
  std::memset(bytes + head + whole, 0, size - head - whole);
}
