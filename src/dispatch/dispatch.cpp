// The exported operations, the choice of transport by port name, and the load and unload hooks.
#include "dispatch/port_impl.h"
#include "dispatch/port_operations.h"
#include "dispatch/results.h"
#include "status/claim.h"
#include "tzvio.h"

namespace {

/// The transports in the order in which they are asked about a name: USB, parallel, serial,
/// network. Written by the load hook, never changed afterwards.
PortImpl impls[4];

long getSupportingImplIdx(const char* portName) {
  for (long i = 0; i < 4; ++i) {
    if (impls[i].MatchPortName(portName) == 0) return i;
  }
  return kNotAccepted;
}

template <auto slot, typename... Arguments>
long dispatch(const char* portName, Arguments... arguments) {
  const long supportingImplIdx = getSupportingImplIdx(portName);
  if (supportingImplIdx == kNotAccepted) return kNotAccepted;
  const auto operation = impls[supportingImplIdx].*slot;
  if (operation == nullptr) return kNotAccepted;
  return operation(portName, arguments...);
}

}  // namespace

extern "C" {

#define TZV_OPERATION(name, feature, parameters, arguments) \
  long name parameters {                                    \
    return dispatch<&PortImpl::name> arguments;             \
  }
#define TZV_INTERNAL(name, feature, result, parameters)
#include "dispatch/operations.def"
#undef TZV_OPERATION
#undef TZV_INTERNAL

TZV_API __attribute__((constructor)) void libConstructor() {
  impls[0] = GetUsbPortImpl();
  impls[1] = GetParallelPortImpl();
  impls[2] = GetSerialPortImpl();
  impls[3] = GetNetPortImpl();
}

TZV_API __attribute__((destructor)) void libDestructor() {
  if (!opened_by_this_process()) return;
  // Before a port closes, and before the code of the threads is unmapped.
  end_all_monitors();
  for (const PortImpl& impl : impls) {
    if (impl.ReleaseImpl != nullptr) impl.ReleaseImpl();
  }
}

}  // extern "C"
