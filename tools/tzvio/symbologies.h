// Symbologies by the names that people use, and what their data are made of.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace cli {

inline constexpr std::array<std::pair<const char*, long>, 13> kSymbologies{{{"upc-a", 101},
                                                                            {"upc-e", 102},
                                                                            {"ean-8", 103},
                                                                            {"ean-13", 104},
                                                                            {"jan-8", 105},
                                                                            {"jan-13", 106},
                                                                            {"itf", 107},
                                                                            {"codabar", 108},
                                                                            {"code39", 109},
                                                                            {"code93", 110},
                                                                            {"code128", 111},
                                                                            {"pdf417", 200},
                                                                            {"qrcode", 201}}};

inline constexpr std::array<std::pair<const char*, long>, 3> kAlignments{
    {{"left", 0}, {"centre", 1}, {"right", 2}}};

inline constexpr std::array<std::pair<const char*, long>, 3> kTextPositions{
    {{"none", 0}, {"above", 1}, {"below", 2}}};

inline constexpr std::array<std::pair<const char*, long>, 4> kLevels{
    {{"L", 0}, {"M", 1}, {"Q", 2}, {"H", 3}}};

constexpr bool is_2d(long symbology) {
  return symbology >= 200;
}

// A position in the data that the symbology has no character for; none when all can be encoded.
std::optional<std::size_t> foreign_character(long symbology, std::string_view data);

// What a symbology can encode, in words.
std::string_view characters_in_words(long symbology);

// The check digit of EAN and UPC data: what the printer adds when it is not there, or none for
// other symbologies. `has_it` says whether the data end with one.
struct CheckDigit {
  char digit;
  bool has_it;
  bool right;  // if it is there
};
std::optional<CheckDigit> check_digit(long symbology, std::string_view data);

}  // namespace cli
