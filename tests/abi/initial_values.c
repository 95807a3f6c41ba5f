/* The variables as a program finds them before its first call. */
#include <stdio.h>
#include <string.h>

#include "tzvio.h"
#include "tzvio_state.h"

static int failures;

static void check_number(const char* name, long value) {
  /* All start at 0 but these. */
  static const struct {
    const char* field;
    long initial;
  } kOthers[] = {{"RecLineChars", 42},
                 {"RecLineWidth", 640},
                 {"RecLineSpacing", 30},
                 {"RecLinesToPaperCut", 5}};
  long initial = 0;
  for (unsigned i = 0; i < sizeof kOthers / sizeof *kOthers; ++i) {
    if (strcmp(name, kOthers[i].field) == 0) initial = kOthers[i].initial;
  }
  if (value == initial) return;
  fprintf(stderr, "%s starts at %ld\n", name, value);
  ++failures;
}

static void check_bytes(const char* name, const char* bytes, size_t size) {
  static const char kSensorQuery[128] = "\x1b#SENSOR";
  if (strcmp(name, "GetSensor") == 0) {
    if (size == sizeof kSensorQuery && memcmp(bytes, kSensorQuery, size) == 0) return;
  } else if (bytes[0] == 0 && memcmp(bytes, bytes + 1, size - 1) == 0) {
    return;
  }
  fprintf(stderr, "%s does not start as it should\n", name);
  ++failures;
}

int main(void) {
#define NUMBER(type, field, serial, parallel, usb, network, initial) \
  check_number(#field, serial);                                      \
  check_number(#field, parallel);                                    \
  check_number(#field, usb);                                         \
  check_number(#field, network);
#define BYTES(size, field, serial, parallel, usb, network, initial) \
  check_bytes(#field, serial, size);                                \
  check_bytes(#field, parallel, size);                              \
  check_bytes(#field, usb, size);                                   \
  check_bytes(#field, network, size);
#define THREAD(type, field, serial, parallel, usb, network)
  TZV_STATE_FIELDS(NUMBER, BYTES, THREAD)
  check_number("bProtocolStatus", u_bProtocolStatus);
  check_bytes("serPorts", (const char*)serPorts, sizeof serPorts);
  check_bytes("parPorts", (const char*)parPorts, sizeof parPorts);
  check_bytes("usbPorts", (const char*)usbPorts, sizeof usbPorts);
  check_bytes("netPorts", (const char*)netPorts, sizeof netPorts);
  return failures != 0;
}
