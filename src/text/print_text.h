// Printing text.
#pragma once

#include "dispatch/transport.h"

long print_normal(const Transport& transport, const char* portName, const char* writeBuffer);
long print_normal_size(const Transport& transport, const char* portName, const char* writeBuffer,
                       long wlen);
