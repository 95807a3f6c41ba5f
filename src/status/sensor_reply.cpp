#include "status/sensor_reply.h"

#include "dispatch/bytes.h"

namespace {

// A reply ends in "_", the sensor byte and NUL.
constexpr std::size_t kReplySize = 3;

// The sensor byte's bits that tell the family: a digit, or a letter position.
constexpr unsigned char kDigitBits = 0x30;
constexpr unsigned char kLetterBit = 0x40;

SensorReply decode_sensor_byte(unsigned char byte) {
  if ((byte & kDigitBits) == kDigitBits) {
    const bool known = byte >= '0' && byte <= '3';
    return {.valid = known, .device_type = 1, .sensor = known ? byte - '0' : 0};
  }
  if ((byte & kLetterBit) != 0) {
    const bool known = byte == kLetterBit || byte == kLetterBit + 1;
    return {.valid = known, .device_type = 0, .sensor = byte == kLetterBit + 1 ? 3 : 0};
  }
  return {};
}

}  // namespace

SensorReply decode_sensor_reply(std::string_view reply) {
  if (reply.size() < kReplySize) return {};
  const std::string_view last = rest_of(reply, reply.size() - kReplySize);
  if (last[0] != '_' || last[2] != '\0') return {};
  return decode_sensor_byte(static_cast<unsigned char>(last[1]));
}
