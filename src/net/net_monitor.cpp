// The connection's part of the status monitor: a lost one ends it, and the next write connects
// anew.
#include "net/net_port.h"
#include "status/claim.h"
#include "status/collected_job.h"

bool NetworkGiveUp(PortHandle port) {
  if (!NetPorts::give_up(port)) return true;
  lose_sent_job(network_state);
  network_state.bPowerOFF = 1;
  network_state.bOffline = 1;
  return false;
}

void* NetStatusHandler(void* netPort) {
  if (netPort != nullptr) run_monitor(network, static_cast<const NETPort*>(netPort)->portName);
  return nullptr;
}
