// Real devices under the names that the library accepts: a pseudo-terminal as /dev/ttyS-test.
#pragma once

#include <string>

namespace testkit {

/// While it lives, the test program's open() of `name` opens `device`.
class NameAlias {
 public:
  NameAlias(std::string name, std::string device);
  ~NameAlias();
  NameAlias(const NameAlias&) = delete;
  NameAlias& operator=(const NameAlias&) = delete;

 private:
  std::string name_;
};

/// What open() is to open for a path.
const char* device_behind(const char* path);

}  // namespace testkit
