// How far something is, on a terminal.
#pragma once

#include <cstddef>

namespace cli {

class ProgressBar {
 public:
  // Draws on standard error if that is a terminal, and never elsewhere.
  ProgressBar(std::size_t total, bool quiet);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void show(std::size_t done);

 private:
  std::size_t total_;
  bool draws_;
  int shown_ = -1;  // percent
};

}  // namespace cli
