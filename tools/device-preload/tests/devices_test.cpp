// What a program sees of the devices that are played for it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/parport.h>
#include <linux/ppdev.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "fake_printer.h"

namespace tzvio_devices {
namespace {

using testing::MatchesRegex;

// A call's result and the error that it left: 0 when it succeeded.
struct Result {
  long value;
  int error;

  bool operator==(const Result&) const = default;
};

void PrintTo(const Result& result, std::ostream* stream) {
  *stream << result.value << ", error " << result.error;
}

template <typename Call>
Result result_of(const Call& call) {
  errno = 0;
  const long value = call();
  return {value, value < 0 ? errno : 0};
}

constexpr Result done(long value = 0) {
  return {value, 0};
}
constexpr Result failed(int error) {
  return {-1, error};
}

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class DeviceTest : public testing::Test {
 protected:
  explicit DeviceTest(const char* name) : printer_(name) {}
  ~DeviceTest() override {
    if (device_ >= 0) close(device_);
  }

  Result open_device(int flags = O_RDWR | O_NOCTTY) {
    const Result result = result_of([&] { return open(printer_.name(), flags); });
    device_ = static_cast<int>(result.value);
    if (device_ >= 0) printer_.take_connection();
    return result;
  }

  Result write_bytes(std::string_view bytes) const {
    return result_of([&] { return write(device_, bytes.data(), bytes.size()); });
  }

  Result read_bytes(std::string& bytes) const {
    std::array<char, 256> buffer;
    const Result result = result_of([&] { return read(device_, buffer.data(), buffer.size()); });
    bytes.assign(buffer.data(), result.value > 0 ? static_cast<std::size_t>(result.value) : 0);
    return result;
  }

  Result read_any() const {
    std::string ignored;
    return read_bytes(ignored);
  }

  template <typename Argument>
  Result control(unsigned long request, Argument* argument) const {
    return result_of([&] { return ioctl(device_, request, argument); });
  }

  FakePrinter printer_;
  int device_ = -1;
};

class SerialDevice : public DeviceTest {
 protected:
  SerialDevice() : DeviceTest(kSerialName) {}

  bool dsr() const {
    int lines = 0;
    EXPECT_EQ(control(TIOCMGET, &lines), done());
    return (lines & TIOCM_DSR) != 0;
  }
};

TEST_F(SerialDevice, carries_bytes_both_ways) {
  ASSERT_EQ(open_device().error, 0);
  EXPECT_EQ(write_bytes("to the printer"), done(14));
  EXPECT_EQ(printer_.receive(14), "to the printer");
  printer_.send("back");
  std::string bytes;
  EXPECT_EQ(read_bytes(bytes), done(4));
  EXPECT_EQ(bytes, "back");
}

TEST_F(SerialDevice, tells_how_many_bytes_wait_and_blocks_only_if_asked_to) {
  ASSERT_EQ(open_device(O_RDWR | O_NONBLOCK).error, 0);
  EXPECT_EQ(read_any(), failed(EAGAIN));
  printer_.send("abc");
  int waiting = 0;
  EXPECT_EQ(control(FIONREAD, &waiting), done());
  EXPECT_EQ(waiting, 3);
}

TEST_F(SerialDevice, is_a_terminal_that_keeps_its_settings) {
  ASSERT_EQ(open_device().error, 0);
  EXPECT_EQ(isatty(device_), 1);
  termios settings{};
  ASSERT_EQ(tcgetattr(device_, &settings), 0);
  cfsetspeed(&settings, B19200);
  settings.c_cflag |= PARENB;
  settings.c_cc[VMIN] = 7;
  ASSERT_EQ(tcsetattr(device_, TCSANOW, &settings), 0);
  termios again{};
  ASSERT_EQ(tcgetattr(device_, &again), 0);
  EXPECT_EQ(cfgetospeed(&again), speed_t{B19200});
  EXPECT_EQ(again.c_cflag, settings.c_cflag);
  EXPECT_EQ(again.c_cc[VMIN], 7);
}

TEST_F(SerialDevice, shows_dsr_while_the_printer_has_power_and_takes_bytes) {
  ASSERT_EQ(open_device().error, 0);
  EXPECT_TRUE(dsr());
  printer_.page().signals = kUnpowered;
  EXPECT_FALSE(dsr());
  printer_.page().signals = 0;
  EXPECT_TRUE(dsr());
  printer_.page().room = 0;
  EXPECT_FALSE(dsr());
}

TEST_F(SerialDevice, forgets_input_that_is_flushed) {
  ASSERT_EQ(open_device(O_RDWR | O_NONBLOCK).error, 0);
  printer_.send("old");
  EXPECT_EQ(tcflush(device_, TCOFLUSH), 0);
  printer_.send("older");
  EXPECT_EQ(tcflush(device_, TCIOFLUSH), 0);
  EXPECT_EQ(read_any(), failed(EAGAIN));
  printer_.send("new");
  EXPECT_EQ(read_any(), done(3));
}

TEST_F(SerialDevice, is_drained_when_the_printer_has_every_byte) {
  ASSERT_EQ(open_device().error, 0);
  ASSERT_EQ(write_bytes("slowly"), done(6));
  std::string received;
  std::thread printer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    received = printer_.receive(6);
  });
  EXPECT_EQ(tcdrain(device_), 0);
  EXPECT_EQ(printer_.waiting(), 0U);
  printer.join();
  EXPECT_EQ(received, "slowly");
}

