// Which link a port's name chooses, and what a link does not supply.
#include <gmock/gmock.h>

#include "dispatch/port_impl.h"
#include "support/all_operations.h"
#include "support/links.h"

namespace testkit {
namespace {

using testing::ElementsAreArray;

extern "C" void libDestructor();

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

// The list shrinks as operations are built; nothing may leave a table unnoticed.
const std::vector<std::string> kNotBuilt = {
    "PrintNormalSize",  "PrintBitmap",     "PrintBarCode", "Print2DBarCode", "SaveNVBitmap",
    "PrintNVBitmap",    "DeleteNVBitmap",  "UpdateFW",     "StartPageMode",  "EndPageMode",
    "Print2DBarCodeXY", "PrintNVBitmapXY", "PrintTextXY"};

TEST_F(Dispatch, operations_that_the_serial_link_does_not_supply) {
  EXPECT_THAT(missing(GetSerialPortImpl()), ElementsAreArray(kNotBuilt));
}

TEST_F(Dispatch, other_links_accept_their_names_and_supply_nothing) {
  for (const PortImpl& impl : {GetUsbPortImpl(), GetParallelPortImpl(), GetNetPortImpl()}) {
    EXPECT_NE(impl.MatchPortName, nullptr);
    EXPECT_EQ(missing(impl).size(), 38U);
  }
}

TEST_F(Dispatch, a_missing_operation_answers_minus_3_while_others_work) {
  for (const std::string& name : kNotBuilt) {
    for (const Operation& operation : kAllOperations) {
      if (operation.name == name) {
        EXPECT_EQ(operation.call("/dev/ttyS0"), -3) << name;
      }
    }
  }
  EXPECT_EQ(GetError("/dev/ttyS0"), -1);
  for (const Operation& operation : kAllOperations) {
    EXPECT_EQ(operation.call("/dev/usb/lp0"), -3) << operation.name;
    EXPECT_EQ(operation.call("/dev/lp0"), -3) << operation.name;
    EXPECT_EQ(operation.call("SOCKET:127.0.0.1"), -3) << operation.name;
  }
}

TEST_F(Dispatch, a_table_is_handed_out_with_its_registry_empty) {
  kernel.plug("/dev/ttyS0").answer_ready();
  ASSERT_EQ(OpenPort("/dev/ttyS0", "9600,none,8,1,none"), 0);
  GetSerialPortImpl();
  EXPECT_EQ(serPorts[0].set, 0);
  EXPECT_EQ(GetError("/dev/ttyS0"), -1);
}

TEST_F(Dispatch, unloading_closes_every_open_port) {
  for (const char* name : {"/dev/ttyS0", "/dev/ttyS1", "/dev/ttyS2"}) {
    kernel.plug(name).answer_ready();
    ASSERT_EQ(OpenPort(name, "9600,none,8,1,none"), 0);
  }
  ASSERT_EQ(ClosePort("/dev/ttyS1"), 0);
  kernel.forget_calls();
  libDestructor();
  EXPECT_THAT(kernel.log(),
              testing::ElementsAre("tcflush both", "close 700", "tcflush both", "close 702"));
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_EQ(GetError("/dev/ttyS0"), -1);
}

TEST_F(Dispatch, operations_of_a_name_that_is_not_open_answer_minus_1) {
  EXPECT_EQ(WritePort("/dev/ttyS9", "x", 1), -1);
  char buffer[4];
  EXPECT_EQ(ReadPort("/dev/ttyS9", buffer, 4), -1);
  EXPECT_EQ(GetPrinterStatus("/dev/ttyS9"), -1);
  EXPECT_EQ(GetError("/dev/ttyS9"), -1);
  EXPECT_EQ(GetDrawerStatus("/dev/ttyS9"), -1);
  EXPECT_EQ(PrintNormal("/dev/ttyS9", "x"), -1);
  EXPECT_EQ(ClosePort("/dev/ttyS9"), -1);
  EXPECT_TRUE(kernel.calls().empty());
}

}  // namespace
}  // namespace testkit
