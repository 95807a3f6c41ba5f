// The program on a TCP port, with all that can happen to a connection.

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "program_fixture.h"

namespace virtual_printer {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
using namespace std::string_literals;
using namespace std::string_view_literals;

// The till's end. Waits for what it expects, for long; says how it ended.
class Caller {
 public:
  explicit Caller(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    if (connect(socket_, generic, sizeof address) < 0) error_ = errno;
    const timeval patience{30, 0};
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  }
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;
  ~Caller() { close(socket_); }

  bool is_connected() const { return error_ == 0; }
  int error() const { return error_; }

  // Whether the connection took them all.
  bool try_send(std::string_view bytes) const {
    return ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(bytes.size());
  }
  void send(std::string_view bytes) const { ASSERT_TRUE(try_send(bytes)); }

  // So many bytes, or fewer when the connection ended before.
  std::string receive(std::size_t length) {
    std::string bytes(length, '\0');
    std::size_t received = 0;
    while (received < length) {
      const ssize_t some = recv(socket_, &bytes[received], length - received, 0);
      if (some < 0) error_ = errno;
      if (some <= 0) break;
      received += static_cast<std::size_t>(some);
    }
    bytes.resize(received);
    return bytes;
  }

  // Waits for the printer's end of the connection; 0 for an orderly one, else the error.
  int end() {
    receive(1);
    return error_;
  }

  // As when the plug is pulled: the other end is told nothing that it would have to answer.
  void reset() const {
    const linger at_once{1, 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  }

 private:
  int socket_;
  int error_ = 0;
};

constexpr std::string_view kReportsOn = "\x1d\x61\xff";
constexpr std::string_view kProcessId =
    "\x1d(H\x06\0\x30\x30"
    "FFFF"sv;
const std::string kConfirmed = "7\"FFFF\0"s;
const std::string kHealthy = "\x14\0\0\x0f"s;

class TcpTest : public ServingTest {
 protected:
  void start_listening(std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"--listen", "0"});
    start_serving(options);
    const std::string ready = next_line();
    ASSERT_THAT(ready, MatchesRegex("ready SOCKET:127.0.0.1 [0-9]+\n"));
    port_number_ = static_cast<std::uint16_t>(std::stoi(ready.substr(ready.rfind(' '))));
  }

  int set(const std::string& name, const std::string& value) const {
    return in_child([&] {
      const std::string listen = std::to_string(port_number_);
      execl(program().c_str(), program().c_str(), "set", name.c_str(), value.c_str(), "--listen",
            listen.c_str(), nullptr);
      return 1;
    });
  }

  std::uint16_t port_number() const { return port_number_; }
  std::string text(const std::string& name) const { return content_of(in_folder(name)); }

 private:
  std::uint16_t port_number_ = 0;
};

TEST_F(TcpTest, prints_and_answers) {
  start_listening();
  Caller till(port_number());
  till.send("\x10\x04\x01Hello\n\x1bi");
  till.send(kProcessId);
  EXPECT_EQ(till.receive(8), "\x16" + kConfirmed);
  EXPECT_THAT(next_line(), HasSubstr("receipt-001.png"));
  EXPECT_EQ(text("receipt-001.txt"), "Hello\n");
  EXPECT_EQ(stop(), 0);
}

TEST_F(TcpTest, command_learns_where_its_printer_is) {
  const Outcome outcome =
      finish(start({"--listen", "127.0.0.1:0", "--", "sh", "-c",
                    "echo $VIRTUAL_PRINTER_PORT $VIRTUAL_PRINTER_SETTINGS; " + program() +
                        " set cover on --listen $VIRTUAL_PRINTER_SETTINGS"}));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.out, MatchesRegex("ready (SOCKET:127.0.0.1 [0-9]+\n)"
                                        "SOCKET:127.0.0.1 [0-9]+\ncondition cover on\n"));
}

TEST_F(TcpTest, next_connection_follows_one_that_ended) {
  start_listening();
  { Caller(port_number()).send("one\n"); }
  Caller till(port_number());
  till.send("two\n\x1bi");
  EXPECT_THAT(next_line(), HasSubstr("receipt-001.png"));
  EXPECT_EQ(text("receipt-001.txt"), "one\ntwo\n");
}

