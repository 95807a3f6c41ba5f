// What a device does when it is opened, read, written and asked. Results are those of the system
// calls, errno included.
#pragma once

#include <sys/types.h>
#include <termios.h>

#include <cstddef>
#include <cstdint>

#include "device_table.h"

namespace tzvio_devices {

// A descriptor connected to the printer: waiting for it and closing it need no help.
int open_device(Device& device, int flags);

ssize_t read_device(Device& device, int descriptor, void* buffer, std::size_t length);
ssize_t write_device(Device& device, int descriptor, const void* bytes, std::size_t length);

// The requests that this kind of device plays; any other goes to the socket.
int control_device(Device& device, int descriptor, std::uint32_t request, void* argument);

// Of serial devices.
void get_line_settings(const Device& device, termios& settings);
void set_line_settings(Device& device, const termios& settings);
void discard_input(int descriptor);
int wait_for_output(int descriptor);

}  // namespace tzvio_devices
