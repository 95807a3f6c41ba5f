// The virtual printer with a client program as its command, and the paper that comes out.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/temporary_folder.h"

// What came out of the printer, in the order in which it was cut.
struct PrintedPaper {
  std::vector<std::string> texts;
  std::vector<std::uint32_t> widths;  // of the pictures, in dots

  // Several receipts after each other, as if nothing had been cut.
  std::string in_one() const;
};

struct Outcome {
  int status;  // the client's exit status, or the printer's own
  std::string out;
  std::string errors;
  PrintedPaper paper;

  // How many lines of standard output begin like that.
  int lines(const std::string& beginning) const;
  // The lines of standard output that begin like that, each with its end.
  std::string lines_from(const std::string& beginning) const;
};

enum class Line { kSerial, kParallel, kUsb, kTcp };

inline constexpr std::array kEveryLine{Line::kSerial, Line::kParallel, Line::kUsb, Line::kTcp};

std::string name_of(Line line);

// One test, one printer with a line and an output folder of its own.
class PrinterTest : public testing::Test {
 protected:
  using Words = std::vector<std::string>;

  explicit PrinterTest(Line line = Line::kSerial);
  ~PrinterTest() override;
  PrinterTest(const PrinterTest&) = delete;
  PrinterTest& operator=(const PrinterTest&) = delete;

  // Skips where there is no printer.
  void SetUp() override;

  // Another line than the test was made for, before its first run.
  void use(Line line);

  // Runs a command without a printer to its end.
  Outcome run(const Words& command);
  // Runs a command under the printer to its end.
  Outcome run_under_printer(const Words& options, const Words& command);
  // The same with the test going on meanwhile.
  void start_under_printer(const Words& options, const Words& command);
  Outcome finish();
  // The same for a printer that would go on.
  Outcome end();

  // Waits until standard output has so many lines that begin like that; whether they came.
  bool wait_for_line(const std::string& beginning, std::size_t count = 1) const;
  // The lines that have come and begin like that.
  Words lines(const std::string& beginning) const;
  // Changes a condition or a setting of the running printer; whether it took effect.
  bool set(const std::string& name, const std::string& value) const;
  // What the running printer says of itself.
  std::string status() const;

  // For a shell: the printer's program with a request to the printer that runs it.
  static std::string request(const std::string& words);

  // What is read off the pictures, as tests/e2e/read_paper.cpp has it: by "scan" or by "dots".
  std::string read_paper(const std::string& how) const;

  // A place for a file, for as long as the test runs.
  std::string path_of(const std::string& name) const { return in_folder(name); }
  // A file of these bytes there; its path.
  std::string file(const std::string& name, const std::string& content) const;

  // All bytes that came over the line, of a run with the options that record them.
  Words recording() const { return {"--record", in_folder("record")}; }
  std::string recorded() const;

 private:
  bool ask(Words request) const;
  pid_t spawn(const Words& words, const std::string& output_name) const;
  std::filesystem::path in_folder(const std::string& name) const { return folder_.path() / name; }

  testkit::TemporaryFolder folder_;
  Words address_;      // the printer's options for its line
  pid_t printer_ = 0;  // 0: none runs
};

// A test that holds on several lines.
class OnLine : public PrinterTest, public testing::WithParamInterface<Line> {
 protected:
  OnLine() : PrinterTest(GetParam()) {}
};

// The name of a test's instance.
inline std::string line_of(const testing::TestParamInfo<Line>& info) {
  return name_of(info.param);
}
