#include "request_queue.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <utility>

namespace virtual_printer {

RequestQueue::RequestQueue()
    : bell_(check(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC), "cannot make a queue of requests")) {}

std::optional<ControlReply> RequestQueue::ask(const std::string& request) {
  std::future<std::optional<ControlReply>> reply;
  {
    const std::lock_guard lock(mutex_);
    if (closed_) return std::nullopt;
    pending_.push_back({request, {}});
    reply = pending_.back().reply.get_future();
  }
  eventfd_write(bell_.number(), 1);
  return reply.get();
}

void RequestQueue::serve(const std::function<ControlReply(const std::string&)>& answer) {
  eventfd_t rings = 0;
  eventfd_read(bell_.number(), &rings);
  for (Pending& pending : take_all()) pending.reply.set_value(answer(pending.request));
}

void RequestQueue::close() {
  {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }
  for (Pending& pending : take_all()) pending.reply.set_value(std::nullopt);
}

std::vector<RequestQueue::Pending> RequestQueue::take_all() {
  const std::lock_guard lock(mutex_);
  return std::exchange(pending_, {});
}

}  // namespace virtual_printer
