#include "barcode/linear_symbol.h"

#include <algorithm>
#include <cstring>

#include "text/alignment.h"
#include "text/units.h"
#include "tzvio.h"

namespace {

constexpr int kModules = 5;  // module widths, 2 to 6 dots
constexpr char kNarrowest = 2;

/// From which symbol width in dots on the modules 3 to 6 are taken.
struct Thresholds {
  int32_t from[kModules - 1];
};
constexpr int32_t kNever = INT32_MAX;
constexpr Thresholds kTwelveDigits{{285, 380, 475, kNever}};
constexpr Thresholds kUpcE{{67, 155, 206, 257}};
constexpr Thresholds kEan8{{201, 268, 335, 402}};

/// The width of a symbol in dots for each counted character, by module. IEEE doubles first, widened
/// where they are used, so that every compiler finds the same dot.
struct Factors {
  double by_module[kModules];
};
constexpr Factors kCode39{{30.118, 46.545, 64, 85.333, 102.4}};
constexpr Factors kItf{{18.286, 28.444, 36.571, 51.2, 64}};
constexpr Factors kCodabar{{23.273, 36.571, 46.545, 56.889, 73.143}};
constexpr Factors kCode93{{21.333, 34.133, 46.545, 64, 85.333}};
constexpr Factors kCode128{{25.6, 42.667, 64, 85.333, 128}};

constexpr std::size_t kNoLimit = SIZE_MAX;

struct Symbology {
  std::size_t shortest, longest;  ///< data, in bytes
  const Thresholds* thresholds;   ///< null: fitted by the factors
  const Factors* factors;
  std::size_t added;  ///< start and stop characters that count for fitting
  char type;          ///< GS k's
  bool even = false;  ///< takes pairs of characters
};

// By number, from TZV_BARCODE_UPCA on. JAN symbols are EAN symbols.
constexpr Symbology kSymbologies[] = {
    {11, 12, &kTwelveDigits, nullptr, 0, 'A'}, {11, 12, &kUpcE, nullptr, 0, 'B'},
    {7, 8, &kEan8, nullptr, 0, 'D'},           {12, 13, &kTwelveDigits, nullptr, 0, 'C'},
    {7, 8, &kEan8, nullptr, 0, 'D'},           {12, 13, &kTwelveDigits, nullptr, 0, 'C'},
    {0, 28, nullptr, &kItf, 0, 'F', true},     {0, 22, nullptr, &kCodabar, 0, 'G'},
    {0, 15, nullptr, &kCode39, 2, 'E'},        {0, 22, nullptr, &kCode93, 2, 'H'},
    {0, kNoLimit, nullptr, &kCode128, 0, 'I'},
};
static_assert(std::size(kSymbologies) == TZV_BARCODE_CODE128 - TZV_BARCODE_UPCA + 1);

const Symbology* find_symbology(int32_t number) {
  if (number < TZV_BARCODE_UPCA || number > TZV_BARCODE_CODE128) return nullptr;
  return &kSymbologies[number - TZV_BARCODE_UPCA];
}

bool takes_length(const Symbology& symbology, std::size_t length) {
  if (symbology.even && length % 2 != 0) return false;
  return length >= symbology.shortest && length <= symbology.longest;
}

int32_t barcode_dots(int32_t length, int32_t map_mode) {
  const bool known = map_mode >= TZV_MAP_DOTS && map_mode <= TZV_MAP_METRIC;
  return to_dots(length, known ? map_mode : TZV_MAP_DOTS);
}

char module_by_threshold(const Thresholds& thresholds, int32_t dots) {
  char module = kNarrowest;
  for (const int32_t from : thresholds.from) module = static_cast<char>(module + (dots >= from));
  return module;
}

/// How far a symbol of that width stays behind the dots it may have, and by which rounding that is
/// compared; below 0 when it does not fit. In 64 bits: any width and any length of data may be
/// asked for.
struct Spare {
  int64_t dots;
  int64_t compared;
};

Spare spare_dots(double factor, std::size_t length, int32_t dots) {
  constexpr double kHalf = 0.5;
  const long double exact = static_cast<long double>(length) * factor;
  const auto whole = static_cast<int64_t>(factor);
  if (factor == static_cast<double>(whole)) {
    const int64_t total = static_cast<int64_t>(length) * whole;
    return {dots - total, dots - total};
  }
  const auto total = static_cast<int64_t>(exact + kHalf);
  return {dots - total, static_cast<int64_t>(dots - exact + kHalf)};
}

/// The widest module whose symbol fits; of equal ones the narrower. The narrowest when none fits.
char module_by_fitting(const Factors& factors, std::size_t length, int32_t dots) {
  int64_t min = 9999;
  char module = kNarrowest;
  for (int i = 0; i < kModules; ++i) {
    const Spare spare = spare_dots(factors.by_module[i], length, dots);
    if (spare.dots < 0 || min <= spare.compared) continue;
    min = spare.dots;
    module = static_cast<char>(kNarrowest + i);
  }
  return module;
}

char module_width(const Symbology& symbology, std::size_t length, int32_t dots) {
  if (symbology.thresholds != nullptr) return module_by_threshold(*symbology.thresholds, dots);
  return module_by_fitting(*symbology.factors, length + symbology.added, dots);
}

char bar_height(int32_t height, int32_t map_mode) {
  // One dot more than asked, in every unit.
  return static_cast<char>(std::min(add_wrapping(barcode_dots(height, map_mode), 1), 255));
}

/// Bytes after each other in the block.
class Block {
 public:
  explicit Block(std::span<char, kLinearBlockSize> bytes) : bytes_(bytes) {}
  void add(std::string_view bytes) {
    std::memcpy(bytes_.data() + size_, bytes.data(), bytes.size());
    size_ += bytes.size();
  }
  void add(char byte) { bytes_[size_++] = byte; }
  std::size_t size() const { return size_; }
  std::size_t room() const { return bytes_.size() - size_; }

