// Cutting byte strings without the bounds exception of std::string_view::substr: the library has
// no C++ run-time that could raise one.
#pragma once

#include <algorithm>
#include <string_view>

/// At most the first `count` bytes.
constexpr std::string_view first_of(std::string_view bytes, std::size_t count) {
  return {bytes.data(), std::min(count, bytes.size())};
}

/// What follows the first `count` bytes.
constexpr std::string_view rest_of(std::string_view bytes, std::size_t count) {
  const std::size_t dropped = std::min(count, bytes.size());
  return {bytes.data() + dropped, bytes.size() - dropped};
}

constexpr bool begins_with(std::string_view bytes, std::string_view prefix) {
  return first_of(bytes, prefix.size()) == prefix;
}
