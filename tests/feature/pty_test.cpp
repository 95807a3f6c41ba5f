// A serial line for real: a pseudo-terminal under a serial port's name, real termios, real time.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <thread>

#include "support/exported_state.h"
#include "support/name_alias.h"
#include "tzvio.h"

namespace testkit {
namespace {

using namespace std::string_literals;

constexpr char kPort[] = "/dev/ttyS-pty";
constexpr char kSettings[] = "9600,none,8,1,none";

/// A printer that answers from a thread of its own until it is unplugged.
class PtyPrinter {
 public:
  PtyPrinter() {
    char path[64];
    EXPECT_EQ(openpty(&master_, &slave_, path, nullptr, nullptr), 0);
    EXPECT_EQ(pipe(stop_), 0);
    alias_ = std::make_unique<NameAlias>(kPort, path);
  }
  ~PtyPrinter() {
    unplug();
    close(stop_[0]);
    close(stop_[1]);
    close(slave_);
  }
  PtyPrinter(const PtyPrinter&) = delete;
  PtyPrinter& operator=(const PtyPrinter&) = delete;

  void start() {
    thread_ = std::thread([this] { serve(); });
  }

  /// Everything the printer got; ends it.
  std::string unplug() {
    if (thread_.joinable()) {
      EXPECT_EQ(write(stop_[1], "x", 1), 1);
      thread_.join();
    }
    if (master_ >= 0) close(master_);
    master_ = -1;
    return received_;
  }

  int slave() const { return slave_; }

 private:
  void serve() {
    pollfd waiting[] = {{master_, POLLIN, 0}, {stop_[0], POLLIN, 0}};
    for (;;) {
      poll(waiting, 2, -1);
      if ((waiting[0].revents & POLLIN) != 0) {
        take();
      } else if (waiting[1].revents != 0) {
        return;
      }
    }
  }

  void take() {
    char buffer[4096];
    const ssize_t count = read(master_, buffer, sizeof buffer);
    if (count <= 0) return;
    received_.append(buffer, static_cast<std::size_t>(count));
    if (received_.ends_with("\x10\x04\x02") || received_.ends_with("\x10\x04\x04")) reply("\x12");
    if (received_.ends_with("\x1b#SENSOR")) reply("_2\0"s);
  }

  void reply(const std::string& bytes) {
    EXPECT_EQ(write(master_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  int master_ = -1, slave_ = -1;
  int stop_[2] = {-1, -1};
  std::unique_ptr<NameAlias> alias_;
  std::thread thread_;
  std::string received_;
};

class Pty : public testing::Test {
 protected:
  Pty() { reset_library(); }
  ~Pty() override { reset_library(); }

  PtyPrinter printer;
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
