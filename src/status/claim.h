// Claiming a device: starting, ending and waiting for its status monitor.
#pragma once

#include "dispatch/transport.h"

long claim_device(const Transport& transport, const char* portName, long TimeoutMillis);
long release_device(const Transport& transport, const char* portName);

/// Sets the flags as a claim does and has the port monitored: by the monitor that runs already, or
/// by a new one. False when the system has no thread to give.
bool start_monitor(const Transport& transport, const char* portName);

/// Tells the port's monitor to end, and leaves those of other ports alone.
void stop_monitor(const Transport& transport, const char* portName);

/// Monitors the port on the calling thread until told to end, unless a monitor serves it already.
void run_monitor(const Transport& transport, const char* portName);

/// Ends every monitor of every transport and waits for them. Before the library goes.
void end_all_monitors();
