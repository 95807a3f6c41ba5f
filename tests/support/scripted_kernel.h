// A kernel under the test's control.
//
// The test program defines open(), write(), ioctl(), usleep() and the other calls that the library
// makes (interpose.cpp); the dynamic linker prefers the program's definitions to libc's. A call on
// a device that a test has plugged in, or on a descriptor opened for one, is played by the
// `Kernel` here; every other call goes on to libc. So a test can see each call in order, let any
// of them fail, shorten or stall, and sleep for six seconds in no time.
//
//   Kernel& kernel = Kernel::instance();           // reset by the fixture before each test
//   Device& printer = kernel.plug("/dev/ttyS0");
//   printer.answer("\x10\x04\x02", "\x12");        // replies to that very write
//   kernel.fail("tcsetattr", EIO);                 // the next tcsetattr fails
//   OpenPort("/dev/ttyS0", "9600,none,8,1,none");
//   EXPECT_THAT(kernel.log("tcsetattr"), ElementsAre("tcsetattr now = -1"));
//
// Reads of a USB node and of a connection block: the clock goes on to the next thing that is
// scheduled, until one brings a byte. When nothing is scheduled such a read fails with EAGAIN,
// which no real one does, because a test cannot wait for ever.
//
// The clock stands still but for sleeps. What is scheduled with `at()` happens when a sleep passes
// its time, in order. Threads that the library starts take part: one thread runs at a time, until
// it sleeps, joins or ends, and then the one whose sleep ends first runs on. So a test with a
// monitor behaves the same each time, and its half seconds cost nothing.
#pragma once

#include <pthread.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <termios.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace testkit {

/// One call that the library made.
struct Call {
  std::string name;    ///< "open", "write", ...
  std::string detail;  ///< path, bytes in hex, request; empty when there is nothing to tell
  long result = 0;
  int64_t at_ms = 0;  ///< the clock when it was made
  std::string bytes;  ///< what a write or read moved

  /// "name detail = result", without " = 0".
  std::string line() const;
};

/// A device or an address with a printer behind it, of the kind that its name says. Everything is
/// public to the test.
class Device {
 public:
  std::string output;               ///< all bytes written so far
  std::string input;                ///< bytes that wait to be read
  std::vector<std::string> writes;  ///< the same as `output`, write by write
  std::function<void()> on_write;   ///< runs after each write
  /// When set, what is behind the device takes the bytes of a write itself, in place of the answers
  /// and logs above: how many of them, or -1 with errno set.
  std::function<long(std::string_view)> take;

  // Serial.
  termios line{};       ///< the terminal attributes, as last set
  int modem_lines = 0;  ///< TIOCM_... bits
  bool has_modem_lines = true;

  // Parallel: a printer that is online and answers in nibble mode.
  unsigned char status_lines = 0x88;  ///< 08 no error, 80 not busy
  bool has_nibble_mode = true;
  int mode = -1;  ///< as last negotiated: 256 compatibility, 0 nibble

  // Network: what connecting to it comes to.
  enum class Connect { pending, at_once, refused, never };
  Connect connect = Connect::pending;

  /// Whenever one write, or USB's pieces of one, consists of exactly `query`, `reply` arrives
  /// `delay_ms` later.
  void answer(std::string_view query, std::string_view reply, int64_t delay_ms = 0);
  /// Forgets all answers: the printer is mute.
  void mute() { answers_.clear(); }
  /// Answers an open as a printer that is ready.
  void answer_ready();
  /// Answers an open, every query, and the command "x" that tests send; confirms jobs, and stands
  /// ready on its lines.
  void answer_everything();
  /// Confirms every process-ID request, wherever in a write it stands, `delay_ms` later. One in a
  /// frame it does not: a frame has an answer of its own.
  void confirm_jobs(int64_t delay_ms = 0);

 private:
  friend class Kernel;
  struct Answer {
    std::string query, reply;
    int64_t delay_ms;
    bool anywhere;  // in a longer write, too
  };
  int times_asked(const Answer& answer, std::size_t known) const;

  std::vector<Answer> answers_;
  std::string message_;     // what was written in one go
  int64_t message_us_ = 0;  // when
};

class Kernel {
 public:
  static Kernel& instance();

  /// Forgets devices, descriptors, faults, calls and the clock. `active` turns the clock on: only
  /// then are sleeps virtual.
  void reset(bool active);

  /// "/dev/ttyS0", "/dev/lp0", "/dev/usb/lp0" or "SOCKET:10.0.0.1".
  Device& plug(const std::string& path);

  /// What is open under that name fails from now on, and a device does not open any more: a pulled
  /// USB plug (ENODEV), a connection that is reset (ECONNRESET) or shut down in order (0).
  void cut(const std::string& path, int error);
  /// It opens again.
  void plug_back(const std::string& path);
  /// The number of the next descriptor, or the next that is free; 700 at first.
  void number_descriptors_from(int first) { next_descriptor_ = first; }

  /// The `nth` next call of that name fails with `error`, without any effect.
  void fail(const std::string& name, int error, int nth = 1);
  /// The `nth` next call of that name moves at most `bytes` bytes.
  void shorten(const std::string& name, std::size_t bytes, int nth = 1);

  /// The same for the `nth` next system call of any name, but for those whose failure ends the
  /// process (fcntl, pthread_create).
  void fail_any(int error, int nth) { fail("", error, nth); }
  void shorten_any(std::size_t bytes, int nth) { shorten("", bytes, nth); }
  /// How many calls there were that `fail_any()` could have met.
  int fallible_calls() const { return fallible_calls_; }

