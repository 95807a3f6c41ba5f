// The way by which other threads ask the printer's loop: the loop alone touches the printer.
#pragma once

#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "control.h"
#include "descriptor.h"

namespace virtual_printer {

class RequestQueue {
 public:
  RequestQueue();

  // By any thread: waits for the answer; nothing when the queue is closed instead.
  std::optional<ControlReply> ask(const std::string& request);

  // By the loop: to be polled, then answered.
  int descriptor() const { return bell_.number(); }
  void serve(const std::function<ControlReply(const std::string&)>& answer);

  // Nobody answers any more.
  void close();

 private:
  struct Pending {
    std::string request;
    std::promise<std::optional<ControlReply>> reply;
  };

  std::vector<Pending> take_all();

  Descriptor bell_;
  std::mutex mutex_;
  std::vector<Pending> pending_;
  bool closed_ = false;
};

}  // namespace virtual_printer
