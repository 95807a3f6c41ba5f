// Makes a transport's table: each slot is a plain function that runs a feature on the transport.
#pragma once

#include "barcode/print_2d_barcode.h"
#include "barcode/print_barcode.h"
#include "device/drawer.h"
#include "device/firmware.h"
#include "device/identity.h"
#include "device/paper.h"
#include "device/signals.h"
#include "dispatch/port_impl.h"
#include "dispatch/port_operations.h"
#include "dispatch/transport.h"
#include "image/print_bitmap.h"
#include "image/stored_images.h"
#include "status/claim.h"
#include "status/queries.h"
#include "status/transaction.h"
#include "text/page_mode.h"
#include "text/print_text.h"

/// `Bound<transport, feature>::slot` is the feature as a function of the port name and the
/// operation's own arguments.
template <const Transport& transport, auto feature>
struct Bound;

template <const Transport& transport, typename Result, typename... Arguments,
          Result (*feature)(const Transport&, Arguments...)>
struct Bound<transport, feature> {
  static Result slot(Arguments... arguments) { return feature(transport, arguments...); }
};

template <const Transport& transport>
PortImpl table_of() {
  transport.registry.forget_all();
  return PortImpl{
#define TZV_OPERATION(name, feature, parameters, arguments) .name = Bound<transport, feature>::slot,
#define TZV_INTERNAL(name, feature, result, parameters) .name = Bound<transport, feature>::slot,
#include "dispatch/operations.def"
#undef TZV_OPERATION
#undef TZV_INTERNAL
  };
}
