// The virtual printer with a client program as its command, and the paper that comes out.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

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

// One test, one printer with a port and an output folder of its own.
class PrinterTest : public testing::Test {
 protected:
  using Words = std::vector<std::string>;

  PrinterTest();
  ~PrinterTest() override;
  PrinterTest(const PrinterTest&) = delete;
  PrinterTest& operator=(const PrinterTest&) = delete;

  // Skips where there is no printer, or where it cannot make its port.
  void SetUp() override;

  // Runs a command under the printer to its end.
  Outcome run_under_printer(const Words& options, const Words& command);
  // The same with the test going on meanwhile.
  void start_under_printer(const Words& options, const Words& command);
  Outcome finish();

  // Waits until standard output has a line that begins like that; whether it came.
  bool wait_for_line(const std::string& beginning) const;
  // Changes a condition of the running printer; whether it took effect.
  bool set(const std::string& condition, const std::string& on_or_off);

  // The command of a till, by scenario.
  Words till(const std::string& scenario) const { return {TILL_PROGRAM, scenario, port_}; }
  Words receipt() const { return {RECEIPT_PROGRAM, port_}; }
  const std::string& port() const { return port_; }

 private:
  pid_t spawn(const Words& words, const std::string& output_name) const;
  std::filesystem::path in_folder(const std::string& name) const { return folder_ / name; }

  std::filesystem::path folder_;
  std::string port_;
  pid_t printer_ = 0;  // 0: none runs
};
