// Version, serial number and the caller's own commands.
#include <gmock/gmock.h>

#include <array>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using namespace std::string_literals;

class Identity : public EveryLink {
 protected:
  /// What an operation stored, before the first byte it left alone.
  std::string stored(long length) const {
    return {answer.data(), static_cast<std::size_t>(length)};
  }
  bool untouched() const { return answer == std::array<char, 300>(kUntouched); }

  static std::array<char, 300> filled() {
    std::array<char, 300> bytes;
    bytes.fill('~');
    return bytes;
  }
  static const inline std::array<char, 300> kUntouched = filled();
  std::array<char, 300> answer = kUntouched;
};
TZV_ON_EVERY_LINK(Identity);

// --------------------------------------------------------------------------------- version

TEST_P(Identity, version_is_the_text_behind_the_mark) {
  printer.answer("\035ID", "_ABCDEFGV1.23");
  EXPECT_EQ(GetFWVersion(port, answer.data()), 4);
  EXPECT_EQ(stored(5), "1.23~") << "no NUL is added";
  EXPECT_EQ(hex(sent()), "1D 49 44");
}

TEST_P(Identity, an_answer_that_is_no_version_gives_0_and_Unknown) {
  for (const std::string& reply :
       {"x_______V1.23"s, "_ABCDEFGX1.23"s, "_ABCDEFG"s, "_"s, "_ABCDEFV1.23"s}) {
    printer.mute();
    printer.answer("\035ID", reply);
    answer = kUntouched;
    EXPECT_EQ(GetFWVersion(port, answer.data()), 0) << reply;
    EXPECT_EQ(stored(8), "Unknown~");
  }
}

TEST_P(Identity, a_version_without_text_is_0_bytes) {
  printer.answer("\035ID", "_ABCDEFGV");
  EXPECT_EQ(GetFWVersion(port, answer.data()), 0);
  EXPECT_TRUE(untouched());
}

TEST_P(Identity, a_mute_printer_has_an_unknown_version) {
  EXPECT_EQ(GetFWVersion(port, answer.data()), 0);
  EXPECT_EQ(stored(8), "Unknown~");
}

TEST_P(Identity, a_version_of_256_bytes_is_the_longest) {
  printer.answer("\035ID", "_ABCDEFGV" + std::string(300, '1'));
  EXPECT_EQ(GetFWVersion(port, answer.data()), 247);
  EXPECT_EQ(stored(248), std::string(247, '1') + "~");
}

// --------------------------------------------------------------------------- serial number

TEST_P(Identity, serial_number_is_the_text_behind_the_start) {
  printer.answer("\035IC", "_AB-123");
  EXPECT_EQ(GetSerialNumber(port, answer.data()), 6);
  EXPECT_EQ(stored(7), "AB-123~");
  EXPECT_EQ(hex(sent()), "1D 49 43");
}

TEST_P(Identity, no_serial_number_costs_six_seconds_and_asks_once) {
  const std::pair<std::string, long> rows[] = {{"AB-123", 5}, {"x", 0}};
  for (const auto& [reply, result] : rows) {
    printer.mute();
    printer.output.clear();
    printer.answer("\035IC", reply);
    const int64_t started = kernel.now_ms();
    EXPECT_EQ(GetSerialNumber(port, answer.data()), result);
    EXPECT_EQ(kernel.now_ms() - started, 6000 + link.pause_after_write + link.pause_before_read);
    EXPECT_EQ(hex(sent()), "1D 49 43");
    EXPECT_TRUE(untouched());
  }
}

TEST_P(Identity, a_mute_printer_has_no_serial_number) {
  EXPECT_EQ(GetSerialNumber(port, answer.data()), 0);
  EXPECT_TRUE(untouched());
  EXPECT_EQ(kernel.count("sleep"), 6U);
}

