// Every example of the manual, as it stands there: compiled as C, and run over each link; it sends
// the bytes that its page says, and prints what its page says.
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "manual_examples.h"
#include "pictures/bmp.h"
#include "support/all_operations.h"
#include "support/links.h"
#include "support/temporary_folder.h"
#include "tzvio.h"

namespace testkit {
namespace {

/// Without line ends and double spaces.
std::string in_one_line(std::string_view text) {
  std::istringstream words{std::string(text)};
  std::string line;
  for (std::string word; words >> word;) line += (line.empty() ? "" : " ") + word;
  return line;
}

class Manual : public ScriptedTest,
               public testing::WithParamInterface<std::tuple<Link, ManualExample>> {
 protected:
  Manual() {
    std::filesystem::current_path(folder.path());
    pictures::Bmp logo{.width = 8, .height = 8, .palette = std::string(pictures::kWhiteFirst)};
    for (int row = 0; row < 8; ++row) logo.pixels += {'\x80', 0, 0, 0};
    std::ofstream("logo.bmp", std::ios::binary) << logo.file();
    std::ofstream("firmware.bin", std::ios::binary) << "image";

    printer.answer_everything();
    printer.answer({"\035#\x03_AB\x5c", 7}, "0");
    if (example.port_closed) return;
    EXPECT_EQ(OpenPort(port, link.settings.c_str()), 0);
    printer.output.clear();
  }
  ~Manual() override {
    ReleaseDevice(port);
    kernel.run_for(3000);
  }

  std::size_t column() const {
    const std::vector<std::string> columns = {"serial", "parallel", "usb", "network"};
    return static_cast<std::size_t>(std::ranges::find(columns, link.name) - columns.begin());
  }

  TemporaryFolder folder;
  const Link& link = std::get<Link>(GetParam());
  const ManualExample& example = std::get<ManualExample>(GetParam());
  const char* port = link.port.c_str();
  Device& printer = kernel.plug(port);
};

INSTANTIATE_TEST_SUITE_P(examples, Manual,
                         testing::Combine(testing::ValuesIn(kLinks),
                                          testing::ValuesIn(kManualExamples,
                                                            kManualExamples + kManualExampleCount)),
                         [](const auto& tested) {
                           std::string name = std::get<ManualExample>(tested.param).name;
                           std::ranges::replace(name, '-', '_');
                           return std::get<Link>(tested.param).name + "_" + name;
                         });

TEST_P(Manual, holds) {
  testing::internal::CaptureStdout();
  example.run(port, link.settings.c_str());
  EXPECT_EQ(in_one_line(testing::internal::GetCapturedStdout()),
            in_one_line(example.prints[column()]));
  if (const char* sends = example.sends[column()]; sends != nullptr) {
    EXPECT_EQ(hex(printer.output), in_one_line(sends));
  }
}

TEST(ManualPages, show_every_operation) {
  std::set<std::string> shown;
  for (int i = 0; i < kManualExampleCount; ++i) shown.insert(kManualExamples[i].name);
  for (const Operation& operation : kAllOperations) EXPECT_TRUE(shown.contains(operation.name));
  EXPECT_TRUE(shown.contains("InitNET"));
}

}  // namespace
}  // namespace testkit
