// Loading and unloading for real: this program is not linked to the library.
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <utility>

namespace {

constexpr char kPort[] = "/dev/ttyS-unload";

std::string terminal;          // what stands behind the port's name
std::atomic<int> opened = -1;  // the descriptor that the library got
int* flushes = nullptr;        // how often what waits on it was discarded, by whatever process

}  // namespace

extern "C" int tcflush(int device, int queue) noexcept {
  if (flushes != nullptr) ++*flushes;
  static const auto libc = reinterpret_cast<int (*)(int, int)>(dlsym(RTLD_NEXT, "tcflush"));
  return libc(device, queue);
}

extern "C" int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const auto mode = static_cast<mode_t>(va_arg(arguments, int));
  va_end(arguments);
  static const auto libc =
      reinterpret_cast<int (*)(const char*, int, ...)>(dlsym(RTLD_NEXT, "open"));
  if (std::strcmp(path, kPort) != 0) return libc(path, flags, mode);
  return opened = libc(terminal.c_str(), flags, mode);
}

namespace {

/// A printer that answers every read with a status byte of good health.
class Printer {
 public:
  Printer() {
    char path[64];
    EXPECT_EQ(openpty(&master_, &slave_, path, nullptr, nullptr), 0);
    terminal = path;
    thread_ = std::thread([this] { serve(); });
  }
  ~Printer() {
    done_ = true;
    thread_.join();
    close(master_);
    close(slave_);
  }
  Printer(const Printer&) = delete;
  Printer& operator=(const Printer&) = delete;

 private:
  void serve() const {
    pollfd waiting{master_, POLLIN, 0};
    while (!done_) {
      if (poll(&waiting, 1, 10) <= 0) continue;
      char buffer[256];
      if (read(master_, buffer, sizeof buffer) <= 0) continue;
      EXPECT_EQ(write(master_, "\x12", 1), 1);
    }
  }

  int master_ = -1;
  int slave_ = -1;
  std::atomic<bool> done_ = false;
  std::thread thread_;
};

class Unload : public testing::Test {
 protected:
  Unload() : library_(dlopen(TZVIO_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(library_, nullptr) << dlerror();
  }
  ~Unload() override {
    if (library_ != nullptr) unload();
  }

  template <typename... Arguments>
  long call(const char* operation, Arguments... arguments) {
    const auto function =
        reinterpret_cast<long (*)(const char*, Arguments...)>(dlsym(library_, operation));
    return function(kPort, arguments...);
  }

  void unload() { EXPECT_EQ(dlclose(std::exchange(library_, nullptr)), 0); }

  static bool is_mapped() {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
      if (line.find("libTZVIO") != std::string::npos) return true;
    }
    return false;
  }

  static bool port_is_open() { return fcntl(opened, F_GETFD) != -1 || errno != EBADF; }

  Printer printer_;
  void* library_;
};

TEST_F(Unload, closes_the_port) {
  ASSERT_EQ(call("OpenPort", "9600,none,8,1,none"), 0);
  EXPECT_TRUE(port_is_open());
  unload();
  EXPECT_FALSE(port_is_open());
  EXPECT_FALSE(is_mapped());
}

TEST_F(Unload, ends_a_running_monitor_and_an_open_transaction) {
  ASSERT_EQ(call("OpenPort", "9600,none,8,1,none"), 0);
  ASSERT_EQ(call("ClaimDevice", 0L), 0);
  ASSERT_EQ(call("TransactionPrint", 1L), 0);
  ASSERT_EQ(call("PrintNormal", "x"), 0);
  unload();
  EXPECT_FALSE(port_is_open());
  EXPECT_FALSE(is_mapped());
  // A thread of the library's that still ran would run into nothing now.
  std::this_thread::sleep_for(std::chrono::milliseconds(600));
}

/// Its exit status, or -1 when it does not end in time.
int wait_for(pid_t child) {
  for (int tenths = 0; tenths < 100; ++tenths) {
    int status = 0;
    if (waitpid(child, &status, WNOHANG) == child)
      return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  return -1;
}

TEST_F(Unload, of_a_forked_child_disturbs_nothing) {
  ASSERT_EQ(call("OpenPort", "9600,none,8,1,none"), 0);
  ASSERT_EQ(call("ClaimDevice", 0L), 0);
  flushes = static_cast<int*>(
      mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  const pid_t child = fork();
  if (child == 0) std::exit(7);  // which runs the library's unloading
  EXPECT_EQ(wait_for(child), 7);
  const pid_t closer = fork();
  if (closer == 0) std::exit(static_cast<int>(call("ClosePort")));
  EXPECT_EQ(wait_for(closer), 0);
  EXPECT_EQ(*flushes, 0);
  EXPECT_EQ(call("WritePort", "x", 1L), 1);
  unload();
  EXPECT_EQ(*flushes, 1);
  munmap(std::exchange(flushes, nullptr), sizeof(int));
}

TEST_F(Unload, of_a_forked_child_ends_the_monitor_of_its_own_alone) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the thread sanitizer lets no forked child start a thread";
#endif
  ASSERT_EQ(call("OpenPort", "9600,none,8,1,none"), 0);
  ASSERT_EQ(call("ClaimDevice", 0L), 0);
  const pid_t child = fork();
  if (child == 0) {
    call("ClosePort");
    // Which of the two processes gets the printer's answers is open.
    call("OpenPort", "9600,none,8,1,none");
    const long claimed = call("ClaimDevice", 0L);
    std::exit(claimed == 0 ? 7 : 1);
  }
  EXPECT_EQ(wait_for(child), 7);
  EXPECT_EQ(call("WritePort", "x", 1L), 1);
  unload();
  EXPECT_FALSE(is_mapped());
}

TEST_F(Unload, without_a_port_leaves_nothing_to_do) {
  unload();
  EXPECT_FALSE(is_mapped());
}

}  // namespace
