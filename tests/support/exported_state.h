// The library's exported variables, link by link.
#pragma once

#include <string>

#include "tzvio_state.h"

namespace testkit {

/// Pointers to one link's variables.
struct ExportedState {
#define TZV_NUMBER(type, field, serial, parallel, usb, network, initial) type* field;
#define TZV_BYTES(size, field, serial, parallel, usb, network, initial) char(*field)[size];
#define TZV_THREAD(type, field, serial, parallel, usb, network) type* field;
  TZV_STATE_FIELDS(TZV_NUMBER, TZV_BYTES, TZV_THREAD)
#undef TZV_NUMBER
#undef TZV_BYTES
#undef TZV_THREAD

  /// What PageBuffer holds.
  std::string collected() const {
    return {*PageBuffer, static_cast<std::size_t>(*PageSize)};
  }
};

extern const ExportedState kSerialState;
extern const ExportedState kParallelState;
extern const ExportedState kUsbState;
extern const ExportedState kNetworkState;

/// Closes every open port and gives every variable of every link its initial value.
void reset_library();

}  // namespace testkit
