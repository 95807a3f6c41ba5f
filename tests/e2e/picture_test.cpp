// Pictures on paper, dot for dot beside the files that they come from, whose dots are worked out
// here a second time.
#include <gmock/gmock.h>

#include <array>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "pictures/bmp.h"
#include "support/printed_paper.h"
#include "tills.h"

namespace {

using pictures::Bmp;
using testing::HasSubstr;

constexpr int kPaperDots = 640;
constexpr int kMargin = 12;

using Rows = std::vector<std::string>;

class Pictures : public PrinterTest {
 protected:
  Pictures() : PrinterTest(Line::kUsb) {}

  Outcome print(const Words& words, const Words& options = {"--strict"}) {
    return run_under_printer(options, pictures_till(words));
  }

  // The rows of all receipts so far, margins included.
  Rows dots() const {
    std::istringstream lines(read_paper("dots"));
    Rows rows;
    for (std::string line; std::getline(lines, line);) rows.push_back(line);
    return rows;
  }
};

Bmp noise(int width, int height, int bits) {
  std::mt19937 random(static_cast<unsigned>(bits));
  return pictures::random_bmp(width, height, bits, pictures::kWhiteFirst, random);
}

// The rows of a receipt that is cut below content of that height.
Rows blank(int height) {
  constexpr int kCutFeed = 5 * 30;  // lines of 30 dots
  const int rows = kMargin + height + kCutFeed + kMargin;
  return {static_cast<std::size_t>(rows), std::string(kPaperDots, '.')};
}

void put(Rows& rows, const Bmp& bmp, int left, int top) {
  for (int y = 0; y < bmp.height; ++y) {
    std::string& row = *(rows.begin() + kMargin + top + y);
    for (int x = 0; x < bmp.width && left + x < kPaperDots; ++x) {
      if (pictures::prints_black(bmp, x, y)) *(row.begin() + left + x) = '#';
    }
  }
}

TEST_F(Pictures, of_every_depth_stand_on_paper_dot_for_dot) {
  Words words;
  Rows expected;
  int alignment = 0;
  for (const int bits : pictures::kDepths) {
    const Bmp bmp = noise(100, 41, bits);
    words.insert(words.end(), {"bitmap", file(std::to_string(bits), bmp.file()),
                               std::to_string(alignment), "cut"});
    Rows receipt = blank(48);
    // A width of 13 bytes; what stands in the middle has half of the rest on its left.
    constexpr std::array kLeft{0, 268, 536};
    put(receipt, bmp, kLeft.at(static_cast<std::size_t>(alignment)), 0);
    expected.insert(expected.end(), receipt.begin(), receipt.end());
    alignment = (alignment + 1) % 3;
  }
  const Outcome outcome = print(words);
  ASSERT_EQ(outcome.status, 0) << outcome.out << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, testing::Each(HasSubstr("[picture 104 x 48]\n")));
  EXPECT_EQ(dots(), expected);
}

TEST_F(Pictures, wider_than_the_paper_lose_what_lies_beyond_it) {
  const Bmp bmp = noise(700, 8, 1);
  ASSERT_EQ(print({"bitmap", file("wide", bmp.file()), "1", "cut"}).status, 0);
  Rows expected = blank(8);
  put(expected, bmp, 0, 0);
  EXPECT_EQ(dots(), expected);
}

TEST_F(Pictures, that_are_stored_print_by_number_and_outlive_the_printer) {
  const Bmp first = noise(64, 24, 1);
  const Bmp second = noise(640, 160, 24);
  const Words options{"--strict", "--memory", file("memory", "")};
  const std::string list = file("first", first.file()) + "|" + file("second", second.file()) + "|";
  ASSERT_EQ(print({"store", list, "stored", "2", "0", "cut"}, options).status, 0);
  Rows expected = blank(160);
  put(expected, second, 0, 0);
  EXPECT_EQ(dots(), expected);

  ASSERT_EQ(print({"stored", "1", "2", "cut", "erase"}, options).status, 0);
  Rows next = blank(24);
  put(next, first, kPaperDots - 64, 0);
  expected.insert(expected.end(), next.begin(), next.end());
  EXPECT_EQ(dots(), expected);

  const Outcome erased = print({"stored", "1", "2", "cut"}, options);
  EXPECT_EQ(erased.status, 3);
  EXPECT_THAT(erased.errors, HasSubstr("refused: stored picture 1: there is none\n"));
}

TEST_F(Pictures, stand_at_their_positions_on_a_page) {
  const Bmp bmp = noise(32, 16, 1);
  const Outcome outcome =
      print({"store", file("bmp", bmp.file()) + "|", "page", "stored-at", "300", "20", "1",
             "stored-at", "7", "101", "1", "stored-at", "620", "33", "1", "end-page", "cut"});
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  Rows expected = blank(101 + 16);
  put(expected, bmp, 300, 20);
  put(expected, bmp, 7, 101);
  put(expected, bmp, 620, 33);
  EXPECT_EQ(dots(), expected);
}

TEST_F(Pictures, firmware_arrives_whole) {
  std::string image(0x150000, '\0');
  std::mt19937 random(1);
  for (char& byte : image) byte = static_cast<char>(random());
  const std::string path = file("firmware", image);
  const Outcome outcome = print({"update", path, "0", "update", path, "1", "update", path, "2"});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.lines_from("firmware"),
            "firmware D 327680 bytes, checksum right\n"
            "firmware E 524288 bytes, checksum right\n"
            "firmware F 524288 bytes, checksum right\n");
}

}  // namespace
