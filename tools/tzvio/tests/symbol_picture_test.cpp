// barcode, image, logo and what checks them beforehand. Cases are worked out from the library's
// rules.
#include "cli_test.h"
#include "pictures/bmp.h"

namespace {

using cli_test::CliTest;
using cli_test::json_of;
using cli_test::LoneCliTest;
using pictures::Bmp;
using testing::ElementsAre;
using testing::HasSubstr;

// -------------------------------------------------------------------------------- barcode

struct Symbol {
  const char* name;
  const char* data;
  const char* printed;
};

class Barcode : public CliTest, public testing::WithParamInterface<Symbol> {};

TEST_P(Barcode, is_on_paper) {
  const Outcome outcome = run_tool({"barcode", GetParam().name, GetParam().data});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.paper.in_one(), HasSubstr(GetParam().printed));
}

INSTANTIATE_TEST_SUITE_P(of, Barcode,
                         testing::Values(Symbol{"upc-a", "01234567890", "[UPC-A 012345678905]"},
                                         Symbol{"upc-e", "01234500006", "[UPC-E"},
                                         Symbol{"ean-8", "9638507", "[EAN-8 96385074]"},
                                         Symbol{"ean-13", "400638133393", "[EAN-13 4006381333931]"},
                                         Symbol{"jan-8", "9638507", "[EAN-8 96385074]"},
                                         Symbol{"jan-13", "490123456789", "[EAN-13 490123456789"},
                                         Symbol{"itf", "12345678", "[ITF 12345678]"},
                                         Symbol{"codabar", "A1234B", "[Codabar A1234B]"},
                                         Symbol{"code39", "TILL-3", "[Code 39 *TILL-3*]"},
                                         Symbol{"code93", "TILL-3", "[Code 93 TILL-3]"},
                                         Symbol{"code128", "Till 3", "[Code 128 Till 3]"},
                                         Symbol{"pdf417", "visit 4711", "[PDF417 \"visit 4711\"]"},
                                         Symbol{"qrcode", "visit 4711",
                                                "[QR Code \"visit 4711\"]"}),
                         [](const auto& param) {
                           std::string name = param.param.name;
                           std::erase(name, '-');
                           return name;
                         });

class BarcodeOptions : public CliTest {};

TEST_F(BarcodeOptions, reach_the_printer) {
  Words words{"barcode", "code39", "AB",    "--height", "100",   "--width",
              "384",     "--text", "above", "--align",  "centre"};
  EXPECT_EQ(run_tool(words, recording()).status, 0);
  // 4 counted characters: 102.4 at module 6 are 409.6, and 5 (341.3) is the widest that fits.
  EXPECT_THAT(recorded(), HasSubstr("\035w\005\035h\145\033a1\035H1\035kE\002AB"));
}

TEST_F(BarcodeOptions, of_two_dimensions_reach_the_printer) {
  EXPECT_EQ(
      run_tool({"barcode", "qrcode", "x", "--module", "7", "--level", "H"}, recording()).status, 0);
  EXPECT_THAT(recorded(), HasSubstr(std::string("\035(k\3\0001C\007", 8)));
  EXPECT_THAT(recorded(), HasSubstr(std::string("\035(k\3\0001E3", 8)));
  EXPECT_EQ(
      run_tool({"barcode", "pdf417", "x", "--module", "2", "--data-columns", "5"}, recording())
          .status,
      0);
  EXPECT_THAT(recorded(), HasSubstr(std::string("\035(k\3\0000A\005", 8)));
  EXPECT_THAT(recorded(), HasSubstr(std::string("\035(k\3\0000C\002", 8)));
}

TEST_F(BarcodeOptions, what_would_not_be_printed_is_refused_with_nothing_sent) {
  const Outcome outcome = run_tool({"barcode", "ean-13", "12"}, recording());
  EXPECT_EQ(outcome.status, 14);
  EXPECT_THAT(outcome.errors, HasSubstr("ean-13 takes 12 or 13"));
  EXPECT_EQ(recorded(), "");
}

