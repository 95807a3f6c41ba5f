// The exchange at open, the sensor query, and what is answered from the flags.
#include <gmock/gmock.h>

#include <ostream>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

const std::string kAskCover = "\x10\x04\x02";
const std::string kAskPaper = "\x10\x04\x04";
const std::string kSensor = "\x1b#SENSOR";

// ---------------------------------------------------------------------------- at the open

struct OpenRow {
  const char* name;
  std::string cover_answer, paper_answer;
  long result;
};

void PrintTo(const OpenRow& row, std::ostream* out) {
  *out << row.name;
}

class OpenStatus : public ScriptedTest,
                   public testing::WithParamInterface<std::tuple<Link, OpenRow>> {};

INSTANTIATE_TEST_SUITE_P(
    rows, OpenStatus,
    testing::Combine(testing::ValuesIn(kLinks),
                     testing::Values(OpenRow{"ready", "\x12", "\x12", 0},
                                     OpenRow{"ready_zero_bytes", "\0"s, "\0"s, 0},
                                     OpenRow{"cover_open", "\x16", "\x12", 1},
                                     OpenRow{"cover_bit_alone", "\x04", "\x12", 1},
                                     OpenRow{"cover_wins_over_paper", "\x16", "\x72", 1},
                                     OpenRow{"other_cover_bits_do_not_count", "\xfb", "\x12", 0},
                                     OpenRow{"paper_out", "\x12", "\x72", 2},
                                     OpenRow{"paper_bit_5_alone", "\x12", "\x20", 2},
                                     OpenRow{"paper_bit_6_alone", "\x12", "\x40", 2},
                                     OpenRow{"other_paper_bits_do_not_count", "\x12", "\x9f", 0},
                                     OpenRow{"last_byte_counts_healthy", "\x16\x12", "\x72\x12", 0},
                                     OpenRow{"last_byte_counts_open", "\x12\x12\x16", "\x12", 1},
                                     OpenRow{"mute_from_the_start", "", "", -1},
                                     OpenRow{"mute_after_the_first_answer", "\x12", "", -1})),
    [](const auto& tested) {
      return std::get<Link>(tested.param).name + "_" + std::get<OpenRow>(tested.param).name;
    });

TEST_P(OpenStatus, decides_the_result_and_the_port_stays_open) {
  const auto& [link, row] = GetParam();
  Device& printer = kernel.plug(link.port);
  if (!row.cover_answer.empty()) printer.answer(kAskCover, row.cover_answer);
  if (!row.paper_answer.empty()) printer.answer(kAskPaper, row.paper_answer);
  EXPECT_EQ(OpenPort(link.port.c_str(), link.settings.c_str()), row.result);
  EXPECT_EQ(GetError(link.port.c_str()), 0) << "open, and no flag is set";
  EXPECT_EQ(kernel.open_descriptors(), 1U);
}

class OpenBesideMonitor : public EveryLink {};
TZV_ON_EVERY_LINK(OpenBesideMonitor);

// A close does not stop the monitor, which finds the port by its name when it is open again.
TEST_P(OpenBesideMonitor, is_given_the_answers) {
  ClaimDevice(port, 0);
  printer.answer(kAskCover, "\x12");
  printer.answer(kAskPaper, "\x12");
  for (int opening = 0; opening < 60; ++opening) {
    ClosePort(port);
    kernel.run_for(opening * 9 % 500);
    EXPECT_EQ(OpenPort(port, link.settings.c_str()), 0) << opening;
  }
}

struct Wait {
  std::string link;
  int64_t ready_ms;  ///< of an open whose printer answers at once
  int64_t mute_ms;   ///< of one whose printer does not
};

void PrintTo(const Wait& wait, std::ostream* out) {
  *out << wait.link;
}

class OpenWait : public ScriptedTest, public testing::WithParamInterface<Wait> {};

// Serial: half a second of draining, 20 ms after each query, and 200 ms of silence in each of four
// reads with 100 ms after each. Parallel: 10 ms, and reads that do not wait. USB: 200 ms before
// each read.
INSTANTIATE_TEST_SUITE_P(links, OpenWait,
                         testing::Values(Wait{"serial", 540, 1720}, Wait{"parallel", 20, 410},
                                         Wait{"usb", 400, 1200}, Wait{"network", 0, 400}),
                         [](const auto& tested) { return tested.param.link; });

