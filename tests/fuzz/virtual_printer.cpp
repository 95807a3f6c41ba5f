// The virtual printer: any bytes, in any pieces, under any conditions.
#include <sstream>
#include <utility>
#include <vector>

#include "check.h"
#include "command_parser.h"
#include "decoding.h"
#include "input.h"
#include "printer.h"

namespace fuzz {
namespace {

using virtual_printer::CommandParser;
using virtual_printer::Condition;
using virtual_printer::Decoded;
using virtual_printer::Expectation;
using virtual_printer::PaperEnd;
using virtual_printer::Piece;

/// A listener that wants nothing.
struct Nobody : virtual_printer::PrinterListener {
  void report_decoded(const Decoded&, Piece) override {}
  void answer(std::string_view) override {}
  void beep() override {}
  void report_unknown(const virtual_printer::UnknownBytes&) override {}
  void report_refused(const virtual_printer::RefusedFrame&) override {}
  void report_refused(const virtual_printer::Refused&) override {}
  void report_forgotten(std::size_t) override {}
  void report_cut_off(std::size_t) override {}
  void report_condition(Condition, bool) override {}
  void report_firmware(const std::string&) override {}
  void remember(const virtual_printer::Memory&) override {}
  void deliver(const virtual_printer::Receipt&, PaperEnd) override {}
};

struct Parsed {
  std::vector<std::pair<std::size_t, Decoded>> commands;
  std::size_t end = 0;

  bool operator==(const Parsed&) const = default;
};

void take_all(CommandParser& parser, Expectation expectation, Parsed& parsed) {
  while (const auto decoded = parser.next(expectation)) {
    check(parser.piece().offset == parsed.end, "one command behind the other");
    parsed.end += parser.piece().bytes.size();
    parsed.commands.emplace_back(parser.piece().offset, *decoded);
  }
}

Parsed parse(const std::vector<std::string>& pieces) {
  CommandParser parser;
  Parsed parsed;
  for (const std::string& piece : pieces) {
    parser.feed(piece);
    take_all(parser, Expectation::kMore, parsed);
  }
  take_all(parser, Expectation::kNothing, parsed);
  check(parsed.end + parser.unfinished().bytes.size() == parser.end(), "no byte is lost");
  return parsed;
}

void decode(const std::string& bytes) {
  std::istringstream capture(bytes);
  std::size_t end = 0;
  virtual_printer::decode_capture(capture, [&](const virtual_printer::TranscriptEntry& entry) {
    check(entry.offset + entry.length <= bytes.size(), "an entry's bytes are the capture's");
    check(!virtual_printer::line_of(entry).empty() && !virtual_printer::json_of(entry).empty(),
          "an entry has words");
    end = entry.offset + entry.length;
  });
  check(end <= bytes.size(), "the last one ends with the capture");
}

void print(const std::vector<std::string>& pieces, Input& conditions) {
  constexpr Condition kConditions[] = {Condition::kCoverOpen, Condition::kPaperOut,
                                       Condition::kPowerOff};
  Nobody nobody;
  virtual_printer::Printer printer(nobody);
  for (const std::string& piece : pieces) {
    printer.receive(piece);
    const uint8_t what = conditions.byte();
    if (what == 1) printer.line_is_silent();
    if (what == 2) printer.connection_has_ended();
    if (what >= 8 && what < 16) printer.set(kConditions[what % std::size(kConditions)], what > 11);
  }
  printer.finish();
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace fuzz;
  Input input(data, size);
  const std::string events = input.piece();
  const std::size_t length = std::size_t{1} + input.byte();
  const std::string bytes(input.rest());
  std::vector<std::string> pieces;
  for (std::size_t at = 0; at < bytes.size(); at += length) {
    pieces.push_back(bytes.substr(at, length));
  }

  check(parse(pieces) == parse({bytes}), "the same commands in any pieces");
  decode(bytes);
  const std::vector<uint8_t> changes(events.begin(), events.end());
  Input conditions(changes.data(), changes.size());
  print(pieces, conditions);
  return 0;
}