TEST_F(SerialDevice, is_the_same_behind_a_copy_and_not_behind_a_number_used_again) {
  ASSERT_EQ(open_device().error, 0);
  const int copy = dup(device_);
  EXPECT_EQ(isatty(copy), 1);
  close(std::exchange(device_, -1));
  EXPECT_EQ(isatty(copy), 1);
  const int file = open("/dev/null", O_RDWR);
  ASSERT_EQ(dup2(file, copy), copy);
  EXPECT_EQ(isatty(copy), 0);
  EXPECT_EQ(write(copy, "x", 1), 1);
  close(file);
  close(copy);
}

TEST_F(SerialDevice, gives_an_error_and_no_signal_when_the_printer_has_hung_up) {
  ASSERT_EQ(open_device().error, 0);
  printer_.hang_up();
  EXPECT_EQ(write_bytes("x"), failed(EIO));
  EXPECT_EQ(read_any(), failed(EIO));
}

class ParallelDevice : public DeviceTest {
 protected:
  ParallelDevice() : DeviceTest(kParallelName) {}

  Result claim() const { return control(PPCLAIM, static_cast<void*>(nullptr)); }
  Result release() const { return control(PPRELEASE, static_cast<void*>(nullptr)); }
  Result negotiate(int mode) const { return control(PPNEGOT, &mode); }
  int status() const {
    unsigned char value = 0;
    EXPECT_EQ(control(PPRSTATUS, &value), done());
    return value;
  }
  void open_and_claim(int flags = O_RDWR | O_NONBLOCK) {
    ASSERT_EQ(open_device(flags).error, 0);
    ASSERT_EQ(claim(), done());
  }
};

constexpr int kReady = 0x88;  // no error, not busy

TEST_F(ParallelDevice, does_nothing_before_it_is_claimed) {
  ASSERT_EQ(open_device().error, 0);
  unsigned char value = 0;
  EXPECT_EQ(write_bytes("x"), failed(EINVAL));
  EXPECT_EQ(read_any(), failed(EINVAL));
  EXPECT_EQ(control(PPRSTATUS, &value), failed(EINVAL));
  EXPECT_EQ(negotiate(IEEE1284_MODE_NIBBLE), failed(EINVAL));
  EXPECT_EQ(claim(), done());
  EXPECT_EQ(claim(), failed(EINVAL)) << "claimed already";
  EXPECT_EQ(write_bytes("x"), done(1));
  EXPECT_EQ(release(), done());
  EXPECT_EQ(write_bytes("x"), failed(EINVAL));
}

