// Symbols and transactions. Beginning a transaction is measured beside its floor: writing the whole
// of the page buffer with zeros, measured in the same run.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <memory>

#include "silent_line.h"
#include "tzvio_state.h"

namespace {

using Clock = std::chrono::steady_clock;

double floor_seconds = 0;

void memset_floor(benchmark::State& state) {
  const auto buffer = std::make_unique<char[]>(TZV_PAGE_BUFFER_SIZE);
  const auto started = Clock::now();
  for (auto _ : state) {
    std::memset(buffer.get(), 0, TZV_PAGE_BUFFER_SIZE);
    benchmark::DoNotOptimize(buffer.get());
    benchmark::ClobberMemory();
  }
  floor_seconds = std::chrono::duration<double>(Clock::now() - started).count() /
                  static_cast<double>(state.iterations());
}

void begin(benchmark::State& state) {
  const auto started = Clock::now();
  for (auto _ : state) TransactionPrint(kSilentPort, TZV_TRANSACTION_BEGIN);
  const double seconds = std::chrono::duration<double>(Clock::now() - started).count() /
                         static_cast<double>(state.iterations());
  s_TransactionPrint = 0;
  state.counters["floors"] = seconds / floor_seconds;
}

/// A receipt of 3 KB between begin and end. Without a monitor, so nothing is waited for.
void begin_print_end(benchmark::State& state) {
  for (auto _ : state) {
    TransactionPrint(kSilentPort, TZV_TRANSACTION_BEGIN);
    for (int line = 0; line < 60; ++line) {
      PrintNormal(kSilentPort, "  2 Coffee, ground, 500 g            11.80\n");
    }
    TransactionPrint(kSilentPort, TZV_TRANSACTION_END);
  }
}

void linear(benchmark::State& state) {
  for (auto _ : state) {
    PrintBarCode(kSilentPort, "4006381333931", TZV_BARCODE_EAN13, 80, 400, TZV_ALIGN_CENTER,
                 TZV_TEXT_BELOW);
  }
}

void qr_code(benchmark::State& state) {
  for (auto _ : state) {
    Print2DBarCode(kSilentPort, "https://example.com/receipt/4711", 0, TZV_BARCODE_QRCODE, 6, 1,
                   TZV_ALIGN_CENTER);
  }
}

BENCHMARK(memset_floor)->Name("floor/memset");
BENCHMARK(begin)->Name("transaction_begin");
BENCHMARK(begin_print_end)->Name("transaction_of_a_receipt");
BENCHMARK(linear)->Name("linear_symbol");
BENCHMARK(qr_code)->Name("qr_code");

}  // namespace

int main(int argc, char** argv) {
  if (OpenPort(kSilentPort, kSilentSettings) != 0) return 1;
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