TEST_P(OpenWait, is_the_links_own) {
  for (const Link& link : kLinks) {
    if (link.name != GetParam().link) continue;
    Device& printer = kernel.plug(link.port);
    printer.answer_ready();
    EXPECT_EQ(OpenPort(link.port.c_str(), link.settings.c_str()), 0);
    EXPECT_EQ(kernel.now_ms(), GetParam().ready_ms);
    ClosePort(link.port.c_str());
    printer.mute();
    EXPECT_EQ(OpenPort(link.port.c_str(), link.settings.c_str()), -1);
    EXPECT_EQ(kernel.now_ms(), GetParam().ready_ms + GetParam().mute_ms);
  }
}

class SerialOpenStatus : public ScriptedTest {
 protected:
  long open() { return OpenPort("/dev/ttyS0", "9600,none,8,1,none"); }
  Device& printer = kernel.plug("/dev/ttyS0");
};

TEST_F(SerialOpenStatus, drains_for_half_a_second_and_pauses_after_each_query) {
  printer.answer_ready();
  EXPECT_EQ(open(), 0);
  EXPECT_THAT(printer.writes, ElementsAre(kAskCover, kAskPaper));
  EXPECT_EQ(kernel.now_ms(), 500 + 20 + 20);
}

TEST_F(SerialOpenStatus, what_waits_on_the_line_is_drained_first) {
  printer.answer_ready();
  kernel.at(100, [this] { printer.input += std::string(128, '\x16'); });
  EXPECT_EQ(open(), 0);
  EXPECT_THAT(kernel.log("read"), ElementsAre("read 128 = 128", "read 1 = 1", "read 1 = 1"));
}

TEST_F(SerialOpenStatus, one_answer_takes_at_most_32_bytes) {
  printer.answer(kAskCover, std::string(31, '\x12') + "\x16" + std::string(8, '\x12'));
  EXPECT_EQ(open(), 1);
}

TEST_F(SerialOpenStatus, four_reads_with_pauses_wait_for_an_answer) {
  EXPECT_EQ(open(), -1);
  EXPECT_THAT(printer.writes, ElementsAre(kAskCover));
  EXPECT_EQ(kernel.now_ms(), 500 + 20 + 4 * (200 + 100));
}

TEST_F(SerialOpenStatus, an_answer_in_the_fourth_read_counts) {
  printer.answer(kAskCover, "\x12", 20 + 3 * 300 + 100);
  printer.answer(kAskPaper, "\x12", 20 + 150);
  EXPECT_EQ(open(), 0);
}

TEST_F(SerialOpenStatus, is_asked_even_in_an_error_state) {
  printer.answer_ready();
  m_bCoverOpen = m_bOffline = 1;
  EXPECT_EQ(open(), 0);
  EXPECT_EQ(m_bCoverOpen, 1);
}

TEST_F(SerialOpenStatus, failing_writes_and_reads_show_as_no_answer) {
  kernel.fail("write", EIO);
  EXPECT_EQ(open(), -1);
  ClosePort("/dev/ttyS0");
  printer.answer_ready();
  for (int i = 0; i < 4; ++i) kernel.fail("read", EIO, i + 1);
  EXPECT_EQ(open(), -1);
  EXPECT_EQ(serPorts[0].set, 1);
}

// ------------------------------------------------------------------------ the sensor query

class SensorQuery : public EveryLink {};
TZV_ON_EVERY_LINK(SensorQuery);

TEST_P(SensorQuery, sends_the_query_and_decodes_the_first_family) {
  const std::tuple<std::string, long, int> rows[] = {
      {"_0\0"s, 0, 0}, {"_1\0"s, 32, 1}, {"_2\0"s, 64, 2}, {"_3\0"s, 128, 3}};
  for (const auto& [reply, code, sensor] : rows) {
    printer.mute();
    printer.output.clear();
    printer.answer(kSensor, reply);
    *state.DeviceType = 0;
    EXPECT_EQ(GetPrinterStatus(port), code);
    EXPECT_EQ(sent(), kSensor);
    EXPECT_EQ(*state.DeviceType, 1);
    EXPECT_EQ(*state.bSensor1, sensor == 1);
    EXPECT_EQ(*state.bSensor2, sensor == 2);
    EXPECT_EQ(*state.bSensor3, sensor == 3);
  }
}

TEST_P(SensorQuery, decodes_the_second_family) {
  const std::tuple<std::string, long, int> rows[] = {{"_\x40\0"s, 0, 0}, {"_\x41\0"s, 128, 3}};
  for (const auto& [reply, code, sensor] : rows) {
    printer.mute();
    printer.answer(kSensor, reply);
    *state.DeviceType = 1;
    EXPECT_EQ(GetPrinterStatus(port), code);
    EXPECT_EQ(*state.DeviceType, 0);
    EXPECT_EQ(*state.bSensor3, sensor == 3);
  }
}