// -------------------------------------------------------------------------- check-barcode

struct Check {
  std::vector<std::string> words;
  int status;
  const char* told;  // on either stream
};

class CheckBarcode : public LoneCliTest {
 protected:
  void expect(const Check& check) {
    Words words{"check-barcode"};
    words.insert(words.end(), check.words.begin(), check.words.end());
    const Outcome outcome = run_alone(words);
    EXPECT_EQ(outcome.status, check.status) << testing::PrintToString(check.words);
    EXPECT_THAT(outcome.out + outcome.errors, HasSubstr(check.told));
  }
};

TEST_F(CheckBarcode, lengths) {
  expect({{"ean-13", "40063813339"}, 14, "takes 12 or 13 of them; here are 11"});
  expect({{"ean-8", "123456789"}, 14, "takes 7 or 8 of them; here are 9"});
  expect({{"upc-a", "0123456789"}, 14, "takes 11 or 12"});
  expect({{"itf", "123"}, 14, "an even number of characters, up to 28"});
  expect({{"itf", std::string(30, '1')}, 14, "up to 28"});
  expect({{"code39", std::string(16, 'A')}, 14, "up to 15"});
  expect({{"codabar", std::string(23, '1')}, 14, "up to 22"});
  // 19 bytes go before the data of a block of 1024.
  expect({{"code128", std::string(1005, 'x')}, 0, "code128"});
  expect({{"code128", std::string(1006, 'x')}, 14, "1024 bytes"});
  expect({{"qrcode", std::string(8092, 'x')}, 0, "8092 bytes"});
  expect({{"pdf417", std::string(8093, 'x')}, 14, "8093 bytes of at most 8092"});
  expect({{"qrcode", ""}, 14, "no data"});
  expect({{"code39", ""}, 14, "no data"});
}

TEST_F(CheckBarcode, characters) {
  expect({{"ean-13", "40063813339X"}, 14, "character 12 of the data cannot be encoded"});
  expect({{"code39", "lower"}, 14, "capital letters"});
  expect({{"codabar", "12E"}, 14, "character 3"});
  expect({{"code93", "\xe4"}, 14, "ASCII"});
  expect({{"code128", "-e", "a\\0b"}, 14, "NUL"});
  expect({{"qrcode", "-e", "a\\0b"}, 0, "3 bytes"});
}

TEST_F(CheckBarcode, check_digits) {
  // 4+3x0+0+3x6+3+3x8+1+3x3+3+3x3+9+3x3 = 89, so 1 is missing.
  expect({{"ean-13", "400638133393"}, 0, "adds the check digit 1"});
  expect({{"ean-13", "4006381333931"}, 0, "its check digit is right"});
  expect({{"ean-13", "4006381333932"}, 14, "the check digit is wrong: it must be 1"});
  expect({{"ean-8", "9638507"}, 0, "adds the check digit 4"});
  expect({{"upc-a", "036000291452"}, 0, "its check digit is right"});
  expect({{"code39", "12"}, 0, "modules of"});
}

TEST_F(CheckBarcode, widths) {
  expect({{"code39", "12", "--width", "640"}, 0, "modules of 6 dots"});
  expect({{"code39", "12", "--width", "641"}, 14, "larger than the line's 640 dots"});
  expect({{"code39", "12", "--width", "641", "--line-width", "641"}, 0, "modules"});
  // Compared as it stands: 1000 hundredths of a millimetre are 71 dots, and too wide.
  expect({{"code39", "12", "--width", "1000", "--unit", "cmm"}, 14, "in any unit"});
  // One dot more than asked, 255 at most.
  expect({{"code39", "12", "--height", "80"}, 0, "bars 81 dots high"});
  expect({{"code39", "12", "--height", "999"}, 0, "bars 255 dots high"});
}

