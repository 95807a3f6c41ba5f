/* A logo that the printer keeps: stored once, printed by its number on each receipt.
 *
 *     stored-logo store PORT SETTINGS FILE.bmp
 *     stored-logo print PORT SETTINGS
 *
 * The memory it goes to bears a limited number of writes: store it when the shop's logo changes. */
#include <stdio.h>
#include <string.h>
#include <tzvio.h>

#include "confirmed.h"

static long store(const char* port, const char* file) {
  char list[130];
  /* Every name is followed by a bar; a name without one is none. */
  const int length = snprintf(list, sizeof list, "%s|", file);
  if (length < 0 || length >= (int)sizeof list) return TZV_FAILED;
  return SaveNVBitmap(port, list, 0);
}

static long print_receipt(const char* port) {
  PrintNVBitmap(port, 1, TZV_ALIGN_CENTER);
  PrintNormal(port, "\n\x1b|cAThank you\n");
  return CutPaper(port, 100);
}

int main(int argc, char** argv) {
  const int stores = argc == 5 && strcmp(argv[1], "store") == 0;
  if (!stores && (argc != 4 || strcmp(argv[1], "print") != 0)) {
    return fputs("usage: stored-logo store|print PORT SETTINGS [FILE.bmp]\n", stderr), 2;
  }
  const char* port = argv[2];
  if (OpenPort(port, argv[3]) < 0) return fprintf(stderr, "%s: no printer\n", port), 1;
  ClaimDevice(port, 0);
  wait_until_ready(port, TZV_STATUS_OFFLINE);
  /* 0 of the one means that it was sent; the confirmation of something behind it, that it arrived.
   */
  const long result = stores ? store(port, argv[4]) : 0;
  const long printed = result == 0 ? print_confirmed(port, print_receipt) : result;
  if (printed != 0) fprintf(stderr, "not printed: %ld\n", printed);
  ReleaseDevice(port);
  ClosePort(port);
  return printed == 0 ? 0 : 1;
}
