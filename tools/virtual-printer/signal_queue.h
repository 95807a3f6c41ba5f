// Signals as something to read, so that waiting for the line and for signals is one wait.
#pragma once

#include <initializer_list>
#include <optional>

#include "descriptor.h"

namespace virtual_printer {

class SignalQueue {
 public:
  explicit SignalQueue(std::initializer_list<int> signals);

  int descriptor() const { return queue_.number(); }

  // The next signal, if one waits.
  std::optional<int> next();

 private:
  Descriptor queue_;
};

}  // namespace virtual_printer
