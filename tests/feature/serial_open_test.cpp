// Opening, configuring and closing a serial line: settings, flags, failures, the registry.
#include <gmock/gmock.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <ostream>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using testing::ElementsAre;

constexpr char kPort[] = "/dev/ttyS0";
constexpr char kSettings[] = "9600,none,8,1,none";

class SerialOpen : public ScriptedTest {
 protected:
  SerialOpen() { printer.answer_ready(); }

  /// The terminal attributes after an open with those settings, from attributes with every bit
  /// set or clear.
  termios configured(const char* settings, bool bits_set) {
    ClosePort(kPort);
    printer.line = {};
    if (bits_set) {
      printer.line.c_iflag = printer.line.c_oflag = printer.line.c_cflag = printer.line.c_lflag =
          ~tcflag_t{0};
      printer.line.c_cflag &= ~static_cast<tcflag_t>(CBAUD);
    }
    EXPECT_EQ(OpenPort(kPort, settings), 0) << settings;
    return printer.line;
  }

  Device& printer = kernel.plug(kPort);
};

// ------------------------------------------------------------------------------- the open

TEST_F(SerialOpen, ready_printer_gives_0_and_an_entry) {
  EXPECT_EQ(OpenPort(kPort, kSettings), 0);
  EXPECT_EQ(serPorts[0].set, 1);
  EXPECT_STREQ(serPorts[0].portName, kPort);
  EXPECT_STREQ(serPorts[0].portSettings, kSettings);
  EXPECT_EQ(serPorts[0].port, 700);
  EXPECT_EQ(serPorts[0].originalPortSettings.baud, 9600);
  EXPECT_EQ(serPorts[0].originalPortSettings.parity, 'n');
  EXPECT_EQ(serPorts[0].originalPortSettings.dataBits, 8);
  EXPECT_EQ(serPorts[0].originalPortSettings.stopBits, 1);
  EXPECT_EQ(serPorts[0].originalPortSettings.flowControl, 'n');
}

TEST_F(SerialOpen, calls_in_order) {
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  const std::vector<std::string> log = kernel.log();
  EXPECT_THAT(std::vector(log.begin(), log.begin() + 4),
              ElementsAre("open /dev/ttyS0 RDWR|NOCTTY|NONBLOCK = 700", "tcgetattr",
                          "tcflush input", "tcsetattr now"));
}

TEST_F(SerialOpen, an_open_name_is_neither_reconfigured_nor_asked) {
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  kernel.forget_calls();
  EXPECT_EQ(OpenPort(kPort, "2400,even,7,2,hdwr"), 0);
  EXPECT_EQ(OpenPort(kPort, "nonsense"), 0);
  EXPECT_EQ(OpenPort(kPort, nullptr), 0);
  EXPECT_TRUE(kernel.calls().empty());
  EXPECT_STREQ(serPorts[0].portSettings, kSettings);
}

TEST_F(SerialOpen, names_are_compared_whole_and_by_case) {
  kernel.plug("/dev/ttyS00").answer_ready();
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  EXPECT_EQ(GetError("/dev/ttyS"), -1);
  EXPECT_EQ(GetError("/dev/ttyS00"), -1);
  EXPECT_EQ(OpenPort("/dev/ttyS00", kSettings), 0);
  EXPECT_EQ(serPorts[1].set, 1);
}

TEST_F(SerialOpen, twenty_ports_open_and_a_21st_does_not) {
  for (int i = 0; i < 21; ++i) kernel.plug("/dev/ttyS-" + std::to_string(i)).answer_ready();
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(OpenPort(("/dev/ttyS-" + std::to_string(i)).c_str(), kSettings), 0) << i;
  }
  kernel.forget_calls();
  EXPECT_EQ(OpenPort("/dev/ttyS-20", kSettings), -1);
  EXPECT_TRUE(kernel.calls().empty());
  EXPECT_EQ(OpenPort("/dev/ttyS-7", kSettings), 0);

  ASSERT_EQ(ClosePort("/dev/ttyS-7"), 0);
  EXPECT_EQ(OpenPort("/dev/ttyS-20", kSettings), 0);
  EXPECT_STREQ(serPorts[7].portName, "/dev/ttyS-20");
}

TEST_F(SerialOpen, error_flags_survive_open_and_close) {
  m_bPaperEmpty = m_bCutterJam = m_bPaperNearEmpty = m_bDrawerOpened = 1;
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  ASSERT_EQ(ClosePort(kPort), 0);
  EXPECT_EQ(m_bPaperEmpty + m_bCutterJam + m_bPaperNearEmpty + m_bDrawerOpened, 4);
}

// ---------------------------------------------------------------------- settings and names

