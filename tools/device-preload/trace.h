// A line for each call to a played device, for whoever looks at what a program does.
#pragma once

#include <cstddef>
#include <string_view>

#include "device_table.h"

namespace tzvio_devices {

// Appends "TIME CALL NAME = RESULT" to the file that the environment names, if it names one, and
// then the bytes that were written or read. Leaves errno alone.
void trace(std::string_view call, const Device& device, long result, const void* bytes = nullptr,
           std::size_t length = 0);

}  // namespace tzvio_devices
