// Loading pictures, in pixels per second for each depth. Beside each stands its floor, measured in
// the same run: reading the same file into a fresh buffer and summing it up. `of_floor` is how much
// of the floor's speed is reached. Then the inner loops alone, on a row in the cache: plain, and
// with vector instructions.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "image/bit_kernels.h"
#include "image/bmp_raster.h"
#include "pictures/bmp.h"

namespace {

constexpr int kLarge = 4096;  ///< dots of a side
constexpr int kLogoWidth = 384, kLogoHeight = 240;

struct Picture {
  Picture(int width, int height, int bits) : pixels(width * height) {
    std::mt19937 random(1);
    const std::string content =
        pictures::random_bmp(width, height, bits, pictures::kWhiteFirst, random).file();
    size = content.size();
    file = std::make_unique<pictures::TemporaryFile>(content);
  }

  int pixels;
  std::size_t size;
  std::unique_ptr<pictures::TemporaryFile> file;
  double floor_seconds = 0;  ///< for one run
};

/// One picture of each size and depth, made when it is first asked for.
Picture& picture(const benchmark::State& state) {
  static std::map<std::vector<std::int64_t>, Picture> made;
  const auto width = static_cast<int>(state.range(1)), height = static_cast<int>(state.range(2));
  // Keeps every large buffer fresh: memory that is freed goes back to the system.
  mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  return made
      .try_emplace({state.range(0), width, height}, width, height, static_cast<int>(state.range(0)))
      .first->second;
}

unsigned long read_and_sum(const Picture& picture) {
  std::FILE* file = std::fopen(picture.file->path(), "rb");
  void* buffer = std::malloc(picture.size);
  if (file == nullptr || buffer == nullptr) std::abort();
  if (std::fread(buffer, picture.size, 1, file) != 1) std::abort();
  std::fclose(file);
  unsigned long sum = 0;
  for (std::size_t i = 0; i + sizeof sum <= picture.size; i += sizeof sum) {
    unsigned long word;
    std::memcpy(&word, static_cast<const char*>(buffer) + i, sizeof word);
    sum += word;
  }
  std::free(buffer);
  return sum;
}

/// Runs the loop of a benchmark; the seconds for one run.
template <typename Run>
double timed(benchmark::State& state, const Picture& picture, Run run) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  for ([[maybe_unused]] auto iteration : state) run();
  const std::chrono::duration<double> taken = Clock::now() - start;
  const auto runs = static_cast<double>(state.iterations());
  state.counters["pixels"] = benchmark::Counter(picture.pixels * runs, benchmark::Counter::kIsRate);
  return taken.count() / runs;
}

void read_floor(benchmark::State& state) {
  Picture& read = picture(state);
  read.floor_seconds = timed(state, read, [&] { benchmark::DoNotOptimize(read_and_sum(read)); });
}

void load_picture(benchmark::State& state) {
  const Picture& loaded = picture(state);
  const double seconds =
      timed(state, loaded, [&] { benchmark::DoNotOptimize(LoadBmpRaster(loaded.file->path())); });
  if (loaded.floor_seconds > 0) state.counters["of_floor"] = loaded.floor_seconds / seconds;
}

void pack_row(benchmark::State& state, const BitKernels* kernels) {
  if (kernels == nullptr) return state.SkipWithError("the processor has none of them");
  const std::vector<std::uint8_t> pixels(std::size_t{4} * kLarge, 0x80);
  std::vector<std::uint8_t> bits(kLarge / 8);
  PackRow* pack = kernels->packer(static_cast<int>(state.range(0)));
  for ([[maybe_unused]] auto iteration : state) {
    pack(pixels.data(), kLarge, bits.data());
    benchmark::ClobberMemory();
  }
  state.counters["pixels"] =
      benchmark::Counter(kLarge, benchmark::Counter::kIsIterationInvariantRate);
}

void offer(const char* name, void (&run)(benchmark::State&), int width, int height, int bits) {
  benchmark::RegisterBenchmark(name, run)
      ->ArgNames({"bits", "width", "height"})
      ->Args({bits, width, height})
      ->UseRealTime()
      ->Unit(benchmark::kMicrosecond);
}

const bool kOffered = [] {
  for (const auto& [width, height] : {std::pair{kLarge, kLarge}, {kLogoWidth, kLogoHeight}}) {
    for (const int bits : pictures::kDepths) {
      offer("floor", read_floor, width, height, bits);
      offer("load", load_picture, width, height, bits);
    }
  }
  for (const int bits : pictures::kDepths) {
    if (bits == 1) continue;
    benchmark::RegisterBenchmark("plain", pack_row, &kPlainKernels)->ArgName("bits")->Arg(bits);
    benchmark::RegisterBenchmark("vector", pack_row, vector_kernels())->ArgName("bits")->Arg(bits);
  }
  return true;
}();

}  // namespace
