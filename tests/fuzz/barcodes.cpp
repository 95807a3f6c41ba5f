// Barcode arguments: what is sent says what was asked for, or nothing is sent.
#include <optional>
#include <string>

#include "input.h"
#include "open_link.h"

namespace fuzz {
namespace {

/// Commands read off what was sent; what is expected and not there ends the run.
class Commands {
 public:
  explicit Commands(std::string_view sent) : left_(sent) {}

  bool take(std::string_view command) {
    if (!left_.starts_with(command)) return false;
    left_.remove_prefix(command.size());
    return true;
  }
  void expect(std::string_view command) { check(take(command), "the command that is due"); }
  unsigned byte() {
    check(!left_.empty(), "a command is whole");
    const auto taken = static_cast<unsigned char>(left_[0]);
    left_.remove_prefix(1);
    return taken;
  }
  void expect_end() const { check(left_.empty(), "and nothing more"); }

 private:
  std::string_view left_;
};

std::string low_bytes(long number, int count) {
  std::string bytes;
  for (int i = 0; i < count; ++i) bytes += static_cast<char>(number >> (8 * i));
  return bytes;
}

struct Arguments {
  std::string data;
  long symbology, first, second, third, fourth;
};

Arguments arguments_from(Input& input, long symbology) {
  Arguments taken{.data = {},
                  .symbology = symbology,
                  .first = input.number(),
                  .second = input.number(),
                  .third = input.number(),
                  .fourth = input.number()};
  taken.data = input.rest();
  return taken;
}

// ---------------------------------------------------------------------------- linear symbols

struct Kind {
  std::size_t shortest, longest;
  char type;
  bool pairs = false;
};
constexpr Kind kKinds[] = {{11, 12, 'A'}, {11, 12, 'B'}, {7, 8, 'D'},        {12, 13, 'C'},
                           {7, 8, 'D'},   {12, 13, 'C'}, {0, 28, 'F', true}, {0, 22, 'G'},
                           {0, 15, 'E'},  {0, 22, 'H'},  {0, 1024, 'I'}};

const Kind* printable(const Arguments& asked, long line_width) {
  const long kind = asked.symbology - TZV_BARCODE_UPCA;
  if (kind < 0 || kind >= static_cast<long>(std::size(kKinds))) return nullptr;
  const Kind& known = kKinds[kind];
  const std::size_t length = asked.data.size();
  if (length < known.shortest || length > known.longest) return nullptr;
  if (known.pairs && length % 2 != 0) return nullptr;
  const bool fits = asked.second <= line_width && asked.fourth >= 0 && asked.fourth <= 2;
  return fits ? &known : nullptr;
}

void expect_justification(Commands& sent, long alignment, bool linear) {
  if (alignment == TZV_ALIGN_LEFT) return sent.expect("\033a0");
  if (alignment != TZV_ALIGN_RIGHT) return sent.expect("\033a1");
  sent.expect(linear ? "\035f2" : "\033a2");
}

void check_linear(OpenLink& till, Input& input) {
  const testkit::ExportedState& state = till.state;
  *state.MapMode = static_cast<long>(input.choice(5));
  *state.RecLineChars = input.flag() ? 42 : 56;
  *state.RecLineWidth = input.flag() ? 640 : input.number();
  Arguments asked =
      arguments_from(input, TZV_BARCODE_UPCA - 1 + static_cast<long>(input.choice(13)));
  asked.data = up_to_nul(asked.data);
  const long result = PrintBarCode(till.port, asked.data.c_str(), asked.symbology, asked.first,
                                   asked.second, asked.third, asked.fourth);
  check(result == 0, "PrintBarCode is a success");
  const Kind* const kind = printable(asked, *state.RecLineWidth);
  if (kind == nullptr) return check(till.sent().empty(), "what cannot be printed is not sent");
  // The longest data that fit: a block holds 1024 bytes, 19 of them commands.
  constexpr std::size_t kLongestData = 1024 - 19;
  if (asked.data.size() > kLongestData) return check(till.sent().empty(), "too long for a block");

  Commands sent(till.sent());
  sent.expect(*state.RecLineChars == 42 ? "\035f0" : "\035f1");
  sent.expect("\035w");
  const unsigned module = sent.byte();
  check(module >= 2 && module <= 6, "a module width that printers have");
  sent.expect("\035h");
  const unsigned height = sent.byte();
  const bool dots = *state.MapMode == TZV_MAP_DOTS || *state.MapMode > TZV_MAP_METRIC;
  if (dots && asked.first >= 0 && asked.first < INT32_MAX) {
    check(static_cast<long>(height) == std::min(asked.first, 254L) + 1, "the height");
  }
  expect_justification(sent, asked.third, true);
  sent.expect("\035H");
  check(sent.byte() == static_cast<unsigned>('0' + asked.fourth), "where the text stands");
  sent.expect(std::string("\035k") + kind->type +
              low_bytes(static_cast<long>(asked.data.size()), 1));
  sent.expect(asked.data);
  sent.expect_end();
}

// ----------------------------------------------------------------------- PDF417 and QR Code

std::string function(char symbol_class, char number, long parameter) {
  return std::string("\035(k\003\0", 5) + symbol_class + number + static_cast<char>(parameter);
}

std::string stored(char symbol_class, std::string_view data) {
  return "\035(k" + low_bytes(static_cast<long>(data.size()) + 3, 2) + symbol_class + "P0" +
         std::string(data);
}

std::string setup(char symbol_class, bool columns_first, const Arguments& asked) {
  if (columns_first) {
    return function(symbol_class, 'A', asked.first) + function(symbol_class, 'C', asked.second);
  }
  return function('1', 'C', asked.first) + function('1', 'E', '0' + (asked.second & 0xff));
}

/// The bytes of data that a symbol gets, if it can be printed.
std::optional<std::string> data_of(const Arguments& asked, long length) {
  constexpr std::size_t kLongest = 8092;
  if (asked.symbology != TZV_BARCODE_PDF417 && asked.symbology != TZV_BARCODE_QRCODE) return {};
  const std::string data = length == 0 ? up_to_nul(asked.data) : asked.data;
  if (length < 0 || data.size() > kLongest) return {};
  return data;
}

long length_argument(const Arguments& asked, std::size_t how) {
  if (how == 0) return 0;
  return how == 1 ? -1 : static_cast<long>(asked.data.size());
}

void check_2d(const OpenLink& till, Input& input) {
  const bool placed = input.flag();
  const std::size_t how = input.choice(8);
  const Arguments asked =
      arguments_from(input, TZV_BARCODE_PDF417 - 1 + static_cast<long>(input.choice(4)));
  const long length = length_argument(asked, how);
  const char* const bytes = asked.data.c_str();
  const long result = placed
                          ? Print2DBarCodeXY(till.port, bytes, length, asked.symbology, asked.first,
                                             asked.second, asked.third, asked.fourth)
                          : Print2DBarCode(till.port, bytes, length, asked.symbology, asked.first,
                                           asked.second, asked.third);
  check(result == 0, "a symbol is a success");
  const auto data = data_of(asked, length);
  if (!data) return check(till.sent().empty(), "what cannot be printed is not sent");

  const bool pdf417 = asked.symbology == TZV_BARCODE_PDF417;
  const char symbol_class = pdf417 && !placed ? '0' : '1';
  Commands sent(till.sent());
  if (!placed) expect_justification(sent, asked.third, false);
  sent.expect(setup(symbol_class, pdf417, asked));
  sent.expect(stored(symbol_class, *data));
  if (placed) {
    sent.expect("\035}X" + low_bytes(asked.third % 256, 1) + low_bytes(asked.third / 256, 1));
    sent.expect("\035}Y" + low_bytes(asked.fourth % 256, 1) + low_bytes(asked.fourth / 256, 1));
  }
  sent.expect(function(symbol_class, 'Q', '0'));
  if (placed || !pdf417) sent.expect(placed ? "\n" : "\r\n");
  sent.expect_end();
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace fuzz;
  Input input(data, size);
  OpenLink till(testkit::kLinks[input.choice(testkit::kLinks.size())]);
  if (input.flag()) {
    check_2d(till, input);
  } else {
    check_linear(till, input);
  }
  return 0;
}
