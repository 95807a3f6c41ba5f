// What the printer is asked about its state, and what is answered from the flags.
#pragma once

#include "dispatch/transport.h"

long get_printer_status(const Transport& transport, const char* portName);
long get_error(const Transport& transport, const char* portName);
long get_drawer_status(const Transport& transport, const char* portName);

/// The exchange at the end of an open: 0 ready, 1 cover open, 2 paper out, -1 no answer. Sets no
/// flag.
long ask_open_status(const Transport& transport, PortHandle port);
