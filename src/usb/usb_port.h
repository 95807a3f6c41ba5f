// A USB printer-class device node: opening, closing, its bytes, and its way back after the plug was
// pulled.
#pragma once

#include <span>
#include <string_view>

#include "dispatch/device_file.h"
#include "dispatch/transport.h"

using UsbPorts = RegistryOf<usbPorts, &USBPort::port, flush_and_close>;

/// The node's descriptor, or -1. Its reads and writes block.
int open_usb_node(const char* path);

// What the USB transport supplies; the contracts are those of `Transport`.

Opened USBOpenPort(int entry, const char* portName, const char* portSettings);
long USBWritePort(PortHandle port, std::string_view bytes);
void USBWriteNow(PortHandle port, std::string_view bytes);
long USBReadPortPrv(PortHandle port, std::span<char> buffer, ReadPatience patience);
long USBPoll(PortHandle port, std::span<char> buffer);
bool USBReopen(PortHandle port);
