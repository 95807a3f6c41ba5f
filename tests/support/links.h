// The links, for tests that must hold on every one of them.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/exported_state.h"
#include "support/scripted_kernel.h"

namespace testkit {

/// One link as a test sees it.
struct Link {
  std::string name;
  std::string port;
  std::string settings;
  const ExportedState& state;
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

/// The same for each link, with a port of it open and a printer behind that is ready.
class EveryLink : public ScriptedTest, public testing::WithParamInterface<Link> {
 protected:
  EveryLink();

  /// What was sent since the port was opened.
  const std::string& sent() const { return printer.output; }

  const Link& link = GetParam();
  const ExportedState& state = link.state;
  const char* port = link.port.c_str();
  SerialDevice& printer;
};

}  // namespace testkit

/// Runs a fixture derived from EveryLink over all links.
#define TZV_ON_EVERY_LINK(fixture)                                             \
  INSTANTIATE_TEST_SUITE_P(links, fixture, testing::ValuesIn(testkit::kLinks), \
                           [](const auto& tested) { return tested.param.name; })
