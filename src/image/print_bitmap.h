// Printing a picture from a file.
#pragma once

#include "dispatch/transport.h"

long print_bitmap(const Transport& transport, const char* portName, const char* Bitmap,
                  long Alignment);
