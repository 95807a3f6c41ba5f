// A capture in words: offsets, bytes, frames, and what is broken.
#include "decoding.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "framed.h"

namespace virtual_printer {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using namespace std::string_literals;
using Kind = TranscriptEntry::Kind;

std::vector<TranscriptEntry> decode(const std::string& bytes) {
  std::istringstream capture(bytes);
  std::vector<TranscriptEntry> entries;
  decode_capture(capture, [&](const TranscriptEntry& entry) { entries.push_back(entry); });
  return entries;
}

TranscriptEntry entry(Kind kind, std::size_t offset, std::size_t length, const std::string& hex,
                      const std::string& words) {
  return {kind, offset, length, hex, words};
}

TEST(Decoding, says_nothing_about_nothing) {
  EXPECT_THAT(decode(""), IsEmpty());
}

TEST(Decoding, makes_one_entry_of_a_run_of_text) {
  EXPECT_THAT(decode("\x1b@COFFEE\n!"),
              ElementsAre(entry(Kind::kCommand, 0, 2, "1B 40", "initialize"),
                          entry(Kind::kText, 2, 6, "43 4F 46 46 45 45", "text \"COFFEE\""),
                          entry(Kind::kCommand, 8, 1, "0A", "line feed"),
                          entry(Kind::kText, 9, 1, "21", "text \"!\"")));
}

TEST(Decoding, breaks_long_text) {
  const auto entries = decode(std::string(130, 'a'));
  ASSERT_THAT(entries, SizeIs(3));
  EXPECT_EQ(entries[0].length, 64U);
  EXPECT_EQ(entries[1].offset, 64U);
  EXPECT_EQ(entries[2], entry(Kind::kText, 128, 2, "61 61", "text \"aa\""));
}

TEST(Decoding, shortens_long_bytes) {
  EXPECT_EQ(decode("abcdefghijkl").front().hex, "61 62 63 64 65 66 67 68 69 6A 6B 6C");
  EXPECT_EQ(decode("abcdefghijklm").front().hex, "61 62 63 64 65 66 67 68 ... 13 bytes");
}

TEST(Decoding, goes_into_frames) {
  const std::string header_hex = "1B 23 46 52 41 4D 45 01 ... 18 bytes";
  EXPECT_THAT(
      decode("\n" + framed("a\n\x07") + "\n"),
      ElementsAre(entry(Kind::kCommand, 0, 1, "0A", "line feed"),
                  entry(Kind::kCommand, 1, 18, header_hex, "frame: job of 3 bytes, checksum right"),
                  entry(Kind::kText, 12, 1, "61", "text \"a\""),
                  entry(Kind::kCommand, 13, 1, "0A", "line feed"),
                  entry(Kind::kTrouble, 14, 1, "07", "unknown"),
                  entry(Kind::kCommand, 19, 1, "0A", "line feed")));
}

TEST(Decoding, refuses_frames_as_the_printer_does) {
  const auto wrong = decode(with_wrong_checksum(framed("a")) + "\n");
  ASSERT_THAT(wrong, SizeIs(2));
  EXPECT_EQ(wrong[0].words, "frame refused: wrong checksum");
  EXPECT_EQ(wrong[1], entry(Kind::kCommand, 16, 1, "0A", "line feed"));

  const auto nested = decode(framed(framed("a")));
  ASSERT_THAT(nested, SizeIs(2));
  EXPECT_EQ(nested[1].offset, 11U);
  EXPECT_EQ(nested[1].words, "frame refused: a frame within a frame");

  const auto broken = decode(framed("abc").substr(0, 13));
  ASSERT_THAT(broken, SizeIs(1));
  EXPECT_EQ(broken[0].words, "frame refused: wrong length");
}

TEST(Decoding, says_what_is_unknown) {
  EXPECT_THAT(decode("\x1b|cA"), ElementsAre(entry(Kind::kTrouble, 0, 2, "1B 7C", "unknown"),
                                             entry(Kind::kText, 2, 2, "63 41", "text \"cA\"")));
}

TEST(Decoding, says_where_the_end_cuts_a_command_off) {
  for (const std::string& bytes : {"\x1b"s, "\x1b\x61"s, "\x1b#FRA"s, "\x1d*\x01\x01\xff\xff"s}) {
    const auto entries = decode("\n" + bytes);
    ASSERT_THAT(entries, SizeIs(2));
    EXPECT_EQ(entries[1].offset, 1U);
    EXPECT_EQ(entries[1].length, bytes.size());
    EXPECT_EQ(entries[1].kind, Kind::kTrouble);
    EXPECT_EQ(entries[1].words, "unfinished: its end is missing");
  }
}

// However the bytes lie to its chunks, each of them is in exactly one entry.
TEST(Decoding, loses_no_byte_of_any_input) {
  std::mt19937 random(1);
  for (int run = 0; run < 200; ++run) {
    std::string bytes;
    while (bytes.size() < 1000) {
      constexpr std::string_view kLikely = "\x1b\x1d\x1c\x10\x04#(kq*~p0A\n";
      const bool likely = random() % 2 == 0;
      bytes += likely ? kLikely[random() % kLikely.size()] : static_cast<char>(random());
    }
    std::size_t next = 0;
    for (const TranscriptEntry& piece : decode(bytes)) {
      EXPECT_EQ(piece.offset, next);
      next += piece.length;
    }
    EXPECT_EQ(next, bytes.size());
  }
}

TEST(Decoding, goes_on_over_the_ends_of_its_chunks) {
  const std::string bytes = std::string(65535, '\n') + "\x1b@" + framed(std::string(70000, '\n'));
  const auto entries = decode(bytes);
  ASSERT_THAT(entries, SizeIs(65535 + 2 + 70000));
  EXPECT_EQ(entries[65535].words, "initialize");
  EXPECT_EQ(entries[65536].words, "frame: job of 70000 bytes, checksum right");
}

TEST(TranscriptLine, is_for_people_or_for_programs) {
  const TranscriptEntry text = entry(Kind::kText, 12, 1, "22", "text \"\"\"");
  EXPECT_EQ(line_of(text), "      12  22                                        text \"\"\"");
  EXPECT_EQ(json_of(text),
            R"({"offset":12,"length":1,"kind":"text","hex":"22","words":"text \"\"\""})");
}

TEST(Transcript, shows_text_that_grows_at_the_same_offset) {
  std::vector<std::string> words;
  Transcript transcript([&](const TranscriptEntry& shown) { words.push_back(shown.words); });
  CommandParser parser;
  const auto feed = [&](const std::string& bytes) {
    parser.feed(bytes);
    while (const auto decoded = parser.next()) transcript.take(*decoded, parser.piece());
    transcript.show_open_text();
  };
  feed("CO");
  feed("FFEE");
  transcript.show_open_text();
  feed("\n");
  EXPECT_THAT(words, ElementsAre("text \"CO\"", "text \"COFFEE\"", "line feed"));
}

}  // namespace
}  // namespace virtual_printer
