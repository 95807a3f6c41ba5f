// Page mode, and text at a position. Which of the two comes first is the application's business:
// nothing here remembers whether page mode is on.
#pragma once

#include "dispatch/transport.h"

long start_page_mode(const Transport& transport, const char* portName);
long end_page_mode(const Transport& transport, const char* portName);
long print_text_xy(const Transport& transport, const char* portName, const char* writeBuffer,
                   long PosX, long PosY);
