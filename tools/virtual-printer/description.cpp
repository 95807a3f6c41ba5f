#include "description.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "bit_image.h"
#include "code_page_437.h"
#include "command_argument.h"
#include "firmware.h"
#include "hex.h"
#include "identity.h"
#include "linear_data.h"

namespace virtual_printer {
namespace {

constexpr std::size_t kMostQuoted = 64;
constexpr unsigned char kFirstPrintable = 0x20;
constexpr unsigned char kDelete = 0x7f;

std::string number(std::size_t value, const std::string& unit) {
  return std::to_string(value) + ' ' + unit + (value == 1 ? "" : "s");
}

std::string number_at(const Command& command, std::size_t offset) {
  return std::to_string(static_cast<unsigned char>(command.data[offset]));
}

std::string on_or_off(const Command& command) {
  return command.argument != 0 ? "on" : "off";
}

std::string alignment(const Command& command) {
  constexpr std::array kNames{"left", "centre", "right"};
  return kNames.at(command.argument);
}

// Each bit that is set by its name, and what is left when none is.
struct BitName {
  unsigned bit;
  const char* name;
};

template <std::size_t count>
std::string bits(unsigned value, const std::array<BitName, count>& names, const char* none) {
  std::string words;
  for (const BitName& row : names) {
    if ((value & row.bit) != 0) words += (words.empty() ? "" : ", ") + std::string(row.name);
  }
  return words.empty() ? none : words;
}

std::string print_mode(const Command& command) {
  constexpr std::array<BitName, 5> kModes{{{0x01, "font B"},
                                           {0x08, "emphasised"},
                                           {0x10, "double height"},
                                           {0x20, "double width"},
                                           {0x80, "underlined"}}};
  return bits(command.argument, kModes, "plain");
}

std::string enlargement(unsigned value) {
  constexpr std::array<BitName, 2> kSizes{{{1, "double width"}, {2, "double height"}}};
  return bits(value, kSizes, "as it is");
}

std::string character_size(const Command& command) {
  const unsigned width = (command.argument >> 4U & 7U) + 1;
  const unsigned height = (command.argument & 7U) + 1;
  return "width x" + std::to_string(width) + ", height x" + std::to_string(height);
}

std::string status_name(const Command& command) {
  constexpr std::array kNames{"printer", "what stops it", "errors", "paper"};
  return kNames.at(command.argument - 1U);
}

std::string drawer(const Command& command) {
  constexpr std::size_t kUnitMs = 2;
  const auto milliseconds = [&](std::size_t offset) {
    return std::to_string(static_cast<unsigned char>(command.data[offset]) * kUnitMs) + " ms";
  };
  return "connector " + std::to_string(without_digit(command.data[0])) + ", " + milliseconds(1) +
         " on, " + milliseconds(2) + " off";
}

std::string serial_number(const Command& command) {
  Identity identity;
  const bool right = store_serial_number(command.data, identity);
  const std::string_view sent = std::string_view(command.data).substr(2);
  return in_quotes(sent.substr(0, sent.size() - 1)) + ", checksum " + (right ? "right" : "wrong");
}

std::string text_place(const Command& command) {
  constexpr std::array kNames{"nowhere", "above the bars", "below the bars"};
  return kNames.at(command.argument);
}

std::string linear_symbol(const Command& command) {
  return std::string(name_of_symbology(command.data.front())) + ' ' +
         in_quotes(std::string_view(command.data).substr(2));
}

std::string stored_symbol(const Command& command) {
  constexpr std::size_t kClassAt = 2;
  constexpr std::size_t kDataAt = 5;
  const std::string_view data = std::string_view(command.data).substr(kDataAt);
  return std::string(command.data[kClassAt] == '0' ? "PDF417" : "QR Code") + ": store " +
         number(data.size(), "byte") + ' ' + in_quotes(data);
}

std::string qr_model(const Command& command) {
  switch (command.argument) {
    case '1':
    case '2':
      return std::string(1, static_cast<char>(command.argument));
    case '3':
      return "Micro QR Code";
    default:
      return "as before";
  }
}

std::string qr_level(const Command& command) {
  return std::string(1, "LMQH"[command.argument - '0']);
}

std::string size_of(const DotImage& image) {
  return std::to_string(image.width()) + " x " + std::to_string(image.height()) + " dots";
}

std::string stored_images(const Command& command) {
  const auto count = static_cast<unsigned char>(command.data.front());
  std::string words = number(count, "image");
  for (std::size_t image = 1; image <= count && words.size() < kMostQuoted; ++image) {
    words += (image == 1 ? ": " : ", ") + size_of(*image_in(command.data, image));
  }
  return words;
}

std::string position(const Command& command) {
  return number(number_of(command.data), "dot");
}

std::string words_of_setting(const Command& command) {
  switch (command.kind) {
    case CommandKind::kInitialize:
      return "initialize";
    case CommandKind::kEmphasis:
      return "emphasis: " + on_or_off(command);
    case CommandKind::kUnderline:
      return "underline: " + (command.argument == 0 ? "off" : number(command.argument, "dot"));
    case CommandKind::kReverse:
      return "white on black: " + on_or_off(command);
    case CommandKind::kColour:
      return std::string("colour: ") + (command.argument == 0 ? "first" : "second");
    case CommandKind::kAlignment:
      return "select justification: " + alignment(command);
    case CommandKind::kPrintMode:
      return "print mode: " + print_mode(command);
    case CommandKind::kCharacterSize:
      return "character size: " + character_size(command);
    case CommandKind::kLineSpacing:
      return "line spacing: " + number(command.argument, "half dot");
    case CommandKind::kDefaultLineSpacing:
      return "line spacing: default";
    case CommandKind::kModuleWidth:
      return "linear symbol: modules of " + number(command.argument, "dot");
    case CommandKind::kBarHeight:
      return "linear symbol: bars of " + number(command.argument, "dot");
    case CommandKind::kSymbolTextFont:
      return std::string("linear symbol: text in font ") + (command.argument == 0 ? "A" : "B");
    case CommandKind::kSymbolTextPlace:
      return "linear symbol: text " + text_place(command);
    case CommandKind::kPdf417Columns:
      return "PDF417: " +
             (command.argument == 0 ? "columns as suit" : number(command.argument, "column"));
    case CommandKind::kPdf417ModuleWidth:
      return "PDF417: modules of " + number(command.argument, "dot");
    case CommandKind::kQrModel:
      return "QR Code: model " + qr_model(command);
    case CommandKind::kQrModuleSize:
      return "QR Code: modules of " + number(command.argument, "dot");
    case CommandKind::kQrErrorCorrection:
      return "QR Code: error correction " + qr_level(command);
    default:
      return "";
  }
}

std::string words_of_print(const Command& command) {
  switch (command.kind) {
    case CommandKind::kText:
      return "text " + in_quotes(std::string(1, static_cast<char>(command.argument)));
    case CommandKind::kLineFeed:
      return "line feed";
    case CommandKind::kCarriageReturn:
      return "carriage return";
    case CommandKind::kTab:
      return "tab";
    case CommandKind::kPartialCut:
      return "cut, partial";
    case CommandKind::kFullCut:
      return "cut, full";
    case CommandKind::kSelfTest:
      return "print self-test page " + std::to_string(command.argument);
    case CommandKind::kLinearSymbol:
      return "print " + linear_symbol(command);
    case CommandKind::kPrintPdf417:
      return "PDF417: print";
    case CommandKind::kPrintQrCode:
      return "QR Code: print";
    case CommandKind::kStoreSymbol:
      return stored_symbol(command);
    case CommandKind::kDownloadImage:
      return "picture: download " + size_of(image_in(command.data));
    case CommandKind::kPrintDownloaded:
      return "picture: print " + enlargement(command.argument);
    case CommandKind::kPrintStored:
      return "print stored image " + number_at(command, 0) + ' ' +
             enlargement(without_digit(command.data[1]));
    case CommandKind::kPageMode:
      return "page: begin";
    case CommandKind::kPrintPage:
      return "page: print";
    case CommandKind::kStandardMode:
      return "page: leave";
    case CommandKind::kPositionX:
      return "position across: " + position(command);
    case CommandKind::kPositionY:
      return "position down: " + position(command);
    default:
      return "";
  }
}

std::string words_of_request(const Command& command) {
  switch (command.kind) {
    case CommandKind::kRealTimeStatus:
      return "query status " + std::to_string(command.argument) + ": " + status_name(command);
    case CommandKind::kSensorQuery:
      return "query paper sensor";
    case CommandKind::kMarkQuery:
      return "query black mark";
    case CommandKind::kAutomaticStatus:
      return "status reports: " + on_or_off(command);
    case CommandKind::kProcessId:
      return "confirm when printed: request " + hex_of(command.data, command.data.size());
    case CommandKind::kVersionQuery:
      return "query version";
    case CommandKind::kSerialNumberQuery:
      return "query serial number";
    case CommandKind::kStoreSerialNumber:
      return "store serial number " + serial_number(command);
    case CommandKind::kDrawerPulse:
      return "open drawer: " + drawer(command);
    case CommandKind::kBeep:
      return "beep";
    case CommandKind::kStoreImages:
      return "store " + stored_images(command);
    case CommandKind::kEraseImages:
      return "erase stored images";
    case CommandKind::kFirmware:
      return check_firmware(command.data).words;
    case CommandKind::kFramedJob:
      return "frame: job of " + number(command.data.size(), "byte") + ", checksum right";
    default:
      return "";
  }
}

std::string words_of(const Command& command) {
  for (const auto& words_of_kind : {words_of_setting, words_of_print, words_of_request}) {
    std::string words = words_of_kind(command);
    if (!words.empty()) return words;
  }
  return command.data;  // a notice is its own words
}

}  // namespace

std::string in_quotes(std::string_view bytes) {
  std::string text = "\"";
  for (const char byte : bytes.substr(0, kMostQuoted)) {
    const auto character = static_cast<unsigned char>(byte);
    const bool prints = character >= kFirstPrintable && character != kDelete;
    text += prints ? utf8_of_code_page_437(character) : "\\x" + hex_of({&byte, 1}, 1);
  }
  return text + '"' + (bytes.size() > kMostQuoted ? "..." : "");
}

std::string words_for(const Decoded& decoded) {
  if (const auto* command = std::get_if<Command>(&decoded)) return words_of(*command);
  if (const auto* frame = std::get_if<RefusedFrame>(&decoded)) {
    return "frame refused: " + frame->reason;
  }
  return "unknown";
}

}  // namespace virtual_printer