TEST_F(ParallelDevice, may_refuse_the_claim) {
  printer_.page().signals = kClaimRefused;
  ASSERT_EQ(open_device().error, 0);
  EXPECT_EQ(claim(), failed(ENXIO));
}

TEST_F(ParallelDevice, gives_data_in_nibble_mode_only) {
  open_and_claim();
  printer_.send("answer");
  EXPECT_EQ(read_any(), failed(EIO));
  EXPECT_EQ(negotiate(IEEE1284_MODE_NIBBLE), done());
  EXPECT_EQ(read_any(), done(6));
  EXPECT_EQ(read_any(), failed(EAGAIN));
  EXPECT_EQ(negotiate(IEEE1284_MODE_COMPAT), done());
  EXPECT_EQ(read_any(), failed(EIO));
}

TEST_F(ParallelDevice, leaves_nibble_mode_for_a_write) {
  open_and_claim();
  ASSERT_EQ(negotiate(IEEE1284_MODE_NIBBLE), done());
  EXPECT_EQ(write_bytes("x"), done(1));
  EXPECT_EQ(read_any(), failed(EIO));
}

TEST_F(ParallelDevice, may_refuse_nibble_mode_for_a_while_or_for_ever) {
  open_and_claim();
  printer_.page().nibble_refusals = 2;
  EXPECT_EQ(negotiate(IEEE1284_MODE_NIBBLE), failed(EIO));
  EXPECT_EQ(negotiate(IEEE1284_MODE_COMPAT), done());
  EXPECT_EQ(negotiate(IEEE1284_MODE_NIBBLE), failed(EIO));
  EXPECT_EQ(negotiate(IEEE1284_MODE_NIBBLE), done());
  printer_.page().signals = kNibbleRefused;
  EXPECT_EQ(negotiate(IEEE1284_MODE_NIBBLE), failed(EIO));
  EXPECT_EQ(negotiate(IEEE1284_MODE_EPP), failed(EIO)) << "a mode that is not played";
}

TEST_F(ParallelDevice, shows_the_printer_in_its_status_register) {
  open_and_claim();
  EXPECT_EQ(status() & kReady, kReady);
  printer_.page().signals = kError | kPaperOut;
  EXPECT_EQ(status() & (kReady | PARPORT_STATUS_PAPEROUT), 0x80 | PARPORT_STATUS_PAPEROUT);
  printer_.page().signals = 0;
  printer_.page().room = 0;
  EXPECT_EQ(status() & kReady, 0x08);
  printer_.page().room = kNoLimit;
  printer_.page().signals = kUnpowered;
  EXPECT_EQ(status() & kReady, 0);
}

TEST_F(ParallelDevice, takes_what_there_is_room_for_and_is_busy_then) {
  open_and_claim();
  printer_.page().room = 40;
  EXPECT_EQ(write_bytes(std::string(100, 'x')), done(40));
  EXPECT_EQ(status() & kReady, 0x08);
  EXPECT_EQ(write_bytes(std::string(60, 'x')), done(0));
  EXPECT_EQ(printer_.waiting(), 40U);
  printer_.page().room = kNoLimit;
  EXPECT_EQ(write_bytes(std::string(60, 'x')), done(60));
  EXPECT_EQ(printer_.receive(100), std::string(100, 'x'));
}

TEST_F(ParallelDevice, makes_a_blocking_write_wait_while_it_is_busy) {
  open_and_claim(O_RDWR);
  printer_.page().room = 0;
  std::thread printer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    printer_.page().room = kNoLimit;
  });
  EXPECT_EQ(write_bytes("at last"), done(7));
  printer.join();
}

