#include "device/signals.h"

#include <array>

#include "device/identity.h"
#include "device/not_ready.h"
#include "dispatch/port_operations.h"

namespace {

constexpr std::string_view kBeep = "\033#ERROR";
constexpr std::string_view kSelfTestMenu1 = "\033#MENU1";
constexpr std::string_view kSelfTestMenu2 = "\033#MENU2";
constexpr std::string_view kBlackMarkQuery = "\033#BM?";

/// Sends a command at once, if the printer can serve it.
long send_signal(const Transport& transport, const char* portName, std::string_view command) {
  const PortHandle port = transport.registry.find(portName);
  if (!port || cannot_serve(transport.state)) return kFailed;
  return guarded_write(transport, port, command) < 0 ? kFailed : kOk;
}

}  // namespace

long warning_beep(const Transport& transport, const char* portName) {
  return send_signal(transport, portName, kBeep);
}

long self_test(const Transport& transport, const char* portName, long SelfNum) {
  if (SelfNum != 1 && SelfNum != 2) return kFailed;
  return send_signal(transport, portName, SelfNum == 1 ? kSelfTestMenu1 : kSelfTestMenu2);
}

long check_black_mark(const Transport& transport, const char* portName) {
  std::array<char, kIdentityReplySize> reply{};
  const long count = query_data(transport, portName, kBlackMarkQuery, reply);
  if (count <= 0) return kFailed;
  if (reply[1] == 'B' && reply[2] == 'M') return 0;
  return reply[1] == 'B' && reply[2] == 'B' ? 1 : 2;
}
