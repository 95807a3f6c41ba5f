// A till that runs without a terminal and has closed its standard streams: what it or the library
// prints as a message must not come out of the printer.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <memory>

#include "support/exported_state.h"
#include "support/live_printer.h"
#include "tzvio.h"

namespace testkit {
namespace {

/// Closes the three for as long as it lives.
class WithoutStandardStreams {
 public:
  WithoutStandardStreams() {
    std::fflush(stdout);
    for (int stream = 0; stream < 3; ++stream) {
      kept_[stream] = fcntl(stream, F_DUPFD, 100);
      close(stream);
    }
  }
  ~WithoutStandardStreams() {
    std::fflush(stdout);
    for (int stream = 0; stream < 3; ++stream) {
      dup2(kept_[stream], stream);
      close(kept_[stream]);
    }
  }
  WithoutStandardStreams(const WithoutStandardStreams&) = delete;
  WithoutStandardStreams& operator=(const WithoutStandardStreams&) = delete;

 private:
  int kept_[3];
};

using MakePrinter = std::function<std::unique_ptr<LivePrinter>()>;

class StandardStreams : public testing::TestWithParam<std::pair<const char*, MakePrinter>> {
 protected:
  StandardStreams() { reset_library(); }
  ~StandardStreams() override { reset_library(); }
};

INSTANTIATE_TEST_SUITE_P(
    links, StandardStreams,
    testing::Values(std::pair<const char*, MakePrinter>(
                        "serial", [] { return std::make_unique<PtyPrinter>("/dev/ttyS-streams"); }),
                    std::pair<const char*, MakePrinter>(
                        "usb", [] { return std::make_unique<PtyPrinter>("/dev/usb/lp-streams"); }),
                    std::pair<const char*, MakePrinter>(
                        "network", [] { return std::make_unique<SocketPrinter>(); })),
    [](const auto& tested) { return std::string(tested.param.first); });

TEST_P(StandardStreams, are_never_the_printer) {
  const auto printer = GetParam().second();
  printer->start();
  const std::string port = printer->port();
  const std::string settings = printer->settings();
  long opened = -9;
  long printed = -9;
  int number = -9;
  {
    const WithoutStandardStreams closed;
    opened = OpenPort(port.c_str(), settings.c_str());
    number = serPorts[0].port + usbPorts[0].port + netPorts[0].sock;  // of the one that is open
    printed = PrintBitmap(port.c_str(), "/there/is/no/such.bmp", 0);  // says so on standard output
    WritePort(port.c_str(), "x", 1);
    EXPECT_TRUE(printer->waits_for(7));
  }
  EXPECT_EQ(opened, 0);
  EXPECT_EQ(printed, -1);
  EXPECT_GT(number, 2);
  EXPECT_EQ(printer->unplug(), "\x10\x04\x02\x10\x04\x04x");
}

}  // namespace
}  // namespace testkit
