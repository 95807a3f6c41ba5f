// Text and its escape sequences, through the translation itself and through both operations.
#include "text/translate.h"

#include <algorithm>
#include <optional>

#include "input.h"
#include "open_link.h"

namespace fuzz {
namespace {

struct Translated {
  bool ok;
  std::string bytes;
  LineColumns columns;
};

Translated translated(std::string_view text, const TextSettings& settings, LineColumns columns,
                      std::size_t limit) {
  ByteBuffer output(limit);
  translate(text, settings, columns, output);
  check(output.bytes().size() <= limit, "no more bytes than the limit");
  return {output.ok(), std::string(output.bytes()), columns};
}

bool same(const LineColumns& a, const LineColumns& b) {
  return a.line_is_open == b.line_is_open && a.current == b.current && a.widest == b.widest;
}

/// Text without sequences goes out as it stands, and may be cut in two within its first line.
void check_plain(std::string_view text, std::size_t cut, const TextSettings& settings,
                 const LineColumns& before) {
  constexpr std::size_t kPlenty = 65536;
  const Translated whole = translated(text, settings, before, kPlenty);
  const Translated nothing = translated("", settings, before, kPlenty);
  check(whole.bytes == nothing.bytes + std::string(text), "plain text stands behind the prologue");

  const std::string_view first = text.substr(0, std::min(cut, text.find_first_of("\r\n")));
  const std::string_view second = text.substr(first.size());
  const Translated half = translated(first, settings, before, kPlenty);
  const Translated rest = translated(second, settings, half.columns, kPlenty);
  check(same(rest.columns, whole.columns), "two calls count the columns of one");
}

TextSettings settings_from(Input& input) {
  constexpr int32_t kUsual[] = {42, 56, 33, 40};
  const std::size_t format = input.choice(std::size(kUsual) + 1);
  const std::size_t unit = input.choice(5);
  const bool known = unit <= TZV_MAP_METRIC;
  return {.line_chars = format < std::size(kUsual) ? kUsual[format] : input.number(),
          .line_spacing = input.number(),
          .lines_to_paper_cut = input.number(),
          .map_mode = known ? static_cast<int32_t>(unit) : input.number(),
          .rotated = input.flag()};
}

struct Printed {
  long result;
  std::string bytes;
  LineColumns columns;
};

/// What one of the operations does on a link with these settings.
template <typename Print>
Printed print(OpenLink& till, const TextSettings& settings, Print operation) {
  const testkit::ExportedState& state = till.state;
  *state.RecLineChars = settings.line_chars;
  *state.RecLineSpacing = settings.line_spacing;
  *state.RecLinesToPaperCut = settings.lines_to_paper_cut;
  *state.MapMode = settings.map_mode;
  *state.RotateCtrl = settings.rotated ? 1 : 0;
  till.forget();
  const long result = operation();
  return {result,
          till.sent(),
          {static_cast<int32_t>(*state.SaveFlag), static_cast<int32_t>(*state.RecSidewaysCharsCur),
           static_cast<int32_t>(*state.RecSidewaysChars)}};
}

void check_operations(const testkit::Link& link, const std::string& text,
                      const TextSettings& settings) {
  const Translated expected = translated(text, settings, {}, TZV_PAGE_BUFFER_SIZE);
  const auto as_expected = [&](const Printed& printed) {
    if (!expected.ok) return printed.result == -2 && printed.bytes.empty();
    return printed.result == 0 && printed.bytes == expected.bytes &&
           same(printed.columns, expected.columns);
  };
  const auto size = static_cast<long>(text.size());
  OpenLink till(link);
  check(as_expected(
            print(till, settings, [&] { return PrintNormalSize(till.port, text.data(), size); })),
        "PrintNormalSize sends the translation and stores the columns");
  if (text.find('\0') != std::string::npos) return;
  *till.state.SaveFlag = *till.state.RecSidewaysCharsCur = *till.state.RecSidewaysChars = 0;
  check(as_expected(print(till, settings, [&] { return PrintNormal(till.port, text.c_str()); })),
        "PrintNormal does the same with text that holds no NUL");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace fuzz;
  Input input(data, size);
  const TextSettings settings = settings_from(input);
  const std::size_t link = input.choice(16);
  const std::size_t limit = input.choice(3) == 0 ? input.byte() : std::size_t{65536};
  const std::size_t cut = input.byte();
  const LineColumns before{input.choice(3) == 0 ? 1 : 0, input.number(), input.number()};
  const std::string text(input.rest());

  translated(text, settings, before, limit);
  if (text.find("\x1b|") == std::string::npos) check_plain(text, cut, settings, before);
  // The way through a link is longer, so not every input takes it.
  if (link < testkit::kLinks.size()) check_operations(testkit::kLinks[link], text, settings);
  return 0;
}
