// The links, for tests that must hold on every one of them.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/exported_state.h"
#include "support/scripted_kernel.h"

namespace testkit {

/// One link as a test sees it: its names, and in what it differs.
struct Link {
  std::string name;
  std::string port, second_port;
  std::string settings;
  const ExportedState& state;
  std::string write_call = "write", read_call = "read";
  std::string poll_call = "read";  ///< the first of those that look for something to read
  long dead_write = -2;            ///< result of a write when every call fails
  /// Results of a cut and of a drawer pulse whose write fell short in a healthy state.
  long short_cut = -2, short_pulse = -2;
  // Milliseconds.
  int64_t release_pause = 0;
  int64_t pause_after_write = 0;
  int64_t pause_before_read = 0;  ///< of an answer to the caller's own command
};

inline std::ostream& operator<<(std::ostream& out, const Link& link) {
  return out << link.name;
}

/// Every link that the library supplies operations for.
extern const std::vector<Link> kLinks;

/// A test over scripted devices: starts with a library and a kernel in their initial state.
class ScriptedTest : public testing::Test {
 protected:
  ScriptedTest() {
    reset_library();
    kernel.reset(true);
  }
  ~ScriptedTest() override {
    reset_library();
    kernel.reset(false);
  }

  Kernel& kernel = Kernel::instance();
};

/// The same with one printer, for what is one link's own.
class OnePrinter : public ScriptedTest {
 protected:
  explicit OnePrinter(const char* port) : printer(kernel.plug(port)) { printer.answer_ready(); }

  /// Forgets what was sent and called so far, and counts time from now on.
  void forget() {
    printer.output.clear();
    printer.writes.clear();
    kernel.forget_calls();
    started_ms = kernel.now_ms();
  }
  int64_t elapsed_ms() const { return kernel.now_ms() - started_ms; }

  Device& printer;
  int64_t started_ms = 0;
};

/// The same for each link, with a port of it open and a printer behind that is ready.
class EveryLink : public ScriptedTest, public testing::WithParamInterface<Link> {
 protected:
  EveryLink();

  /// What was sent since the port was opened.
  const std::string& sent() const { return printer.output; }
  /// Lets every write fail from now on.
  void break_writes();

  const Link& link = GetParam();
  const ExportedState& state = link.state;
  const char* port = link.port.c_str();
  Device& printer;
};

}  // namespace testkit

/// Runs a fixture derived from EveryLink over all links.
#define TZV_ON_EVERY_LINK(fixture)                                             \
  INSTANTIATE_TEST_SUITE_P(links, fixture, testing::ValuesIn(testkit::kLinks), \
                           [](const auto& tested) { return tested.param.name; })
