// The status monitor: one thread for each claimed port, which keeps the status flags current.
#pragma once

#include <array>

#include "dispatch/transport.h"
#include "status/report_decoder.h"

class Monitor {
 public:
  Monitor(const Transport& transport, const char* portName);

  /// One cycle: enables the printer's reports where needed, looks at the line, reads, decodes,
  /// sends a held job again, and sleeps. Never touches a port that was closed; one that is opened
  /// again under the same name is served again. False when the link is lost for good.
  bool cycle();

  const Transport& transport() const { return transport_; }
  bool serves(const Transport& transport, const char* portName) const;

 private:
  bool enable_reports();
  Received read_line();
  void take_received(Received received);
  void reprint();
  long resend_job();
  bool wait_for_confirmation();

  const Transport& transport_;
  const TransportState& state_;
  char port_name_[kPortNameSize] = {};
  PortHandle port_;
  bool link_lost_ = false;
  std::array<char, 256> received_{};
  // Counts from the monitor's start on, over all reprints: only the first that stays unanswered
  // gives up at the third request, later ones go on. Tills depend on jobs not being given up.
  int requests_ = 0;
};