TEST_P(SensorQuery, only_the_last_three_bytes_count) {
  printer.answer(kSensor, kHealthy + "_1\0"s);
  EXPECT_EQ(GetPrinterStatus(port), 32);
}

TEST_P(SensorQuery, malformed_answers_give_minus_1_and_no_sensor) {
  for (const std::string& reply :
       {"_"s, "_1"s, "_1\1"s, "-1\0"s, "_4\0"s, "_\x42\0"s, "_\x10\0"s, "_1\0x"s, "\0\0\0"s}) {
    printer.mute();
    printer.output.clear();
    printer.input.clear();
    printer.answer(kSensor, reply);
    *state.bSensor1 = *state.bSensor2 = *state.bSensor3 = 1;
    EXPECT_EQ(GetPrinterStatus(port), -1) << hex(reply);
    EXPECT_EQ(sent(), kSensor) << "asked once";
    EXPECT_EQ(*state.bSensor1 + *state.bSensor2 + *state.bSensor3, 0);
  }
}

TEST_P(SensorQuery, sends_what_the_application_put_into_GetSensor) {
  std::snprintf(*state.GetSensor, sizeof *state.GetSensor, "ask");
  printer.answer("ask", "_2\0"s);
  EXPECT_EQ(GetPrinterStatus(port), 64);
}

TEST_P(SensorQuery, a_GetSensor_without_an_end_is_sent_whole) {
  std::fill(std::begin(*state.GetSensor), std::end(*state.GetSensor), 'x');
  printer.answer(std::string(128, 'x'), "_2\0"s);
  EXPECT_EQ(GetPrinterStatus(port), 64);
}

TEST_P(SensorQuery, an_empty_GetSensor_asks_nothing_and_gives_0) {
  (*state.GetSensor)[0] = '\0';
  *state.bPaperNearEmpty = 1;
  EXPECT_EQ(GetPrinterStatus(port), 0);
  EXPECT_EQ(kernel.count("read"), 0U);
}

TEST_P(SensorQuery, a_mute_printer_is_asked_five_times_and_the_flags_answer) {
  *state.bSensor1 = 1;
  *state.DeviceType = 1;
  *state.bPaperNearEmpty = 1;
  EXPECT_EQ(GetPrinterStatus(port), 8);
  EXPECT_EQ(printer.writes.size(), 5U);
  EXPECT_EQ(*state.bSensor1, 0);
  EXPECT_EQ(*state.bStopThread, 0);
}

TEST_P(SensorQuery, a_mute_printer_of_an_unknown_family_gives_minus_1) {
  *state.DeviceType = 2;
  EXPECT_EQ(GetPrinterStatus(port), -1);
}

TEST_P(SensorQuery, in_an_error_state_without_monitor_the_answer_is_still_read) {
  *state.bCutterJam = 1;
  printer.input = "_1\0"s;
  EXPECT_EQ(GetPrinterStatus(port), 16);
  EXPECT_EQ(sent(), "");
  EXPECT_EQ(*state.bSensor1, 1);
}

