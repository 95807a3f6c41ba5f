#include "status/queries.h"

#include <array>
#include <cstring>
#include <optional>
#include <utility>

#include "dispatch/port_operations.h"
#include "dispatch/system.h"
#include "status/error_code.h"
#include "status/exchange.h"
#include "status/sensor_reply.h"

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kAskOfflineCause = "\x10\x04\x02"sv;  // DLE EOT 2
constexpr std::string_view kAskPaperSensor = "\x10\x04\x04"sv;   // DLE EOT 4

// Bits of the two answers.
constexpr unsigned char kCoverOpenBit = 0x04;
constexpr unsigned char kPaperOutBits = 0x60;

constexpr ReadPatience kDrain{.min_length = 1, .silence_ms = 500};
constexpr ReadPatience kAnswer{.min_length = 1, .silence_ms = 200};

constexpr int kStatusReads = 4;
constexpr int kSensorAttempts = 5;
constexpr int kSensorReads = 11;
constexpr long kRetryPause = 100;  // milliseconds

/// The last byte of the answer to a DLE EOT, or -1 when none comes.
int ask_status_byte(const Transport& transport, PortHandle port, std::string_view query) {
  transport.write_now(port, query);
  pause_ms(transport.status_exchange.after_query_ms);
  for (int attempt = 0; attempt < kStatusReads; ++attempt) {
    std::array<char, 32> answer;
    const long count = read_for_caller(transport, port, answer, kAnswer);
    if (count > 0) return static_cast<unsigned char>(answer[static_cast<std::size_t>(count) - 1]);
    pause_ms(kRetryPause);
  }
  return -1;
}

/// One answer to a sensor query, after at most 11 reads; 0 bytes when none comes.
long read_sensor_answer(const Transport& transport, PortHandle port, std::span<char> answer) {
  for (int reads = 1;; ++reads) {
    const long count = read_for_caller(transport, port, answer, kAnswer);
    if (count > 0) return count;
    if (reads == kSensorReads) return 0;
    pause_ms(kRetryPause);
  }
}

void store_sensors(const TransportState& state, int sensor) {
  state.bSensor1 = sensor == 1;
  state.bSensor2 = sensor == 2;
  state.bSensor3 = sensor == 3;
}

/// Keeps a monitor that runs off the line.
std::optional<Exchange> exchange_beside_monitor(const TransportState& state) {
  return state.StopIt != 0 ? std::optional<Exchange>(std::in_place, state) : std::nullopt;
}

enum class Asked { answered_or_silent, nothing_sent, malformed };

/// Asks the printer for its sensors and stores what it says.
Asked ask_sensors(const Transport& transport, PortHandle port) {
  const TransportState& state = transport.state;
  const auto exchange = exchange_beside_monitor(state);
  store_sensors(state, 0);
  const std::string_view query(state.GetSensor, strnlen(state.GetSensor, sizeof state.GetSensor));
  for (int attempt = 0; attempt < kSensorAttempts; ++attempt) {
    // A write refused in an error state is not the end: an answer may be on its way already.
    if (guarded_write(transport, port, query) == 0) return Asked::nothing_sent;
    std::array<char, 64> answer;
    const long count = read_sensor_answer(transport, port, answer);
    if (count == 0) continue;
    const SensorReply reply = decode_sensor_reply({answer.data(), static_cast<std::size_t>(count)});
    if (reply.device_type >= 0) state.DeviceType = reply.device_type;
    if (!reply.valid) return Asked::malformed;
    store_sensors(state, reply.sensor);
    break;
  }
  return Asked::answered_or_silent;
}

/// The code of the sensor that reports; 0 when none does.
long sensor_code(const TransportState& state) {
  if (state.bSensor3) return kSensor3;
  // The second family's printers have no other sensor.
  if (state.DeviceType == 0) return kOk;
  if (state.bSensor2) return kSensor2;
  return state.bSensor1 ? kSensor1 : kOk;
}

long code_by_priority(const TransportState& state) {
  const long family = state.DeviceType;
  if (family != 0 && family != 1) return kFailed;
  const long blocking = blocking_code(state);
  if (blocking != kOk) return blocking;
  const long sensor = sensor_code(state);
  if (state.bPaperNearEmpty) return sensor != 0 ? sensor : kPaperNearEmpty;
  return state.bCutterJam ? kCutterJam : sensor;
}

}  // namespace

long ask_open_status(const Transport& transport, PortHandle port) {
  // The monitor of an earlier opening may still run.
  const auto exchange = exchange_beside_monitor(transport.state);
  if (transport.status_exchange.drain_first) {
    std::array<char, 128> stale;
    read_for_caller(transport, port, stale, kDrain);
  }
  const int offline_cause = ask_status_byte(transport, port, kAskOfflineCause);
  if (offline_cause < 0) return kFailed;
  if ((offline_cause & kCoverOpenBit) != 0) return kCoverOpen;
  const int paper_sensor = ask_status_byte(transport, port, kAskPaperSensor);
  if (paper_sensor < 0) return kFailed;
  return (paper_sensor & kPaperOutBits) != 0 ? kPaperEmpty : kOk;
}

long get_printer_status(const Transport& transport, const char* portName) {
  const PortHandle port = transport.registry.find(portName);
  if (!port) return kFailed;
  const TransportState& state = transport.state;
  const long known_error = error_code(state);
  if (state.StopIt != 0 && known_error != kOk) return known_error;
  const Asked asked = ask_sensors(transport, port);
  if (asked == Asked::nothing_sent) return kOk;
  return asked == Asked::malformed ? kFailed : code_by_priority(state);
}

long get_error(const Transport& transport, const char* portName) {
  if (!transport.registry.find(portName)) return kFailed;
  const TransportState& state = transport.state;
  if (state.bPowerOFF) return kOffline;
  const long blocking = blocking_code(state);
  if (blocking != kOk) return blocking;
  if (state.bPaperNearEmpty) return kPaperNearEmpty;
  return state.bCutterJam ? kCutterJam : kOk;
}

long get_drawer_status(const Transport& transport, const char* portName) {
  if (!transport.registry.find(portName)) return kFailed;
  return transport.state.bDrawerOpened;
}
