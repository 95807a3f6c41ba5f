#include "linear_data.h"

#include <zint.h>

#include <array>
#include <cstddef>

#include "command.h"

namespace virtual_printer {
namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kCodabar = "0123456789-$:/.+ABCDabcd";
constexpr std::string_view kCodabarEnds = "ABCDabcd";
constexpr std::string_view kCode39 = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ -.$/+%";
constexpr char kCode39End = '*';
constexpr char kLastAscii = '\x7f';

struct Symbology {
  std::string_view name;
  int encoder;
  std::string_view characters;  // empty: all of ASCII
  std::size_t digits = 0;       // without the check digit, where their number is fixed
  int encoder_with_check = 0;   // when the check digit is among the data
};

// A to I.
constexpr std::array<Symbology, 9> kSymbologies{{
    {"UPC-A", BARCODE_UPCA, kDigits, 11, BARCODE_UPCA_CHK},
    {"UPC-E", BARCODE_UPCE, kDigits, 11, BARCODE_UPCE_CHK},
    {"EAN-13", BARCODE_EANX, kDigits, 12, BARCODE_EANX_CHK},
    {"EAN-8", BARCODE_EANX, kDigits, 7, BARCODE_EANX_CHK},
    {"Code 39", BARCODE_CODE39, kCode39},
    {"ITF", BARCODE_C25INTER, kDigits},
    {"Codabar", BARCODE_CODABAR, kCodabar},
    {"Code 93", BARCODE_CODE93, {}},
    {"Code 128", BARCODE_CODE128, {}},
}};

const Symbology& symbology_of(char letter) {
  return kSymbologies.at(static_cast<std::size_t>(letter - 'A'));
}

bool are_all_of(const Symbology& symbology, std::string_view data) {
  if (!symbology.characters.empty()) {
    return data.find_first_not_of(symbology.characters) == std::string_view::npos;
  }
  for (const char byte : data) {
    if (static_cast<unsigned char>(byte) > kLastAscii) return false;
  }
  return true;
}

// Of UPC-A's digits the six that UPC-E has, between the number system and the check digit.
std::string upc_e_of(std::string_view upc_a) {
  const std::string maker(upc_a.substr(1, 5));
  const std::string product(upc_a.substr(6, 5));
  const bool round = maker.ends_with("00");
  std::string six;
  if (round && maker[2] <= '2' && product.starts_with("00")) {
    six = maker.substr(0, 2) + product.substr(2) + maker[2];
  } else if (round && product.starts_with("000")) {
    six = maker.substr(0, 3) + product.substr(3) + '3';
  } else if (maker.back() == '0' && product.starts_with("0000")) {
    six = maker.substr(0, 4) + product.back() + '4';
  } else if (product.starts_with("0000") && product.back() >= '5') {
    six = maker + product.back();
  }
  if (six.empty() || upc_a.front() > '1') throw Refused("no such number is short enough");
  return upc_a.front() + six + std::string(upc_a.substr(11));
}

std::string with_codabar_ends(std::string_view data) {
  const bool has_begin = kCodabarEnds.find(data.front()) != std::string_view::npos;
  const bool has_end = kCodabarEnds.find(data.back()) != std::string_view::npos;
  if (has_begin && has_end && data.size() > 1) return std::string(data);
  return 'A' + std::string(data) + 'A';
}

std::string_view without_code39_ends(std::string_view data) {
  const bool has_ends = data.size() > 2 && data.front() == kCode39End && data.back() == kCode39End;
  return has_ends ? data.substr(1, data.size() - 2) : data;
}

// "{A", "{B" and "{C" say in which set the following bytes stand, "{S" that the next one is of the
// other of A and B, "{{" is a brace. In set C a byte is a pair of digits.
std::string code128_characters(std::string_view sent) {
  if (sent.front() != '{') return std::string(sent);
  std::string characters;
  char set = 'B';
  for (std::size_t i = 0; i < sent.size(); ++i) {
    const char byte = sent[i];
    if (byte == '{' && ++i < sent.size()) {
      if (sent[i] >= 'A' && sent[i] <= 'C') {
        set = sent[i];
      } else if (sent[i] == '{') {
        characters += '{';
      } else if (sent[i] != 'S' || set == 'C') {
        throw Refused(std::string("there is no {") + sent[i] + " in set " + set);
      }
    } else if (byte == '{') {
      throw Refused("nothing stands behind the last brace");
    } else if (set != 'C') {
      characters += byte;
    } else if (byte >= 0 && byte < 100) {
      characters += {static_cast<char>('0' + byte / 10), static_cast<char>('0' + byte % 10)};
    } else {
      throw Refused("set C has 00 to 99");
    }
  }
  return characters;
}

std::string translated(char symbology, std::string_view sent) {
  switch (symbology) {
    case 'B':
      return upc_e_of(sent);
    case 'E':
      return std::string(without_code39_ends(sent));
    case 'G':
      return with_codabar_ends(sent);
    case 'I':
      return code128_characters(sent);
    default:
      return std::string(sent);
  }
}

}  // namespace

std::string_view name_of_symbology(char letter) {
  return symbology_of(letter).name;
}

LinearData linear_data(char letter, std::string_view sent) {
  const Symbology& symbology = symbology_of(letter);
  if (sent.empty()) throw Refused("no data");
  const bool has_check = symbology.digits > 0 && sent.size() == symbology.digits + 1;
  if (symbology.digits > 0 && sent.size() != symbology.digits && !has_check) {
    throw Refused("needs " + std::to_string(symbology.digits) + " digits, or one more");
  }
  if (symbology.encoder == BARCODE_C25INTER && sent.size() % 2 != 0) {
    throw Refused("needs pairs of digits");
  }
  const bool has_own_ends = symbology.encoder == BARCODE_CODE39;
  if (!are_all_of(symbology, has_own_ends ? without_code39_ends(sent) : sent)) {
    throw Refused("has other characters than the symbology");
  }
  return {has_check ? symbology.encoder_with_check : symbology.encoder, translated(letter, sent)};
}

}  // namespace virtual_printer