TEST_P(SensorQuery, with_a_monitor_an_error_state_is_answered_without_asking) {
  *state.StopIt = 1;
  const std::pair<int*, long> by_priority[] = {
      {state.bCutterJam, 16}, {state.bOffline, 4}, {state.bPaperEmpty, 2}, {state.bCoverOpen, 1}};
  for (const auto& [flag, code] : by_priority) {
    *flag = 1;
    EXPECT_EQ(GetPrinterStatus(port), code);
  }
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(SensorQuery, with_a_monitor_a_near_end_alone_still_asks) {
  *state.StopIt = 1;
  *state.bPaperNearEmpty = 1;
  printer.answer(kSensor, "_0\0"s);
  EXPECT_EQ(GetPrinterStatus(port), 8);
  EXPECT_EQ(sent(), kSensor);
}

TEST_P(SensorQuery, keeps_the_monitor_off_the_line_only_for_the_exchange) {
  *state.StopIt = 1;
  int during = -1;
  printer.on_write = [&] { during = *state.bStopThread; };
  printer.answer(kSensor, "_0\0"s);
  EXPECT_EQ(GetPrinterStatus(port), 0);
  EXPECT_EQ(during, 1);
  EXPECT_EQ(*state.bStopThread, 0);

  printer.mute();
  printer.answer(kSensor, "bad"s);
  EXPECT_EQ(GetPrinterStatus(port), -1);
  EXPECT_EQ(*state.bStopThread, 0);

  (*state.GetSensor)[0] = '\0';
  EXPECT_EQ(GetPrinterStatus(port), 0);
  EXPECT_EQ(*state.bStopThread, 0);
}

TEST_P(SensorQuery, without_a_monitor_the_hand_over_flag_is_left_alone) {
  int during = -1;
  printer.on_write = [&] { during = *state.bStopThread; };
  printer.answer(kSensor, "_0\0"s);
  EXPECT_EQ(GetPrinterStatus(port), 0);
  EXPECT_EQ(during, 0);
}

TEST_P(SensorQuery, priorities_of_the_first_family) {
  printer.answer(kSensor, "_2\0"s);
  EXPECT_EQ(GetPrinterStatus(port), 64);
  *state.bCutterJam = 1;
  printer.input = "_2\0"s;
  EXPECT_EQ(GetPrinterStatus(port), 16);
  *state.bPaperNearEmpty = 1;
  printer.input = "_2\0"s;
  EXPECT_EQ(GetPrinterStatus(port), 64) << "a near end is told by its sensor, before a jam";
  printer.input = "_0\0"s;
  EXPECT_EQ(GetPrinterStatus(port), 8);
  *state.bOffline = 1;
  printer.input = "_2\0"s;
  EXPECT_EQ(GetPrinterStatus(port), 4);
  *state.bPaperEmpty = 1;
  printer.input = "_2\0"s;
  EXPECT_EQ(GetPrinterStatus(port), 2);
  *state.bCoverOpen = 1;
  printer.input = "_2\0"s;
  EXPECT_EQ(GetPrinterStatus(port), 1);
}

TEST_P(SensorQuery, priorities_of_the_second_family) {
  *state.bCutterJam = 1;
  printer.input = "_\x41\0"s;
  EXPECT_EQ(GetPrinterStatus(port), 16);
  *state.bPaperNearEmpty = 1;
  printer.input = "_\x41\0"s;
  EXPECT_EQ(GetPrinterStatus(port), 128);
  printer.input = "_\x40\0"s;
  EXPECT_EQ(GetPrinterStatus(port), 8);
}

using SerialSensorQuery = SerialOpenStatus;

TEST_F(SerialSensorQuery, eleven_reads_and_ten_pauses_make_one_attempt) {
  printer.answer_ready();
  ASSERT_EQ(open(), 0);
  kernel.forget_calls();
  const int64_t started = kernel.now_ms();
  EXPECT_EQ(GetPrinterStatus("/dev/ttyS0"), 0);
  EXPECT_EQ(kernel.now_ms() - started, 5 * (11 * 200 + 10 * 100));
}

// ----------------------------------------------------------------------------- the flags

class ErrorQuery : public EveryLink {};
TZV_ON_EVERY_LINK(ErrorQuery);

TEST_P(ErrorQuery, healthy_printer_gives_0) {
  EXPECT_EQ(GetError(port), 0);
  *state.bDrawerOpened = *state.bSensor1 = *state.bStopThread = 1;
  EXPECT_EQ(GetError(port), 0);
}

TEST_P(ErrorQuery, each_condition_wins_over_those_below_it) {
  const std::pair<int*, long> by_priority[] = {{state.bCutterJam, 16}, {state.bPaperNearEmpty, 8},
                                               {state.bOffline, 4},    {state.bPaperEmpty, 2},
                                               {state.bCoverOpen, 1},  {state.bPowerOFF, 4}};
  for (const auto& [flag, code] : by_priority) {
    *flag = 1;
    EXPECT_EQ(GetError(port), code);
  }
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(ErrorQuery, each_condition_alone) {
  const std::pair<int*, long> rows[] = {{state.bCutterJam, 16}, {state.bPaperNearEmpty, 8},
                                        {state.bOffline, 4},    {state.bPaperEmpty, 2},
                                        {state.bCoverOpen, 1},  {state.bPowerOFF, 4}};
  for (const auto& [flag, code] : rows) {
    *flag = 1;
    EXPECT_EQ(GetError(port), code);
    *flag = 0;
  }
}

TEST_P(ErrorQuery, drawer_status_is_the_monitors_flag) {
  EXPECT_EQ(GetDrawerStatus(port), 0);
  *state.bDrawerOpened = 1;
  EXPECT_EQ(GetDrawerStatus(port), 1);
  EXPECT_TRUE(kernel.calls().empty());
}

}  // namespace
}  // namespace testkit
