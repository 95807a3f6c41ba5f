// The cash drawer.
#pragma once

#include "dispatch/transport.h"

long open_cash_drawer(const Transport& transport, const char* portName);
