/* Several printers: a slip on each, one after the other, each confirmed before the next begins.
 *
 *     printers PORT SETTINGS [PORT SETTINGS]...
 *
 * All ports of one link share what is collected and the flags of the status, so ports of one link
 * take turns; their names may be of different links. */
#include <stdio.h>
#include <tzvio.h>

#include "confirmed.h"

static long print_slip(const char* port) {
  PrintNormal(port, "\x1b|cA\x1b|4CTABLE 4\n\n");
  PrintNormal(port, "  2 Coffee\n  1 Apple cake\n");
  return CutPaper(port, 50);
}

static int open_and_claim(const char* port, const char* settings) {
  const long opened = OpenPort(port, settings);
  if (opened < 0) return fprintf(stderr, "%s: OpenPort gives %ld\n", port, opened), 0;
  return ClaimDevice(port, 0) == 0;
}

int main(int argc, char** argv) {
  if (argc < 3 || argc % 2 == 0) {
    return fputs("usage: printers PORT SETTINGS [PORT SETTINGS]...\n", stderr), 2;
  }
  int failed = 0;
  for (int i = 1; i < argc; i += 2) failed += !open_and_claim(argv[i], argv[i + 1]);
  for (int i = 1; i < argc && failed == 0; i += 2) {
    wait_until_ready(argv[i], TZV_STATUS_OFFLINE);
    printf("%s: ", argv[i]);
    failed += print_confirmed(argv[i], print_slip) != 0;
  }
  for (int i = 1; i < argc; i += 2) {
    ReleaseDevice(argv[i]);
    ClosePort(argv[i]);
  }
  return failed == 0 ? 0 : 1;
}
