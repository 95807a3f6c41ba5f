// Numbered receipts over every link in real time: a till's process prints them through the library
// on the virtual printer, while the printer fails in every way that it can, and is killed. What the
// calls returned is compared with the paper.
//
// SOAK_PRINTER_RECEIPTS, SEED and LINK in the environment choose how many on each link, which
// faults and which link.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <thread>

#include "../../tools/tzvio/progress_bar.h"
#include "soak/program_soak.h"
#include "support/temporary_folder.h"

namespace soak {
namespace {

constexpr std::size_t kGrowth = 1024;  // KiB that a till may grow by between two points
constexpr std::size_t kReceipts = 8;   // of a short run, on each link

std::vector<Line> lines() {
  const std::string serial_settings = "9600,none,8,1,none";
  std::vector<Line> all{{"serial", "/dev/ttyS", serial_settings},
                        {"parallel", "/dev/parport", ""},
                        {"usb", "/dev/usb/lp", ""},
                        {"network", "", ""}};
  // A name that any program finds takes the right to make one.
  if (access("/dev", W_OK) == 0) {
    all.push_back({"serial_without_dsr", "/dev/ttyS-terminal", serial_settings, true});
  } else {
    std::puts("serial_without_dsr is left out: /dev may not be written here");
  }
  return all;
}

std::vector<std::unique_ptr<ProgramSoak>> chosen(const std::filesystem::path& folder) {
  std::vector<std::unique_ptr<ProgramSoak>> soaks;
  for (const Line& line : lines()) {
    if (!is_chosen(line.name)) continue;
    soaks.push_back(std::make_unique<ProgramSoak>(
        line, folder, asked("SOAK_PRINTER_RECEIPTS", kReceipts), asked("SEED", 1) + soaks.size()));
  }
  return soaks;
}

/// All at the same time: a receipt waits more than it works.
void run(const std::vector<std::unique_ptr<ProgramSoak>>& soaks) {
  std::atomic<std::size_t> running = soaks.size();
  std::vector<std::thread> threads;
  threads.reserve(soaks.size());
  for (const auto& soak : soaks) {
    threads.emplace_back([&soak, &running] {
      soak->run();
      --running;
    });
  }
  cli::ProgressBar bar(asked("SOAK_PRINTER_RECEIPTS", kReceipts) * soaks.size(), false);
  while (running > 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    std::size_t printed = 0;
    for (const auto& soak : soaks) printed += soak->printed();
    bar.show(printed);
  }
  for (std::thread& thread : threads) thread.join();
}

TEST(ProgramSoak, tells_the_truth_and_grows_nothing) {
  if (!std::filesystem::exists(VIRTUAL_PRINTER_PROGRAM)) GTEST_SKIP() << "there is no printer";
  const testkit::TemporaryFolder folder;
  setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);  // the sockets of the printers' requests
  const auto soaks = chosen(folder.path());
  ASSERT_FALSE(soaks.empty()) << "no such link";
  run(soaks);
  for (const auto& soak : soaks) {
    report(soak->summary());
    EXPECT_EQ(violations_of(soak->tally()), "");
    ASSERT_FALSE(soak->figures().points().empty()) << soak->line().name;
    EXPECT_EQ(soak->figures().growth(kGrowth), "") << soak->line().name;
  }
}

}  // namespace
}  // namespace soak
