// The USB node's part of the status monitor: a pulled plug shows as a failed read.
#include "status/collected_job.h"
#include "usb/usb_port.h"

bool USBReopen(PortHandle port) {
  constexpr long kBetweenTries = 1000;  // milliseconds
  const USBPort lost = UsbPorts::copy(port);
  if (!UsbPorts::give_up(port)) return true;
  lose_sent_job(usb_state);
  usb_state.bPowerOFF = 1;
  // Stays until the node is read again; the monitor's next cycle enables the reports.
  usb_state.bOffline = 1;
  // Until the plug is back, the port is closed or the monitor is told to end.
  while (usb_state.StopIt != 0 && UsbPorts::is_cut_off(port)) {
    const int node = open_usb_node(lost.portName);
    if (node == -1) {
      pause_ms(kBetweenTries);
    } else if (UsbPorts::replace(port, node)) {
      usb_state.bPowerOFF = 0;
    }
  }
  return true;
}
