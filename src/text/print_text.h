// Printing text.
#pragma once

#include "dispatch/transport.h"

long print_normal(const Transport& transport, const char* portName, const char* writeBuffer);
