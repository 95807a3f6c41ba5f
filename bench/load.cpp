// Loading the library, beside its floor: loading an empty one, measured in the same run. And the
// memory that the process takes more when the library is loaded and a receipt printed.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "silent_line.h"
#include "tzvio.h"

namespace {

using Clock = std::chrono::steady_clock;

double floor_seconds = 0;

double load_and_unload(benchmark::State& state, const char* path) {
  const auto started = Clock::now();
  for (auto _ : state) {
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) std::abort();
    dlclose(library);
  }
  return std::chrono::duration<double>(Clock::now() - started).count() /
         static_cast<double>(state.iterations());
}

void load_floor(benchmark::State& state) {
  floor_seconds = load_and_unload(state, TZVIO_EMPTY_LIBRARY);
}

void load(benchmark::State& state) {
  state.counters["floors"] = load_and_unload(state, TZVIO_LIBRARY) / floor_seconds;
}

/// Kilobytes that the process has in memory.
long resident_kb() {
  long pages = 0, resident = 0;
  std::FILE* const statm = std::fopen("/proc/self/statm", "r");
  if (statm == nullptr || std::fscanf(statm, "%ld %ld", &pages, &resident) != 2) std::abort();
  std::fclose(statm);
  return resident * getpagesize() / 1024;
}

long kilobytes_of_a_receipt() {
  const long before = resident_kb();
  void* const library = dlopen(TZVIO_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) std::abort();
  const auto open = reinterpret_cast<decltype(&OpenPort)>(dlsym(library, "OpenPort"));
  const auto transaction =
      reinterpret_cast<decltype(&TransactionPrint)>(dlsym(library, "TransactionPrint"));
  const auto print = reinterpret_cast<decltype(&PrintNormal)>(dlsym(library, "PrintNormal"));
  open(kSilentPort, kSilentSettings);
  transaction(kSilentPort, TZV_TRANSACTION_BEGIN);
  for (int line = 0; line < 60; ++line) {
    print(kSilentPort, "  2 Coffee, ground, 500 g            11.80\n");
  }
  transaction(kSilentPort, TZV_TRANSACTION_END);
  return resident_kb() - before;
}

void receipt_memory(benchmark::State& state) {
  for (auto _ : state) state.counters["kilobytes"] = static_cast<double>(kilobytes_of_a_receipt());
}

BENCHMARK(load_floor)->Name("floor/load_empty");
BENCHMARK(load)->Name("load");
// The last, because the library stays loaded.
BENCHMARK(receipt_memory)->Name("memory_of_a_receipt")->Iterations(1);

}  // namespace
