#include "support/real_devices.h"

#include <linux/ppdev.h>
#include <sys/ioctl.h>

#include <atomic>
#include <map>

namespace testkit {

namespace {

std::map<std::string, std::string, std::less<>>& aliases() {
  static auto& names = *new std::map<std::string, std::string, std::less<>>;
  return names;
}

}  // namespace

NameAlias::NameAlias(std::string name, std::string device) : name_(std::move(name)) {
  aliases()[name_] = std::move(device);
}

NameAlias::~NameAlias() {
  aliases().erase(name_);
}

namespace {

std::atomic<int> speed = 1;

}  // namespace

void speed_up_sleeps(int factor) {
  speed = factor;
}

int sleep_speed() {
  return speed;
}

bool play_parallel_request(unsigned long request, void* argument) {
  if (_IOC_TYPE(request) != PP_IOCTL) return false;
  constexpr unsigned char kOnline = 0x88;
  if (request == PPRSTATUS) *static_cast<unsigned char*>(argument) = kOnline;
  return true;
}

const char* device_behind(const char* path) {
  const auto alias = aliases().find(path);
  return alias == aliases().end() ? path : alias->second.c_str();
}

}  // namespace testkit
