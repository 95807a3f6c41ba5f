#include "support/scripted_kernel.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/ppdev.h>
#include <netinet/in.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace testkit {

namespace {

// Above what a test program opens itself, below what select() can hold.
constexpr int kFirstDescriptor = 700;

std::string describe_flags(int flags) {
  std::string text = (flags & O_ACCMODE) == O_RDWR ? "RDWR" : "?";
  if ((flags & O_NOCTTY) != 0) text += "|NOCTTY";
  if ((flags & O_NONBLOCK) != 0) text += "|NONBLOCK";
  const int others = flags & ~(O_ACCMODE | O_NOCTTY | O_NONBLOCK);
  return others == 0 ? text : text + "|others";
}

std::string describe_queue(int queue) {
  switch (queue) {
    case TCIFLUSH:
      return "input";
    case TCOFLUSH:
      return "output";
    case TCIOFLUSH:
      return "both";
    default:
      return "?";
  }
}

/// The bytes in hex, or how many they are when that would be long.
std::string describe_bytes(std::string_view bytes) {
  constexpr std::size_t kShown = 256;
  return bytes.size() > kShown ? std::to_string(bytes.size()) + " bytes" : hex(bytes);
}

std::string describe_request(unsigned long request) {
  switch (request) {
    case FIONREAD:
      return "FIONREAD";
    case TIOCMGET:
      return "TIOCMGET";
    case PPCLAIM:
      return "PPCLAIM";
    case PPRELEASE:
      return "PPRELEASE";
    case PPNEGOT:
      return "PPNEGOT";
    case PPRSTATUS:
      return "PPRSTATUS";
    case PPRDATA:
      return "PPRDATA";
    default:
      return "ioctl " + std::to_string(request);
  }
}

}  // namespace

