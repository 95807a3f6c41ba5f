// The manual's table of durations holds: with a silent printer behind the port, and with one that
// takes nothing more.
#include <gmock/gmock.h>

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

#include "support/all_operations.h"
#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

constexpr int64_t kWriteMs = 5000;  // a write that is taken by nobody
constexpr int64_t kHourMs = 3'600'000;

/// One row of the table: the cells behind the operation's name.
using Row = std::vector<std::string>;

std::map<std::string, Row> read_table() {
  std::ifstream page(TZVIO_DURATIONS_PAGE);
  std::map<std::string, Row> table;
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("| ")) continue;
    std::istringstream cells(line.substr(2));
    Row row;
    for (std::string cell; std::getline(cells, cell, '|');) {
      row.push_back(cell.substr(cell.find_first_not_of(' '), cell.find_last_not_of(' ') + 1));
      while (row.back().ends_with(' ')) row.back().pop_back();
    }
    if (row.size() == 6) table[row.front()] = Row(row.begin() + 1, row.end());
  }
  return table;
}

const std::map<std::string, Row> kTable = read_table();

class Durations : public ScriptedTest,
                  public testing::WithParamInterface<std::tuple<Link, Operation>> {
 protected:
  Durations() {
    printer.modem_lines = 0xffff;
    if (operation.name == "OpenPort") return;
    printer.answer_ready();
    // Flow control is where a serial line waits.
    const char* settings = link.name == "serial" ? "9600,none,8,1,hdwr" : link.settings.c_str();
    EXPECT_EQ(OpenPort(port, settings), 0);
    printer.mute();
  }
  ~Durations() override {
    ReleaseDevice(port);
    kernel.run_for(3000);
  }

  int64_t measure() {
    const int64_t start = kernel.now_ms();
    if (operation.name == "TransactionPrint") {
      TransactionPrint(port, TZV_TRANSACTION_END);
    } else {
      operation.call(port);
    }
    return kernel.now_ms() - start;
  }

  int64_t writes() const { return std::stoi(row.front()); }
  std::string silence() const {
    static const std::map<std::string, std::size_t> kColumns = {
        {"serial", 1}, {"parallel", 2}, {"usb", 3}, {"network", 4}};
    return row.at(kColumns.at(link.name));
  }
  bool endless() const { return silence().ends_with("no end"); }
  /// Without an end it is only known to be long.
  int64_t silence_ms() const {
    return endless() ? kHourMs : std::lround(std::stod(silence()) * 1000);
  }

  const Link& link = std::get<Link>(GetParam());
  const Operation& operation = std::get<Operation>(GetParam());
  const Row& row = kTable.at(operation.name);
  const char* port = link.port.c_str();
  Device& printer = kernel.plug(port);
};

INSTANTIATE_TEST_SUITE_P(
    of, Durations, testing::Combine(testing::ValuesIn(kLinks), testing::ValuesIn(kAllOperations)),
    [](const auto& tested) {
      return std::get<Link>(tested.param).name + "_" + std::get<Operation>(tested.param).name;
    });

TEST_P(Durations, with_a_silent_printer) {
  if (operation.name == "TransactionPrint") {
    ClaimDevice(port, 0);
    kernel.run_for(1000);
  }
  // The longest open is one that is answered late, and then no more.
  if (operation.name == "OpenPort") printer.answer({"\x10\x04\x02", 3}, "\x12", 300);
  kernel.at(kernel.now_ms() + kHourMs, [this] { printer.input = "late"; });
  const int64_t took = measure();
  if (endless()) {
    EXPECT_GE(took, kHourMs);
    return;
  }
  // What a link pauses after a write is said beside the table.
  EXPECT_LE(took, silence_ms() + writes() * link.pause_after_write);
  EXPECT_GE(took, silence_ms() / 2);
}

TEST_P(Durations, with_a_printer_that_takes_nothing) {
  if (endless() || link.name == "network") return;  // nothing to measure
  printer.modem_lines = 0;
  printer.status_lines = 0;
  if (link.name == "usb") {
    for (int nth = 1; nth < 20000; ++nth) kernel.shorten("write", 0, nth);
  }
  EXPECT_LE(measure(), silence_ms() + writes() * kWriteMs);
}

}  // namespace
}  // namespace testkit
