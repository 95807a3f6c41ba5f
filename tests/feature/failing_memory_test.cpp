// Every call for memory and every call to a file made to fail once: each operation is run with the
// first failing, then the second, until it makes fewer. It gives its result for that, sends
// nothing or what it had sent before, holds nothing back, and the next call works.
#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>

#include "failing_memory.h"
#include "pictures/bmp.h"
#include "support/links.h"
#include "support/temporary_folder.h"
#include "tzvio.h"

namespace testkit {
namespace {

/// An operation that needs memory or files, and the result when it does not get them.
struct Hungry {
  std::string name;
  std::function<long(const char*)> call;
  long when_short;
};

const std::string kLongText(40000, 'x');

const std::vector<Hungry> kHungry = {
    {"PrintNormal", [](const char* port) { return PrintNormal(port, kLongText.c_str()); }, -2},
    {"PrintNormalSize",
     [](const char* port) {
       return PrintNormalSize(port, kLongText.data(), static_cast<long>(kLongText.size()));
     },
     -2},
    {"PrintBitmap", [](const char* port) { return PrintBitmap(port, "hungry.bmp", 0); }, -1},
    {"SaveNVBitmap",
     [](const char* port) { return SaveNVBitmap(port, "hungry.bmp|hungry.bmp|", 0); }, -1},
    {"UpdateFW", [](const char* port) { return UpdateFW(port, "hungry.bmp", 1); }, -1},
};

void PrintTo(const Hungry& operation, std::ostream* out) {
  *out << operation.name;
}

class FailingMemory : public ScriptedTest,
                      public testing::WithParamInterface<std::tuple<Link, Hungry>> {
 protected:
  FailingMemory() {
    std::filesystem::current_path(folder.path());
    const pictures::Bmp picture{.width = 64,
                                .height = 64,
                                .palette = std::string(pictures::kWhiteFirst),
                                .pixels = std::string(512, '\xaa')};
    std::ofstream("hungry.bmp", std::ios::binary) << picture.file();
    printer.answer_everything();
    EXPECT_EQ(OpenPort(port, link.settings.c_str()), 0);
  }

  static void TearDownTestSuite() {
    for (const auto& [name, count] : failed_)
      std::printf("%s: %d calls failed\n", name.c_str(), count);
  }

  /// Runs it with the nth call failing; false when it makes fewer.
  bool run(int nth) {
    printer.output.clear();
    testing::internal::CaptureStdout();
    fail_memory(nth);
    result = operation.call(port);
    const bool failed = memory_calls() == nth;
    message = testing::internal::GetCapturedStdout();
    return failed;
  }

  static inline std::map<std::string, int> failed_;  // by link
  TemporaryFolder folder;
  const Link& link = std::get<Link>(GetParam());
  const Hungry& operation = std::get<Hungry>(GetParam());
  const char* port = link.port.c_str();
  Device& printer = kernel.plug(port);
  long result = 0;
  std::string message;
};

INSTANTIATE_TEST_SUITE_P(of, FailingMemory,
                         testing::Combine(testing::ValuesIn(kLinks), testing::ValuesIn(kHungry)),
                         [](const auto& tested) {
                           return std::get<Link>(tested.param).name + "_" +
                                  std::get<Hungry>(tested.param).name;
                         });

TEST_P(FailingMemory, is_told_and_holds_nothing_back) {
  ASSERT_FALSE(run(1000));
  ASSERT_EQ(result, 0);
  const std::string whole = printer.output;
  ASSERT_FALSE(whole.empty());

  int nth = 1;
  for (; run(nth); ++nth) {
    const std::string call = failed_call();
    const std::string what = call + ", call " + std::to_string(nth) + ": " + message;
    // A firmware image that is not there is a success, and what cannot be read of it is zero.
    const bool of_the_file = operation.name == "UpdateFW" && !call.ends_with("alloc");
    EXPECT_EQ(result, of_the_file ? 0 : operation.when_short) << what;
    EXPECT_TRUE(of_the_file || whole.starts_with(printer.output)) << what;
    EXPECT_EQ(kernel.open_descriptors(), 1U) << what;
    ++failed_[link.name];
    EXPECT_EQ(WritePort(port, "y", 1), 1) << what;
    if (HasFailure()) return;
  }
  EXPECT_GT(nth, 1) << "it needs no memory";
  EXPECT_EQ(result, 0);
  EXPECT_EQ(printer.output, whole);
}

class ClaimWithoutMemory : public EveryLink {};
TZV_ON_EVERY_LINK(ClaimWithoutMemory);

// A till that cannot watch its printer must not go on as if it could.
TEST_P(ClaimWithoutMemory, ends_the_process_with_255) {
  EXPECT_EXIT(
      {
        fail_memory(1);
        ClaimDevice(port, 0);
      },
      testing::ExitedWithCode(255), "");
}

class NetWithoutMemory : public OnePrinter {
 protected:
  NetWithoutMemory() : OnePrinter("SOCKET:192.168.0.10") {}
};

// It counts as a send that failed, which takes 1 off what was sent.
TEST_F(NetWithoutMemory, a_send_goes_on_a_byte_earlier) {
  const char* const port = "SOCKET:192.168.0.10";
  ASSERT_EQ(OpenPort(port, "9100"), 0);
  forget();
  kernel.shorten("send", 4);
  fail_memory(1);
  EXPECT_EQ(WritePort(port, "0123456789", 10), 4 - 1 + 10);
  memory_calls();
  EXPECT_THAT(printer.writes, testing::ElementsAre("0123", std::string("3456789\0\0\0", 10)));
}

}  // namespace
}  // namespace testkit
