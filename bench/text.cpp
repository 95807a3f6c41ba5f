// Text, in bytes per second. Beside it stands its floor, measured in the same run: a search for
// each line's end in the same text and a copy of the line. `of_floor` is how much of the floor's
// speed is reached.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "silent_line.h"
#include "tzvio.h"

namespace {

/// A receipt of some 3 KB.
std::string receipt() {
  std::string text = "\x1b|cA\x1b|4CCORNER SHOP\x1b|N\n\x1b|cAMain Street 1\n\n";
  for (int i = 0; i < 60; ++i) {
    text += "  2 Coffee, ground, 500 g            11.80\n";
    if (i % 10 == 9) text += "    \x1b|bCyou save 1.20\x1b|N\n";
  }
  return text + "\x1b|rA\x1b|2CTOTAL   32.60\x1b|N\n\x1b|cASee you soon\n\x1b|fP";
}

std::string megabyte() {
  std::string text;
  while (text.size() < 1000000) text += "  2 Coffee, ground, 500 g            11.80\n";
  return text;
}

struct Sample {
  std::string text;
  double floor_seconds = 0;  ///< for one run
};

Sample samples[] = {{receipt()}, {megabyte()}};

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point started) {
  return std::chrono::duration<double>(Clock::now() - started).count();
}

void text_floor(benchmark::State& state) {
  Sample& sample = samples[state.range(0)];
  std::vector<char> copy(sample.text.size());
  const auto started = Clock::now();
  for (auto _ : state) {
    const char* line = sample.text.data();
    const char* const end = line + sample.text.size();
    char* to = copy.data();
    while (line < end) {
      const void* const found = std::memchr(line, '\n', static_cast<std::size_t>(end - line));
      const char* const next = found != nullptr ? static_cast<const char*>(found) + 1 : end;
      std::memcpy(to, line, static_cast<std::size_t>(next - line));
      to += next - line;
      line = next;
    }
    benchmark::ClobberMemory();
  }
  sample.floor_seconds = seconds_since(started) / static_cast<double>(state.iterations());
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(sample.text.size()));
}

void print(benchmark::State& state) {
  const Sample& sample = samples[state.range(0)];
  const auto started = Clock::now();
  for (auto _ : state) {
    PrintNormalSize(kSilentPort, sample.text.data(), static_cast<long>(sample.text.size()));
  }
  const double seconds = seconds_since(started) / static_cast<double>(state.iterations());
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(sample.text.size()));
  state.counters["of_floor"] = sample.floor_seconds / seconds;
}

void print_line_by_line(benchmark::State& state) {
  for (auto _ : state) {
    for (int line = 0; line < 60; ++line) {
      PrintNormal(kSilentPort, "  2 Coffee, ground, 500 g            11.80\n");
    }
  }
  state.SetBytesProcessed(state.iterations() * 60 * 43);
}

BENCHMARK(text_floor)->Name("floor/receipt")->Arg(0);
BENCHMARK(print)->Name("receipt_in_one_call")->Arg(0);
BENCHMARK(print_line_by_line)->Name("receipt_line_by_line");
BENCHMARK(text_floor)->Name("floor/megabyte")->Arg(1);
BENCHMARK(print)->Name("megabyte")->Arg(1);

}  // namespace

int main(int argc, char** argv) {
  if (OpenPort(kSilentPort, kSilentSettings) != 0) return 1;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
