// Which link a port's name chooses, and what a link does not supply.
#include <dlfcn.h>
#include <gmock/gmock.h>

#include "dispatch/port_impl.h"
#include "support/all_operations.h"
#include "support/links.h"
#include "tzvio.h"

extern "C" {
void libConstructor();
void libDestructor();
}

namespace {
bool leave_cut_null = false;
}

// The library asks for the table by its name, so it gets this one: the real one with a hole.
PortImpl GetParallelPortImpl() {
  static const auto real =
      reinterpret_cast<decltype(&GetParallelPortImpl)>(dlsym(RTLD_NEXT, "GetParallelPortImpl"));
  PortImpl impl = real();
  if (leave_cut_null) impl.CutPaper = nullptr;
  return impl;
}

namespace testkit {
namespace {

class Dispatch : public ScriptedTest {};

/// The link that accepts a name: the first of the four in the order in which they are asked.
std::string link_of(const char* portName) {
  if (GetUsbPortImpl().MatchPortName(portName) == 0) return "usb";
  if (GetParallelPortImpl().MatchPortName(portName) == 0) return "parallel";
  if (GetSerialPortImpl().MatchPortName(portName) == 0) return "serial";
  if (GetNetPortImpl().MatchPortName(portName) == 0) return "network";
  return "none";
}

TEST_F(Dispatch, prefix_of_the_name_chooses_the_link) {
  EXPECT_EQ(link_of("/dev/usb/lp0"), "usb");
  EXPECT_EQ(link_of("/dev/usb/lp1"), "usb");
  EXPECT_EQ(link_of("/dev/usblp0"), "usb");
  EXPECT_EQ(link_of("/dev/usblp3"), "usb");
  EXPECT_EQ(link_of("/dev/lp0"), "parallel");
  EXPECT_EQ(link_of("/dev/parport0"), "parallel");
  EXPECT_EQ(link_of("/dev/ttyS0"), "serial");
  EXPECT_EQ(link_of("/dev/ttyS"), "serial");
  EXPECT_EQ(link_of("/dev/ttyS-anything at all"), "serial");
  EXPECT_EQ(link_of("SOCKET:192.168.0.10"), "network");
  EXPECT_EQ(link_of("SOCKET:"), "network");
}

TEST_F(Dispatch, names_of_no_link_are_accepted_by_none) {
  for (const char* name :
       {"COM1", "", "/dev/ttyUSB0", "/dev/tty", "/dev/usb/", "/dev/usb/hiddev0", "/dev/usbl",
        "/dev/l", "/dev/parpor", "socket:192.168.0.10", "SOCKET", " /dev/ttyS0", "/DEV/TTYS0"}) {
    EXPECT_EQ(link_of(name), "none") << name;
  }
}

TEST_F(Dispatch, a_match_is_0_and_no_match_is_minus_3) {
  for (const PortImpl& impl :
       {GetUsbPortImpl(), GetParallelPortImpl(), GetSerialPortImpl(), GetNetPortImpl()}) {
    EXPECT_EQ(impl.MatchPortName("COM1"), -3);
    EXPECT_EQ(impl.MatchPortName(nullptr), -3);
  }
  EXPECT_EQ(GetSerialPortImpl().MatchPortName("/dev/ttyS0"), 0);
}

TEST_F(Dispatch, every_operation_answers_minus_3_for_a_name_of_no_link) {
  EXPECT_EQ(kAllOperations.size(), 37U);
  for (const Operation& operation : kAllOperations) {
    EXPECT_EQ(operation.call("COM1"), -3) << operation.name;
    EXPECT_EQ(operation.call("/dev/ttyUSB0"), -3) << operation.name;
    EXPECT_EQ(operation.call(nullptr), -3) << operation.name;
  }
  EXPECT_TRUE(kernel.calls().empty());
}

/// The operations that a table leaves null.
// NOLINTNEXTLINE(readability-function-size): one line for each operation
std::vector<std::string> missing(const PortImpl& impl) {
  std::vector<std::string> names;
#define TZV_OPERATION(name, feature, parameters, arguments) \
  if (impl.name == nullptr) names.push_back(#name);
#define TZV_INTERNAL(name, feature, result, parameters) \
  if (impl.name == nullptr) names.push_back(#name);
#include "dispatch/operations.def"
#undef TZV_OPERATION
#undef TZV_INTERNAL
  return names;
}

TEST_F(Dispatch, every_link_supplies_every_operation) {
  for (const PortImpl& impl :
       {GetUsbPortImpl(), GetParallelPortImpl(), GetSerialPortImpl(), GetNetPortImpl()}) {
    EXPECT_THAT(missing(impl), testing::IsEmpty());
  }
}

TEST_F(Dispatch, a_missing_operation_answers_minus_3_while_others_work) {
  leave_cut_null = true;
  libConstructor();
  EXPECT_EQ(CutPaper("/dev/lp0", 100), -3);
  EXPECT_EQ(CutPaper("/dev/ttyS0", 100), -1);
  EXPECT_EQ(GetError("/dev/lp0"), -1);
  leave_cut_null = false;
  libConstructor();
  EXPECT_EQ(CutPaper("/dev/lp0", 100), -1);
}

class DispatchToLink : public EveryLink {};
TZV_ON_EVERY_LINK(DispatchToLink);

TEST_P(DispatchToLink, operations_of_a_name_that_is_not_open_answer_minus_1) {
  ClosePort(port);
  kernel.forget_calls();
  for (const Operation& operation : kAllOperations) {
    if (operation.name == "OpenPort") continue;
    // There only its write meets the closed port, and a failed one is no failure of the update.
    if (operation.name == "UpdateFW" && link.name == "usb") continue;
    EXPECT_EQ(operation.call(port), -1) << operation.name;
  }
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(DispatchToLink, an_open_name_is_neither_opened_nor_asked_again) {
  EXPECT_EQ(OpenPort(port, link.settings.c_str()), 0);
  EXPECT_EQ(OpenPort(port, nullptr), 0);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(DispatchToLink, twenty_ports_open_and_a_21st_does_not) {
  const std::string stem = link.port.substr(0, link.port.find_last_not_of("0123456789") + 1);
  const auto name = [&](int i) { return stem + std::to_string(i); };
  // The fixture's own port is one of them.
  for (int i = 20; i < 40; ++i) kernel.plug(name(i)).answer_ready();
  for (int i = 20; i < 39; ++i) EXPECT_EQ(OpenPort(name(i).c_str(), link.settings.c_str()), 0);
  kernel.forget_calls();
  EXPECT_EQ(OpenPort(name(39).c_str(), link.settings.c_str()), -1);
  EXPECT_TRUE(kernel.calls().empty());
  EXPECT_EQ(ClosePort(name(27).c_str()), 0);
  EXPECT_EQ(OpenPort(name(39).c_str(), link.settings.c_str()), 0);
}

TEST_P(DispatchToLink, a_name_of_100_characters_is_refused) {
  EXPECT_EQ(OpenPort((link.port + std::string(100 - link.port.size(), '0')).c_str(), "1"), -1);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(DispatchToLink, a_fresh_port_resets_the_job_of_its_link) {
  ClosePort(port);
  *state.PageSize = 3;
  (*state.PageBuffer)[0] = 'x';
  (*state.PageBuffer)[TZV_PAGE_BUFFER_SIZE - 1] = 'x';
  *state.bProtocol = *state.RePrint = *state.bSleepFlag = *state.bPowerOFF = 1;
  u_bProtocolStatus = 1;
  *state.TransactionPrint = 1;
  *state.bPaperNearEmpty = *state.bDrawerOpened = 1;
  ASSERT_EQ(OpenPort(port, link.settings.c_str()), 0);
  EXPECT_EQ(*state.PageSize, 0);
  EXPECT_EQ((*state.PageBuffer)[0], 0);
  EXPECT_EQ((*state.PageBuffer)[TZV_PAGE_BUFFER_SIZE - 1], 0);
  EXPECT_EQ(*state.bProtocol, 0);
  EXPECT_EQ(*state.RePrint, 0);
  EXPECT_EQ(*state.bSleepFlag, 0);
  EXPECT_EQ(*state.TransactionPrint, 0);
  EXPECT_EQ(*state.bPowerOFF, 0);
  EXPECT_EQ(u_bProtocolStatus, link.name == "usb" ? 0 : 1);
  EXPECT_EQ(*state.bPaperNearEmpty + *state.bDrawerOpened, 2) << "what the monitor saw stays";
}

TEST_P(DispatchToLink, closing_frees_the_port_and_drops_the_job) {
  *state.PageSize = 5;
  (*state.PageBuffer)[4] = 'x';
  *state.bProtocol = *state.RePrint = *state.bSleepFlag = *state.StopIt = 1;
  u_bProtocolStatus = 1;
  EXPECT_EQ(ClosePort(port), 0);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_EQ(*state.PageSize, 0);
  EXPECT_EQ((*state.PageBuffer)[4], 0);
  EXPECT_EQ(*state.bProtocol, 0);
  EXPECT_EQ(*state.RePrint, 0);
  EXPECT_EQ(u_bProtocolStatus, link.name == "usb" ? 0 : 1);
  EXPECT_EQ(*state.bSleepFlag, 1);
  EXPECT_EQ(*state.StopIt, 1) << "a monitor goes on until it is told to end";
  EXPECT_EQ(ClosePort(port), -1);
}

TEST_P(DispatchToLink, links_do_not_share_their_flags) {
  *state.bCoverOpen = 1;
  for (const Link& other : kLinks) {
    if (other.name == link.name) continue;
    kernel.plug(other.port).answer_ready();
    EXPECT_EQ(OpenPort(other.port.c_str(), other.settings.c_str()), 0);
    EXPECT_EQ(GetError(other.port.c_str()), 0);
  }
  EXPECT_EQ(GetError(port), 1);
}

TEST_F(Dispatch, a_table_is_handed_out_with_its_registry_empty) {
  kernel.plug("/dev/ttyS0").answer_ready();
  ASSERT_EQ(OpenPort("/dev/ttyS0", "9600,none,8,1,none"), 0);
  GetSerialPortImpl();
  EXPECT_EQ(serPorts[0].set, 0);
  EXPECT_EQ(GetError("/dev/ttyS0"), -1);
}

TEST_F(Dispatch, unloading_closes_every_open_port_in_the_order_of_the_links) {
  for (const Link& link : kLinks) {
    for (const std::string& name : {link.port, link.second_port}) {
      kernel.plug(name).answer_ready();
      ASSERT_EQ(OpenPort(name.c_str(), link.settings.c_str()), 0);
    }
  }
  ASSERT_EQ(ClosePort("/dev/ttyS1"), 0);
  kernel.forget_calls();
  libDestructor();
  EXPECT_THAT(kernel.log(),
              testing::ElementsAre("tcflush both", "close 704", "tcflush both", "close 705",
                                   "PPRELEASE", "close 702", "PPRELEASE", "close 703",
                                   "tcflush both", "close 700", "close 706", "close 707"));
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  for (const Link& link : kLinks) EXPECT_EQ(GetError(link.port.c_str()), -1);
}

}  // namespace
}  // namespace testkit
