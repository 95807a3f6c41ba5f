#include "till.h"

#include <utility>

namespace fuzz {
namespace {

/// What a monitor has sent, but for the bytes whose number depends on when it looks: the enabling
/// of reports (GS a 255) and repeated requests.
std::string timeless(std::string sent) {
  for (const std::string& repeated : {testkit::kEnableReports, testkit::kProcessIdRequest}) {
    for (std::size_t at = 0; (at = sent.find(repeated, at)) != std::string::npos;) {
      sent.erase(at, repeated.size());
    }
  }
  return sent;
}

std::string numbers_of(const testkit::ExportedState& state) {
  std::string numbers;
#define TZV_NUMBER(type, field, ...) numbers += #field " " + std::to_string(*state.field) + ", ";
#define TZV_NOTHING(...)
  TZV_STATE_FIELDS(TZV_NUMBER, TZV_NOTHING, TZV_NOTHING)
#undef TZV_NUMBER
#undef TZV_NOTHING
  return numbers;
}

}  // namespace

Till::Till(const testkit::Link& link) : open(link) {
  printer.on_write = [this] { take_written(); };
}

void Till::take_written() {
  const bool by_caller = pthread_equal(pthread_self(), callers_thread_) != 0;
  (by_caller ? sent_ : sent_by_monitor_) += printer.writes.back();
  if (by_caller && armed_) printer.input += *std::exchange(armed_, std::nullopt);
}

void Till::forget_sent_requests() {
  sent_ = timeless(sent_);
}

/// Long enough for two looks of a monitor; a reprint takes a pause, a job and its confirmation.
void Till::settle() {
  constexpr int64_t kTwoCycles = 1500;  // milliseconds
  constexpr int64_t kReprint = 15000;
  if (open.kernel.threads() == 0) return;
  open.kernel.run_for(*state.RePrint != 0 ? kReprint : kTwoCycles);
}

Seen Till::look(long result) {
  settle();
  armed_.reset();
  open.forget();
  return {.result = result,
          .answer = {std::exchange(buffer, {}).data(), buffer.size()},
          .sent = std::exchange(sent_, {}),
          .sent_by_monitor = timeless(std::exchange(sent_by_monitor_, {})),
          .collected = state.collected(),
          .state = numbers_of(state)};
}

}  // namespace fuzz