std::string hex(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (!text.empty()) text += ' ';
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

std::string Call::line() const {
  std::string text = name;
  if (!detail.empty()) text += " " + detail;
  if (result != 0) text += " = " + std::to_string(result);
  return text;
}

void Device::answer(std::string_view query, std::string_view reply, int64_t delay_ms) {
  answers_.push_back({std::string(query), std::string(reply), delay_ms, false});
}

void Device::confirm_jobs(int64_t delay_ms) {
  answers_.push_back({kProcessIdRequest, kProcessIdAnswer, delay_ms, true});
}

void Device::answer_ready() {
  answer({"\x10\x04\x02", 3}, "\x12");
  answer({"\x10\x04\x04", 3}, "\x12");
}

void Device::answer_everything() {
  modem_lines = 0xffff;
  answer_ready();
  confirm_jobs();
  answer("x", "_1");
  answer({"\x10\x04\x01", 3}, "\x16");
  answer("\035IC", "_AB-123");
  answer("\035ID", "_1234567V1.23");
  answer("\033#BM?", "_BM");
  answer("\033#SENSOR", std::string("_1\0", 3));
}

/// How often the query is complete now that the message goes on behind the bytes that were known.
int Device::times_asked(const Answer& answer, std::size_t known) const {
  if (!answer.anywhere) return message_ == answer.query ? 1 : 0;
  if (message_.starts_with("\033#FRAME")) return 0;
  int times = 0;
  for (std::size_t at = 0; (at = message_.find(answer.query, at)) != std::string::npos;) {
    at += answer.query.size();
    times += at > known;
  }
  return times;
}

Kernel& Kernel::instance() {
  // Never destroyed: the library's unload hook still makes calls after the program's own end.
  static Kernel& kernel = *new Kernel;
  return kernel;
}

void Kernel::reset(bool active) {
  threads_.clear();
  threads_.push_back(std::make_unique<Participant>());
  running_ = threads_.front().get();
  active_ = active;
  logs_calls_ = true;
  now_us_ = 0;
  next_descriptor_ = kFirstDescriptor;
  devices_.clear();
  descriptors_.clear();
  unplugged_.clear();
  faults_.clear();
  fallible_calls_ = 0;
  events_.clear();
  calls_.clear();
}

Device& Kernel::plug(const std::string& path) {
  auto& device = devices_[path];
  device = std::make_unique<Device>();
  return *device;
}

void Kernel::cut(const std::string& path, int error) {
  unplugged_.insert(path);
  for (auto& [descriptor, file] : descriptors_) {
    if (file.path == path) file.lost = error;
  }
}

void Kernel::plug_back(const std::string& path) {
  unplugged_.erase(path);
}

bool Kernel::has_network() const {
  return std::any_of(devices_.begin(), devices_.end(),
                     [](const auto& named) { return named.first.starts_with("SOCKET:"); });
}

void Kernel::fail(const std::string& name, int error, int nth) {
  faults_.push_back({.name = name, .countdown = nth, .error = error});
}

void Kernel::shorten(const std::string& name, std::size_t bytes, int nth) {
  faults_.push_back({.name = name, .countdown = nth, .at_most = bytes});
}

void Kernel::at(int64_t ms, std::function<void()> action) {
  events_.emplace(ms * 1000, std::move(action));
}

std::vector<std::string> Kernel::log(std::string_view name) const {
  std::vector<std::string> lines;
  for (const Call& call : calls_) {
    if (name.empty() || call.name == name) lines.push_back(call.line());
  }
  return lines;
}

Kernel::Fault Kernel::take_fault(std::string_view name) {
  Fault met;
  const bool fallible = name != "fcntl" && name != "pthread_create" && !name.starts_with("cfset");
  fallible_calls_ += fallible;
  for (Fault& fault : faults_) {
    const bool any = fault.name.empty() && fallible;
    if ((any || fault.name == name) && --fault.countdown == 0) met = fault;
  }
  std::erase_if(faults_, [](const Fault& fault) { return fault.countdown <= 0; });
  return met;
}

long Kernel::record(std::string_view name, std::string detail, long result,
                    std::string_view bytes) {
  if (logs_calls_)
    calls_.push_back({std::string(name), std::move(detail), result, now_ms(), std::string(bytes)});
  return result;
}

bool Kernel::fault(std::string_view name, const std::string& detail, const Fault& fault) {
  if (fault.error == 0) return false;
  record(name, detail, -1);
  errno = fault.error;
  return true;
}

bool Kernel::fails(std::string_view name) {
  const Fault met = take_fault(name);
  return fault(name, "", met);
}

int Kernel::add(std::string path, int flags) {
  while (owns(next_descriptor_)) ++next_descriptor_;
  descriptors_[next_descriptor_] = {std::move(path), flags, std::nullopt};
  return next_descriptor_++;
}

int Kernel::open(const char* path, int flags) {
  const std::string detail = std::string(path) + " " + describe_flags(flags);
  if (fault("open", detail, take_fault("open"))) return -1;
  if (unplugged_.contains(path)) {
    record("open", detail, -1);
    errno = ENODEV;
    return -1;
  }
  const auto found = devices_.find(path);
  // What was written at full packets before is not gone on with.
  if (found != devices_.end()) found->second->message_.clear();
  return static_cast<int>(record("open", detail, add(path, flags)));
}

int Kernel::socket() {
  if (fault("socket", "", take_fault("socket"))) return -1;
  return static_cast<int>(record("socket", "", add("", 0)));
}

int Kernel::connect(int descriptor, const sockaddr* address) {
  sockaddr_in to{};
  std::memcpy(&to, address, sizeof to);
  const std::string host = inet_ntoa(to.sin_addr);
  const std::string detail = host + ":" + std::to_string(ntohs(to.sin_port));
  const std::string path = "SOCKET:" + host;
  const Fault met = take_fault("connect");
  // As POSIX has it, an interrupted attempt goes on.
  if (met.error == EINTR) descriptors_.at(descriptor).path = path;
  if (fault("connect", detail, met)) return -1;
  const bool there = devices_.contains(path) && !unplugged_.contains(path);
  const auto how = there ? devices_.at(path)->connect : Device::Connect::refused;
  if (how != Device::Connect::refused) descriptors_.at(descriptor).path = path;
  if (how == Device::Connect::at_once) return static_cast<int>(record("connect", detail, 0));
  record("connect", detail, -1);
  errno = how == Device::Connect::refused ? ECONNREFUSED : EINPROGRESS;
  return -1;
}

int Kernel::setsockopt(int, int option, const void* value, unsigned size) {
  const std::string detail =
      std::to_string(option) + " " + hex({static_cast<const char*>(value), size});
  if (fault("setsockopt", detail, take_fault("setsockopt"))) return -1;
  return static_cast<int>(record("setsockopt", detail, 0));
}

int Kernel::fcntl(int descriptor, int command, int flags) {
  const std::string detail = command == F_GETFL ? "F_GETFL" : "F_SETFL " + std::to_string(flags);
  if (fault("fcntl", detail, take_fault("fcntl"))) return -1;
  int& set = descriptors_.at(descriptor).flags;
  if (command == F_SETFL) set = flags;
  return static_cast<int>(record("fcntl", detail, command == F_GETFL ? set : 0));
}

bool Kernel::readable(int descriptor) {
  const OpenFile& file = descriptors_.at(descriptor);
  return file.lost || (!file.path.empty() && !device(descriptor).input.empty());
}

bool Kernel::writable(int descriptor) {
  const OpenFile& file = descriptors_.at(descriptor);
  return !file.path.empty() && device(descriptor).connect != Device::Connect::never;
}

int Kernel::select(int count, fd_set* reads, fd_set* writes, const timeval* timeout) {
  const int64_t patience = timeout->tv_sec * int64_t{1000000} + timeout->tv_usec;
  const std::string detail = (reads != nullptr ? "read " : "write ") + std::to_string(patience);
  if (fault("select", detail, take_fault("select"))) return -1;
  const int64_t deadline = now_us_ + patience;
  for (;;) {
    int ready = 0;
    for (int descriptor = kFirstDescriptor; descriptor < count; ++descriptor) {
      if (reads != nullptr && FD_ISSET(descriptor, reads)) ready += readable(descriptor);
      if (writes != nullptr && FD_ISSET(descriptor, writes)) ready += writable(descriptor);
    }
    if (ready > 0 || now_us_ >= deadline) {
      return static_cast<int>(record("select", detail, ready));
    }
    if (!wait_for_event(deadline - now_us_)) sleep_us("select", deadline - now_us_);
  }
}

bool Kernel::wait_for_event(int64_t at_most_us) {
  if (events_.empty()) return false;
  const int64_t due = std::max<int64_t>(events_.begin()->first - now_us_, 0);
  if (due > at_most_us) return false;
  std::unique_lock lock(turns_);
  Participant* self = running_;
  self->wake_us = now_us_ + due;
  hand_over(lock, self);
  return true;
}

int Kernel::close(int descriptor) {
  // As on Linux, a descriptor is gone even when closing it reports an error.
  const Fault met = take_fault("close");
  descriptors_.erase(descriptor);
  if (fault("close", std::to_string(descriptor), met)) return -1;
  return static_cast<int>(record("close", std::to_string(descriptor), 0));
}

ssize_t Kernel::read(int descriptor, void* buffer, std::size_t size) {
  return take_in("read", descriptor, buffer, size, true);
}

ssize_t Kernel::recv(int descriptor, void* buffer, std::size_t size, int flags) {
  return take_in("recv", descriptor, buffer, size, (flags & MSG_DONTWAIT) == 0);
}

ssize_t Kernel::take_in(std::string_view name, int descriptor, void* buffer, std::size_t size,
                        bool blocks) {
  const Fault met = take_fault(name);
  const std::string detail = std::to_string(size);
  if (fault(name, detail, met)) return -1;
  blocks = blocks && (descriptors_.at(descriptor).flags & O_NONBLOCK) == 0;
  constexpr int64_t kOneHour = 3600'000'000;
  while (blocks && owns(descriptor) && !readable(descriptor) && wait_for_event(kOneHour)) {
  }
  if (!owns(descriptor) || !readable(descriptor) || device(descriptor).input.empty()) {
    const int error = owns(descriptor) ? descriptors_.at(descriptor).lost.value_or(EAGAIN) : EBADF;
    record(name, detail, error == 0 ? 0 : -1);
    errno = error;
    return error == 0 ? 0 : -1;
  }
  std::string& input = device(descriptor).input;
  std::size_t count = std::min(size, input.size());
  count = std::min(count, met.at_most);
  std::memcpy(buffer, input.data(), count);
  const std::string moved = input.substr(0, count);
  input.erase(0, count);
  return record(name, detail, static_cast<long>(count), moved);
}

ssize_t Kernel::write(int descriptor, const void* bytes, std::size_t size) {
  return put_out("write", descriptor, {static_cast<const char*>(bytes), size});
}

ssize_t Kernel::send(int descriptor, const void* bytes, std::size_t size, int flags) {
  // Without the flag, a lost connection would end the process with a signal.
  if ((flags & MSG_NOSIGNAL) == 0) record("SIGPIPE", "", 0);
  return put_out("send", descriptor, {static_cast<const char*>(bytes), size});
}

void Kernel::give_answer(Device& device, const Device::Answer& answer) {
  if (answer.delay_ms == 0) {
    device.input += answer.reply;
  } else {
    at(now_ms() + answer.delay_ms, [&device, reply = answer.reply] { device.input += reply; });
  }
}

ssize_t Kernel::put_out(std::string_view name, int descriptor, std::string_view given) {
  const Fault met = take_fault(name);
  const std::string detail = describe_bytes(given);
  if (fault(name, detail, met)) return -1;
  const OpenFile& file = descriptors_.at(descriptor);
  if (file.lost || file.path.empty()) {
    record(name, detail, -1);
    errno = file.path.starts_with("/dev") ? ENODEV : EPIPE;
    return -1;
  }
  Device& device = this->device(descriptor);
  if (device.take) {
    const long count = device.take(given.substr(0, met.at_most));
    return record(name, detail, count);
  }
  const std::string taken{given.substr(0, met.at_most)};
  device.output += taken;
  device.writes.push_back(taken);
  // A full packet of USB's may be followed at once by more of the same message.
  if (std::exchange(device.message_us_, now_us_) != now_us_) device.message_.clear();
  const std::size_t known = device.message_.size();
  device.message_ += taken;
  bool complete = !file.path.starts_with("/dev/usb") || taken.size() < 64;
  for (const Device::Answer& answer : device.answers_) {
    for (int times = device.times_asked(answer, known); times > 0; --times) {
      give_answer(device, answer);
      complete |= device.message_.ends_with(answer.query);
    }
  }
  if (complete) device.message_.clear();
  record(name, detail, static_cast<long>(taken.size()), taken);
  if (device.on_write) device.on_write();
  return static_cast<ssize_t>(taken.size());
}

int Kernel::ioctl_parallel(Device& device, unsigned long request, void* argument) {
  if (request == PPNEGOT) {
    const int mode = *static_cast<int*>(argument);
    const std::string detail = std::to_string(mode);
    if (mode == 0 && !device.has_nibble_mode) {
      record("PPNEGOT", detail, -1);
      errno = ENXIO;
      return -1;
    }
    device.mode = mode;
    return static_cast<int>(record("PPNEGOT", detail, 0));
  }
  if (request == PPRSTATUS) {
    *static_cast<unsigned char*>(argument) = device.status_lines;
    return static_cast<int>(record("PPRSTATUS", hex({static_cast<char*>(argument), 1}), 0));
  }
  return static_cast<int>(record(describe_request(request), "", 0));
}

int Kernel::ioctl(int descriptor, unsigned long request, void* argument) {
  const std::string name = describe_request(request);
  const std::string detail =
      request == PPNEGOT ? std::to_string(*static_cast<int*>(argument)) : std::string();
  if (fault(name, detail, take_fault(name))) return -1;
  Device& device = this->device(descriptor);
  if (name.starts_with("PP")) return ioctl_parallel(device, request, argument);
  int* value = static_cast<int*>(argument);
  if (request == FIONREAD) {
    *value = static_cast<int>(device.input.size());
  } else if (request == TIOCMGET && device.has_modem_lines) {
    *value = device.modem_lines;
  } else {
    record(name, "", -1);
    errno = ENOTTY;
    return -1;
  }
  return static_cast<int>(record(name, std::to_string(*value), 0));
}

int Kernel::tcgetattr(int descriptor, termios* line) {
  if (fault("tcgetattr", "", take_fault("tcgetattr"))) return -1;
  *line = device(descriptor).line;
  return static_cast<int>(record("tcgetattr", "", 0));
}

int Kernel::tcsetattr(int descriptor, int actions, const termios* line) {
  const std::string detail = actions == TCSANOW ? "now" : "?";
  if (fault("tcsetattr", detail, take_fault("tcsetattr"))) return -1;
  device(descriptor).line = *line;
  return static_cast<int>(record("tcsetattr", detail, 0));
}

int Kernel::tcflush(int descriptor, int queue) {
  if (fault("tcflush", describe_queue(queue), take_fault("tcflush"))) return -1;
  if (queue != TCOFLUSH) device(descriptor).input.clear();
  return static_cast<int>(record("tcflush", describe_queue(queue), 0));
}

int Kernel::tcdrain(int) {
  if (fault("tcdrain", "", take_fault("tcdrain"))) return -1;
  return static_cast<int>(record("tcdrain", "", 0));
}

void Kernel::sleep_us(std::string_view name, int64_t microseconds) {
  record(name, std::to_string(microseconds), 0);
  std::unique_lock lock(turns_);
  Participant* self = running_;
  self->wake_us = now_us_ + microseconds;
  hand_over(lock, self);
}

struct Kernel::NewThread {
  Kernel& kernel;
  Participant* participant;
  void* (*start)(void*);
  void* argument;
};

int Kernel::create_thread(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*start)(void*), void* argument) {
  const Fault met = take_fault("pthread_create");
  if (met.error != 0) return static_cast<int>(record("pthread_create", "", met.error));
  record("pthread_create", "", 0);
  Participant* created = threads_.emplace_back(std::make_unique<Participant>()).get();
  created->wake_us = now_us_;
  created->order = ++orders_;
  static const auto libc =
      reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  const int result =
      libc(thread, attributes, run_thread, new NewThread{*this, created, start, argument});
  created->thread = *thread;
  return result;
}

