#include "symbologies.h"

#include <tzvio.h>

namespace cli {
namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kCodabar = "0123456789-$:/.+ABCDabcd";
constexpr std::string_view kCode39 = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ -.$/+%*";
constexpr unsigned char kLastAscii = 0x7f;

// What is encoded; empty: all of ASCII, or all bytes.
std::string_view characters_of(long symbology) {
  if (symbology <= TZV_BARCODE_ITF) return kDigits;
  if (symbology == TZV_BARCODE_CODABAR) return kCodabar;
  return symbology == TZV_BARCODE_CODE39 ? kCode39 : std::string_view();
}

// Digits without the check digit; 0: the symbology has none of that kind.
std::size_t digits_before_check(long symbology) {
  switch (symbology) {
    case TZV_BARCODE_UPCA:
    case TZV_BARCODE_UPCE:
      return 11;
    case TZV_BARCODE_EAN8:
    case TZV_BARCODE_JAN8:
      return 7;
    case TZV_BARCODE_EAN13:
    case TZV_BARCODE_JAN13:
      return 12;
    default:
      return 0;
  }
}

// The last digit weighs three, the one before it one, and so on.
char check_digit_of(std::string_view digits) {
  int sum = 0;
  int weight = 3;
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
    sum += weight * (*digit - '0');
    weight = 4 - weight;
  }
  return static_cast<char>('0' + (10 - sum % 10) % 10);
}

}  // namespace

std::optional<std::size_t> foreign_character(long symbology, std::string_view data) {
  if (is_2d(symbology)) return std::nullopt;
  const std::string_view characters = characters_of(symbology);
  for (std::size_t i = 0; i < data.size(); ++i) {
    const bool known = characters.empty() ? static_cast<unsigned char>(data[i]) <= kLastAscii
                                          : characters.find(data[i]) != std::string_view::npos;
    if (!known) return i;
  }
  return std::nullopt;
}

std::string_view characters_in_words(long symbology) {
  if (symbology <= TZV_BARCODE_ITF) return "digits";
  if (symbology == TZV_BARCODE_CODABAR) return "digits, - $ : / . + and A to D at the ends";
  if (symbology == TZV_BARCODE_CODE39) return "digits, capital letters, blank and - . $ / + %";
  return "ASCII";
}

std::optional<CheckDigit> check_digit(long symbology, std::string_view data) {
  const std::size_t count = digits_before_check(symbology);
  if (count == 0 || data.size() < count) return std::nullopt;
  const char digit = check_digit_of(data.substr(0, count));
  const bool has_it = data.size() > count;
  return CheckDigit{digit, has_it, has_it && data[count] == digit};
}

}  // namespace cli