  /// Lets the test's own thread sleep, so that the others run.
  void run_for(int64_t ms) { sleep_us("test", ms * 1000); }
  /// How many threads the library has running.
  std::size_t threads() const { return threads_.size() - 1; }

  /// Does something when the clock reaches that many milliseconds.
  void at(int64_t ms, std::function<void()> action);

  int64_t now_ms() const { return now_us_ / 1000; }
  const std::vector<Call>& calls() const { return calls_; }
  void forget_calls() { calls_.clear(); }
  /// Whether calls are logged, until the next reset: a long run would fill the memory with them.
  void log_calls(bool on) { logs_calls_ = on; }
  /// The lines of all calls, or of those with that name.
  std::vector<std::string> log(std::string_view name = {}) const;
  std::size_t count(std::string_view name) const { return log(name).size(); }
  std::size_t open_descriptors() const { return descriptors_.size(); }

  // What interpose.cpp calls.

  bool active() const { return active_; }
  bool knows(const char* path) const { return devices_.contains(path); }
  bool owns(int descriptor) const { return descriptors_.contains(descriptor); }
  bool has_network() const;
  int open(const char* path, int flags);
  int socket();
  int connect(int descriptor, const sockaddr* address);
  int setsockopt(int descriptor, int option, const void* value, unsigned size);
  int fcntl(int descriptor, int command, int flags);
  int select(int count, fd_set* readable, fd_set* writable, const timeval* timeout);
  ssize_t send(int descriptor, const void* bytes, std::size_t size, int flags);
  ssize_t recv(int descriptor, void* buffer, std::size_t size, int flags);
  int close(int descriptor);
  ssize_t read(int descriptor, void* buffer, std::size_t size);
  ssize_t write(int descriptor, const void* bytes, std::size_t size);
  int ioctl(int descriptor, unsigned long request, void* argument);
  int tcgetattr(int descriptor, termios* line);
  int tcsetattr(int descriptor, int actions, const termios* line);
  int tcflush(int descriptor, int queue);
  int tcdrain(int descriptor);
  void sleep_us(std::string_view name, int64_t microseconds);
  int create_thread(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                    void* argument);
  int join_thread(pthread_t thread, void** result);
  /// Takes note of a call without a device; true when it is to fail, with errno set.
  bool fails(std::string_view name);

 private:
  struct Fault {
    std::string name = {};  // empty: any
    int countdown = 0;
    int error = 0;                   // 0: none
    std::size_t at_most = SIZE_MAX;  // bytes moved
  };

  /// What a descriptor stands for.
  struct OpenFile {
    std::string path;  ///< empty: a socket that is not connected
    int flags;
    std::optional<int> lost;  ///< the error that `cut()` gave it
  };

  Device& device(int descriptor) { return *devices_.at(descriptors_.at(descriptor).path); }
  int add(std::string path, int flags);
  ssize_t take_in(std::string_view name, int descriptor, void* buffer, std::size_t size,
                  bool blocks);
  void give_answer(Device& device, const Device::Answer& answer);
  ssize_t put_out(std::string_view name, int descriptor, std::string_view given);
  bool readable(int descriptor);
  bool writable(int descriptor);
  int ioctl_parallel(Device& device, unsigned long request, void* argument);
  /// Lets time pass until the next event, at most so long; false when nothing is to come.
  bool wait_for_event(int64_t at_most_us);
  /// The fault that this call meets; none when there is no such name.
  Fault take_fault(std::string_view name);
  long record(std::string_view name, std::string detail, long result, std::string_view bytes = {});
  /// Records the call; true when a fault makes it fail.
  bool fault(std::string_view name, const std::string& detail, const Fault& fault);
  void run_events_until(int64_t us);

  /// A thread that takes part: when it is to run on, and its place among those of equal time.
  struct Participant {
    pthread_t thread{};
    int64_t wake_us = 0;
    uint64_t order = 0;
    bool ended = false;
    std::condition_variable turn;
  };
  struct NewThread;
  static void* run_thread(void* argument);
  /// Lets the participant run that is due first, and waits for the own turn again.
  void hand_over(std::unique_lock<std::mutex>& lock, Participant* self);
  Participant* due_first();

  bool active_ = false;
  bool logs_calls_ = true;
  std::mutex turns_;
  std::vector<std::unique_ptr<Participant>> threads_;  // the test's own first
  Participant* running_ = nullptr;
  uint64_t orders_ = 0;
  int64_t now_us_ = 0;
  int next_descriptor_ = 0;
  std::map<std::string, std::unique_ptr<Device>, std::less<>> devices_;
  std::map<int, OpenFile> descriptors_;
  std::set<std::string> unplugged_;
  std::vector<Fault> faults_;
  int fallible_calls_ = 0;
  std::multimap<int64_t, std::function<void()>> events_;
  std::vector<Call> calls_;
};

/// The request that a printer answers when all before it is printed, and its answer.
inline const std::string kProcessIdRequest(
    "\x1d(H\x06\x00\x30\x30"
    "FFFF",
    11);
inline const std::string kProcessIdAnswer(
    "\x37\x22"
    "FFFF\x00",
    7);

/// Lets a printer report whatever changes, and two of its reports.
inline const std::string kEnableReports = "\x1d\x61\xff";
inline const std::string kHealthy("\x14\x00\x00\x0f", 4);
inline const std::string kCoverOpen("\x3c\x00\x00\x0f", 4);

/// "1B 40" and so on.
std::string hex(std::string_view bytes);

}  // namespace testkit
