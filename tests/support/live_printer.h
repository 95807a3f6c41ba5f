// Printers behind real descriptors, each answering from a thread of its own.
#pragma once

#include <netinet/in.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/real_devices.h"

namespace testkit {

/// Answers each query that it knows, wherever it stands in what arrives, in order. Knows the
/// queries of an open as a printer that is ready.
class LivePrinter {
 public:
  LivePrinter();
  virtual ~LivePrinter();
  LivePrinter(const LivePrinter&) = delete;
  LivePrinter& operator=(const LivePrinter&) = delete;

  /// To be called before `start()`.
  void answer(std::string query, std::string reply);
  /// Forgets all answers.
  void mute() { answers_.clear(); }
  void start();

  /// Ends it; everything that it got.
  virtual std::string unplug();

  /// Sends something of its own accord.
  virtual void say(std::string_view bytes) = 0;

  /// What it got so far.
  std::string received();
  /// Waits until it has got that many bytes; false after 10 s.
  bool waits_for(std::size_t bytes);

  /// Under these it is opened.
  virtual std::string port() const = 0;
  virtual std::string settings() const = 0;

 protected:
  /// Waits for input or for `stop_`, and serves it. False ends the thread.
  virtual bool serve() = 0;
  /// Takes bytes in and gives the answers to them.
  std::string converse(std::string_view bytes);
  void stop_thread();

  int stop_[2] = {-1, -1};

 private:
  struct Answer {
    std::string query, reply;
  };

  std::vector<Answer> answers_;
  std::thread thread_;
  std::mutex mutex_;
  std::string received_;
  std::size_t answered_ = 0;
};

/// Behind a pseudo-terminal, under the name of a serial port, of a USB node or of a parallel port,
/// whose own requests then find a printer that is online.
class PtyPrinter : public LivePrinter {
 public:
  explicit PtyPrinter(std::string port);
  ~PtyPrinter() override;

  std::string unplug() override;
  void say(std::string_view bytes) override;
  std::string port() const override { return port_; }
  std::string settings() const override { return "9600,none,8,1,none"; }
  int slave() const { return slave_; }

 private:
  bool serve() override;

  std::string port_;
  int master_ = -1;
  int slave_ = -1;
  std::unique_ptr<NameAlias> alias_;
};

/// Listens on an address, the loopback's unless given; serves one connection at a time.
class SocketPrinter : public LivePrinter {
 public:
  /// Listens at once. `port()` is the same for all; they differ in their settings.
  explicit SocketPrinter(in_addr_t address = INADDR_LOOPBACK);
  ~SocketPrinter() override;

  std::string unplug() override;
  void say(std::string_view bytes) override;
  std::string port() const override { return "SOCKET:127.0.0.1"; }
  std::string settings() const override { return std::to_string(number_); }

  /// What happens to the connection once so many bytes have come since it began. Holds for one
  /// connection.
  void reset_after(std::size_t bytes) { reset_after_ = bytes; }
  void shut_down_after(std::size_t bytes) { shut_down_after_ = bytes; }
  /// Reads so many bytes at once and pauses in between.
  void drain_slowly(std::size_t bytes, int pause_ms);
  /// Sends answers byte by byte.
  void split_answers() { splits_ = true; }

  /// Refuses connections; those that stand are reset.
  void disappear();
  void come_back();

  int connections() const { return connections_; }
  /// What the connection of that number got, from 0.
  std::string received_by(int connection);

 private:
  bool serve() override;
  void accept_connection();
  void take_input();
  void send_answers(const std::string& replies);
  void hang_up(bool in_order);

  in_addr_t address_;
  in_port_t number_ = 0;
  std::mutex sockets_;
  int listening_ = -1;
  int connection_ = -1;
  std::vector<int> ends_;  // shut down in order
  std::atomic<int> connections_ = 0;
  std::vector<std::string> by_connection_;
  std::atomic<std::size_t> reset_after_ = 0, shut_down_after_ = 0;
  std::size_t piece_ = 4096;
  int pause_ms_ = 0;
  bool splits_ = false;
};

}  // namespace testkit
