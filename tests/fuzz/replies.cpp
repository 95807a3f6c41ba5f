// Answers to queries, whatever the printer says: the documented results, and not one byte of the
// caller's buffer touched beyond them.
#include <cstring>

#include "input.h"
#include "open_link.h"

namespace fuzz {
namespace {

constexpr std::size_t kReplySize = 256;
constexpr char kUntouched = '\x5a';

/// The caller's buffer, with a margin that nobody may write to.
struct Buffer {
  Buffer() { std::memset(bytes, kUntouched, sizeof bytes); }

  void holds_only(std::string_view content) const {
    check(std::string_view(bytes, content.size()) == content, "what the printer said");
    for (std::size_t i = content.size(); i < sizeof bytes; ++i) {
      check(bytes[i] == kUntouched, "nothing is written beyond it");
    }
  }

  char bytes[kReplySize + 64];
};

/// What a call reads of an answer; what is longer stays on the line.
std::string_view read_of(std::string_view reply, std::size_t most = kReplySize) {
  return reply.substr(0, most);
}

void ask_data(const OpenLink& till, std::string_view reply) {
  Buffer buffer;
  const long count = GetData(till.port, "?", 1, buffer.bytes);
  check(count == static_cast<long>(read_of(reply).size()), "GetData counts the answer");
  buffer.holds_only(read_of(reply));
}

void ask_serial_number(const OpenLink& till, std::string_view reply) {
  Buffer buffer;
  const std::string_view answer = read_of(reply);
  const long length = GetSerialNumber(till.port, buffer.bytes);
  check(length == std::max(static_cast<long>(answer.size()) - 1, 0L), "GetSerialNumber's length");
  buffer.holds_only(answer.starts_with('_') ? answer.substr(1) : "");
}

void ask_version(const OpenLink& till, std::string_view reply) {
  constexpr std::size_t kMarkAt = 8;
  Buffer buffer;
  const std::string_view answer = read_of(reply);
  const long length = GetFWVersion(till.port, buffer.bytes);
  if (answer.starts_with('_') && answer.size() > kMarkAt && answer[kMarkAt] == 'V') {
    const std::string_view version = answer.substr(kMarkAt + 1);
    check(length == static_cast<long>(version.size()), "GetFWVersion's length");
    buffer.holds_only(version);
  } else {
    check(length == 0, "no version");
    buffer.holds_only("Unknown");
  }
}

void ask_black_mark(const OpenLink& till, std::string_view reply) {
  long expected = reply.empty() ? -1 : 2;
  if (reply.substr(std::min(reply.size(), std::size_t{1})).starts_with("BM")) expected = 0;
  if (reply.substr(std::min(reply.size(), std::size_t{1})).starts_with("BB")) expected = 1;
  check(CheckBlackMark(till.port) == expected, "CheckBlackMark's result");
}

/// By the last three bytes of what was read: "_", the sensor byte, NUL.
long sensor_result(std::string_view answer) {
  if (answer.empty()) return 0;
  if (answer.size() < 3) return -1;
  const std::string_view last = answer.substr(answer.size() - 3);
  if (last[0] != '_' || last[2] != '\0') return -1;
  switch (last[1]) {
    case '0':
    case '@':
      return TZV_STATUS_OK;
    case '1':
      return TZV_STATUS_SENSOR_1;
    case '2':
      return TZV_STATUS_SENSOR_2;
    case '3':
    case 'A':
      return TZV_STATUS_SENSOR_3;
    default:
      return -1;
  }
}

void ask_status(const OpenLink& till, std::string_view reply) {
  constexpr std::size_t kReadAtOnce = 64;
  const long status = GetPrinterStatus(till.port);
  check(status == sensor_result(read_of(reply, kReadAtOnce)), "GetPrinterStatus's result");
  const testkit::ExportedState& state = till.state;
  check(*state.bSensor1 + *state.bSensor2 + *state.bSensor3 <= 1, "one sensor at a time");
  check(*state.DeviceType == 0 || *state.DeviceType == 1, "one of the two families");
}

void write_serial_number(const OpenLink& till, std::string_view reply) {
  const std::string_view answer = read_of(reply);
  const long expected = answer.ends_with('0') ? 0 : -1;
  check(SetSerialNumber(till.port, "12345", 5) == expected, "SetSerialNumber's result");
}

constexpr void (*kQueries[])(const OpenLink&, std::string_view) = {
    ask_data, ask_serial_number, ask_version, ask_black_mark, ask_status, write_serial_number};

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace fuzz;
  Input input(data, size);
  OpenLink till(testkit::kLinks[input.choice(testkit::kLinks.size())]);
  const bool claimed = input.flag();
  const auto query = kQueries[input.choice(std::size(kQueries))];
  const std::string reply(input.rest());
  if (claimed) {
    ClaimDevice(till.port, 0);
    till.kernel.run_for(2000);
  }
  // In front of its writing nothing waits: a monitor would take it for a report.
  till.printer->on_write = [&] {
    till.printer->input += reply;
    till.printer->on_write = nullptr;
  };
  query(till, reply);
  check(*till.state.bStopThread == 0, "the line is the monitor's again");
  return 0;
}
