// Every command in words: each expectation is what the bytes must mean.
#include "description.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "command_parser.h"
#include "framed.h"

namespace virtual_printer {
namespace {

using namespace std::string_literals;

struct Row {
  std::string bytes;
  std::string words;
};

std::string firmware() {
  return "\x1d~D\x05\0\0"s + std::string(0x50000, 'x') + '\0';
}

std::vector<Row> text_commands() {
  return {
      {"A", "text \"A\""},
      {"\n", "line feed"},
      {"\r", "carriage return"},
      {"\t", "tab"},
      {"\x1b@", "initialize"},
      {"\x1b\x45\x31", "emphasis: on"},
      {"\x1b\x45\x30", "emphasis: off"},
      {"\x1b-0", "underline: off"},
      {"\x1b-1", "underline: 1 dot"},
      {"\x1b-2", "underline: 2 dots"},
      {"\x1d\x42\x31", "white on black: on"},
      {"\x1br0", "colour: first"},
      {"\x1br1", "colour: second"},
      {"\x1b\x61\x30", "select justification: left"},
      {"\x1b\x61\x31", "select justification: centre"},
      {"\x1b\x61\x32", "select justification: right"},
      {"\x1b!\0"s, "print mode: plain"},
      {"\x1b!\xb9", "print mode: font B, emphasised, double height, double width, underlined"},
      {"\x1d!\x17", "character size: width x2, height x8"},
      {"\x1b\x33\x01", "line spacing: 1 half dot"},
      {"\x1b\x33\x3c", "line spacing: 60 half dots"},
      {"\x1b\x32", "line spacing: default"},
      {"\x1bm", "cut, partial"},
      {"\x1bi", "cut, full"},
  };
}

std::vector<Row> device_commands() {
  return {
      {"\x10\x04\x01", "query status 1: printer"},
      {"\x10\x04\x02", "query status 2: what stops it"},
      {"\x10\x04\x03", "query status 3: errors"},
      {"\x10\x04\x04", "query status 4: paper"},
      {"\x1b#SENSOR", "query paper sensor"},
      {"\x1d\x61\xff", "status reports: on"},
      {"\x1d\x61\0"s, "status reports: off"},
      {"\x1d(H\6\0\x30\x30\x46\x01\xff\x20"s, "confirm when printed: request 46 01 FF 20"},
      {"\x1dID", "query version"},
      {"\x1dIC", "query serial number"},
      {"\x1d#\x03_AB\x5c", "store serial number \"AB\", checksum right"},
      {"\x1d#\x03_AB\x5d", "store serial number \"AB\", checksum wrong"},
      {"\x1bp\x30\x32\xfa", "open drawer: connector 0, 100 ms on, 500 ms off"},
      {"\x1bp\x01\x01\x02", "open drawer: connector 1, 2 ms on, 4 ms off"},
      {"\x1b#ERROR", "beep"},
      {"\x1b#MENU1", "print self-test page 1"},
      {"\x1b#MENU2", "print self-test page 2"},
      {"\x1b#BM?", "query black mark"},
      {firmware(), "firmware D 327680 bytes, checksum right"},
      {framed("ab"), "frame: job of 2 bytes, checksum right"},
  };
}

std::vector<Row> symbol_commands() {
  return {
      {"\x1dw\x02", "linear symbol: modules of 2 dots"},
      {"\x1dh\x50", "linear symbol: bars of 80 dots"},
      {"\x1d\x66\x30", "linear symbol: text in font A"},
      {"\x1d\x66\x31", "linear symbol: text in font B"},
      {"\x1dH0", "linear symbol: text nowhere"},
      {"\x1dH1", "linear symbol: text above the bars"},
      {"\x1dH2", "linear symbol: text below the bars"},
      {"\x1dkC\x0c\x32\x30\x30\x30\x30\x30\x31\x30\x30\x30\x34\x32",
       "print EAN-13 \"200000100042\""},
      {"\x1dkI\x03{B\x01", "print Code 128 \"{B\\x01\""},
      {"\x1d(k\3\0\x30\x41\0"s, "PDF417: columns as suit"},
      {"\x1d(k\3\0\x30\x41\x04"s, "PDF417: 4 columns"},
      {"\x1d(k\3\0\x30\x43\x03"s, "PDF417: modules of 3 dots"},
      {"\x1d(k\3\0\x30\x51\x30"s, "PDF417: print"},
      {"\x1d(k\x05\0\x30\x50\x30HI"s, "PDF417: store 2 bytes \"HI\""},
      {"\x1d(k\3\0\x31\x41\x31"s, "QR Code: model 1"},
      {"\x1d(k\3\0\x31\x41\x32"s, "QR Code: model 2"},
      {"\x1d(k\3\0\x31\x41\x33"s, "QR Code: model Micro QR Code"},
      {"\x1d(k\3\0\x31\x41\x02"s, "QR Code: model as before"},
      {"\x1d(k\3\0\x31\x43\x06"s, "QR Code: modules of 6 dots"},
      {"\x1d(k\3\0\x31\x45\x30"s, "QR Code: error correction L"},
      {"\x1d(k\3\0\x31\x45\x33"s, "QR Code: error correction H"},
      {"\x1d(k\3\0\x31\x51\x30"s, "QR Code: print"},
      {"\x1d(k\x04\0\x31\x50\x30Q"s, "QR Code: store 1 byte \"Q\""},
  };
}

std::vector<Row> image_and_page_commands() {
  return {
      {"\x1d*\x01\x02"s + std::string(16, '\0'), "picture: download 8 x 16 dots"},
      {"\x1d/0", "picture: print as it is"},
      {"\x1d/3", "picture: print double width, double height"},
      {"\x1cq\x02\x01\0\x01\0"s + std::string(8, '\0') + "\x02\0\x01\0"s + std::string(16, '\0'),
       "store 2 images: 8 x 8 dots, 16 x 8 dots"},
      {"\x1cp\x05\x31", "print stored image 5 double width"},
      {"\x1c\x65", "erase stored images"},
      {"\x1bL", "page: begin"},
      {"\x1b\f", "page: print"},
      {"\x1bS", "page: leave"},
      {"\x1d}X\x02\x01", "position across: 258 dots"},
      {"\x1d}Y\x01\0"s, "position down: 1 dot"},
  };
}

TEST(Description, says_every_command_in_words) {
  std::set<CommandKind> described;
  for (const auto commands :
       {text_commands, device_commands, symbol_commands, image_and_page_commands}) {
    for (const Row& row : commands()) {
      CommandParser parser;
      parser.feed(row.bytes);
      const auto decoded = parser.next();
      ASSERT_TRUE(decoded) << row.words;
      EXPECT_EQ(words_for(*decoded), row.words);
      EXPECT_EQ(parser.unfinished().bytes, "") << row.words;
      if (const auto* command = std::get_if<Command>(&*decoded)) described.insert(command->kind);
    }
  }
  for (int kind = 0; kind < static_cast<int>(CommandKind::kNotice); ++kind) {
    EXPECT_EQ(described.count(static_cast<CommandKind>(kind)), 1U) << "kind " << kind;
  }
}

TEST(Description, says_what_is_no_command) {
  EXPECT_EQ(words_for(UnknownBytes{0, "\x1b|"}), "unknown");
  EXPECT_EQ(words_for(RefusedFrame{0, "wrong checksum"}), "frame refused: wrong checksum");
}

TEST(Description, quotes_in_utf_8_and_briefly) {
  EXPECT_EQ(in_quotes("a\x81\x1b\x7f"), "\"aü\\x1B\\x7F\"");
  EXPECT_EQ(in_quotes(std::string(64, 'a')), '"' + std::string(64, 'a') + '"');
  EXPECT_EQ(in_quotes(std::string(65, 'a')), '"' + std::string(64, 'a') + "\"...");
}

}  // namespace
}  // namespace virtual_printer
