// A printer that listens on TCP: connecting and connecting anew, its bytes, and the loss of its
// connection.
#pragma once

#include <unistd.h>

#include <span>
#include <string_view>

#include "dispatch/transport.h"

using NetPorts = RegistryOf<netPorts, &NETPort::sock, close>;

/// The record; a connection that is made anew gets its monitor by it.
extern const Transport network;

/// A socket on its way to the printer.
struct Connection {
  int sock = -1;         ///< -1 when the printer cannot be reached
  bool at_once = false;  ///< connected within the call; the socket then stays non-blocking
};

/// Connects to the address and port of an entry, within a second.
Connection connect_to(const NETPort& printer);

/// Stops the port's monitor and connects anew; afterwards the printer has had a second to settle.
bool reconnect(PortHandle port);

// What the network transport supplies; the contracts are those of `Transport`.

Opened NETOpenPort(int entry, const char* portName, const char* portSettings);
std::optional<long> NetworkWriteAnew(PortHandle port, std::string_view bytes);
long NetworkWritePort(PortHandle port, std::string_view bytes);
long NetworkResend(PortHandle port, std::string_view bytes);
void NetworkWriteNow(PortHandle port, std::string_view bytes);
long NETReadPortPrv(PortHandle port, std::span<char> buffer, ReadPatience patience);
long NetworkPoll(PortHandle port, std::span<char> buffer);
bool NetworkGiveUp(PortHandle port);