TEST_F(TcpTest, newest_connection_wins_and_what_the_old_one_sent_is_printed) {
  start_listening();
  Caller old(port_number());
  old.send(kReportsOn);
  EXPECT_EQ(old.receive(4), kHealthy);
  old.send("from the old\n");
  Caller newest(port_number());
  newest.send("from the new\n\x1bi\x10\x04\x01");
  EXPECT_EQ(newest.receive(1), "\x16") << "and no report";
  EXPECT_EQ(old.end(), 0);
  EXPECT_THAT(next_line(), HasSubstr("receipt-001.png"));
  EXPECT_EQ(text("receipt-001.txt"), "from the old\nfrom the new\n");
}

TEST_F(TcpTest, endless_sender_is_replaced_all_the_same) {
  start_listening();
  const pid_t sender = fork();
  if (sender == 0) {
    const Caller endless(port_number());
    endless.try_send("\n\x1bi");
    while (endless.try_send(std::string(1000, 'A'))) continue;
    _exit(0);
  }
  next_line();  // there is paper, so it is sending
  Caller newest(port_number());
  newest.send("\x10\x04\x01");
  EXPECT_EQ(newest.receive(1), "\x16");
  EXPECT_EQ(exit_status_of(sender), 0);
}

TEST_F(TcpTest, reset_comes_at_the_very_byte_and_the_printer_accepts_again_after_a_while) {
  start_listening({"--fault", "connection-lost@9B", "--recover-after", "50"});
  {
    Caller till(port_number());
    till.send("one\ntwo\nthree\n");
    EXPECT_EQ(till.end(), ECONNRESET);
  }
  EXPECT_EQ(next_line(), "condition connection-lost on\n");
  EXPECT_EQ(next_line(), "condition connection-lost off\n");
  Caller till(port_number());
  till.send("four\n\x1bi");
  EXPECT_THAT(next_line(), HasSubstr("receipt-001.png"));
  EXPECT_EQ(text("receipt-001.txt"), "one\ntwo\ntfour\n");
}

TEST_F(TcpTest, reset_within_a_command_does_not_spoil_the_next) {
  start_listening({"--strict", "--fault", "connection-lost@5B", "--recover-after", "0"});
  {
    Caller till(port_number());
    till.send("one\n\x1d(H\x06");
    EXPECT_EQ(till.end(), ECONNRESET);
  }
  EXPECT_EQ(next_line(), "condition connection-lost on\n");
  EXPECT_EQ(next_line(), "condition connection-lost off\n");
  Caller till(port_number());
  till.send("two\n\x1bi");
  EXPECT_THAT(next_line(), HasSubstr("receipt-001.png"));
  EXPECT_EQ(text("receipt-001.txt"), "one\ntwo\n");
  EXPECT_EQ(stop(), 0);
  EXPECT_EQ(text("errors"), "connection ended within a command: 1 bytes forgotten\n");
}

TEST_F(TcpTest, nothing_listens_while_the_connection_is_lost) {
  start_listening({"--fault", "connection-lost@0"});
  EXPECT_EQ(next_line(), "condition connection-lost on\n");
  EXPECT_EQ(Caller(port_number()).error(), ECONNREFUSED);
  EXPECT_EQ(set("connection-lost", "off"), 0);
  EXPECT_TRUE(Caller(port_number()).is_connected());
}

TEST_F(TcpTest, connection_is_unknown_to_a_printer_that_was_off_meanwhile) {
  start_listening();
  Caller till(port_number());
  till.send(kReportsOn);
  EXPECT_EQ(till.receive(4), kHealthy);
  EXPECT_EQ(set("power-off", "on"), 0);
  EXPECT_EQ(set("power-off", "off"), 0);
  EXPECT_EQ(till.end(), ECONNRESET);
  EXPECT_TRUE(Caller(port_number()).is_connected());
}

TEST_F(TcpTest, orderly_end_comes_after_the_line) {
  start_listening({"--fault", "connection-closed@1"});
  Caller till(port_number());
  till.send("one\ntwo\n");
  EXPECT_EQ(till.end(), 0);
  EXPECT_EQ(Caller(port_number()).error(), ECONNREFUSED);
  EXPECT_EQ(set("connection-closed", "off"), 0);
  Caller next(port_number());
  next.send("three\n\x1bi");
  EXPECT_EQ(next_line(), "condition connection-closed on\n");
  EXPECT_EQ(next_line(), "condition connection-closed off\n");
  EXPECT_THAT(next_line(), HasSubstr("receipt-001.png"));
  EXPECT_EQ(text("receipt-001.txt"), "one\nthree\n");
}