TEST_P(Identity, serial_number_is_written_with_its_checksum) {
  printer.answer("\x1d#\x03_AB\x5c", "0");
  EXPECT_EQ(SetSerialNumber(port, "AB", 2), 0);
  EXPECT_EQ(hex(sent()), "1D 23 03 5F 41 42 5C");
  EXPECT_EQ(kernel.log("sleep"), std::vector<std::string>{"sleep 1000000"});
}

TEST_P(Identity, an_acknowledgement_is_judged_by_its_last_byte) {
  const std::pair<std::string, long> rows[] = {{"0", 0}, {"xyz0", 0}, {"1", -1}, {"0x", -1}};
  for (const auto& [reply, result] : rows) {
    printer.mute();
    printer.answer("\x1d#\x03_AB\x5c", reply);
    EXPECT_EQ(SetSerialNumber(port, "AB", 2), result) << reply;
  }
  printer.mute();
  EXPECT_EQ(SetSerialNumber(port, "AB", 2), -1) << "no acknowledgement";
}

TEST_P(Identity, a_monitor_does_not_take_the_acknowledgement) {
  ASSERT_EQ(ClaimDevice(port, 0), 0);
  *state.bSleepFlag = 1;
  kernel.run_for(200);
  printer.answer("\x1d#\x03_AB\x5c", "0", 300);
  EXPECT_EQ(SetSerialNumber(port, "AB", 2), 0);
  EXPECT_EQ(*state.bStopThread, 0);
}

TEST_P(Identity, an_empty_serial_number_has_a_frame_too) {
  printer.answer("\x1d#\x01_\x5f", "0");
  EXPECT_EQ(SetSerialNumber(port, "", 0), 0);
}

TEST_P(Identity, a_serial_number_of_123_bytes_is_the_longest) {
  const std::string longest(124, 'x');
  EXPECT_EQ(SetSerialNumber(port, longest.data(), 124), -1);
  EXPECT_EQ(SetSerialNumber(port, longest.data(), -1), -1);
  EXPECT_TRUE(kernel.calls().empty());
  // 123 times "x" leaves one of them, and "_".
  const std::string frame = "\x1d#\x7c_"s + std::string(123, 'x') + static_cast<char>('x' ^ '_');
  printer.answer(frame, "0");
  EXPECT_EQ(SetSerialNumber(port, longest.data(), 123), 0);
  EXPECT_EQ(sent().size(), 128U);
}

// --------------------------------------------------------------------------- custom data

TEST_P(Identity, data_is_sent_as_it_is) {
  EXPECT_EQ(SetData(port, "\x00\x01\xff", 3), 0);
  EXPECT_EQ(hex(sent()), "00 01 FF");
}

TEST_P(Identity, data_bypasses_a_transaction) {
  *state.TransactionPrint = 1;
  EXPECT_EQ(SetData(port, "abc", 3), 0);
  EXPECT_EQ(sent(), "abc");
}

// The sense of the test is kept: only a write of nothing fails.
TEST_P(Identity, a_refused_or_failed_write_of_data_counts_as_success) {
  *state.bOffline = 1;
  EXPECT_EQ(SetData(port, "abc", 3), 0);
  *state.bOffline = 0;
  break_writes();
  EXPECT_EQ(SetData(port, "abc", 3), link.dead_write != 0 ? 0 : -1);
  EXPECT_EQ(SetData(port, "", 0), -1);
  EXPECT_EQ(sent(), "");
}

TEST_P(Identity, data_and_its_answer) {
  printer.answer("ask", "an\0swer"s);
  EXPECT_EQ(GetData(port, "ask", 3, answer.data()), 7);
  EXPECT_EQ(stored(8), "an\0swer~"s);
}

TEST_P(Identity, an_empty_command_only_reads) {
  printer.input = "late";
  EXPECT_EQ(GetData(port, "", 0, answer.data()), 4);
  EXPECT_EQ(stored(5), "late~");
  EXPECT_EQ(sent(), "");
}

