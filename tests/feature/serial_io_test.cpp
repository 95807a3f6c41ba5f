// Writing to and reading from a serial line: the wait for DSR, budgets, failures.
#include <gmock/gmock.h>
#include <sys/ioctl.h>

#include <cerrno>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using testing::ElementsAre;

constexpr char kPort[] = "/dev/ttyS0";

class SerialIo : public OnePrinter {
 protected:
  SerialIo() : OnePrinter(kPort) { open("9600,none,8,1,none"); }

  void open(const char* settings) {
    ClosePort(kPort);
    printer.answer_ready();
    EXPECT_EQ(OpenPort(kPort, settings), 0);
    printer.mute();
    forget();
  }
};

class SerialHandshake : public SerialIo {
 protected:
  SerialHandshake() { open("9600,none,8,1,hdwr"); }
};

// -------------------------------------------------------------------------------- writing

TEST_F(SerialIo, a_write_goes_out_whole_and_is_drained) {
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
  EXPECT_THAT(kernel.log(), ElementsAre("write 68 65 6C 6C 6F = 5", "tcdrain"));
}

TEST_F(SerialIo, bytes_of_any_value_pass) {
  const std::string bytes("\0\xff\x1b\n\0", 5);
  EXPECT_EQ(WritePort(kPort, bytes.data(), 5), 5);
  EXPECT_EQ(printer.output, bytes);
}

TEST_F(SerialIo, a_short_write_is_continued) {
  kernel.shorten("write", 2);
  kernel.shorten("write", 1, 2);
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
  EXPECT_THAT(printer.writes, ElementsAre("he", "l", "lo"));
  EXPECT_EQ(kernel.count("tcdrain"), 3U);
}

