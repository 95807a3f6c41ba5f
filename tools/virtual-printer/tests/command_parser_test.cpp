#include "command_parser.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "framed.h"

namespace virtual_printer {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;
using namespace std::string_view_literals;

// All that can be decoded, given what is expected to come.
std::vector<Decoded> decode(CommandParser& parser, Expectation expectation) {
  std::vector<Decoded> decoded;
  while (auto item = parser.next(expectation)) decoded.push_back(std::move(*item));
  return decoded;
}

std::vector<Decoded> feed(CommandParser& parser, std::string_view bytes) {
  parser.feed(bytes);
  return decode(parser, Expectation::kMore);
}

std::vector<Decoded> decode(std::string_view bytes) {
  CommandParser parser;
  parser.feed(bytes);
  return decode(parser, Expectation::kNothing);
}

Decoded command(CommandKind kind, int argument = 0) {
  return Command{kind, static_cast<std::uint8_t>(argument)};
}

Decoded block(CommandKind kind, std::string_view data) {
  return Command{kind, 0, std::string(data)};
}

Decoded text(char character) {
  return command(CommandKind::kText, character);
}

Decoded unknown(std::size_t offset, std::string_view bytes) {
  return UnknownBytes{offset, std::string(bytes)};
}

struct Row {
  const char* name;
  std::string bytes;
  Decoded expected;
};

TEST(CommandParser, knows_each_command) {
  const std::vector<Row> rows{
      {"initialise", "\x1b@", command(CommandKind::kInitialize)},
      {"emphasis by digit",
       "\x1b"
       "E1",
       command(CommandKind::kEmphasis, 1)},
      {"emphasis by value",
       "\x1b"
       "E\x01",
       command(CommandKind::kEmphasis, 1)},
      {"underline of two dots", "\x1b-2", command(CommandKind::kUnderline, 2)},
      {"underline off by value", "\x1b-\0"s, command(CommandKind::kUnderline, 0)},
      {"print mode", "\x1b!F", command(CommandKind::kPrintMode, 0x46)},
      {"print mode that is a digit", "\x1b!0", command(CommandKind::kPrintMode, 0x30)},
      {"colour", "\x1br0", command(CommandKind::kColour, 0)},
      {"right alignment",
       "\x1b"
       "a2",
       command(CommandKind::kAlignment, 2)},
      {"line spacing",
       "\x1b"
       "3<",
       command(CommandKind::kLineSpacing, 60)},
      {"line spacing that is a digit",
       "\x1b"
       "31",
       command(CommandKind::kLineSpacing, 0x31)},
      {"default line spacing",
       "\x1b"
       "2",
       command(CommandKind::kDefaultLineSpacing)},
      {"partial cut", "\x1bm", command(CommandKind::kPartialCut)},
      {"full cut", "\x1bi", command(CommandKind::kFullCut)},
      {"sensor query", "\x1b#SENSOR", command(CommandKind::kSensorQuery)},
      {"reverse by digit",
       "\x1d"
       "B0",
       command(CommandKind::kReverse, 0)},
      {"reverse by value",
       "\x1d"
       "B\x01",
       command(CommandKind::kReverse, 1)},
      {"character size", "\x1d!\x11", command(CommandKind::kCharacterSize, 0x11)},
      {"automatic status",
       "\x1d"
       "a\xff",
       command(CommandKind::kAutomaticStatus, 0xff)},
      {"real-time status", "\x10\x04\x02", command(CommandKind::kRealTimeStatus, 2)},
      {"process ID", "\x1d(H\x06\0\x30\x30WXYZ"s, block(CommandKind::kProcessId, "WXYZ")},
      {"process ID of any bytes", "\x1d(H\x06\0\x30\x30\0\x1b\n\xff"s,
       block(CommandKind::kProcessId, "\0\x1b\n\xff"sv)},
      {"version query", "\x1dID", command(CommandKind::kVersionQuery)},
      {"serial number query", "\x1dIC", command(CommandKind::kSerialNumberQuery)},
      {"serial number", "\x1d#\x03_AB\x5c", block(CommandKind::kStoreSerialNumber, "\x03_AB\x5c")},
      {"empty serial number", "\x1d#\x01__", block(CommandKind::kStoreSerialNumber, "\x01__")},
      {"drawer pulse by digit", "\x1bp0\x64\xc8", block(CommandKind::kDrawerPulse, "0\x64\xc8")},
      {"drawer pulse by value", "\x1bp\x01\0\0"s, block(CommandKind::kDrawerPulse, "\x01\0\0"sv)},
      {"beep", "\x1b#ERROR", command(CommandKind::kBeep)},
      {"first self-test", "\x1b#MENU1", command(CommandKind::kSelfTest, 1)},
      {"second self-test", "\x1b#MENU2", command(CommandKind::kSelfTest, 2)},
      {"mark query", "\x1b#BM?", command(CommandKind::kMarkQuery)},
      {"module width", "\x1dw\x06", command(CommandKind::kModuleWidth, 6)},
      {"bar height", "\x1dh\xff", command(CommandKind::kBarHeight, 255)},
      {"font of a symbol's text", "\x1d\x66\x31", command(CommandKind::kSymbolTextFont, 1)},
      {"place of a symbol's text", "\x1dH2", command(CommandKind::kSymbolTextPlace, 2)},
      {"linear symbol", "\x1dkI\x05\x1b\n\0{B"s,
       block(CommandKind::kLinearSymbol, "I\x05\x1b\n\0{B"sv)},
      {"linear symbol without data", "\x1dk\x41\0"s, block(CommandKind::kLinearSymbol, "\x41\0"sv)},
      {"columns of PDF417", "\x1d(k\x03\0\x30\x41\x1e"s, command(CommandKind::kPdf417Columns, 30)},
      {"modules of PDF417", "\x1d(k\x03\0\x30\x43\x08"s,
       command(CommandKind::kPdf417ModuleWidth, 8)},
      {"PDF417", "\x1d(k\x03\0\x30\x51\x30"s, command(CommandKind::kPrintPdf417)},
      {"model of QR Code", "\x1d(k\x03\0\x31\x41\xff"s, command(CommandKind::kQrModel, 255)},
      {"modules of QR Code", "\x1d(k\x03\0\x31\x43\x10"s, command(CommandKind::kQrModuleSize, 16)},
      {"level of QR Code", "\x1d(k\x03\0\x31\x45\x33"s,
       command(CommandKind::kQrErrorCorrection, '3')},
      {"QR Code", "\x1d(k\x03\0\x31\x51\x30"s, command(CommandKind::kPrintQrCode)},
      {"data of a symbol", "\x1d(k\x05\0\x31\x50\x30\x1b\0"s,
       block(CommandKind::kStoreSymbol, "\x05\0\x31\x50\x30\x1b\0"sv)},
      {"no data of a symbol", "\x1d(k\x03\0\x30\x50\x30"s,
       block(CommandKind::kStoreSymbol, "\x03\0\x30\x50\x30"sv)},
      {"data of 8092 bytes", "\x1d(k\x9f\x1f\x31\x50\x30" + std::string(8092, '\x1d'),
       block(CommandKind::kStoreSymbol, "\x9f\x1f\x31\x50\x30" + std::string(8092, '\x1d'))},
      {"picture", "\x1d*\x01\x02" + std::string(16, '\x1b'),
       block(CommandKind::kDownloadImage, "\x01\x02" + std::string(16, '\x1b'))},
      {"picture on paper", "\x1d/3", command(CommandKind::kPrintDownloaded, 3)},
      {"pictures to keep", "\x1cq\x01\x01\0\x01\0"s + std::string(8, '\n'),
       block(CommandKind::kStoreImages, "\x01\x01\0\x01\0"s + std::string(8, '\n'))},
      {"no pictures to keep", "\x1cq\0"s, block(CommandKind::kStoreImages, "\0"sv)},
      {"kept picture", "\x1cp\x02\x30", block(CommandKind::kPrintStored, "\x02\x30")},
      {"kept pictures go", "\x1c\x65", command(CommandKind::kEraseImages)},
      {"page mode", "\x1bL", command(CommandKind::kPageMode)},
      {"page on paper", "\x1b\f", command(CommandKind::kPrintPage)},
      {"standard mode", "\x1bS", command(CommandKind::kStandardMode)},
      {"position to the right", "\x1d}X\x2c\x01", block(CommandKind::kPositionX, "\x2c\x01")},
      {"position down", "\x1d}Y\xff\xff", block(CommandKind::kPositionY, "\xff\xff")},
      {"firmware", "\x1d~D\x01\0\0"s + std::string(65537, '\x1d'),
       block(CommandKind::kFirmware, "D\x01\0\0"s + std::string(65537, '\x1d'))},
      {"frame", framed("job"), block(CommandKind::kFramedJob, "job")},
      {"line feed", "\n", command(CommandKind::kLineFeed)},
      {"carriage return", "\r", command(CommandKind::kCarriageReturn)},
      {"tab", "\t", command(CommandKind::kTab)},
      {"upper half of the code page", "\x84", command(CommandKind::kText, 0x84)},
  };
  for (const Row& row : rows) EXPECT_THAT(decode(row.bytes), ElementsAre(row.expected)) << row.name;
}

// Twice: first what is short, then what carries data.
constexpr std::array kEveryKind{
    "\x1b@\x1b"
    "E0\x1b-0\x1b!F\x1d"
    "B0\x1b"
    "a0\x1b"
    "3<ab\x1b|cA\x10\x04\x04\x1b#SENSOR"
    "\x1d(H\x06\0\x30\x30\x31\x31\x1b\n\x1d#\x02_A\x1e\x1bp0dd\x1b#BM?\x1d#\x02X"
    "\x1b#FRAME\x01\0\x02\x02\x41\x42\x03\0\x83\x04"
    "\x1b#SENT\x1d(\x1cq\x1c\x01\x1b\x1b\x1bm\x10\x07\n\x1b"sv,
    "\x1dw\x02\x1dw\x07\x1dh\0\x1d\x66\x32\x1dH3\x1dkA\x02\x1b@\x1dkJ\x01"
    "\x1d(k\x03\0\x30\x41\x05\x1d(k\x03\0\x31\x42\x05\x1d(k\x02\0\x31\x50\x30"
    "\x1d(k\x04\0\x31\x50\x30\x1d\x1d(k\x03\0\x31\x51\x30\x1d(k\x03\0\x32\x51\x30"
    "\x1d*\0\x01\x1d*\x01\x01\x1d/0\x1b\n\x1d(k\x1d/0"
    "\x1cq\x02\x01\0\x01\0\x1c\x1c\x1c\x1c\x1c\x1c\x1c\x1c\x01\0\x01\0qqqqqqqq\x1cp\0\x30"
    "\x1cp\x01\x30\x1c\x65\x1bL\x1d}X\x1d\x1b\x1d}Yab\x1d}Z\x1b\f\x1bS\x1d~G\x01\0\0"
    "\x1d~D\0\0\0\x1d~D\x01\0\0\x1b#FRAME"sv,
};

TEST(CommandParser, every_split_gives_the_same_commands) {
  for (const std::string_view bytes : kEveryKind) {
    const auto whole = decode(bytes);
    for (std::size_t first = 0; first <= bytes.size(); ++first) {
      for (std::size_t second = first; second <= bytes.size(); ++second) {
        CommandParser parser;
        std::vector<Decoded> pieces;
        for (const auto piece :
             {bytes.substr(0, first), bytes.substr(first, second - first), bytes.substr(second)}) {
          for (auto& item : feed(parser, piece)) pieces.push_back(item);
        }
        for (auto& item : decode(parser, Expectation::kNothing)) pieces.push_back(item);
        ASSERT_EQ(pieces, whole) << "split at " << first << " and " << second;
      }
    }
  }
}

TEST(CommandParser, long_data_that_never_comes_whole_is_no_text) {
  for (const std::string& begun :
       {"\x1dkC\x0d\x31\x32"s, "\x1d(k\xff\x10\x31\x50\x30text"s, "\x1d*\x08\x08text"s,
        "\x1cq\x02\x01\0\x01\0text"s, "\x1d~E\x08\0\0text"s}) {
    EXPECT_THAT(decode(begun), ElementsAre(unknown(0, begun)));
  }
}

TEST(CommandParser, block_that_begins_wrong_is_not_waited_for) {
  CommandParser parser;
  EXPECT_THAT(feed(parser, "\x1d#\xc8X"),
              ElementsAre(unknown(0, "\x1d#"), text('\xc8'), text('X')));
  EXPECT_THAT(feed(parser, "\x1d#\0_"sv),
              ElementsAre(unknown(4, "\x1d#"), unknown(6, "\0"sv), text('_')));
  EXPECT_THAT(feed(parser, "\x1bp7AB"),
              ElementsAre(unknown(8, "\x1bp"), text('7'), text('A'), text('B')));
}

TEST(CommandParser, broken_frame_is_refused_when_the_line_is_silent) {
  CommandParser parser;
  EXPECT_THAT(feed(parser, "ab" + with_wrong_checksum(framed("job")) + "\n"),
              ElementsAre(text('a'), text('b')));
  EXPECT_TRUE(parser.waits_for_frame());
  EXPECT_THAT(
      decode(parser, Expectation::kNoMoreOfFrame),
      ElementsAre(Decoded(RefusedFrame{2, "wrong checksum"}), command(CommandKind::kLineFeed)));
  EXPECT_FALSE(parser.waits_for_frame());
}

TEST(CommandParser, frame_that_ends_too_early_is_refused_when_the_line_is_silent) {
  CommandParser parser;
  EXPECT_THAT(feed(parser, framed("job").substr(0, 12)), IsEmpty());
  EXPECT_THAT(decode(parser, Expectation::kNoMoreOfFrame),
              ElementsAre(Decoded(RefusedFrame{0, "wrong length"})));
  EXPECT_EQ(parser.offset(), 12U);
}

TEST(CommandParser, silence_means_nothing_to_other_commands) {
  CommandParser parser;
  feed(parser, "\x1b#SEN");
  EXPECT_FALSE(parser.waits_for_frame());
  EXPECT_THAT(decode(parser, Expectation::kNoMoreOfFrame), IsEmpty());
  EXPECT_THAT(feed(parser, "SOR"), ElementsAre(command(CommandKind::kSensorQuery)));
}

TEST(CommandParser, unfinished_command_waits_for_its_rest) {
  CommandParser parser;
  EXPECT_THAT(feed(parser, "\x1b#SEN"), IsEmpty());
  EXPECT_THAT(feed(parser, "SOR"), ElementsAre(command(CommandKind::kSensorQuery)));
}

TEST(CommandParser, unfinished_command_at_the_end_is_unknown) {
  EXPECT_THAT(decode("A\x1b"
                     "a"),
              ElementsAre(text('A'), unknown(1,
                                             "\x1b"
                                             "a")));
  EXPECT_THAT(decode("\x1d"), ElementsAre(unknown(0, "\x1d")));
}

TEST(CommandParser, unknown_command_is_introducer_and_letter) {
  EXPECT_THAT(decode("ab\x1b|lA"),
              ElementsAre(text('a'), text('b'), unknown(2, "\x1b|"), text('l'), text('A')));
}

TEST(CommandParser, stray_escape_leaves_the_next_command_alone) {
  EXPECT_THAT(decode("\x1b\x1bm"),
              ElementsAre(unknown(0, "\x1b"), command(CommandKind::kPartialCut)));
  EXPECT_THAT(decode("\x1b\n"), ElementsAre(unknown(0, "\x1b"), command(CommandKind::kLineFeed)));
}

TEST(CommandParser, argument_out_of_range_is_unknown) {
  EXPECT_THAT(decode("\x1b"
                     "a3"),
              ElementsAre(unknown(0,
                                  "\x1b"
                                  "a"),
                          text('3')));
  EXPECT_THAT(decode("\x10\x04\x05"),
              ElementsAre(unknown(0, "\x10"), unknown(1, "\x04"), unknown(2, "\x05")));
}

TEST(CommandParser, stray_control_bytes_are_unknown_one_by_one) {
  EXPECT_THAT(decode("\0\x7f\x01"sv),
              ElementsAre(unknown(0, "\0"sv), unknown(1, "\x7f"), unknown(2, "\x01")));
}

TEST(CommandParser, offsets_count_over_all_feeds) {
  CommandParser parser;
  feed(parser,
       "12345\x1b"
       "E1");
  EXPECT_THAT(feed(parser, "\x02"), ElementsAre(unknown(8, "\x02")));
}

}  // namespace
}  // namespace virtual_printer