TEST_P(Identity, no_answer_gives_0_after_21_reads) {
  EXPECT_EQ(GetData(port, "ask", 3, answer.data()), 0);
  EXPECT_TRUE(untouched());
  EXPECT_EQ(*state.bStopThread, 0);
  const auto sleeps = kernel.log("usleep");
  const int after_write = link.pause_after_write == 10 ? 1 : 0;
  EXPECT_EQ(std::count(sleeps.begin(), sleeps.end(), "usleep 10000"), 20 + after_write);
}

TEST_P(Identity, read_errors_on_every_attempt_give_0) {
  printer.answer("ask", "answer");
  for (int i = 1; i <= 21; ++i) kernel.fail(link.read_call, EIO, i);
  EXPECT_EQ(GetData(port, "ask", 3, answer.data()), 0);
  EXPECT_TRUE(untouched());
}

TEST_P(Identity, answers_of_256_bytes_are_the_longest) {
  printer.answer("ask", std::string(300, 'x'));
  EXPECT_EQ(GetData(port, "ask", 3, answer.data()), 256);
  EXPECT_EQ(stored(257), std::string(256, 'x') + "~");
}

TEST_P(Identity, commands_of_128_bytes_are_the_longest) {
  const std::string command(129, 'x');
  EXPECT_EQ(SetData(port, command.data(), 129), -1);
  EXPECT_EQ(GetData(port, command.data(), 129, answer.data()), -1);
  EXPECT_EQ(SetData(port, command.data(), -1), -1);
  EXPECT_EQ(GetData(port, command.data(), -1, answer.data()), -1);
  EXPECT_TRUE(kernel.calls().empty());
  EXPECT_EQ(SetData(port, command.data(), 128), 0);
  EXPECT_EQ(sent().size(), 128U);
}

TEST_P(Identity, null_arguments_give_minus_1) {
  EXPECT_EQ(SetData(port, nullptr, 3), -1);
  EXPECT_EQ(GetData(port, nullptr, 3, answer.data()), -1);
  EXPECT_EQ(GetData(port, "ask", 3, nullptr), -1);
  EXPECT_EQ(GetFWVersion(port, nullptr), -1);
  EXPECT_EQ(GetSerialNumber(port, nullptr), -1);
  EXPECT_EQ(SetSerialNumber(port, nullptr, 3), -1);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(Identity, without_paper_or_with_the_cover_open_everything_gives_minus_1) {
  for (int* flag : {state.bPaperEmpty, state.bCoverOpen}) {
    *flag = 1;
    EXPECT_EQ(SetData(port, "abc", 3), -1);
    EXPECT_EQ(GetData(port, "abc", 3, answer.data()), -1);
    EXPECT_EQ(GetFWVersion(port, answer.data()), -1);
    EXPECT_EQ(GetSerialNumber(port, answer.data()), -1);
    EXPECT_EQ(SetSerialNumber(port, "AB", 2), -1);
    *flag = 0;
  }
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(Identity, offline_and_jam_stop_the_command_but_not_the_reading) {
  for (int* flag : {state.bOffline, state.bCutterJam}) {
    *flag = 1;
    printer.input = "late";
    EXPECT_EQ(GetData(port, "abc", 3, answer.data()), 4);
    *flag = 0;
  }
  EXPECT_EQ(sent(), "");
}

TEST_P(Identity, the_monitor_is_kept_off_the_line_for_each_exchange) {
  int during = -1;
  printer.on_write = [&] { during = *state.bStopThread; };
  printer.answer("\035ID", "_ABCDEFGV1.23");
  GetFWVersion(port, answer.data());
  EXPECT_EQ(during, 1);
  EXPECT_EQ(*state.bStopThread, 0);
  printer.answer("ask", "x");
  during = -1;
  GetData(port, "ask", 3, answer.data());
  EXPECT_EQ(during, 1);
  EXPECT_EQ(*state.bStopThread, 0);
}

}  // namespace
}  // namespace testkit
