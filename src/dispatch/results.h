// The header's result and status codes as the longs that operations return.
#pragma once

#include "tzvio.h"

inline constexpr long kOk = 0;
inline constexpr long kFailed = TZV_FAILED;
inline constexpr long kRefused = TZV_REFUSED;
inline constexpr long kNotAccepted = TZV_NOT_ACCEPTED;

inline constexpr long kCoverOpen = TZV_STATUS_COVER_OPEN;
inline constexpr long kPaperEmpty = TZV_STATUS_PAPER_EMPTY;
inline constexpr long kOffline = TZV_STATUS_OFFLINE;
inline constexpr long kPaperNearEmpty = TZV_STATUS_PAPER_NEAR_EMPTY;
inline constexpr long kCutterJam = TZV_STATUS_CUTTER_JAM;
inline constexpr long kSensor1 = TZV_STATUS_SENSOR_1;
inline constexpr long kSensor2 = TZV_STATUS_SENSOR_2;
inline constexpr long kSensor3 = TZV_STATUS_SENSOR_3;