 private:
  std::span<char, kLinearBlockSize> bytes_;
  std::size_t size_ = 0;
};

void add_text_font(Block& block, int32_t line_chars) {
  if (line_chars == 42) block.add("\035f0");
  if (line_chars == 56) block.add("\035f1");
}

void add_justification(Block& block, int32_t alignment) {
  // Right is no justification here but the third text font: receipts rely on the justification
  // that was set before staying in force.
  block.add(alignment == TZV_ALIGN_RIGHT ? std::string_view("\035f2")
                                         : alignment_prefix(alignment));
}

}  // namespace

std::optional<DataLengths> data_lengths(int32_t number) {
  const Symbology* const symbology = find_symbology(number);
  if (symbology == nullptr) return std::nullopt;
  return DataLengths{symbology->shortest, symbology->longest, symbology->even};
}

BuiltSymbol build_linear_symbol(const LinearSymbol& symbol, const LinearSettings& settings,
                                std::span<char, kLinearBlockSize> bytes) {
  // The width in the caller's unit against dots, as it stands: applications size their symbols by
  // it.
  if (symbol.width > settings.line_width) return {0, LinearFault::kTooWide};
  const Symbology* const symbology = find_symbology(symbol.symbology);
  if (symbology == nullptr) return {0, LinearFault::kUnknownSymbology};
  if (!takes_length(*symbology, symbol.data.size())) return {0, LinearFault::kDataLength};
  if (symbol.text_position < TZV_TEXT_NONE || symbol.text_position > TZV_TEXT_BELOW) {
    return {0, LinearFault::kTextPosition};
  }

  Block block(bytes);
  add_text_font(block, settings.line_chars);
  block.add("\035w");
  const int32_t dots = barcode_dots(symbol.width, settings.map_mode);
  block.add(module_width(*symbology, symbol.data.size(), dots));
  block.add("\035h");
  block.add(bar_height(symbol.height, settings.map_mode));
  add_justification(block, symbol.alignment);
  block.add("\035H");
  block.add(static_cast<char>('0' + symbol.text_position));
  block.add("\035k");
  block.add(symbology->type);
  block.add(static_cast<char>(symbol.data.size()));
  if (symbol.data.size() > block.room()) return {0, LinearFault::kBlockTooLong};
  block.add(symbol.data);
  return {block.size(), LinearFault::kNone};
}
