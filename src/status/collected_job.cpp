#include "status/collected_job.h"

#include <algorithm>
#include <cstring>

#include "dispatch/lock.h"
#include "dispatch/results.h"
#include "status/clear_pages.h"

namespace {

/// The bytes held; none when an application wrote a size that cannot be. Called with the lock.
std::string_view held(const TransportState& state) {
  const long size = state.PageSize;
  if (size < 0 || size > TZV_PAGE_BUFFER_SIZE) return {};
  return {state.PageBuffer, static_cast<std::size_t>(size)};
}

/// Takes the first bytes out. Called with the lock.
void take_out(const TransportState& state, std::size_t count) {
  const std::size_t kept = held(state).size() - count;
  std::memmove(state.PageBuffer, state.PageBuffer + count, kept);
  clear_pages(state.PageBuffer + kept, TZV_PAGE_BUFFER_SIZE - kept);
  state.PageSize = static_cast<long>(kept);
}

/// Called with the lock.
void empty(const TransportState& state) {
  take_out(state, held(state).size());
  state.hand_over.sent_job = SentJob::none;
}

}  // namespace

long collect(const TransportState& state, std::string_view bytes) {
  const MutexLock lock(state.hand_over.mutex);
  const long size = state.PageSize;
  const long length = static_cast<long>(bytes.size());
  // PageSize is exported, so an application may have written anything into it.
  if (size < 0 || size > TZV_PAGE_BUFFER_SIZE || length > TZV_PAGE_BUFFER_SIZE - size) {
    return kRefused;
  }
  std::memcpy(state.PageBuffer + size, bytes.data(), bytes.size());
  state.PageSize = size + length;
  return length;
}

void drop_collected(const TransportState& state) {
  const MutexLock lock(state.hand_over.mutex);
  // A close on another thread must not clear the bytes that are being written.
  if (state.hand_over.senders > 0) {
    state.hand_over.drop_due = true;
  } else {
    empty(state);
  }
}

std::string_view collected(const TransportState& state) {
  const MutexLock lock(state.hand_over.mutex);
  return held(state);
}

std::size_t copy_collected(const TransportState& state, long offset, std::span<char> buffer) {
  const MutexLock lock(state.hand_over.mutex);
  const std::string_view job = held(state);
  const auto start = std::min(static_cast<std::size_t>(offset), job.size());
  const std::size_t count = std::min(buffer.size(), job.size() - start);
  std::memcpy(buffer.data(), job.data() + start, count);
  return count;
}

void confirm_collected(const TransportState& state, long confirmed) {
  const MutexLock lock(state.hand_over.mutex);
  if (state.hand_over.sent_job == SentJob::lost) return;
  // While a transaction collects or is being sent, its request is not out yet: the confirmation
  // is a late one of an earlier job, and must not take the new receipt away.
  if (state.TransactionPrint == 0 && state.hand_over.senders == 0) {
    const std::size_t size = held(state).size();
    take_out(state, confirmed < 0 ? size : std::min(static_cast<std::size_t>(confirmed), size));
    state.hand_over.sent_job = SentJob::none;
  }
  state.OutputComplemetFlag = 1;
}

void lose_sent_job(const TransportState& state) {
  const MutexLock lock(state.hand_over.mutex);
  if (state.hand_over.sent_job == SentJob::none) return;
  state.hand_over.sent_job = SentJob::lost;
  // What was confirmed while the job was still being sent was an earlier one.
  if (state.hand_over.senders > 0) state.OutputComplemetFlag = 0;
}

bool sent_job_is_lost(const TransportState& state) {
  const MutexLock lock(state.hand_over.mutex);
  return state.hand_over.sent_job == SentJob::lost;
}

void begin_resend(const TransportState& state) {
  const MutexLock lock(state.hand_over.mutex);
  state.hand_over.sent_job = SentJob::awaited;
}

void send_job_again(const TransportState& state) {
  const MutexLock lock(state.hand_over.mutex);
  // A request that is sent again brings nothing back.
  if (state.hand_over.senders > 0) state.hand_over.sent_job = SentJob::awaited;
}

SendingJob::SendingJob(const TransportState& state) : state_(state) {
  const MutexLock lock(state.hand_over.mutex);
  ++state.hand_over.senders;
  state.hand_over.sent_job = SentJob::awaited;
}

SendingJob::~SendingJob() {
  const MutexLock lock(state_.hand_over.mutex);
  HandOver& hand_over = state_.hand_over;
  if (--hand_over.senders > 0 || !hand_over.drop_due) return;
  hand_over.drop_due = false;
  empty(state_);
}