TEST_F(CheckBarcode, wrong_words_are_bad_usage) {
  expect({{"ean-14", "1"}, 1, "ean-14"});
  expect({{"ean-13"}, 1, "DATA"});
  expect({{"code39", "1", "--height", "-1"}, 1, "--height"});
  expect({{"code39", "1", "--width", "99999999999999999999"}, 1, "--width"});
}

TEST_F(CheckBarcode, tells_programs) {
  const auto json = json_of(run_alone({"check-barcode", "ean-13", "400638133393", "--json"}));
  EXPECT_EQ(json["module_dots"], 3);  // 300 dots: 285 to 379
  EXPECT_EQ(json["height_dots"], 81);
  EXPECT_EQ(json["check_digit"], "1");
}

// ------------------------------------------------------------------------------ check-bmp

// All black, in a depth; the first of two colours is black.
Bmp black(int width, int height, int bits) {
  Bmp bmp{.width = width, .height = height, .bits = bits};
  if (bits == 1) bmp.palette = pictures::kWhiteFirst;
  const char ink = bits == 1 ? '\xff' : '\0';
  bmp.pixels = std::string(static_cast<std::size_t>(pictures::stride(bmp) * std::abs(height)), ink);
  return bmp;
}

class CheckBmp : public LoneCliTest {
 protected:
  void expect(const Bmp& bmp, int status, const std::string& told) {
    expect(bmp.file(), status, told);
  }
  void expect(const std::string& bytes, int status, const std::string& told) {
    const Outcome outcome = run_alone({"check-bmp", file("picture", bytes)});
    EXPECT_EQ(outcome.status, status) << told;
    EXPECT_THAT(outcome.out + outcome.errors, HasSubstr(told));
  }
};

TEST_F(CheckBmp, says_what_it_prints) {
  expect(black(9, 9, 1), 0, "9 x 9 dots, 1 bits per pixel, sent as 16 columns of 2 bytes\n");
  const auto json =
      json_of(run_alone({"check-bmp", file("b", black(192, 72, 24).file()), "--json"}));
  EXPECT_EQ(json["width_dots"], 192);
  EXPECT_EQ(json["height_dots"], 72);
  EXPECT_EQ(json["bits_per_pixel"], 24);
  EXPECT_EQ(json["columns"], 192);
  EXPECT_EQ(json["bands"], 9);
  EXPECT_EQ(json["outcome"], "done");
}

TEST_F(CheckBmp, takes_every_depth_that_the_library_takes) {
  for (const int bits : pictures::kDepths) expect(black(8, 8, bits), 0, "8 x 8 dots");
  expect(black(8, 8, 4), 0, "every other pixel prints black");
}

TEST_F(CheckBmp, says_why_a_file_is_none) {
  Bmp wrong_type = black(8, 8, 1), offset = wrong_type, behind = wrong_type, longer = wrong_type,
      depth = wrong_type, no_width = wrong_type, too_few = wrong_type;
  wrong_type.type = "PK";
  offset.offset = 53;
  behind.offset = 1000;
  longer.size = 1000;
  depth.bits = 2;
  no_width.width = 0;
  too_few.height = 9;
  expect(std::string(), 13, "empty");
  expect(wrong_type, 13, "does not begin with BM");
  expect(offset, 13, "within the headers");
  expect(behind, 13, "behind the end");
  expect(longer, 13, "ends before the size");
  expect(depth, 13, "bits per pixel");
  expect(no_width, 13, "width");
  expect(too_few, 13, "fewer pixels");
  expect(black(8, 8, 1).file().substr(0, 40), 13, "ends within its headers");
  expect(std::string(100000, 'B'), 13, "does not begin with BM");
}

