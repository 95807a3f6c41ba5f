#include "support/exported_state.h"

#include <cstring>
#include <vector>

#include "tzvio.h"

extern "C" void libDestructor();

namespace testkit {

#define TZV_SERIAL(type, field, serial, ...) .field = &serial,
#define TZV_PARALLEL(type, field, serial, parallel, ...) .field = &parallel,
#define TZV_USB(type, field, serial, parallel, usb, ...) .field = &usb,
#define TZV_NETWORK(type, field, serial, parallel, usb, network, ...) .field = &network,
#define TZV_NETWORK_THREAD(type, field, serial, parallel, usb, network) .field = &network,

const ExportedState kSerialState{TZV_STATE_FIELDS(TZV_SERIAL, TZV_SERIAL, TZV_SERIAL)};
const ExportedState kParallelState{TZV_STATE_FIELDS(TZV_PARALLEL, TZV_PARALLEL, TZV_PARALLEL)};
const ExportedState kUsbState{TZV_STATE_FIELDS(TZV_USB, TZV_USB, TZV_USB)};
const ExportedState kNetworkState{TZV_STATE_FIELDS(TZV_NETWORK, TZV_NETWORK, TZV_NETWORK_THREAD)};

void reset_library() {
  libDestructor();
  for (const ExportedState* state : {&kSerialState, &kParallelState, &kUsbState, &kNetworkState}) {
#define TZV_NUMBER(type, field, serial, parallel, usb, network, initial) *state->field = initial;
#define TZV_BYTES(size, field, serial, parallel, usb, network, initial) \
  std::memcpy(*state->field, initial, sizeof(initial));
#define TZV_THREAD(type, field, serial, parallel, usb, network)
    TZV_STATE_FIELDS(TZV_NUMBER, TZV_BYTES, TZV_THREAD)
#undef TZV_NUMBER
#undef TZV_BYTES
#undef TZV_THREAD
  }
}

}  // namespace testkit
