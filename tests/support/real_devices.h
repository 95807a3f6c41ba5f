// Real devices under the names that the library accepts (a pseudo-terminal as /dev/ttyS-test), and
// real time that passes faster.
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

/// Lets the library's sleeps pass that many times faster, in real time. For tests of threads that
/// need thousands of rounds; 1 is the normal speed.
void speed_up_sleeps(int factor);

/// The factor that was set.
int sleep_speed();

/// Answers a parallel port's own requests for a device that stands in for one: whatever is asked, a
/// printer is there and online. False: it is none of these requests.
bool play_parallel_request(unsigned long request, void* argument);

/// What open() is to open for a path.
const char* device_behind(const char* path);

}  // namespace testkit
