#include "printer.h"

#include <variant>

namespace virtual_printer {
namespace {

// Paper that nobody cuts is delivered in pieces of about four metres, the longest that a picture
// can hold, so that neither memory nor the picture grows without end.
constexpr int kLongestPiece = 30000 * kHalfDotsPerDot;

bool is_cut(CommandKind kind) {
  return kind == CommandKind::kPartialCut || kind == CommandKind::kFullCut;
}

}  // namespace

void Printer::receive(std::string_view bytes) {
  handle(parser_.feed(bytes));
}

void Printer::finish() {
  handle(parser_.finish());
  typesetter_.print_open_line();
  if (typesetter_.has_ink()) deliver(PaperEnd::kUncut);
}

void Printer::handle(const std::vector<Decoded>& decoded) {
  for (const Decoded& item : decoded) {
    if (const auto* unknown = std::get_if<UnknownBytes>(&item)) {
      listener_.report_unknown(*unknown);
    } else {
      carry_out(std::get<Command>(item));
    }
  }
}

void Printer::carry_out(const Command& command) {
  if (const auto reply = reply_to(command, condition_)) return listener_.answer(*reply);
  if (command.kind == CommandKind::kInitialize && typesetter_.open_characters() > 0) {
    listener_.report_forgotten(typesetter_.open_characters());
  }
  typesetter_.execute(command);
  if (is_cut(command.kind)) {
    if (typesetter_.has_fed()) deliver(PaperEnd::kCut);
  } else if (typesetter_.length() > kLongestPiece) {
    deliver(PaperEnd::kUncut);
  }
}

void Printer::deliver(PaperEnd end) {
  listener_.deliver(typesetter_.tear_off(), end);
}

}  // namespace virtual_printer
