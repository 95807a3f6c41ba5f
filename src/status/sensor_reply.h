// The printer's answer to the sensor query.
#pragma once

#include <string_view>

/// What a reply says; -1 where it says nothing.
struct SensorReply {
  bool valid = false;
  int device_type = -1;  ///< printer family, 0 or 1; known even from a reply that is not valid
  int sensor = 0;        ///< the sensor that reports, 1 to 3; 0: none
};

SensorReply decode_sensor_reply(std::string_view reply);
