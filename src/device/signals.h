// The beeper, the self-test menus and the black-mark sensor.
#pragma once

#include "dispatch/transport.h"

long warning_beep(const Transport& transport, const char* portName);
long self_test(const Transport& transport, const char* portName, long SelfNum);
long check_black_mark(const Transport& transport, const char* portName);
