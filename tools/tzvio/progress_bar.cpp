#include "progress_bar.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>

namespace cli {

ProgressBar::ProgressBar(std::size_t total, bool quiet)
    : total_(total), draws_(!quiet && isatty(STDERR_FILENO) == 1) {}

ProgressBar::~ProgressBar() {
  if (draws_) std::fputc('\n', stderr);
}

void ProgressBar::show(std::size_t done) {
  constexpr int kHundred = 100;
  constexpr int kPercentPerMark = 2;
  const int percent =
      static_cast<int>(std::min(done, total_) * kHundred / std::max<std::size_t>(total_, 1));
  if (!draws_ || percent == shown_) return;
  shown_ = percent;
  std::string bar(kHundred / kPercentPerMark, ' ');
  std::fill_n(bar.begin(), percent / kPercentPerMark, '#');
  std::fprintf(stderr, "\r[%s] %3d %%", bar.c_str(), percent);
  std::fflush(stderr);
}

}  // namespace cli