TEST_F(SerialOpen, settings_that_are_not_accepted_open_nothing) {
  for (const char* settings :
       {"", "9600", "9600,none,8,1", "9600,space,8,1,none", "9600,none,9,1,none",
        "9600,none,8,3,none", "9600,none,8,1,xon", "14400,none,8,1,none", " 9600,none,8,1,none",
        "9600, none,8,1,none", "9600,None,8,1,none", "9600,none,8,1,", ",,,,"}) {
    EXPECT_EQ(OpenPort(kPort, settings), -3) << settings;
  }
  EXPECT_EQ(OpenPort(kPort, nullptr), -3);
  EXPECT_TRUE(kernel.calls().empty());
  EXPECT_EQ(serPorts[0].set, 0);
}

TEST_F(SerialOpen, settings_of_99_characters_are_the_longest) {
  const std::string longest = std::string(kSettings) + std::string(99 - sizeof kSettings + 1, 'x');
  ASSERT_EQ(longest.size(), 99U);
  EXPECT_EQ(OpenPort(kPort, (longest + "x").c_str()), -3);
  EXPECT_TRUE(kernel.calls().empty());
  EXPECT_EQ(OpenPort(kPort, longest.c_str()), 0);
  EXPECT_EQ(serPorts[0].portSettings, longest);
}

TEST_F(SerialOpen, names_of_99_characters_are_the_longest) {
  const std::string longest = "/dev/ttyS" + std::string(90, 'x');
  kernel.plug(longest).answer_ready();
  kernel.plug(longest + "x").answer_ready();
  EXPECT_EQ(OpenPort((longest + "x").c_str(), kSettings), -1);
  EXPECT_TRUE(kernel.calls().empty());
  EXPECT_EQ(OpenPort(longest.c_str(), kSettings), 0);
  EXPECT_EQ(serPorts[0].portName, longest);
}

// -------------------------------------------------------------------------- the line's flags

TEST_F(SerialOpen, speeds) {
  const std::pair<const char*, speed_t> rows[] = {
      {"2400,none,8,1,none", B2400},   {"4800,none,8,1,none", B4800},
      {"9600,none,8,1,none", B9600},   {"19200,none,8,1,none", B19200},
      {"38400,none,8,1,none", B38400},
  };
  for (const auto& [settings, speed] : rows) {
    const termios line = configured(settings, false);
    EXPECT_EQ(cfgetispeed(&line), speed) << settings;
    EXPECT_EQ(cfgetospeed(&line), speed) << settings;
  }
}

// Applications depend on it: their printers are set to 9600.
TEST_F(SerialOpen, baud_115200_is_accepted_and_runs_at_9600) {
  const termios line = configured("115200,none,8,1,none", false);
  EXPECT_EQ(cfgetispeed(&line), speed_t{B9600});
  EXPECT_EQ(cfgetospeed(&line), speed_t{B9600});
  EXPECT_EQ(serPorts[0].originalPortSettings.baud, 115200);
}

struct FlagRow {
  const char* settings;
  tcflag_t control_set, control_clear, input_set, input_untouched;
};

void PrintTo(const FlagRow& row, std::ostream* out) {
  *out << row.settings;
}

class SerialFlags : public SerialOpen, public testing::WithParamInterface<FlagRow> {};

constexpr tcflag_t kParity = INPCK | ISTRIP;

INSTANTIATE_TEST_SUITE_P(
    rows, SerialFlags,
    testing::Values(FlagRow{"9600,none,8,1,none", CS8, PARENB | CSTOPB, 0, kParity},
                    FlagRow{"9600,even,7,2,none", CS7 | PARENB | CSTOPB, PARODD, kParity, 0},
                    FlagRow{"9600,odd,8,1,none", CS8 | PARENB | PARODD, CSTOPB, kParity, 0},
                    FlagRow{"9600,none,8,1,hdwr", CS8, PARENB | CSTOPB, 0, kParity},
                    FlagRow{"9600,odd,7,1,hdwr", CS7 | PARENB | PARODD, CSTOPB, kParity, 0}));

TEST_P(SerialFlags, follow_the_settings_whatever_the_line_had) {
  const FlagRow& row = GetParam();
  for (const bool bits_set : {false, true}) {
    const termios line = configured(row.settings, bits_set);
    EXPECT_EQ(line.c_cflag & (row.control_set & ~tcflag_t{CSIZE}),
              row.control_set & ~tcflag_t{CSIZE});
    EXPECT_EQ(line.c_cflag & CSIZE, row.control_set & CSIZE);
    EXPECT_EQ(line.c_cflag & row.control_clear, 0U);
    EXPECT_EQ(line.c_iflag & row.input_set, row.input_set);
    EXPECT_EQ(line.c_iflag & row.input_untouched, bits_set ? row.input_untouched : 0U);
    EXPECT_EQ(line.c_cflag & (CREAD | CLOCAL), tcflag_t{CREAD | CLOCAL});
    // Hardware flow control is the writes' business, not the driver's.
    EXPECT_EQ(line.c_cflag & CRTSCTS, 0U);
    EXPECT_EQ(line.c_iflag & (IXON | IXOFF | IXANY), 0U);
    // Raw in both directions; everything else as it was.
    EXPECT_EQ(line.c_lflag, bits_set ? ~tcflag_t{ICANON | ECHO | ECHOE | ISIG} : 0U);
    EXPECT_EQ(line.c_oflag, bits_set ? ~tcflag_t{OPOST} : 0U);
  }
}

