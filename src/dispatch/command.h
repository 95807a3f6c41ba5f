// Commands with parameters.
#pragma once

#include <cstddef>
#include <string_view>

template <std::size_t size>
struct Command {
  char bytes[size];

  constexpr operator std::string_view() const { return {bytes, size}; }
};

/// The command of these bytes. Of a number the low eight bits go out.
template <typename... Numbers>
constexpr Command<sizeof...(Numbers)> command(Numbers... numbers) {
  return {{static_cast<char>(numbers)...}};
}
