// A serial line for real: a pseudo-terminal under a serial port's name, real termios, real time.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <termios.h>

#include <chrono>

#include "support/exported_state.h"
#include "support/live_printer.h"
#include "tzvio.h"

namespace testkit {
namespace {

constexpr char kPort[] = "/dev/ttyS-pty";
constexpr char kSettings[] = "9600,none,8,1,none";

class Pty : public testing::Test {
 protected:
  Pty() {
    reset_library();
    printer.answer("\x1b#SENSOR", std::string("_2\0", 3));
  }
  ~Pty() override { reset_library(); }

  PtyPrinter printer{kPort};
};

TEST_F(Pty, opens_asks_prints_and_closes) {
  printer.start();
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  EXPECT_EQ(PrintNormal(kPort, "Hello\n"), 0);
  EXPECT_EQ(GetPrinterStatus(kPort), 64);
  EXPECT_EQ(ClosePort(kPort), 0);
  EXPECT_EQ(printer.unplug(),
            "\x10\x04\x02\x10\x04\x04"
            "\x1b"
            "E0\x1b-0\x1b!F\x1d"
            "B0\x1b"
            "a0\x1b"
            "3<Hello\n"
            "\x1b#SENSOR");
}

TEST_F(Pty, the_line_is_raw_and_runs_as_set) {
  printer.start();
  ASSERT_EQ(OpenPort(kPort, "19200,even,7,2,none"), 0);
  termios line{};
  ASSERT_EQ(tcgetattr(printer.slave(), &line), 0);
  EXPECT_EQ(cfgetospeed(&line), speed_t{B19200});
  EXPECT_EQ(line.c_lflag & (ICANON | ECHO | ECHOE | ISIG), 0U);
  EXPECT_EQ(line.c_oflag & OPOST, 0U);
  EXPECT_EQ(line.c_iflag & (INPCK | ISTRIP), tcflag_t{INPCK | ISTRIP});
  EXPECT_EQ(line.c_iflag & (IXON | IXOFF | IXANY), 0U);
}

TEST_F(Pty, the_descriptor_does_not_block_and_is_no_controlling_terminal) {
  printer.start();
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  EXPECT_NE(fcntl(serPorts[0].port, F_GETFL) & O_NONBLOCK, 0);
  char buffer[4];
  const auto started = std::chrono::steady_clock::now();
  EXPECT_EQ(ReadPort(kPort, buffer, 4), -2);
  const auto waited = std::chrono::steady_clock::now() - started;
  EXPECT_GE(waited, std::chrono::milliseconds(200));
}

TEST_F(Pty, a_mute_printer_gives_minus_1_and_the_port_stays_open) {
  EXPECT_EQ(OpenPort(kPort, kSettings), -1);
  EXPECT_EQ(GetError(kPort), 0);
  EXPECT_EQ(WritePort(kPort, "x", 1), 1);
}

TEST_F(Pty, a_line_without_modem_signals_fails_a_handshake_write) {
  printer.start();
  ASSERT_EQ(OpenPort(kPort, "9600,none,8,1,hdwr"), 0);
  EXPECT_EQ(WritePort(kPort, "x", 1), -2) << "a pseudo-terminal has no modem lines";
}

TEST_F(Pty, text_longer_than_the_lines_buffer_arrives_whole) {
  printer.start();
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  std::string text;
  for (int i = 0; i < 5000; ++i) text += std::to_string(i) + "\n";
  EXPECT_EQ(WritePort(kPort, text.data(), static_cast<long>(text.size())),
            static_cast<long>(text.size()));
  EXPECT_EQ(GetPrinterStatus(kPort), 64) << "the printer answers when it has read the text";
  ClosePort(kPort);
  EXPECT_TRUE(printer.unplug().ends_with(text + "\x1b#SENSOR"));
}

TEST_F(Pty, an_unplugged_line_fails_writes_and_reads_and_still_closes) {
  printer.start();
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  printer.unplug();
  EXPECT_EQ(WritePort(kPort, "x", 1), -2);
  char buffer[4];
  EXPECT_EQ(ReadPort(kPort, buffer, 4), -2);
  EXPECT_EQ(PrintNormal(kPort, "x"), 0);
  EXPECT_EQ(ClosePort(kPort), 0);
}

}  // namespace
}  // namespace testkit
