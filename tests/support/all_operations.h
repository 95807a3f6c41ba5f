// Every exported operation, called with arguments that are in order but for the port's name.
#pragma once

#include <string>
#include <vector>

namespace testkit {

struct Operation {
  std::string name;
  long (*call)(const char* portName);
};

extern const std::vector<Operation> kAllOperations;

}  // namespace testkit
