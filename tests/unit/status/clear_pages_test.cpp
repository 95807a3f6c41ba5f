#include "status/clear_pages.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

namespace {

constexpr std::size_t kSize = 50UL * 4096;
char variable[kSize];

/// Writes everywhere, clears a part, and looks at every byte.
void expect_cleared(std::size_t from, std::size_t size) {
  std::fill(std::begin(variable), std::end(variable), 'x');
  clear_pages(variable + from, size);
  for (std::size_t i = 0; i < kSize; ++i) {
    ASSERT_EQ(variable[i], i >= from && i < from + size ? '\0' : 'x')
        << from << " " << size << " " << i;
  }
}

TEST(ClearPages, of_every_alignment_and_nothing_beside) {
  for (const std::size_t from : {0U, 1U, 100U, 4095U, 4096U, 4097U, 9000U}) {
    for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 8191U, 8192U, 12289U, 100000U}) {
      expect_cleared(from, size);
    }
  }
  expect_cleared(0, kSize);
}

std::size_t resident_pages() {
  std::vector<unsigned char> present(kSize / 4096 + 1);
  const auto page = static_cast<std::size_t>(getpagesize());
  char* const first = variable + (-reinterpret_cast<uintptr_t>(variable) % page);
  EXPECT_EQ(mincore(first, kSize / page * page - page, present.data()), 0);
  return static_cast<std::size_t>(
      std::count_if(present.begin(), present.end(), [](unsigned char byte) { return byte & 1; }));
}

TEST(ClearPages, gives_memory_back) {
  std::fill(std::begin(variable), std::end(variable), 'x');
  const std::size_t before = resident_pages();
  clear_pages(variable, kSize);
  EXPECT_LE(resident_pages(), 1U);
  EXPECT_GE(before, 40U);
}

TEST(ClearPages, that_are_locked) {
  if (mlock(variable, kSize) != 0) GTEST_SKIP() << "no memory may be locked here";
  expect_cleared(0, kSize);
  expect_cleared(5, 20000);
  munlock(variable, kSize);
}

}  // namespace
