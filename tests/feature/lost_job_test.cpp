// Jobs of which something got lost on the way. The printer confirms what it has, so its
// confirmation must not count for what it never had.
#include <gmock/gmock.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <functional>
#include <thread>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using testing::ElementsAre;

class LostJob : public EveryLink {
 protected:
  /// A monitor that looks every 10 ms, and a job of a cut.
  void claim_and_collect() {
    ASSERT_EQ(ClaimDevice(port, 0), 0);
    kernel.run_for(200);
    *state.bSleepFlag = 1;
    kernel.run_for(600);
    collect();
  }
  void collect() {
    printer.writes.clear();
    TransactionPrint(port, TZV_TRANSACTION_BEGIN);
    CutPaper(port, 100);
  }
  const std::string job = "\033@\n\n\n\n\n\033i" + kProcessIdRequest;
};
TZV_ON_EVERY_LINK(LostJob);

TEST_P(LostJob, refused_in_an_error_state_that_is_over_at_once_is_not_confirmed) {
  claim_and_collect();
  printer.confirm_jobs();
  *state.bCoverOpen = 1;
  kernel.at(kernel.now_ms() + 10, [this] { *state.bCoverOpen = 0; });
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 4);
  EXPECT_EQ(state.collected(), job) << "it stays";
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 0) << "and is printed by ending again";
}

TEST_P(LostJob, refused_in_an_error_state_gives_its_code) {
  claim_and_collect();
  *state.bPaperEmpty = 1;
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 2);
  EXPECT_TRUE(printer.writes.empty());
}

// A parallel port's failed write is tried again, and a connection's is sent again.
class LostJobOfFailedWrite : public LostJob {};
INSTANTIATE_TEST_SUITE_P(links, LostJobOfFailedWrite, testing::Values(kLinks[0], kLinks[2]),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(LostJobOfFailedWrite, is_not_confirmed) {
  claim_and_collect();
  printer.confirm_jobs();
  kernel.fail("write", EIO);
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 4);
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 0);
}

// A line without a handshake refuses the rest, and a connection sends everything again.
class LostJobCutShort : public LostJob {};
INSTANTIATE_TEST_SUITE_P(links, LostJobCutShort, testing::Values(kLinks[1], kLinks[2]),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(LostJobCutShort, is_not_confirmed) {
  claim_and_collect();
  long taken = 0;
  printer.take = [this, &taken](std::string_view bytes) {
    const bool whole = bytes == kProcessIdRequest;
    if (whole) printer.input += kProcessIdAnswer;
    const long count = whole ? static_cast<long>(bytes.size()) : 4 - taken;
    taken = 4;
    return count;
  };
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 4);
  EXPECT_EQ(state.collected(), job);
}

TEST_P(LostJob, late_confirmation_does_not_take_it_away) {
  claim_and_collect();
  *state.bCoverOpen = 1;
  TransactionPrint(port, TZV_TRANSACTION_END);
  printer.input = kProcessIdAnswer;
  kernel.run_for(600);
  EXPECT_NE(state.collected(), "");
}

// The ports of a link share the bytes: a close of any while they are written would tear the job.
TEST_P(LostJob, is_none_that_is_being_sent_when_another_port_is_closed) {
  kernel.plug(link.second_port).answer_ready();
  ASSERT_EQ(OpenPort(link.second_port.c_str(), link.settings.c_str()), 0);
  collect();
  kernel.shorten("write", 4);
  printer.on_write = [this] {
    std::thread([this] { ClosePort(link.second_port.c_str()); }).join();
  };
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 4) << "no monitor sees it confirmed";
  std::string arrived;
  for (const std::string& bytes : printer.writes) arrived += bytes;
  EXPECT_EQ(arrived.substr(0, job.size()), job);
  EXPECT_EQ(*state.PageSize, 0);
}

