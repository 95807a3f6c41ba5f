#include "command_parser.h"

#include <gmock/gmock.h>

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
      {"frame", framed("job"), block(CommandKind::kFramedJob, "job")},
      {"line feed", "\n", command(CommandKind::kLineFeed)},
      {"carriage return", "\r", command(CommandKind::kCarriageReturn)},
      {"tab", "\t", command(CommandKind::kTab)},
      {"upper half of the code page", "\x84", command(CommandKind::kText, 0x84)},
  };
  for (const Row& row : rows) EXPECT_THAT(decode(row.bytes), ElementsAre(row.expected)) << row.name;
}

TEST(CommandParser, every_split_gives_the_same_commands) {
  constexpr std::string_view kBytes =
      "\x1b@\x1b"
      "E0\x1b-0\x1b!F\x1d"
      "B0\x1b"
      "a0\x1b"
      "3<ab\x1b|cA\x10\x04\x04\x1b#SENSOR"
      "\x1d(H\x06\0\x30\x30\x31\x31\x1b\n\x1d#\x02_A\x1e\x1bp0dd\x1b#BM?\x1d#\x02X"
      "\x1b#FRAME\x01\0\x02\x02\x41\x42\x03\0\x83\x04"
      "\x1b#SENT\x1d(\x1cq\x1c\x01\x1b\x1b\x1bm\x10\x07\n\x1b"sv;
  const auto whole = decode(kBytes);
  for (std::size_t first = 0; first <= kBytes.size(); ++first) {
    for (std::size_t second = first; second <= kBytes.size(); ++second) {
      CommandParser parser;
      std::vector<Decoded> pieces;
      for (const auto piece :
           {kBytes.substr(0, first), kBytes.substr(first, second - first), kBytes.substr(second)}) {
        for (auto& item : feed(parser, piece)) pieces.push_back(item);
      }
      for (auto& item : decode(parser, Expectation::kNothing)) pieces.push_back(item);
      ASSERT_EQ(pieces, whole) << "split at " << first << " and " << second;
    }
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
