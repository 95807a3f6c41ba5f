// tzvio identify
#include <tzvio.h>

#include <array>

#include "commands.h"
#include "condition.h"
#include "session.h"

namespace cli {
namespace {

constexpr std::size_t kReplySize = 256;

// What a printer says may hold anything.
std::string printable(const char* bytes, long count) {
  std::string text;
  for (long i = 0; i < count; ++i) text += bytes[i] >= ' ' && bytes[i] < 0x7f ? bytes[i] : '?';
  return text;
}

// Empty when it is not known.
std::string ask(long (&query)(const char*, char*), const Session& session) {
  std::array<char, kReplySize> reply{};
  return printable(reply.data(), query(session.port(), reply.data()));
}

int sensor_of(const LinkState& state) {
  if (seen(state.bSensor1) != 0) return 1;
  if (seen(state.bSensor2) != 0) return 2;
  return seen(state.bSensor3) != 0 ? 3 : 0;
}

std::string or_unknown(const std::string& text) {
  return text.empty() ? "unknown" : text;
}

// Asked without a monitor, which would take a report for an answer, or an answer for a report.
Result run(const Options& options) {
  Session session(options);
  if (auto failed = session.open()) return *failed;
  if (auto failed = session.fault_at_open()) return *failed;
  const std::string version = ask(GetFWVersion, session);
  const std::string serial = ask(GetSerialNumber, session);
  if (version.empty() && serial.empty()) {
    return {.outcome = Outcome::kNoAnswer,
            .words = options.port + ": the printer does not say who it is"};
  }
  GetPrinterStatus(session.port());
  const auto family = seen(session.state().DeviceType);
  const int sensor = sensor_of(session.state());
  return {.text = "serial number: " + or_unknown(serial) + "\nfirmware: " + or_unknown(version) +
                  "\nfamily: " + std::to_string(family) +
                  "\nsensor: " + (sensor == 0 ? "none" : std::to_string(sensor)) + "\n",
          .fields = {{"serial_number", serial},
                     {"firmware", version},
                     {"family", family},
                     {"sensor", sensor}}};
}

}  // namespace

void add_identify(CLI::App& app, Invocation& invocation) {
  CLI::App* const command = add_command(
      app, "identify", "Serial number, firmware version, family, paper sensor that reports");
  command->footer("  tzvio identify --port SOCKET:192.168.0.10");
  set_work(command, invocation, run);
}

}  // namespace cli