TEST_F(TcpTest, answers_that_were_due_do_not_go_to_the_next_connection) {
  start_listening({"--answer-delay", "3600000"});
  { Caller(port_number()).send("\x10\x04\x01\x1b#ERROR"); }
  EXPECT_EQ(next_line(), "beep\n");
  Caller next(port_number());
  next.send("\x1b#ERROR");
  EXPECT_EQ(next_line(), "beep\n");
  ASSERT_EQ(set("answer-delay", "off"), 0);
  next.send("\x1b#SENSOR");
  EXPECT_EQ(next.receive(3), "\x5f\x30\0"s);
}

TEST_F(TcpTest, busy_printer_takes_bytes_only_when_it_is_not_busy_any_more) {
  start_listening({"--fault", "busy@3B"});
  Caller till(port_number());
  till.send("ab\n\x10\x04\x01");
  EXPECT_EQ(next_line(), "condition busy on\n");
  EXPECT_EQ(set("mute", "on"), 0);
  EXPECT_EQ(set("mute", "off"), 0);
  EXPECT_EQ(set("busy", "off"), 0);
  EXPECT_EQ(till.receive(1), "\x16");
}

TEST_F(TcpTest, slow_line_takes_its_time_and_loses_nothing) {
  start_listening({"--slow", "1000"});
  Caller till(port_number());
  const auto start = std::chrono::steady_clock::now();
  till.send(std::string(200, '\n') + "\x1bi" + std::string(kProcessId));
  EXPECT_EQ(till.receive(7), kConfirmed);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(190));
}

TEST_F(TcpTest, slow_line_stalls_its_sender_and_can_be_hurried) {
  start_listening({"--slow", "1"});
  const pid_t sender = fork();
  if (sender == 0) {
    const Caller till(port_number());
    const std::string job(8000000, '\n');  // more than both systems hold between them
    _exit(till.try_send(job) ? 1 : 0);
  }
  EXPECT_EQ(waitpid(sender, nullptr, WNOHANG), 0);
  EXPECT_EQ(set("connection-lost", "on"), 0);
  EXPECT_EQ(exit_status_of(sender), 0);
}

TEST_F(TcpTest, line_is_changed_while_it_runs) {
  start_listening();
  Caller till(port_number());
  EXPECT_EQ(set("answer-double", "on"), 0);
  till.send("\x1b#SENSOR");
  EXPECT_EQ(till.receive(6), "\x5f\x30\0\x5f\x30\0"s);
  EXPECT_EQ(set("answer-double", "off"), 0);
  EXPECT_EQ(set("answer-glue", "20"), 0);
  till.send("\x10\x04\x01\x1b#SENSOR");
  EXPECT_EQ(till.receive(4), "\x16\x5f\x30\0"s);
}

TEST_F(TcpTest, wrong_addresses_are_wrong_options) {
  for (const char* wrong :
       {"", "9100x", "65536", "-1", "host:9100", "127.0.0.1:", "1.2.3:9100", "127.0.0.1:9100:1"}) {
    const Outcome outcome = finish(start({"--listen", wrong, "--", "true"}));
    EXPECT_EQ(outcome.status, 2) << wrong;
  }
  EXPECT_EQ(finish(start({"--listen", "0", "--port", "/dev/lp0", "--", "true"})).status, 2);
  EXPECT_EQ(finish(start({"--listen", "0", "--terminal", "--", "true"})).status, 2);
}

TEST_F(TcpTest, address_that_cannot_be_had_is_an_error_before_the_command_runs) {
  start_listening();
  const Outcome outcome =
      finish(start({"--listen", std::to_string(port_number()), "--", "sh", "-c", "echo started"}));
  EXPECT_EQ(outcome.status, kOwnFailure);
  EXPECT_THAT(outcome.errors, StartsWith("virtual-printer: cannot listen at 127.0.0.1:"));
  EXPECT_EQ(outcome.out, "");
}

}  // namespace
}  // namespace virtual_printer