TEST_F(SerialOpen, minimum_and_time_of_reads_stay_as_they_were) {
  printer.line.c_cc[VMIN] = 7;
  printer.line.c_cc[VTIME] = 9;
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  EXPECT_EQ(printer.line.c_cc[VMIN], 7);
  EXPECT_EQ(printer.line.c_cc[VTIME], 9);
}

// -------------------------------------------------------------------------------- failures

TEST_F(SerialOpen, a_device_that_does_not_open_gives_minus_1_and_no_entry) {
  kernel.fail("open", ENXIO);
  EXPECT_EQ(OpenPort(kPort, kSettings), -1);
  EXPECT_EQ(serPorts[0].set, 0);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_EQ(kernel.count("close"), 0U);
}

TEST_F(SerialOpen, a_missing_device_gives_minus_1) {
  EXPECT_EQ(OpenPort("/dev/ttyS-that-is-not-there", kSettings), -1);
  EXPECT_EQ(serPorts[0].set, 0);
}

class SerialConfigureFailure : public SerialOpen,
                               public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(calls, SerialConfigureFailure,
                         testing::Values("tcgetattr", "cfsetispeed", "cfsetospeed", "tcflush",
                                         "tcsetattr"));

TEST_P(SerialConfigureFailure, gives_minus_2_and_leaves_nothing_behind) {
  kernel.fail(GetParam(), EIO);
  EXPECT_EQ(OpenPort(kPort, kSettings), -2);
  EXPECT_EQ(serPorts[0].set, 0);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_EQ(kernel.count("close"), 1U);
  EXPECT_TRUE(printer.writes.empty());
  // The next open finds everything as before.
  EXPECT_EQ(OpenPort(kPort, kSettings), 0);
  EXPECT_STREQ(serPorts[0].portName, kPort);
}

TEST_F(SerialOpen, calls_interrupted_by_a_signal_are_made_again) {
  kernel.fail("open", EINTR);
  kernel.fail("write", EINTR);
  kernel.fail("FIONREAD", EINTR);
  kernel.fail("read", EINTR);
  EXPECT_EQ(OpenPort(kPort, kSettings), 0);
  kernel.fail("write", EINTR);
  kernel.fail("tcdrain", EINTR);
  EXPECT_EQ(WritePort(kPort, "abc", 3), 3);
  EXPECT_EQ(printer.writes.back(), "abc");
}

// --------------------------------------------------------------------------------- closing

TEST_F(SerialOpen, close_flushes_and_frees_the_entry) {
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  s_PageSize = 5;
  s_PageBuffer[4] = 'x';
  s_bProtocol = s_RePrint = 1;
  s_bSleepFlag = 1;
  SStopIt = 1;
  kernel.forget_calls();
  EXPECT_EQ(ClosePort(kPort), 0);
  EXPECT_THAT(kernel.log(), ElementsAre("tcflush both", "close 700"));
  EXPECT_EQ(serPorts[0].set, 0);
  EXPECT_STREQ(serPorts[0].portName, "");
  EXPECT_STREQ(serPorts[0].portSettings, "");
  EXPECT_EQ(serPorts[0].port, 0);
  EXPECT_EQ(serPorts[0].originalPortSettings.baud, 0);
  EXPECT_EQ(s_PageSize, 0);
  EXPECT_EQ(s_PageBuffer[4], 0);
  EXPECT_EQ(s_bProtocol, 0);
  EXPECT_EQ(s_RePrint, 0);
  EXPECT_EQ(s_bSleepFlag, 1);
  // A monitor goes on until it is told to end.
  EXPECT_EQ(SStopIt, 1);
  EXPECT_EQ(ClosePort(kPort), -1);
}

TEST_F(SerialOpen, close_succeeds_even_when_its_calls_fail) {
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  kernel.fail("tcflush", EIO);
  kernel.fail("close", EIO);
  EXPECT_EQ(ClosePort(kPort), 0);
  EXPECT_EQ(serPorts[0].set, 0);
}

TEST_F(SerialOpen, a_closed_port_opens_again_with_other_settings) {
  ASSERT_EQ(OpenPort(kPort, kSettings), 0);
  ASSERT_EQ(ClosePort(kPort), 0);
  EXPECT_EQ(OpenPort(kPort, "2400,even,7,2,hdwr"), 0);
  EXPECT_EQ(serPorts[0].originalPortSettings.flowControl, 'h');
}

}  // namespace
}  // namespace testkit