TEST_F(ParallelDevice, takes_nothing_when_nobody_reads) {
  open_and_claim();
  long taken = 0;
  Result result = done(1);
  while (result.value > 0) {
    result = write_bytes(std::string(64, 'x'));
    taken += result.value;
  }
  EXPECT_EQ(result, done(0));
  EXPECT_GT(taken, 0);
  EXPECT_EQ(printer_.waiting(), static_cast<std::size_t>(taken));
}

class UsbDevice : public DeviceTest {
 protected:
  UsbDevice() : DeviceTest(kUsbName) {}
};

TEST_F(UsbDevice, wakes_a_blocking_read_with_the_bytes) {
  ASSERT_EQ(open_device().error, 0);
  std::thread printer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    printer_.send("\x14");
  });
  std::string bytes;
  EXPECT_EQ(read_bytes(bytes), done(1));
  EXPECT_EQ(bytes, "\x14");
  printer.join();
}

TEST_F(UsbDevice, is_waited_for_like_any_other) {
  ASSERT_EQ(open_device().error, 0);
  fd_set readable;
  timeval at_once{};
  FD_ZERO(&readable);
  FD_SET(device_, &readable);
  EXPECT_EQ(select(device_ + 1, &readable, nullptr, nullptr, &at_once), 0);
  printer_.send("x");
  FD_SET(device_, &readable);
  EXPECT_EQ(select(device_ + 1, &readable, nullptr, nullptr, nullptr), 1);
}

TEST_F(UsbDevice, is_no_terminal) {
  ASSERT_EQ(open_device().error, 0);
  termios settings{};
  EXPECT_EQ(result_of([&] { return tcgetattr(device_, &settings); }), failed(ENOTTY));
  EXPECT_EQ(result_of([&] { return tcflush(device_, TCIOFLUSH); }), failed(ENOTTY));
}

TEST_F(UsbDevice, is_lost_with_its_node_and_found_again_with_it) {
  ASSERT_EQ(open_device().error, 0);
  printer_.page().signals = kGone;
  printer_.hang_up();
  EXPECT_EQ(write_bytes("x"), failed(ENODEV));
  EXPECT_EQ(read_any(), failed(ENODEV));
  EXPECT_EQ(result_of([] { return open(kUsbName, O_RDWR); }), failed(ENOENT));
  printer_.page().signals = 0;
  close(device_);
  ASSERT_EQ(open_device().error, 0);
  EXPECT_EQ(write_bytes("x"), done(1));
}

TEST_F(UsbDevice, wakes_a_blocking_read_when_the_node_goes) {
  ASSERT_EQ(open_device().error, 0);
  std::thread printer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    printer_.hang_up();
  });
  EXPECT_EQ(read_any(), failed(ENODEV));
  printer.join();
}

TEST_F(UsbDevice, may_take_nothing) {
  ASSERT_EQ(open_device().error, 0);
  printer_.page().signals = kTakesNothing;
  EXPECT_EQ(write_bytes("x"), done(0));
  printer_.page().signals = 0;
  EXPECT_EQ(write_bytes("x"), done(1));
}

TEST_F(UsbDevice, is_opened_by_every_way_of_opening) {
  const auto opens = [&](int descriptor) {
    if (descriptor < 0) return false;
    printer_.take_connection();
    close(descriptor);
    printer_.hang_up();
    return true;
  };
  EXPECT_TRUE(opens(open64(kUsbName, O_RDWR)));
  EXPECT_TRUE(opens(openat(AT_FDCWD, kUsbName, O_RDWR)));
  EXPECT_TRUE(opens(openat64(AT_FDCWD, kUsbName, O_RDWR)));
  ASSERT_TRUE(opens(open(kUsbName, O_RDWR | O_CLOEXEC)));
}

TEST_F(UsbDevice, is_closed_on_exec_if_asked_to) {
  for (const int flag : {0, O_CLOEXEC}) {
    ASSERT_EQ(open_device(O_RDWR | flag).error, 0);
    EXPECT_EQ(fcntl(device_, F_GETFD) == FD_CLOEXEC, flag != 0);
    close(std::exchange(device_, -1));
    printer_.hang_up();
  }
}

