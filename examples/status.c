/* Says what a printer's state is, and every change of it.
 *
 *     status PORT [SETTINGS [SECONDS]]
 *
 * Without SECONDS it goes on until it is interrupted. */
#define _POSIX_C_SOURCE 200809L /* nanosleep */
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>
#include <tzvio.h>

#include "confirmed.h"

static volatile sig_atomic_t interrupted;

static void interrupt(int number) {
  (void)number;
  interrupted = 1;
}

int main(int argc, char** argv) {
  setvbuf(stdout, NULL, _IOLBF, 0);
  if (argc < 2) return fputs("usage: status PORT [SETTINGS [SECONDS]]\n", stderr), 2;
  const char* port = argv[1];
  if (OpenPort(port, argc > 2 ? argv[2] : "9600,none,8,1,none") < 0) {
    return fprintf(stderr, "%s: no printer\n", port), 1;
  }
  signal(SIGINT, interrupt);
  signal(SIGTERM, interrupt);
  ClaimDevice(port, 0);

  const struct timespec pause = {0, 100 * 1000 * 1000};
  const long looks = argc > 3 ? strtol(argv[3], NULL, 10) * 10 : -1;
  long known = -1;
  long drawer = 0;
  for (long look = 0; !interrupted && look != looks; ++look) {
    const long code = GetError(port);
    if (code != known) printf("%ld, %s\n", known = code, in_words(code));
    const long open = GetDrawerStatus(port);
    if (open != drawer) printf("the drawer is %s\n", (drawer = open) == 1 ? "open" : "closed");
    nanosleep(&pause, NULL);
  }
  ReleaseDevice(port);
  ClosePort(port);
  return 0;
}
