// A till that makes the same calls on any link, and what can be seen of them.
#pragma once

#include <pthread.h>

#include <array>
#include <optional>
#include <string>

#include "open_link.h"

namespace fuzz {

/// What a call came to.
struct Seen {
  long result = 0;
  std::string answer;  ///< the caller's buffer
  std::string sent;    ///< by the call
  std::string sent_by_monitor;
  std::string collected;
  std::string state;  ///< every other number that the library exports, by name

  bool operator==(const Seen&) const = default;
};

class Till {
 public:
  explicit Till(const testkit::Link& link);

  /// What the printer says as soon as the next call sends something.
  void arm(std::string reply) { armed_ = std::move(reply); }
  void forget_sent() { sent_.clear(); }
  void forget_sent_requests();
  /// Notes what a call came to, once everything that it started has settled.
  Seen look(long result);

  OpenLink open;
  const char* const port = open.port;
  const testkit::ExportedState& state = open.state;
  testkit::Device& printer = *open.printer;
  std::array<char, 256> buffer{};

 private:
  void take_written();
  void settle();

  const pthread_t callers_thread_ = pthread_self();
  std::optional<std::string> armed_;
  std::string sent_, sent_by_monitor_;
};

}  // namespace fuzz
