// Every system call on every path made to fail once: each operation is run and its calls counted,
// then run again with the first failing, the second, and so on, in each of several ways. Whatever
// fails, the operation gives one of its results, no descriptor is lost or left behind, and the next
// call works.
#include <gmock/gmock.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <map>

#include "support/all_operations.h"
#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

/// A way for a call to go wrong: an error, or so many bytes moved and no more.
struct Failure {
  const char* name;
  int error;
  std::size_t at_most;
};

constexpr Failure kFailures[] = {{"interrupted", EINTR, 0},  {"io_error", EIO, 0},
                                 {"would_block", EAGAIN, 0}, {"no_memory", ENOMEM, 0},
                                 {"gone", ENODEV, 0},        {"takes_nothing", 0, 0},
                                 {"takes_one", 0, 1}};

class FailingCalls : public testing::TestWithParam<std::tuple<Link, Operation>> {
 public:
  static void TearDownTestSuite() {
    for (const auto& [name, count] : failed_)
      std::printf("%s: %d calls failed\n", name.c_str(), count);
  }

 protected:
  ~FailingCalls() override {
    reset_library();
    kernel.reset(false);
  }

  /// A port that is open, unless it is to be opened, with a printer that answers everything.
  void prepare() {
    reset_library();
    kernel.reset(true);
    Device& printer = kernel.plug(port);
    printer.answer_everything();
    printer.answer("\x1d#\x02_1n", "0");
    if (operation.name != "OpenPort") {
      ASSERT_EQ(OpenPort(port, link.settings.c_str()), 0);
    }
    kernel.forget_calls();
  }

  /// Runs the operation with the nth call failing; false when it makes fewer calls.
  bool run(const Failure& failure, int nth) {
    prepare();
    const int before = kernel.fallible_calls();
    if (failure.error != 0) {
      kernel.fail_any(failure.error, nth);
    } else {
      kernel.shorten_any(failure.at_most, nth);
    }
    result =
        operation.name == "OpenPort" ? OpenPort(port, link.settings.c_str()) : operation.call(port);
    // Monitors that were started make calls of their own.
    ReleaseDevice(port);
    kernel.run_for(3000);
    return kernel.fallible_calls() - before >= nth;
  }

  void expect_order(const std::string& what) {
    // Counts and status codes are 0 and above; a network write adds up what its sends gave.
    EXPECT_GE(result, -3) << what;
    const bool open = GetError(port) != -1;
    EXPECT_EQ(kernel.open_descriptors(), open ? 1U : 0U) << what;
    EXPECT_LE(kernel.threads(), 1U) << what;
    EXPECT_EQ(*link.state.bStopThread, 0) << what;
    *link.state.bOffline = 0;
    *link.state.TransactionPrint = 0;
    if (!open) {
      EXPECT_EQ(OpenPort(port, link.settings.c_str()), 0) << what;
    }
    EXPECT_EQ(WritePort(port, "y", 1), 1) << what;
  }

  static inline std::map<std::string, int> failed_;  // by link
  const Link& link = std::get<Link>(GetParam());
  const Operation& operation = std::get<Operation>(GetParam());
  const char* port = link.port.c_str();
  Kernel& kernel = Kernel::instance();
  long result = 0;
};

INSTANTIATE_TEST_SUITE_P(of, FailingCalls,
                         testing::Combine(testing::ValuesIn(kLinks),
                                          testing::ValuesIn(kAllOperations)),
                         [](const auto& tested) {
                           return std::get<Link>(tested.param).name + "_" +
                                  std::get<Operation>(tested.param).name;
                         });

TEST_P(FailingCalls, leave_everything_in_order) {
  constexpr Failure kNone{"", 0, SIZE_MAX};
  run(kNone, 1);
  const long undisturbed = result;
  for (const Failure& failure : kFailures) {
    for (int nth = 1; run(failure, nth); ++nth) {
      const std::string what = "call " + std::to_string(nth) + " " + failure.name;
      expect_order(what);
      ++failed_[link.name];
      // A signal of the till's own is no failure of anything.
      if (failure.error == EINTR) {
        EXPECT_EQ(result, undisturbed) << what;
      }
      if (HasFailure()) return;
    }
  }
}

}  // namespace
}  // namespace testkit
