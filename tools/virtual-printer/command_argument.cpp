#include "command_argument.h"

#include "bit_image.h"

namespace virtual_printer {
namespace {

constexpr std::uint8_t kHighestTwoBits = 3;
constexpr std::size_t kFirmwareUnit = 65536;

std::size_t value_of(char byte) {
  return static_cast<unsigned char>(byte);
}

bool is_any_of(std::string_view characters, char byte) {
  return characters.find(byte) != std::string_view::npos;
}

// Blocks whose length is known from their first few bytes: how many these are, whether they are
// right, and what follows them.
struct Head {
  std::size_t length;
  bool right;
  std::size_t rest;
};

Head head_of(ArgumentRule rule, std::string_view data) {
  switch (rule) {
    case ArgumentRule::kCounted:
      return {2, data[0] != 0 && data[1] == '_', value_of(data[0])};
    case ArgumentRule::kLinearSymbol:
      return {2, data[0] >= 'A' && data[0] <= 'I', value_of(data[1])};
    case ArgumentRule::kImageNumber:
      return {2, data[0] != 0 && without_digit(data[1]) <= kHighestTwoBits, 0};
    case ArgumentRule::kSymbolData:
      return {5,
              number_of(data) >= 3 && is_any_of("01", data[2]) && data[3] == 'P' && data[4] == '0',
              number_of(data) - 3};
    default:
      return {4, is_any_of("DEF", data[0]) && data[1] != 0 && number_of(data.substr(2)) == 0,
              value_of(data[1]) * kFirmwareUnit + 1};
  }
}

std::size_t length_of_head(ArgumentRule rule) {
  if (rule == ArgumentRule::kSymbolData) return 5;
  return rule == ArgumentRule::kFirmware ? 4 : 2;
}

}  // namespace

bool is_block(ArgumentRule rule) {
  return rule >= ArgumentRule::kPulse;
}

bool is_long(ArgumentRule rule) {
  return rule >= ArgumentRule::kLinearSymbol;
}

std::optional<std::size_t> length_of_argument(ArgumentRule rule, std::string_view data) {
  switch (rule) {
    case ArgumentRule::kNone:
      return 0;
    case ArgumentRule::kPulse:
      if (!data.empty() && without_digit(data.front()) > 1) return std::nullopt;
      return 3;
    case ArgumentRule::kIdentifier:
      return 4;
    case ArgumentRule::kPosition:
      return 2;
    case ArgumentRule::kImage:
      return length_of_image(data);
    case ArgumentRule::kImages:
      return length_of_images(data);
    default:
      break;
  }
  if (!is_block(rule)) return 1;
  if (data.size() < length_of_head(rule)) return length_of_head(rule);
  const Head head = head_of(rule, data);
  return head.right ? std::optional(head.length + head.rest) : std::nullopt;
}

std::uint8_t without_digit(char byte) {
  const auto value = static_cast<std::uint8_t>(byte);
  return byte >= '0' && byte <= '9' ? static_cast<std::uint8_t>(value - '0') : value;
}

std::optional<std::uint8_t> byte_between(std::uint8_t lowest, std::uint8_t highest, char byte) {
  const auto value = static_cast<std::uint8_t>(byte);
  return value >= lowest && value <= highest ? std::optional(value) : std::nullopt;
}

std::optional<std::uint8_t> accepted_byte(ArgumentRule rule, char byte) {
  const std::uint8_t number = without_digit(byte);
  const auto up_to = [&](std::uint8_t highest) {
    return number <= highest ? std::optional(number) : std::nullopt;
  };
  switch (rule) {
    case ArgumentRule::kSwitch:
      return up_to(1);
    case ArgumentRule::kLevel:
      return up_to(2);
    case ArgumentRule::kTwoBits:
      return up_to(kHighestTwoBits);
    case ArgumentRule::kStatusNumber:
      return byte_between(1, 4, byte);
    default:
      return static_cast<std::uint8_t>(byte);
  }
}

std::size_t number_of(std::string_view bytes) {
  return value_of(bytes[0]) + value_of(bytes[1]) * 256;
}

}  // namespace virtual_printer
