// Opening a USB node.
#include "usb/usb_port.h"

USBPort usbPorts[TZV_PORTS] = {};

int open_usb_node(const char* path) {
  const int node = open_device_file(path, O_RDWR | O_NOCTTY);
  // The monitor could not wait for such a descriptor.
  if (node == -1 || select_can_hold(node)) return node;
  close(node);
  return -1;
}

Opened USBOpenPort(int entry, const char* portName, const char* /*portSettings*/) {
  USBPort opened = UsbPorts::named(portName);
  opened.port = open_usb_node(portName);
  if (opened.port == -1) return {kFailed};
  return {UsbPorts::store(entry, opened)};
}
