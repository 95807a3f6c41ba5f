// Every exported operation, called with arguments that are in order but for the port's name.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace testkit {

struct Operation {
  std::string name;
  long (*call)(const char* portName);
};

// Without it a test's name would be printed as bytes, padding included.
inline std::ostream& operator<<(std::ostream& out, const Operation& operation) {
  return out << operation.name;
}

extern const std::vector<Operation> kAllOperations;

}  // namespace testkit
