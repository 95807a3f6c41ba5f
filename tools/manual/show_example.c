/* Runs one example of the manual on a printer: for its picture.
 *   show-example NAME PORT SETTINGS
 */
#include <stdio.h>
#include <string.h>
#include <tzvio.h>

#include "manual_examples.h"

int main(int count, char** arguments) {
  if (count != 4) return fputs("usage: show-example NAME PORT SETTINGS\n", stderr), 2;
  const char* port = arguments[2];
  for (int i = 0; i < kManualExampleCount; ++i) {
    if (strcmp(kManualExamples[i].name, arguments[1]) != 0) continue;
    if (OpenPort(port, arguments[3]) != 0) return fputs("no printer\n", stderr), 1;
    kManualExamples[i].run(port, arguments[3]);
    /* Closing a connection drops what is on its way: an answer comes behind it. */
    return GetPrinterStatus(port) < 0 || ClosePort(port) != 0;
  }
  return fprintf(stderr, "no example %s\n", arguments[1]), 2;
}
