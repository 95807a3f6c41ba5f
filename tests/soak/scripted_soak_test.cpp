// Numbered receipts over every link of the scripted kernel while everything goes wrong that can.
// What the calls returned is compared with what the printer has on paper.
//
// SOAK_RECEIPTS, SEED and LINK in the environment choose how many, which faults and which link.
#include <gtest/gtest.h>

#include <sstream>

#include "../../tools/tzvio/progress_bar.h"
#include "soak/figures.h"
#include "soak/till.h"
#include "tzvio.h"

namespace soak {
namespace {

constexpr std::size_t kPoints = 5;  // at which the process is measured
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kGrowth = SIZE_MAX / 2;  // the sanitizers keep what was freed
#else
constexpr std::size_t kGrowth = 1024;  // KiB that the run's own accounts may take
#endif

struct Line {
  std::string name;
  const testkit::Link& link;
  bool shows_power = true;
};

std::ostream& operator<<(std::ostream& out, const Line& line) {
  return out << line.name;
}

/// Bytes of the longest job: beside its text an initialise, a reset, the line spacing, the cut and
/// the request.
std::size_t longest_job() {
  std::size_t bytes = 2 + 15 + 3 + 7 + 11;
  for (const std::string& text : lines_of(2)) bytes += text.size() + 1;
  return bytes;
}

std::vector<Line> lines() {
  std::vector<Line> all;
  all.reserve(testkit::kLinks.size() + 1);
  for (const testkit::Link& link : testkit::kLinks) all.push_back({link.name, link});
  all.push_back({"serial_without_dsr", testkit::kLinks.front(), false});
  return all;
}

class ScriptedSoak : public testkit::ScriptedTest, public testing::WithParamInterface<Line> {
 protected:
  void SetUp() override {
    if (!is_chosen(line.name)) GTEST_SKIP() << "LINK leaves it out";
    kernel.log_calls(false);
    ASSERT_TRUE(till.open());
  }

  void run();
  void measure_after(std::size_t printed) { figures.add(measure(printed)); }
  std::string summary() const;

  const Line& line = GetParam();
  const std::size_t receipts = asked("SOAK_RECEIPTS", 1500);
  const std::size_t seed = asked("SEED", 1);
  Paper paper{receipts * 4 + 1000};
  ModelPrinter printer{kernel, line.link.port, line.shows_power, paper, seed};
  Till till{kernel, line.link, printer, paper, line.shows_power};
  FaultPlan plan{seed, longest_job()};
  std::mt19937_64 random{seed + 1};
  Figures figures;
};

INSTANTIATE_TEST_SUITE_P(over, ScriptedSoak, testing::ValuesIn(lines()),
                         [](const auto& tested) { return tested.param.name; });

void ScriptedSoak::run() {
  cli::ProgressBar bar(receipts, false);
  const std::size_t first = receipts / 10, step = (receipts + kPoints - 1) / kPoints;
  for (std::size_t printed = 0; printed < receipts; ++printed) {
    // The first tenth fills what is filled once.
    if (printed >= first && (printed - first) % step == 0) measure_after(printed);
    till.print_receipt(plan.next(), random() % 4 != 0);
    if (random() % 200 == 0) {
      till.close();
      ASSERT_TRUE(till.open());
    }
    bar.show(printed + 1);
  }
  kernel.run_for(60000);
  till.check_all_paper();
  measure_after(receipts);
}

std::string ScriptedSoak::summary() const {
  const Tally& tally = till.tally();
  std::ostringstream text;
  text << "\n"
       << line.name << ", scripted, seed " << seed << ": " << counts_of(tally)
       << "  every kind of fault at every byte: " << (receipts >= plan.sweep() ? "yes" : "no")
       << '\n'
       << incidents_of(tally) << figures.table();
  return text.str();
}

TEST_P(ScriptedSoak, tells_the_truth_and_grows_nothing) {
  run();
  report(summary());
  EXPECT_EQ(violations_of(till.tally()), "");
  EXPECT_EQ(figures.growth(kGrowth), "");
  EXPECT_EQ(kernel.open_descriptors(), 1U);
  EXPECT_EQ(kernel.threads(), 1U);
}

}  // namespace
}  // namespace soak