TEST(OtherFiles, are_what_they_are) {
  const int file = open("/dev/null", O_RDWR | O_CREAT, 0600);
  ASSERT_GE(file, 0);
  std::array<char, 4> buffer{};
  EXPECT_EQ(write(file, "abc", 3), 3);
  EXPECT_EQ(read(file, buffer.data(), buffer.size()), 0);
  EXPECT_EQ(isatty(file), 0);
  close(file);
  EXPECT_EQ(result_of([] { return open("/no/such/file", O_RDONLY); }), failed(ENOENT));
  EXPECT_EQ(result_of([] { return open("/dev/usb/lp-not-played", O_RDWR); }), failed(ENOENT));
  EXPECT_EQ(result_of([&] { return read(file, buffer.data(), 1); }), failed(EBADF));
}

// A program of its own, which reads the environment afresh.
class OtherProgram : public testing::Test {
 protected:
  int run_till(const std::string& devices, const std::string& name,
               const std::string& bytes) const {
    const pid_t pid = fork();
    if (pid == 0) {
      setenv("TZVIO_DEVICES", devices.c_str(), 1);
      setenv("TZVIO_DEVICE_TRACE", trace_.c_str(), 1);
      const int errors = open(errors_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      dup2(errors, STDERR_FILENO);
      execl("/proc/self/exe", "till", "--till", name.c_str(), bytes.c_str(), nullptr);
      _exit(EXIT_FAILURE);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  const std::string trace_ = std::string(std::getenv(kFolderVariable)) + "/trace";
  const std::string errors_ = std::string(std::getenv(kFolderVariable)) + "/errors";
};

TEST_F(OtherProgram, is_told_in_one_line_what_is_wrong_with_its_environment) {
  for (const char* wrong : {"/dev/lp0", "/dev/lp0=", "=socket", "/dev/null=socket",
                            "/dev/lp1=good:/dev/lp0", "/dev/lp0=a::/dev/lp1=b"}) {
    EXPECT_EQ(run_till(wrong, "/dev/lp0", "x"), ENODEV) << wrong;
    EXPECT_THAT(content_of(errors_),
                MatchesRegex("libtzvio-devices: TZVIO_DEVICES must be [^\n]*\n"))
        << wrong;
  }
  const std::string too_long = "/dev/lp0=" + std::string(108, 'x');
  EXPECT_EQ(run_till(too_long, "/dev/lp0", "x"), ENODEV);
}

TEST_F(OtherProgram, is_told_when_no_printer_is_there) {
  EXPECT_EQ(run_till("/dev/lp0=/no/such/socket", "/dev/lp0", "x"), ENODEV);
  EXPECT_EQ(content_of(errors_), "libtzvio-devices: no virtual printer is at /no/such/socket\n");
}

TEST_F(OtherProgram, opens_other_files_whatever_its_environment_is) {
  EXPECT_EQ(run_till("wrong", "/dev/null", "x"), 0);
  EXPECT_EQ(run_till("", "/dev/null", "x"), 0);
}

TEST_F(OtherProgram, leaves_a_line_for_each_call) {
  FakePrinter printer(kUsbName);
  EXPECT_EQ(run_till(environment_for_all_devices(), kUsbName, "\x1b@A"), 0);
  const std::string time = "[0-9][0-9]:[0-9][0-9]:[0-9][0-9].[0-9]+ ";
  const std::string name = "/dev/usb/lp-preload-test";
  EXPECT_THAT(content_of(trace_), MatchesRegex(time + "open " + name + " = [0-9]+\n" + time +
                                               "write " + name + " = 3 1B 40 41\n"));
  unlink(trace_.c_str());
}

}  // namespace
}  // namespace tzvio_devices
