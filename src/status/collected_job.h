// The bytes that a transaction or reprint mode collects (`PageBuffer`, `PageSize`), which callers
// fill and the monitor sends and empties.
#pragma once

#include <span>
#include <string_view>

#include "status/transport_state.h"

/// Appends to the job: the count, or -2 when it does not fit any more (what is held stays).
long collect(const TransportState& state, std::string_view bytes);

/// Empties the job: `PageSize` 0 and all of `PageBuffer` zero.
void drop_collected(const TransportState& state);

/// The bytes collected so far. Valid until the job is emptied.
std::string_view collected(const TransportState& state);

/// Copies what stands from `offset` on into the buffer; the count, 0 at the job's end.
std::size_t copy_collected(const TransportState& state, long offset, std::span<char> buffer);

/// The monitor's reaction to a confirmation: takes the first `confirmed` bytes, or the whole job
/// (-1), out of the buffer and sets `OutputComplemetFlag`.
void confirm_collected(const TransportState& state, long confirmed = -1);

/// A job that went out may be gone: the printer's memory went with its power, or its connection was
/// lost. No confirmation counts then until a job is sent anew.
void lose_sent_job(const TransportState& state);
bool sent_job_is_lost(const TransportState& state);

/// The monitor sends the job, by copies, from its beginning.
void begin_resend(const TransportState& state);

/// The link stands again, and what a caller was sending goes out once more from its beginning.
void send_job_again(const TransportState& state);

/// While it lives, the caller sends the job from its beginning: neither a late confirmation of an
/// earlier one nor a close takes it away.
class SendingJob {
 public:
  explicit SendingJob(const TransportState& state);
  ~SendingJob();
  SendingJob(const SendingJob&) = delete;
  SendingJob& operator=(const SendingJob&) = delete;

 private:
  const TransportState& state_;
};
