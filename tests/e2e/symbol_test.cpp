// Symbols that the library prints are read off the paper's picture by scanners that know neither
// the library nor the printer.
#include <gmock/gmock.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "support/printed_paper.h"
#include "tills.h"

namespace {

using testing::ElementsAreArray;
using testing::UnorderedElementsAreArray;
using namespace std::string_literals;

class Symbols : public PrinterTest {
 protected:
  Symbols() : PrinterTest(Line::kUsb) {}

  // Prints what the words say, each symbol on a receipt of its own; nothing may go wrong.
  void print(const Words& words) {
    Words options = recording();
    options.emplace_back("--strict");
    const Outcome outcome = run_under_printer(options, pictures_till(words));
    ASSERT_EQ(outcome.status, 0) << outcome.out << outcome.errors;
    ASSERT_EQ(outcome.errors, "");
  }

  // What was read off each receipt, "READER KIND DATA".
  std::vector<std::vector<std::string>> scanned(std::size_t receipts) const {
    std::vector<std::vector<std::string>> found(receipts);
    std::istringstream lines(read_paper("scan"));
    for (std::string line; std::getline(lines, line);) {
      const std::size_t number = std::stoul(line.substr(line.find('-') + 1));
      const std::string read = line.substr(line.find(' ') + 1);
      if (number == 0 || number > receipts) {
        ADD_FAILURE() << "no such receipt: " << line;
      } else {
        found[number - 1].push_back(read);
      }
    }
    return found;
  }

