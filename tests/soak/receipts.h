// Numbered receipts, and what of them is on paper.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace soak {

/// What is printed under a number. Receipts differ in length and in every line, so that a piece of
/// one is never taken for another's.
std::vector<std::string> lines_of(std::uint32_t number);

/// Looks at the paper as it comes out and counts, of each number, what is whole and what is torn.
class Paper {
 public:
  struct Account {
    std::uint16_t whole = 0;
    std::uint16_t torn = 0;
    /// Connections made anew before it: each prints a line of its own.
    std::uint16_t reconnections = 0;
  };

  /// Keeps the accounts of that many numbers, from 0 on.
  explicit Paper(std::size_t numbers) : accounts_(numbers) {}

  void line(std::string_view text);
  void cut();

  const Account& of(std::uint32_t number) const { return accounts_.at(number); }

 private:
  void tear();

  std::vector<Account> accounts_;
  std::vector<std::string> expected_;  // of the receipt that is coming out
  std::size_t seen_ = 0;               // lines of it; 0: none is
  std::uint32_t number_ = 0;
  std::uint16_t reconnections_ = 0;  // since a receipt began
};

}  // namespace soak
