// The table of operations that a transport hands to the dispatcher.
#pragma once

#include "tzvio.h"

/// One transport's 39 operations. A null slot means that the transport does not supply it.
struct PortImpl {
#define TZV_OPERATION(name, feature, parameters, arguments) long(*name) parameters;
#define TZV_INTERNAL(name, feature, result, parameters) result(*name) parameters;
#include "dispatch/operations.def"
#undef TZV_OPERATION
#undef TZV_INTERNAL
};

static_assert(sizeof(PortImpl) == 39 * sizeof(void (*)()));

/// Each returns its transport's table, and marks all of that transport's ports closed.
extern "C" {
TZV_API PortImpl GetUsbPortImpl();
TZV_API PortImpl GetParallelPortImpl();
TZV_API PortImpl GetSerialPortImpl();
TZV_API PortImpl GetNetPortImpl();
}
