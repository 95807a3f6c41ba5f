// The state of a transport, shared by all of its ports, as the library sees it.
//
// Every field is a plain exported variable of its own (tzvio_state.h). A program that is not
// position independent owns the live copy of a variable that it uses, so the record holds
// references, which the dynamic linker binds to whichever copy is live; a record with the
// variables as members, or an alias into one, would not see the program's writes.
#pragma once

#include <atomic>

#include "tzvio_state.h"

/// An exported integer. The application, its threads and the monitor share it without a lock, so
/// each access is atomic; sequentially consistent, because flags also hand over the buffers.
template <typename Integer>
class Field {
 public:
  constexpr Field(Integer& variable) : variable_(variable) {}
  operator Integer() const { return std::atomic_ref<Integer>(variable_).load(); }
  Integer operator=(Integer value) const {
    std::atomic_ref<Integer>(variable_).store(value);
    return value;
  }
  Field(const Field&) = delete;
  Field& operator=(const Field&) = delete;

 private:
  Integer& variable_;
};

/// The last job that went to the printer. Lost: bytes of it may be gone, so that the printer's
/// confirmation, which is for what the printer has, does not count for it.
enum class SentJob : unsigned char { none, awaited, lost };

/// What callers and the monitor of a transport settle under a lock, beside the exported flags.
struct HandOver {
  pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
  int exchanges = 0;      ///< callers that expect an answer
  int reads = 0;          ///< callers that are in a read
  int senders = 0;        ///< callers that are sending the collected job
  bool drop_due = false;  ///< it was dropped meanwhile
  SentJob sent_job = SentJob::none;
};

struct TransportState {
#define TZV_NUMBER(type, field, serial, parallel, usb, network, initial) Field<type> field;
#define TZV_BYTES(size, field, serial, parallel, usb, network, initial) char(&field)[size];
#define TZV_THREAD(type, field, serial, parallel, usb, network) type& field;
  TZV_STATE_FIELDS(TZV_NUMBER, TZV_BYTES, TZV_THREAD)
#undef TZV_NUMBER
#undef TZV_BYTES
#undef TZV_THREAD
  /// Exported by USB only.
  Field<int> bProtocolStatus;
  HandOver& hand_over;
};

extern const TransportState serial_state;
extern const TransportState parallel_state;
extern const TransportState usb_state;
extern const TransportState network_state;

/// Cover open, paper out, offline or cutter jammed: output is refused.
bool in_error_state(const TransportState& state);