TEST_F(SerialIo, writing_nothing_returns_0) {
  EXPECT_EQ(WritePort(kPort, "", 0), 0);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_F(SerialIo, bad_arguments_of_a_write_give_minus_1) {
  EXPECT_EQ(WritePort(kPort, nullptr, 5), -1);
  EXPECT_EQ(WritePort(kPort, "hello", -1), -1);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_F(SerialIo, a_failing_write_gives_minus_2) {
  kernel.fail("write", EIO);
  EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
  EXPECT_EQ(kernel.open_descriptors(), 1U);
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
}

TEST_F(SerialIo, a_write_that_fails_in_the_middle_gives_minus_2) {
  kernel.shorten("write", 2);
  kernel.fail("write", EIO, 2);
  EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
  EXPECT_EQ(printer.output, "he");
}

TEST_F(SerialIo, a_full_line_is_waited_for) {
  kernel.shorten("write", 2);
  for (int i = 2; i < 12; ++i) kernel.fail("write", EAGAIN, i);
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
  EXPECT_THAT(printer.writes, ElementsAre("he", "llo"));
  EXPECT_EQ(elapsed_ms(), 10 * 20);
}

TEST_F(SerialIo, a_line_that_stays_full_for_five_seconds_gives_minus_2) {
  for (int i = 1; i <= 300; ++i) kernel.fail("write", EAGAIN, i);
  EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
  EXPECT_EQ(elapsed_ms(), 5000);
}

TEST_F(SerialIo, a_failing_drain_gives_minus_2) {
  kernel.fail("tcdrain", EIO);
  EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
}

TEST_F(SerialIo, an_error_state_refuses_the_write) {
  for (int* flag : {&m_bCoverOpen, &m_bPaperEmpty, &m_bOffline, &m_bCutterJam}) {
    *flag = 1;
    EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
    *flag = 0;
  }
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_F(SerialIo, near_end_of_paper_and_power_off_do_not_refuse_the_write) {
  m_bPaperNearEmpty = m_bPowerOFF = m_bDrawerOpened = 1;
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
}

TEST_F(SerialIo, WritePort_bypasses_a_transaction) {
  s_TransactionPrint = 1;
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
  EXPECT_EQ(printer.output, "hello");
  EXPECT_EQ(s_PageSize, 0);
}

TEST_F(SerialIo, without_flow_control_dsr_is_not_looked_at) {
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
  EXPECT_EQ(kernel.count("TIOCMGET"), 0U);
}

// ------------------------------------------------------------------- writing with handshake

TEST_F(SerialHandshake, with_dsr_up_pieces_of_256_bytes_go_out) {
  printer.modem_lines = TIOCM_DSR;
  const std::string bytes(600, 'x');
  EXPECT_EQ(WritePort(kPort, bytes.data(), 600), 600);
  ASSERT_EQ(printer.writes.size(), 3U);
  EXPECT_EQ(printer.writes[0].size(), 256U);
  EXPECT_EQ(printer.writes[1].size(), 256U);
  EXPECT_EQ(printer.writes[2].size(), 88U);
  EXPECT_EQ(kernel.count("TIOCMGET"), 3U);
  EXPECT_EQ(elapsed_ms(), 0);
}

TEST_F(SerialHandshake, other_modem_lines_do_not_count) {
  printer.modem_lines = TIOCM_CTS | TIOCM_CD | TIOCM_RTS | TIOCM_DTR;
  EXPECT_EQ(WritePort(kPort, "hello", 5), 0);
}

TEST_F(SerialHandshake, dsr_down_for_five_seconds_ends_the_write_with_the_count) {
  EXPECT_EQ(WritePort(kPort, "hello", 5), 0);
  EXPECT_EQ(elapsed_ms(), 5000);
  EXPECT_EQ(kernel.count("usleep"), 250U);
  EXPECT_TRUE(printer.output.empty());
}

TEST_F(SerialHandshake, the_write_goes_on_when_dsr_rises) {
  kernel.at(started_ms + 1010, [this] { printer.modem_lines = TIOCM_DSR; });
  EXPECT_EQ(WritePort(kPort, "hello", 5), 5);
  EXPECT_EQ(elapsed_ms(), 1020);
}

TEST_F(SerialHandshake, dsr_falling_in_the_middle_gives_what_was_written) {
  printer.modem_lines = TIOCM_DSR;
  printer.on_write = [this] { printer.modem_lines = 0; };
  const std::string bytes(300, 'x');
  EXPECT_EQ(WritePort(kPort, bytes.data(), 300), 256);
  EXPECT_EQ(elapsed_ms(), 5000);
}

TEST_F(SerialHandshake, each_piece_that_goes_out_restores_the_budget) {
  // Before each of three pieces the printer is busy for 4 s: 12 s in all, but never 5 s.
  const auto busy_for_4_s = [this] {
    printer.modem_lines = 0;
    kernel.at(kernel.now_ms() + 4000, [this] { printer.modem_lines = TIOCM_DSR; });
  };
  busy_for_4_s();
  printer.on_write = busy_for_4_s;
  const std::string bytes(600, 'x');
  EXPECT_EQ(WritePort(kPort, bytes.data(), 600), 600);
  EXPECT_EQ(elapsed_ms(), 12000);
}

TEST_F(SerialHandshake, a_write_that_takes_nothing_restores_no_budget) {
  // 3 s of waiting before a write that takes nothing, 2 s after it: the budget is spent.
  kernel.at(started_ms + 3000, [this] { printer.modem_lines = TIOCM_DSR; });
  printer.on_write = [this] { printer.modem_lines = 0; };
  kernel.shorten("write", 0);
  EXPECT_EQ(WritePort(kPort, "hello", 5), 0);
  EXPECT_EQ(elapsed_ms(), 5000);
}

TEST_F(SerialHandshake, a_failing_look_at_the_modem_lines_gives_minus_2) {
  kernel.fail("TIOCMGET", EIO);
  EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
  kernel.fail("TIOCMGET", EIO, 100);
  EXPECT_EQ(WritePort(kPort, "hello", 5), -2);
  EXPECT_EQ(elapsed_ms(), 99 * 20);
  EXPECT_TRUE(printer.output.empty());
}

// --------------------------------------------------------------------------------- reading

TEST_F(SerialIo, a_read_returns_what_waits) {
  printer.input = "abc";
  char buffer[8] = "zzzzzzz";
  EXPECT_EQ(ReadPort(kPort, buffer, 8), 3);
  EXPECT_EQ(std::string(buffer, 4), "abcz");
  EXPECT_EQ(kernel.log("read"), std::vector<std::string>{"read 3 = 3"});
}

TEST_F(SerialIo, a_read_takes_no_more_than_asked) {
  printer.input = "abcdef";
  char buffer[2];
  EXPECT_EQ(ReadPort(kPort, buffer, 2), 2);
  EXPECT_EQ(std::string(buffer, 2), "ab");
  EXPECT_EQ(printer.input, "cdef");
}

TEST_F(SerialIo, reading_nothing_returns_0_without_touching_the_line) {
  printer.input = "abc";
  char buffer[1];
  EXPECT_EQ(ReadPort(kPort, buffer, 0), 0);
  EXPECT_EQ(ReadPort(kPort, nullptr, 0), 0);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_F(SerialIo, bad_arguments_of_a_read_give_minus_1) {
  char buffer[1];
  EXPECT_EQ(ReadPort(kPort, nullptr, 5), -1);
  EXPECT_EQ(ReadPort(kPort, buffer, -1), -1);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_F(SerialIo, two_hundred_milliseconds_of_silence_end_a_read_with_minus_2) {
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), -2);
  EXPECT_EQ(elapsed_ms(), 200);
  EXPECT_EQ(kernel.count("usleep"), 10U);
  EXPECT_EQ(kernel.count("read"), 0U);
}

TEST_F(SerialIo, a_read_returns_as_soon_as_a_byte_is_there) {
  kernel.at(started_ms + 90, [this] { printer.input = "a"; });
  char buffer[8];
  EXPECT_EQ(ReadPort(kPort, buffer, 8), 1);
  EXPECT_EQ(elapsed_ms(), 100);
}

TEST_F(SerialIo, failing_calls_of_a_read_give_minus_2) {
  char buffer[8];
  printer.input = "abc";
  kernel.fail("FIONREAD", EIO);
  EXPECT_EQ(ReadPort(kPort, buffer, 8), -2);
  kernel.fail("read", EIO);
  EXPECT_EQ(ReadPort(kPort, buffer, 8), -2);
  EXPECT_EQ(ReadPort(kPort, buffer, 8), 3);
}

// A frame's answer is read with a minimum of two bytes; ReadPort waits for one.
class FrameAnswer : public SerialIo {
 protected:
  FrameAnswer() {
    s_bProtocol = 1;
    s_PageSize = 1;
  }
};

TEST_F(FrameAnswer, the_time_out_counts_silence_not_time) {
  kernel.at(started_ms + 190, [this] { printer.input += 'x'; });
  kernel.at(started_ms + 380, [this] { printer.input += 'x'; });
  EXPECT_EQ(TransactionPrint(kPort, 0), 4);
  EXPECT_EQ(elapsed_ms(), 380) << "longer than the time-out of 200 ms, in one read";
  EXPECT_EQ(kernel.log("read"), std::vector<std::string>{"read 2 = 2"});
}

TEST_F(FrameAnswer, silence_after_too_few_bytes_ends_a_read_and_leaves_them) {
  kernel.at(started_ms + 100, [this] { printer.input = "x"; });
  kernel.at(started_ms + 400, [this] { printer.input += "y"; });
  EXPECT_EQ(TransactionPrint(kPort, 0), 4);
  // 100 ms and 200 of silence, 10 ms pause, then the second byte comes.
  EXPECT_EQ(elapsed_ms(), 410);
  EXPECT_EQ(kernel.log("read"), std::vector<std::string>{"read 2 = 2"});
}

TEST_F(SerialIo, a_count_that_fails_while_waiting_gives_minus_2) {
  char buffer[8];
  kernel.fail("FIONREAD", EIO, 4);
  EXPECT_EQ(ReadPort(kPort, buffer, 8), -2);
  EXPECT_EQ(elapsed_ms(), 60);
}

}  // namespace
}  // namespace testkit