TEST_F(CheckBmp, says_why_a_good_file_is_of_no_use) {
  expect(black(8, -8, 1), 14, "top row first");
  expect(black(9, 8, 8), 14, "multiple of 4");
  Bmp white = black(8, 8, 24);
  white.pixels.assign(white.pixels.size(), '\xff');
  expect(white, 14, "blank: every dot is white");
  expect(black(641, 8, 1), 14, "wider than the line: 641 of 640 dots");
  // 80 x 36 squares are the most; 80 x 37 are 2960.
  expect(black(640, 288, 1), 0, "640 x 288 dots");
  expect(black(640, 289, 1), 14, "2960 squares");
  expect(black(8, 2048, 1), 14, "wraps at 256");
  std::string compressed = black(8, 8, 8).file();
  compressed[30] = 1;
  expect(compressed, 14, "compressed");
}

TEST_F(CheckBmp, a_missing_file_is_told) {
  const Outcome outcome = run_alone({"check-bmp", path_of("none")});
  EXPECT_EQ(outcome.status, 13);
  EXPECT_THAT(outcome.errors, HasSubstr("No such file"));
  EXPECT_EQ(run_alone({"check-bmp", "/"}).status, 13);
}

// ------------------------------------------------------------------------- image and logo

class Picture : public CliTest {
 protected:
  std::string picture(const std::string& name, int width, int height) {
    return file(name, black(width, height, 1).file());
  }
};

TEST_F(Picture, is_on_paper) {
  const Outcome outcome = run_tool({"image", picture("p", 192, 72)});
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.paper.texts, ElementsAre("[picture 192 x 72]\n"));
}

TEST_F(Picture, that_would_not_print_is_refused_with_nothing_sent_and_no_stray_lines) {
  const Outcome outcome = run_tool({"image", file("p", "no picture"), "--json"}, recording());
  EXPECT_EQ(outcome.status, 13);
  EXPECT_EQ(outcome.lines("Not Bitmap"), 0) << outcome.out;
  EXPECT_EQ(json_of(outcome)["outcome"], "bad-file");
  EXPECT_EQ(recorded(), "");
}

TEST_F(Picture, is_stored_printed_and_deleted) {
  Words options{"--strict", "--memory", path_of("memory")};
  const Outcome stored =
      run_tool({"logo", "store", picture("a", 16, 8), picture("b", 24, 16), "--json"}, options);
  EXPECT_EQ(stored.status, 0) << stored.errors;
  // ESC @, FS q n; 4 and 16 x 1; 4 and 24 x 2.
  EXPECT_EQ(json_of(stored)["bytes_sent"], 5 + 4 + 16 + 4 + 48);
  EXPECT_EQ(json_of(stored)["command"], "logo store");
  const Outcome printed = run_tool({"logo", "print", "2", "--align", "left"}, options);
  EXPECT_EQ(printed.status, 0) << printed.errors;
  EXPECT_THAT(printed.paper.in_one(), HasSubstr("[stored picture 2, 24 x 16]"));
  EXPECT_EQ(run_tool({"logo", "delete"}, options).status, 0);
  const Outcome gone = run_tool({"logo", "print", "1"}, {"--memory", path_of("memory")});
  EXPECT_THAT(gone.errors, HasSubstr("refused:"));
}

TEST_F(Picture, of_a_list_with_a_bad_one_nothing_is_sent) {
  const Outcome outcome =
      run_tool({"logo", "store", picture("a", 16, 8), file("b", "x")}, recording());
  EXPECT_EQ(outcome.status, 13);
  EXPECT_EQ(recorded(), "");
}

TEST_F(Picture, lists_that_the_library_does_not_take_are_refused) {
  Words many{"logo", "store"};
  for (int i = 0; i < 33; ++i) many.push_back(picture("a", 16, 8));
  EXPECT_EQ(run_tool(many).status, 1);
  EXPECT_EQ(run_tool({"logo", "store", picture("a|b", 16, 8)}).status, 1);
  EXPECT_EQ(run_tool({"logo", "store", picture(std::string(128, 'n'), 16, 8)}).status, 1);
  EXPECT_EQ(run_tool({"logo"}).status, 1);
}

}  // namespace