class SerialLostJob : public LostJob {
 protected:
  /// Opens the port with that flow control, sends a job behind which DSR falls for a moment, and
  /// has the printer confirm it late.
  void send_before_dsr_falls(const std::string& flow_control) {
    ClosePort(port);
    ASSERT_EQ(OpenPort(port, ("9600,none,8,1," + flow_control).c_str()), 0);
    claim_and_collect();
    printer.on_write = [this] {
      if (printer.writes.size() > 1) return;
      printer.modem_lines = 0;
      kernel.at(kernel.now_ms() + 50, [this] { printer.modem_lines = TIOCM_DSR; });
    };
    EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 4);
    kernel.run_for(1000);
    printer.input += kProcessIdAnswer;
    kernel.run_for(1000);
  }
};
INSTANTIATE_TEST_SUITE_P(links, SerialLostJob, testing::Values(kLinks[0]));

TEST_P(SerialLostJob, whose_printer_lowers_dsr_was_without_power) {
  send_before_dsr_falls("none");
  EXPECT_EQ(state.collected(), job);
}

TEST_P(SerialLostJob, is_none_whose_printer_lowers_dsr_to_hold_up_a_handshake) {
  send_before_dsr_falls("hdwr");
  EXPECT_EQ(state.collected(), "");
}

class ParallelLostJob : public LostJob {};
INSTANTIATE_TEST_SUITE_P(links, ParallelLostJob, testing::Values(kLinks[1]));

TEST_P(ParallelLostJob, whose_printer_loses_its_power_while_it_is_sent_is_not_confirmed) {
  claim_and_collect();
  printer.confirm_jobs();
  kernel.shorten("write", 4);
  printer.on_write = [this] {
    if (printer.writes.size() > 1) return;
    printer.status_lines = 0;
    printer.has_nibble_mode = false;
    kernel.at(kernel.now_ms() + 1000, [this] {
      printer.status_lines = 0x88;
      printer.has_nibble_mode = true;
    });
  };
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 4);
}

class NetworkLostJob : public LostJob {
 protected:
  /// The connection is lost behind the nth write; the printer is then as `comes_back` leaves it.
  void cut_behind_write(std::size_t nth, const std::function<void()>& comes_back) {
    printer.on_write = [this, nth, comes_back] {
      if (printer.writes.size() != nth) return;
      kernel.cut(link.port, ECONNRESET);
      kernel.plug_back(link.port);
      comes_back();
    };
  }
};
INSTANTIATE_TEST_SUITE_P(links, NetworkLostJob, testing::Values(kLinks[3]));

// The new connection's printer may be one that has been switched on again.
TEST_P(NetworkLostJob, whose_connection_is_lost_with_a_repeated_request_is_not_confirmed) {
  claim_and_collect();
  cut_behind_write(2, [this] { printer.confirm_jobs(); });
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 4);
  EXPECT_NE(state.collected(), "");
}

// The printer that comes back with an open cover does not hold it.
TEST_P(NetworkLostJob, that_is_lost_before_the_cover_opens_gives_4) {
  claim_and_collect();
  cut_behind_write(2, [this] { printer.input = kCoverOpen; });
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 4);
}

TEST_P(NetworkLostJob, that_is_cut_off_while_it_is_sent_goes_out_again_and_is_confirmed) {
  claim_and_collect();
  cut_behind_write(1, [this] { printer.confirm_jobs(); });
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 0);
  EXPECT_THAT(printer.writes, ElementsAre(job, "LINK\n", kEnableReports, job));
}

TEST_P(NetworkLostJob, that_was_confirmed_before_the_connection_is_lost_is_confirmed) {
  claim_and_collect();
  printer.on_write = [this] {
    if (printer.writes.size() != 1) return;
    printer.input = kProcessIdAnswer;
    kernel.at(kernel.now_ms() + 21, [this] { kernel.cut(link.port, 0); });
  };
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 0);
  EXPECT_EQ(state.collected(), "");
}

// A report of any fault during a send counts as a loss there, so that the paper may show it twice.
TEST_P(NetworkLostJob, during_which_a_fault_is_reported_goes_out_again) {
  claim_and_collect();
  printer.on_write = [this] {
    if (printer.writes.size() == 1) printer.input += kCoverOpen;
  };
  EXPECT_EQ(TransactionPrint(port, TZV_TRANSACTION_END), 1);
  EXPECT_THAT(printer.writes, testing::IsSupersetOf({std::string("LINK\n"), job, job}));
}

}  // namespace
}  // namespace testkit
