#include "job.h"

#include <tzvio.h>

#include <algorithm>
#include <string>

#include "byte_count.h"
#include "condition.h"

namespace cli {
namespace {

// The request for the confirmation, which ends each transaction: GS ( H.
constexpr long kRequestSize = 11;

std::string count_words(long sent, long total) {
  return std::to_string(sent) + " of " + std::to_string(total) + " bytes";
}

// One end of a transaction, and how much of the job went out by it.
struct End {
  long result;
  long sent;
  long total;

  bool sent_nothing() const { return sent == 0; }
  bool sent_whole() const { return sent >= total; }
  // A network connection that seems lost on the way is made anew, and everything sent again.
  // Repeated requests for the confirmation are less than that.
  bool sent_again() const { return sent >= 2 * total; }
  long sent_of_job() const { return sent_again() ? sent : std::min(sent, total); }
};

End end_transaction(const Session& session) {
  const long total = seen(session.state().PageSize) + kRequestSize;
  const ByteCount count;
  const long result = TransactionPrint(session.port(), TZV_TRANSACTION_END);
  return {result, static_cast<long>(count.bytes()), total};
}

std::string words_for_unprinted(const End& end, Outcome outcome) {
  if (end.sent_nothing()) {
    return words_for(outcome) + "; nothing was printed: " + advice_for(outcome) + ", and try again";
  }
  if (!end.sent_whole()) {
    return "the printer took only " + count_words(end.sent, end.total) +
           ": what is on paper is cut short";
  }
  if (outcome == Outcome::kUnconfirmed) {
    return "no confirmation came: it may be on paper or not, so look before printing again";
  }
  return words_for(outcome) +
         "; the printer holds the rest and goes on by itself: " + advice_for(outcome) +
         ", and do not print it again";
}

std::string words_for(const Session& session, const End& end, Outcome outcome) {
  std::string words = std::string(session.port()) + ": ";
  if (outcome == Outcome::kDone) {
    words = "on paper: the printer has confirmed it";
  } else if (outcome == Outcome::kRefused) {
    words += "the port was closed";
  } else {
    words += words_for_unprinted(end, outcome);
  }
  if (end.sent_again()) words += "; it was sent twice on the way, and may be on paper twice";
  return words;
}

Outcome outcome_of(const Session& session, const End& end) {
  if (end.result == Session::kConfirmed) return Outcome::kDone;
  if (end.result < 0) return Outcome::kRefused;
  Outcome fault = fault_of_code(end.result);
  if (fault == Outcome::kOffline && session.fault_now() == Outcome::kCutterJam) {
    fault = Outcome::kCutterJam;
  }
  return fault == Outcome::kOffline && !end.sent_nothing() ? Outcome::kUnconfirmed : fault;
}

Result result_of(const Session& session, const End& end) {
  const Outcome outcome = outcome_of(session, end);
  return {.outcome = outcome,
          .words = words_for(session, end, outcome),
          .fields = {{"bytes", end.total},
                     {"bytes_sent", end.sent_of_job()},
                     {"confirmed", outcome == Outcome::kDone}}};
}

bool can_go_on(Outcome outcome) {
  return outcome == Outcome::kCoverOpen || outcome == Outcome::kPaperOut ||
         outcome == Outcome::kCutterJam;
}

Result print_confirmed(Session& session) {
  End end = end_transaction(session);
  while (can_go_on(outcome_of(session, end)) && session.options().wait_s > 0) {
    const Outcome left = session.wait_out_fault();
    const bool has_forgotten = left == Outcome::kUnconfirmed;
    if (left != Outcome::kDone && !has_forgotten) break;
    if (end.sent_nothing()) {
      // What is collected stays until it is sent.
      end = end_transaction(session);
    } else if (has_forgotten) {
      end.result = TZV_STATUS_OFFLINE;
      break;
    } else if (end.sent_whole()) {
      // The printer held what it had and prints on: asked, rather than told to print twice.
      end.result = session.settle();
    } else {
      break;
    }
  }
  return result_of(session, end);
}

Result print_unconfirmed(Session& session) {
  const LinkState& state = session.state();
  const long total = seen(state.PageSize);
  const ByteCount count;
  const long written = WritePort(session.port(), state.PageBuffer, total);
  if (written != total) {
    const auto sent = static_cast<long>(count.bytes());
    return {
        .outcome = Outcome::kRefused,
        .words = std::string(session.port()) + ": only " + count_words(sent, total) + " were sent",
        .fields = {{"bytes", total}, {"bytes_sent", sent}, {"confirmed", false}}};
  }
  return {.words = "sent; whether it prints was not asked",
          .fields = {{"bytes", total}, {"bytes_sent", total}, {"confirmed", false}}};
}

std::optional<Result> collect(Session& session, const Fill& fill) {
  TransactionPrint(session.port(), TZV_TRANSACTION_BEGIN);
  if (auto failed = fill(session)) return failed;
  if (seen(session.state().PageSize) + kRequestSize <= TZV_PAGE_BUFFER_SIZE) return std::nullopt;
  return too_large();
}

}  // namespace

Result too_large() {
  return {.outcome = Outcome::kNotPrintable,
          .words = "too large for one transaction, which holds " +
                   std::to_string(TZV_PAGE_BUFFER_SIZE) + " bytes; nothing was printed"};
}

std::optional<Result> collected(const Session& session, const std::function<long()>& operation) {
  const long before = seen(session.state().PageSize);
  const long result = operation();
  if (seen(session.state().PageSize) > before) return std::nullopt;
  if (result >= 0 || result == TZV_REFUSED) return too_large();
  return Result{.outcome = Outcome::kRefused,
                .words = std::string(session.port()) + ": the library refuses it (" +
                         std::to_string(result) + ")"};
}

Result print_job(const Options& options, bool confirm, const Fill& fill) {
  Session session(options);
  if (auto failed = session.open(confirm)) return *failed;
  if (confirm) {
    if (auto failed = session.make_ready()) return *failed;
  }
  if (auto failed = collect(session, fill)) return *failed;
  return confirm ? print_confirmed(session) : print_unconfirmed(session);
}

void add_confirm_option(CLI::App* command, bool& confirm) {
  command->add_flag("--confirm,!--no-confirm", confirm,
                    "Wait until the printer has confirmed that it is on paper (the default); "
                    "--no-confirm sends and asks nothing");
}

}  // namespace cli
