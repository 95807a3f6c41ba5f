// A printer behind a real pseudo-terminal, under the name of a serial port.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/real_devices.h"

namespace testkit {

/// Answers from a thread of its own until it is unplugged: each query that it knows, wherever it
/// stands in what arrives, in order.
class PtyPrinter {
 public:
  explicit PtyPrinter(std::string port);
  ~PtyPrinter();
  PtyPrinter(const PtyPrinter&) = delete;
  PtyPrinter& operator=(const PtyPrinter&) = delete;

  /// To be called before `start()`.
  void answer(std::string query, std::string reply);
  void start();

  /// Ends it; everything that it got.
  std::string unplug();

  /// What it got so far.
  std::string received();

  int slave() const { return slave_; }

 private:
  struct Answer {
    std::string query, reply;
  };

  void serve();
  void take();
  void answer_new();

  int master_ = -1;
  int slave_ = -1;
  int stop_[2] = {-1, -1};
  std::unique_ptr<NameAlias> alias_;
  std::vector<Answer> answers_;
  std::thread thread_;
  std::mutex mutex_;
  std::string received_;
  std::size_t answered_ = 0;
};

}  // namespace testkit
