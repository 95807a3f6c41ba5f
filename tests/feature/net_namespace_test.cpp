// A printer that vanishes without a word: its host's cable is pulled. Till and printer have a
// network of their own each, joined by a pair of virtual interfaces.
#include <gmock/gmock.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>

#include "support/exported_state.h"
#include "support/live_printer.h"
#include "tzvio.h"

namespace testkit {
namespace {

constexpr char kPort[] = "SOCKET:10.91.0.2";
constexpr char kNobody[] = "SOCKET:10.91.0.3";

bool run(const std::string& command) {
  // NOLINTNEXTLINE(cert-env33-c): fixed commands of the test
  return std::system((command + " 2>/dev/null").c_str()) == 0;
}

void write_file(const char* path, const std::string& text) {
  std::ofstream(path) << text;
}

/// Gives the process a network in which nothing is but what it makes itself.
bool enter_network_namespace() {
  const std::string identity = " " + std::to_string(getuid()) + " 1";
  if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return false;
  write_file("/proc/self/setgroups", "deny");
  write_file("/proc/self/uid_map", "0" + identity);
  return run("ip link set lo up");
}

/// The printer's host: a process in a network of its own. It has been made before any thread was.
class PrinterHost {
 public:
  PrinterHost() {
    EXPECT_EQ(pipe(orders_), 0);
    EXPECT_EQ(pipe(replies_), 0);
    process_ = fork();
    if (process_ == 0) obey();
    next_reply();
  }
  ~PrinterHost() {
    order('q');
    waitpid(process_, nullptr, 0);
  }
  PrinterHost(const PrinterHost&) = delete;
  PrinterHost& operator=(const PrinterHost&) = delete;

  pid_t process() const { return process_; }
  /// 's' starts the printer, 'd' pulls the cable, 'u' plugs it in, 'q' ends.
  void order(char what) {
    EXPECT_EQ(write(orders_[1], &what, 1), 1);
    if (what != 'q') next_reply();
  }
  /// The port on which the printer listens, once it is started.
  std::string settings() const { return std::to_string(port_number_); }

 private:
  [[noreturn]] void obey() {
    bool ready = unshare(CLONE_NEWNET) == 0;
    reply(0);
    SocketPrinter printer(INADDR_ANY);
    char what = 0;
    while (read(orders_[0], &what, 1) == 1 && what != 'q') {
      if (what == 's') {
        ready = ready && run("ip link set lo up && ip addr add 10.91.0.2/24 dev tzv1");
        ready = ready && run("ip link set tzv1 up");
        printer.start();
      }
      if (what == 'd') run("ip link set tzv1 down");
      if (what == 'u') run("ip link set tzv1 up");
      reply(ready ? std::atoi(printer.settings().c_str()) : -1);  // NOLINT(cert-err34-c)
    }
    _exit(0);
  }
  void reply(int number) { (void)!write(replies_[1], &number, sizeof number); }
  void next_reply() { EXPECT_EQ(read(replies_[0], &port_number_, sizeof port_number_), 4); }

  int orders_[2] = {-1, -1};
  int replies_[2] = {-1, -1};
  pid_t process_ = -1;
  int port_number_ = 0;
};

class NetNamespace : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!enter_network_namespace()) return;
    host = std::make_unique<PrinterHost>().release();
    const std::string pid = std::to_string(host->process());
    joined = run("ip link add tzv0 type veth peer name tzv1 netns " + pid) &&
             run("ip addr add 10.91.0.1/24 dev tzv0") && run("ip link set tzv0 up");
    if (joined) host->order('s');
    joined = joined && host->settings() != "-1";
  }
  static void TearDownTestSuite() { delete host; }

  void SetUp() override {
    if (!joined) GTEST_SKIP() << "this system gives no networks of one's own";
  }

  /// How long a call takes, in milliseconds.
  template <typename Call>
  int64_t time(Call call) {
    const auto started = std::chrono::steady_clock::now();
    call();
    const auto ended = std::chrono::steady_clock::now();
    return std::chrono::duration_cast<std::chrono::milliseconds>(ended - started).count();
  }

  static inline PrinterHost* host = nullptr;
  static inline bool joined = false;
};

TEST_F(NetNamespace, an_address_where_nobody_answers_gives_minus_1_after_a_second) {
  long result = 0;
  const int64_t took = time([&] { result = OpenPort(kNobody, "9100"); });
  EXPECT_EQ(result, -1);
  EXPECT_GE(took, 1000);
  EXPECT_LT(took, 3000);
  EXPECT_EQ(GetError(kNobody), -1) << "not open";
}

TEST_F(NetNamespace, a_printer_that_vanishes_is_found_again_when_it_is_back) {
  const std::string settings = host->settings();
  ASSERT_EQ(OpenPort(kPort, settings.c_str()), 0);
  EXPECT_EQ(WritePort(kPort, "x", 1), 1);
  host->order('d');
  // Nothing tells of it yet: what is sent waits in the system.
  EXPECT_EQ(WritePort(kPort, "x", 1), 1);
  EXPECT_EQ(GetError(kPort), 0);
  long result = 0;
  EXPECT_GE(time([&] { result = InitNET(kPort); }), 1000);
  EXPECT_EQ(result, -1);
  EXPECT_EQ(WritePort(kPort, "x", 1), -2);
  host->order('u');
  // The interfaces take a moment to see each other.
  for (int tries = 0; tries < 10 && result != 1; ++tries) result = WritePort(kPort, "x", 1);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(ReleaseDevice(kPort), 0);
  EXPECT_EQ(ClosePort(kPort), 0);
}

}  // namespace
}  // namespace testkit
