// Collecting a receipt and sending it as one confirmed transaction.
#pragma once

#include "dispatch/transport.h"

long transaction_print(const Transport& transport, const char* portName, long PrintMode);
long set_reprint_mode(const Transport& transport, const char* portName, long RePrint);
long set_protocol(const Transport& transport, const char* portName, long protocol);
