// Byte strings in tests: written in hex, compared with BytesAre, shown in hex when they differ.
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

/// The value of a lower-case hex digit.
constexpr unsigned hex_value(char digit) {
  return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
}

/// The bytes of "1b 21 60": pairs of lower-case hex digits, separated by spaces.
inline std::string hex(std::string_view digits) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 3) {
    bytes += static_cast<char>(hex_value(digits[i]) * 16 + hex_value(digits[i + 1]));
  }
  return bytes;
}

/// `count` times the same bytes.
inline std::string times(std::size_t count, std::string_view bytes) {
  std::string repeated;
  for (std::size_t i = 0; i < count; ++i) repeated += bytes;
  return repeated;
}

/// "1b 21 60" for those bytes, from index `from` on; a long string is cut.
inline std::string hex_dump(std::string_view bytes, std::size_t from = 0) {
  constexpr std::size_t kShown = 160;
  constexpr char kDigits[] = "0123456789abcdef";
  std::string dump = from == 0 ? "" : "... ";
  const std::size_t end = std::min(bytes.size(), from + kShown);
  for (std::size_t i = from; i < end; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    dump += kDigits[byte / 16];
    dump += kDigits[byte % 16];
    dump += ' ';
  }
  if (end < bytes.size()) dump += "... ";
  return dump + "(" + std::to_string(bytes.size()) + " bytes)";
}

/// Where two byte strings begin to differ.
inline std::size_t first_difference(std::string_view a, std::string_view b) {
  const std::size_t shorter = std::min(a.size(), b.size());
  std::size_t i = 0;
  while (i < shorter && a[i] == b[i]) ++i;
  return i;
}

/// Equal to the expected byte string. A failure shows both in hex; long ones from a little before
/// the first difference.
class BytesAreMatcher {
 public:
  using is_gtest_matcher = void;

  explicit BytesAreMatcher(std::string_view expected) : expected_(expected) {}

  bool MatchAndExplain(std::string_view actual, std::ostream* out) const {
    if (actual == expected_) return true;
    if (out != nullptr) {
      const std::size_t difference = first_difference(actual, expected_);
      const std::size_t from = difference < 64 ? 0 : difference - 16;
      *out << "which differ from byte " << difference
           << " on\n  expected: " << hex_dump(expected_, from)
           << "\n       got: " << hex_dump(actual, from);
    }
    return false;
  }
  void DescribeTo(std::ostream* out) const { *out << "are the bytes " << hex_dump(expected_); }
  void DescribeNegationTo(std::ostream* out) const {
    *out << "are not the bytes " << hex_dump(expected_);
  }

 private:
  std::string expected_;
};

inline BytesAreMatcher BytesAre(std::string_view expected) {
  return BytesAreMatcher(expected);
}

/// Names the cases of a table-driven test after its rows.
struct RowName {
  template <typename ParamInfo>
  std::string operator()(const ParamInfo& info) const {
    return info.param.name;
  }
};
