/* Opens a port, and says of every result what it means and what to do.
 *
 *     open PORT [SETTINGS] */
#include <stdio.h>
#include <tzvio.h>

static const char* advice(long result, int is_open) {
  switch (result) {
    case 0:
      return "open, and the printer is ready";
    case TZV_STATUS_COVER_OPEN:
      return "open; close the printer's cover";
    case TZV_STATUS_PAPER_EMPTY:
      return "open; put paper in";
    case TZV_FAILED:
      return is_open ? "open, but the printer does not answer: is it switched on, and is the line "
                       "set as "
                       "the printer is?"
                     : "no such device, no right to it, or somebody else has it";
    case TZV_REFUSED:
      return "that device is no serial line, or does not take these settings";
    case TZV_NOT_ACCEPTED:
      return "no port has such a name, or the settings are wrong: \"9600,none,8,1,none\" for a "
             "serial "
             "line, \"9100\" for a network printer";
    default:
      return "a result that there is not";
  }
}

int main(int argc, char** argv) {
  if (argc < 2) return fputs("usage: open PORT [SETTINGS]\n", stderr), 2;
  const char* port = argv[1];
  const long result = OpenPort(port, argc > 2 ? argv[2] : "9600,none,8,1,none");
  /* -1 leaves open whether the port is: a printer that does not answer may be switched on later. */
  const int is_open = GetError(port) >= 0;
  printf("%ld: %s\n", result, advice(result, is_open));
  if (is_open) ClosePort(port);
  return result == 0 ? 0 : 1;
}