void* Kernel::run_thread(void* argument) {
  const std::unique_ptr<NewThread> started(static_cast<NewThread*>(argument));
  Kernel& kernel = started->kernel;
  {
    std::unique_lock lock(kernel.turns_);
    started->participant->turn.wait(lock, [&] { return kernel.running_ == started->participant; });
  }
  void* const result = started->start(started->argument);
  std::unique_lock lock(kernel.turns_);
  started->participant->ended = true;
  kernel.running_ = kernel.due_first();
  kernel.running_->turn.notify_one();
  return result;
}

int Kernel::join_thread(pthread_t thread, void** result) {
  record("pthread_join", "", 0);
  {
    // The joined thread sleeps and works on; the joiner looks again each time it could run.
    std::unique_lock lock(turns_);
    const auto found = std::find_if(threads_.begin(), threads_.end(), [&](const auto& other) {
      return pthread_equal(other->thread, thread) != 0;
    });
    const Participant* joined = found == threads_.end() ? nullptr : found->get();
    Participant* self = running_;
    while (joined != nullptr && !joined->ended) {
      self->wake_us = joined->wake_us;
      hand_over(lock, self);
    }
  }
  static const auto libc =
      reinterpret_cast<decltype(&pthread_join)>(dlsym(RTLD_NEXT, "pthread_join"));
  const int code = libc(thread, result);
  std::erase_if(threads_, [&](const auto& other) {
    return other->ended && pthread_equal(other->thread, thread) != 0;
  });
  return code;
}

Kernel::Participant* Kernel::due_first() {
  Participant* first = nullptr;
  for (const auto& thread : threads_) {
    if (thread->ended) continue;
    if (first == nullptr || thread->wake_us < first->wake_us ||
        (thread->wake_us == first->wake_us && thread->order < first->order)) {
      first = thread.get();
    }
  }
  run_events_until(first->wake_us);
  return first;
}

void Kernel::hand_over(std::unique_lock<std::mutex>& lock, Participant* self) {
  self->order = ++orders_;
  running_ = due_first();
  if (running_ == self) return;
  running_->turn.notify_one();
  self->turn.wait(lock, [&] { return running_ == self; });
}

void Kernel::run_events_until(int64_t us) {
  while (!events_.empty() && events_.begin()->first <= us) {
    auto event = events_.extract(events_.begin());
    now_us_ = std::max(now_us_, event.key());
    event.mapped()();
  }
  now_us_ = std::max(now_us_, us);
}

}  // namespace testkit
