// Firmware download.
#pragma once

#include "dispatch/transport.h"

long update_fw(const Transport& transport, const char* portName, const char* FWFile, long FileType);
