// Cutting the paper and setting the print position.
#pragma once

#include "dispatch/transport.h"

long cut_paper(const Transport& transport, const char* portName, long Percent);
long write_port_position(const Transport& transport, const char* portName, long Position);
