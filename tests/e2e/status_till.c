/* A till that claims a printer and says its status, `status N`, whenever it changes.
 *
 *     status_till PORT SETTINGS
 *
 * Goes on until it is ended. */
#define _POSIX_C_SOURCE 200809L /* nanosleep */
#include <stdio.h>
#include <time.h>
#include <tzvio.h>

int main(int argc, char** argv) {
  const struct timespec pause = {0, 10 * 1000000L};
  long before = -1;
  if (argc != 3 || OpenPort(argv[1], argv[2]) < 0 || ClaimDevice(argv[1], 0) != 0) return 1;
  for (;;) {
    const long status = GetError(argv[1]);
    if (status != before) {
      printf("status %ld\n", status);
      fflush(stdout);
    }
    before = status;
    nanosleep(&pause, NULL);
  }
}