  // The arguments of a command of one byte, in the order in which they came over the line.
  std::vector<int> arguments_of(std::string_view command) const {
    const std::string bytes = recorded();
    std::vector<int> arguments;
    for (std::size_t at = bytes.find(command); at != std::string::npos;
         at = bytes.find(command, at + 1)) {
      arguments.push_back(static_cast<unsigned char>(bytes.at(at + command.size())));
    }
    return arguments;
  }
};

struct Linear {
  const char* symbology;
  const char* data;
  // The least widths in dots for which the modules of 2, 3, 4, 5 and 6 dots are chosen; for 2, any.
  std::vector<const char*> widths;
  std::vector<std::string> read;
};

// Widths by hand: from the tables of thresholds, or the characters times the factors of their
// symbology. Twelve digits never get modules of 6 dots. What is read has the check digits of the
// standards; the start and stop characters of Codabar are data, those of Code 39 are not. UPC-E
// squeezes 0 12345 00005 to 123455, and keeps the number's check digit.
const std::vector<Linear> kLinear{
    {"101",
     "03600029145",
     {"284", "285", "380", "475"},
     {"zxing UPC-A 036000291452", "zbar UPC-A 036000291452"}},
    {"102",
     "01234500005",
     {"66", "67", "155", "206", "257"},
     {"zxing UPC-E 01234558", "zbar UPC-E 01234558"}},
    {"103",
     "9638507",
     {"200", "201", "268", "335", "402"},
     {"zxing EAN-8 96385074", "zbar EAN-8 96385074"}},
    {"104",
     "400638133393",
     {"284", "285", "380", "475"},
     {"zxing EAN-13 4006381333931", "zbar EAN-13 4006381333931"}},
    {"105",
     "49123456",
     {"200", "201", "268", "335", "402"},
     {"zxing EAN-8 49123456", "zbar EAN-8 49123456"}},
    {"106",
     "4901234567894",
     {"284", "285", "380", "475"},
     {"zxing EAN-13 4901234567894", "zbar EAN-13 4901234567894"}},
    {"107",
     "30712345",
     {"146", "228", "293", "410", "512"},
     {"zxing ITF 30712345", "zbar I2/5 30712345"}},
    {"108",
     "A40156B",
     {"163", "256", "326", "398", "512"},
     {"zxing Codabar A40156B", "zbar Codabar A40156B"}},
    {"109", "T-9", {"151", "233", "320", "427", "512"}, {"zxing Code39 T-9", "zbar CODE-39 T-9"}},
    {"110",
     "TZ93",
     {"128", "205", "279", "384", "512"},
     {"zxing Code93 TZ93", "zbar CODE-93 TZ93"}},
    {"111",
     "TZ128",
     {"128", "213", "320", "427", "640"},
     {"zxing Code128 TZ128", "zbar CODE-128 TZ128"}},
};

TEST_F(Symbols, of_every_linear_symbology_are_read_at_every_module_width) {
  Words words;
  std::vector<int> modules;
  std::vector<std::vector<std::string>> expected;
  for (const Linear& symbol : kLinear) {
    int module = 2;
    for (const char* width : symbol.widths) {
      words.insert(words.end(), {"linear", symbol.symbology, width, symbol.data, "cut"});
      modules.push_back(module++);
      expected.push_back(symbol.read);
    }
  }
  print(words);
  EXPECT_EQ(arguments_of("\x1dw"), modules);
  const auto found = scanned(expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_THAT(found[i], UnorderedElementsAreArray(expected[i])) << "receipt " << i + 1;
  }
}

struct Matrix {
  const char* param1;
  const char* param2;
  std::string data;
};

std::string counted_digits(std::size_t length) {
  std::string digits;
  for (std::size_t i = 0; i < length; ++i) digits += static_cast<char>('0' + i % 10);
  return digits;
}

// Only one of the two scanners reads PDF417.
TEST_F(Symbols, of_pdf417_are_read_at_every_size) {
  const std::vector<Matrix> symbols{
      {"3", "2", "TZVIO"},      {"3", "3", "Till 3, receipt 4711"}, {"1", "4", "TOTAL 32.60"},
      {"2", "6", "columns: 2"}, {"0", "2", counted_digits(400)},    {"0", "5", counted_digits(60)}};
  Words words;
  for (const Matrix& symbol : symbols) {
    words.insert(words.end(), {"matrix", "200", symbol.param1, symbol.param2, symbol.data, "cut"});
  }
  print(words);
  const auto found = scanned(symbols.size());
  for (std::size_t i = 0; i < symbols.size(); ++i) {
    EXPECT_THAT(found[i], ElementsAreArray({"zxing PDF417 " + symbols[i].data}));
  }
}

TEST_F(Symbols, of_qr_code_are_read_at_every_size_and_level) {
  const std::vector<Matrix> symbols{{"2", "0", "https://shop.example/visit/4711"},
                                    {"3", "1", "TZVIO"},
                                    {"4", "2", "0123456789"},
                                    {"5", "3", "mixed: 12,50 EUR/kg"},
                                    {"8", "0", "LARGE"},
                                    {"16", "3", "Q"},
                                    {"3", "0", counted_digits(2000)}};
  Words words;
  for (const Matrix& symbol : symbols) {
    words.insert(words.end(), {"matrix", "201", symbol.param1, symbol.param2, symbol.data, "cut"});
  }
  print(words);
  const auto found = scanned(symbols.size());
  for (std::size_t i = 0; i < symbols.size(); ++i) {
    EXPECT_THAT(found[i], UnorderedElementsAreArray({"zxing QRCode " + symbols[i].data,
                                                     "zbar QR-Code " + symbols[i].data}));
  }
}

// A request for PDF417 at a position is one for a QR Code.
TEST_F(Symbols, on_a_page_are_read_from_where_they_stand) {
  print({"page",        "matrix-at", "40",  "40",  "201",      "6",        "1",
         "upper left",  "matrix-at", "380", "300", "200",      "2",        "5",
         "lower right", "text-at",   "40",  "300", "and text", "end-page", "cut"});
  EXPECT_THAT(scanned(1).front(),
              testing::IsSupersetOf({"zxing QRCode upper left"s, "zxing QRCode lower right"s,
                                     "zbar QR-Code upper left"s, "zbar QR-Code lower right"s}));
}

}  // namespace
