#include "symbol_check.h"

#include <tzvio.h>

#include <array>

#include "barcode/data_2d.h"
#include "barcode/linear_symbol.h"
#include "text_input.h"

namespace cli {
namespace {

constexpr long kMostDots = 65535;

std::string name_of_symbology(long symbology) {
  for (const auto& [name, number] : kSymbologies) {
    if (number == symbology) return name;
  }
  return "";
}

Result not_printable(const std::string& words) {
  return {.outcome = Outcome::kNotPrintable, .words = words};
}

std::string length_words(const SymbolRequest& request) {
  const auto lengths = data_lengths(static_cast<int32_t>(request.symbology));
  std::string words = name_of_symbology(request.symbology) + " takes ";
  if (lengths->even) words += "an even number of characters, ";
  words += lengths->shortest > 0 ? std::to_string(lengths->shortest) + " or " : "up to ";
  return words + std::to_string(lengths->longest) + " of them; here are " +
         std::to_string(request.data.size());
}

std::string words_for(LinearFault fault, const SymbolRequest& request, const Options& options) {
  switch (fault) {
    case LinearFault::kTooWide:
      return "the width, " + std::to_string(request.width) + ", is larger than the line's " +
             std::to_string(options.line_width) + " dots, with which it is compared in any unit";
    case LinearFault::kUnknownSymbology:
      return "there is no such symbology";
    case LinearFault::kDataLength:
      return length_words(request);
    case LinearFault::kTextPosition:
      return "there is no such place for the text";
    case LinearFault::kBlockTooLong:
      return "the data are too long: symbol and settings have to fit " +
             std::to_string(kLinearBlockSize) + " bytes";
    case LinearFault::kNone:
      break;
  }
  return "";
}

// What the printer refuses, which the library does not look at; empty when there is nothing.
std::string refused_by_printer(const SymbolRequest& request) {
  const long symbology = request.symbology;
  if (request.data.empty()) return "there are no data to encode";
  if (const auto at = foreign_character(symbology, request.data)) {
    return "character " + std::to_string(*at + 1) +
           " of the data cannot be encoded: " + name_of_symbology(symbology) + " has " +
           std::string(characters_in_words(symbology));
  }
  const auto check = check_digit(symbology, request.data);
  if (check && check->has_it && !check->right) {
    return std::string("the check digit is wrong: it must be ") + check->digit;
  }
  return "";
}

// Where the symbology has one.
std::string check_digit_words(const SymbolRequest& request) {
  const auto check = check_digit(request.symbology, request.data);
  if (!check) return "";
  return check->has_it ? ", its check digit is right"
                       : std::string(", the printer adds the check digit ") + check->digit;
}

Result check_2d(const SymbolRequest& request) {
  const auto size = static_cast<long>(request.data.size());
  if (size > kLongest2dData) {
    return not_printable("the data are too long: " + std::to_string(size) + " bytes of at most " +
                         std::to_string(kLongest2dData));
  }
  if (size == 0) return not_printable("there are no data to encode");
  const std::string text = name_of_symbology(request.symbology) + ": " + std::to_string(size) +
                           " bytes, modules of " + std::to_string(request.module_dots) + " dots\n";
  return {.text = text,
          .fields = {{"symbology", name_of_symbology(request.symbology)},
                     {"data_bytes", size},
                     {"module_dots", request.module_dots}}};
}

// The number behind a command of the block that was built.
int number_behind(std::string_view block, std::string_view command) {
  const std::size_t at = block.find(command);
  return at == std::string_view::npos ? 0 : static_cast<unsigned char>(block[at + command.size()]);
}

Result check_linear(const SymbolRequest& request, const Options& options) {
  const LinearSymbol symbol{.data = request.data,
                            .symbology = static_cast<int32_t>(request.symbology),
                            .height = static_cast<int32_t>(request.height),
                            .width = static_cast<int32_t>(request.width),
                            .alignment = static_cast<int32_t>(request.alignment),
                            .text_position = static_cast<int32_t>(request.text_position)};
  const LinearSettings settings{.line_width = static_cast<int32_t>(options.line_width),
                                .line_chars = static_cast<int32_t>(options.columns),
                                .map_mode = static_cast<int32_t>(options.unit)};
  std::array<char, kLinearBlockSize> bytes;
  const auto [size, fault] = build_linear_symbol(symbol, settings, bytes);
  if (fault != LinearFault::kNone) return not_printable(words_for(fault, request, options));
  const std::string refused = refused_by_printer(request);
  if (!refused.empty()) return not_printable(refused);

  const std::string_view block(bytes.data(), size);
  const int module_dots = number_behind(block, "\035w");
  const int height_dots = number_behind(block, "\035h");
  Json fields{{"symbology", name_of_symbology(request.symbology)},
              {"data_bytes", request.data.size()},
              {"module_dots", module_dots},
              {"height_dots", height_dots}};
  if (const auto check = check_digit(request.symbology, request.data)) {
    fields["check_digit"] = std::string(1, check->digit);
  }
  return {.text = name_of_symbology(request.symbology) + ": modules of " +
                  std::to_string(module_dots) + " dots, bars " + std::to_string(height_dots) +
                  " dots high" + check_digit_words(request) + "\n",
          .fields = fields};
}

}  // namespace

void add_symbol_options(CLI::App* command, SymbolRequest& request) {
  add_choice(*command, "SYMBOLOGY", request.symbology, kSymbologies, "What to print")->required();
  command
      ->add_option("DATA", request.data,
                   "The data; the printer adds what is missing of check digits")
      ->option_text("DATA")
      ->required();
  command->add_flag("-e,--escapes", request.escapes,
                    "In the data \\xHH is a byte, \\n a line end, and so on");
  command
      ->add_option("--height", request.height,
                   "Height of the bars in units of --unit; 80 unless given")
      ->option_text("NUMBER")
      ->check(CLI::Range(0L, kMostDots));
  command
      ->add_option("--width", request.width,
                   "Width that the symbol may have, in the same unit; chooses modules of 2 to 6 "
                   "dots; 300 unless given")
      ->option_text("NUMBER")
      ->check(CLI::Range(0L, kMostDots));
  add_choice(*command, "--align", request.alignment, kAlignments,
             "left unless given; right leaves a bar code where it is");
  add_choice(*command, "--text", request.text_position, kTextPositions,
             "Where the characters stand; below unless given");
  command
      ->add_option("--module", request.module_dots,
                   "PDF417 and QR Code: dots of a module, 1 to 16; 4 unless given")
      ->option_text("DOTS")
      ->check(CLI::Range(1, 16));
  command
      ->add_option("--data-columns", request.data_columns,
                   "PDF417: columns of data, 0 (as many as suit) to 30; 0 unless given")
      ->option_text("NUMBER")
      ->check(CLI::Range(0, 30));
  add_choice(*command, "--level", request.error_correction, kLevels,
             "QR Code: error correction; M unless given");
}

std::optional<Result> prepare(SymbolRequest& request) {
  if (!request.escapes) return std::nullopt;
  const auto plain = unescaped(request.data);
  if (!plain) return bad_escape();
  request.data = *plain;
  return std::nullopt;
}

Result check_symbol(const SymbolRequest& request, const Options& options) {
  // A linear symbol's data end at a NUL.
  if (!is_2d(request.symbology) && request.data.find('\0') != std::string::npos) {
    return not_printable("a bar code's data cannot have a NUL");
  }
  return is_2d(request.symbology) ? check_2d(request) : check_linear(request, options);
}

}  // namespace cli
