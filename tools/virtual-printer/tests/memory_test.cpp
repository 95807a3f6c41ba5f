#include "memory.h"

#include <gtest/gtest.h>

#include <string>

namespace virtual_printer {
namespace {

using namespace std::string_literals;

// One image of eight dots by eight.
const std::string kImages = "\x01\x01\0\x01\0\x80\0\0\0\0\0\0\x01"s;

TEST(Memory, is_the_commands_that_store_it) {
  EXPECT_EQ(commands_for({{"AB"}, kImages}), "\x1d#\x03_AB\x5c\x1cq" + kImages);
}

TEST(Memory, comes_back_as_it_was) {
  for (const Memory& memory : {Memory{}, Memory{{""}, kImages}, Memory{{"\n\x1b\0"s}, kImages},
                               Memory{{std::string(254, 'x')}, std::string(1, '\0')}}) {
    EXPECT_EQ(memory_after(commands_for(memory)), memory);
  }
}

TEST(Memory, of_nothing_is_a_new_printers) {
  EXPECT_EQ(memory_after(""), Memory());
}

TEST(Memory, of_anything_else_is_none) {
  const std::string good = commands_for({{"AB"}, kImages});
  EXPECT_EQ(memory_after("text"), std::nullopt);
  EXPECT_EQ(memory_after(good + "\n"), std::nullopt);
  EXPECT_EQ(memory_after(good.substr(0, good.size() - 1)), std::nullopt);
  EXPECT_EQ(memory_after("\x1d#\x03_AB\x5d"), std::nullopt);
}

}  // namespace
}  // namespace virtual_printer
