#include "status/transport_state.h"

extern "C" {

#define TZV_NUMBER(type, field, serial, parallel, usb, network, initial) \
  type serial = initial;                                                 \
  type parallel = initial;                                               \
  type usb = initial;                                                    \
  type network = initial;
#define TZV_BYTES(size, field, serial, parallel, usb, network, initial) \
  char serial[size] = initial;                                          \
  char parallel[size] = initial;                                        \
  char usb[size] = initial;                                             \
  char network[size] = initial;
#define TZV_THREAD(type, field, serial, parallel, usb, network) type serial, parallel, usb, network;
TZV_STATE_FIELDS(TZV_NUMBER, TZV_BYTES, TZV_THREAD)
#undef TZV_NUMBER
#undef TZV_BYTES
#undef TZV_THREAD

int u_bProtocolStatus = 0;

}  // extern "C"

namespace {

int serial_protocol_status, parallel_protocol_status, network_protocol_status;
HandOver serial_hand_over, parallel_hand_over, usb_hand_over, network_hand_over;

}  // namespace

#define TZV_SERIAL(type, field, serial, ...) .field{serial},
#define TZV_PARALLEL(type, field, serial, parallel, ...) .field{parallel},
#define TZV_USB(type, field, serial, parallel, usb, ...) .field{usb},
#define TZV_NETWORK(type, field, serial, parallel, usb, network, ...) .field{network},
#define TZV_NETWORK_THREAD(type, field, serial, parallel, usb, network) .field{network},

constinit const TransportState serial_state{
    TZV_STATE_FIELDS(TZV_SERIAL, TZV_SERIAL, TZV_SERIAL).bProtocolStatus{serial_protocol_status},
    .hand_over = serial_hand_over};
constinit const TransportState parallel_state{
    TZV_STATE_FIELDS(TZV_PARALLEL, TZV_PARALLEL, TZV_PARALLEL)
        .bProtocolStatus{parallel_protocol_status},
    .hand_over = parallel_hand_over};
constinit const TransportState usb_state{
    TZV_STATE_FIELDS(TZV_USB, TZV_USB, TZV_USB).bProtocolStatus{u_bProtocolStatus},
    .hand_over = usb_hand_over};
constinit const TransportState network_state{
    TZV_STATE_FIELDS(TZV_NETWORK, TZV_NETWORK, TZV_NETWORK_THREAD)
        .bProtocolStatus{network_protocol_status},
    .hand_over = network_hand_over};

bool in_error_state(const TransportState& state) {
  return state.bCoverOpen || state.bPaperEmpty || state.bOffline || state.bCutterJam;
}
