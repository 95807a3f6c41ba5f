// Claiming a device: starting, ending and waiting for its status monitor.
#pragma once

#include "dispatch/transport.h"

long claim_device(const Transport& transport, const char* portName, long TimeoutMillis);
long release_device(const Transport& transport, const char* portName);

/// Ends every monitor of every transport and waits for them. Before the library goes.
void end_all_monitors();
