#include "soak/receipts.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace soak {

namespace {

constexpr std::size_t kDigits = 7;

std::string in_digits(std::uint32_t number) {
  std::string text(16, '\0');
  text.resize(static_cast<std::size_t>(
      std::snprintf(text.data(), text.size(), "%0*u", static_cast<int>(kDigits), number)));
  return text;
}

}  // namespace

std::vector<std::string> lines_of(std::uint32_t number) {
  const std::string name = in_digits(number);
  std::vector<std::string> lines{"<" + name};
  for (std::uint32_t item = 0; item < number % 3; ++item) {
    lines.push_back(name + " item " + std::to_string(item));
  }
  lines.push_back(name + ">");
  return lines;
}

void Paper::line(std::string_view text) {
  if (text.ends_with("LINK")) ++reconnections_;
  // What stands before a beginning is what an interrupted job left on the open line.
  const std::size_t begin = text.rfind('<');
  if (begin != std::string_view::npos && text.size() == begin + 1 + kDigits) {
    const auto number = std::strtoul(std::string(text.substr(begin + 1)).c_str(), nullptr, 10);
    tear();
    if (number >= accounts_.size()) return;
    number_ = static_cast<std::uint32_t>(number);
    accounts_[number_].reconnections += std::exchange(reconnections_, std::uint16_t{0});
    expected_ = lines_of(number_);
    seen_ = 1;
    return;
  }
  if (seen_ == 0 || text.empty()) return;
  if (seen_ < expected_.size() && text == expected_[seen_]) {
    ++seen_;
  } else {
    tear();
  }
}

void Paper::cut() {
  if (seen_ > 0 && seen_ == expected_.size()) {
    ++accounts_[number_].whole;
    seen_ = 0;
  }
  tear();
}

void Paper::tear() {
  if (std::exchange(seen_, 0) > 0) ++accounts_[number_].torn;
}

}  // namespace soak
