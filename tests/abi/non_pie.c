/* A program that is not position independent owns the live copy of every exported variable that it
 * uses. What it writes there, the library must read, and what the library writes, it must see.
 * Needs no device: it registers a port itself, and collects instead of sending. */
#include <stdio.h>
#include <string.h>

#include "tzvio.h"
#include "tzvio_state.h"

static int check(int holds, const char* what) {
  if (!holds) fprintf(stderr, "failed: %s\n", what);
  return holds ? 0 : 1;
}

int main(void) {
  static const char expected[] = "\033E0\033-0\033!G\035B0\033a0\0333\050abc";
  int failures = 0;

  serPorts[3].set = 1;
  strcpy(serPorts[3].portName, "/dev/ttyS-none");
  s_TransactionPrint = 1;
  m_RecLineChars = 56;
  m_RecLineSpacing = 20;

  failures += check(PrintNormal("/dev/ttyS-none", "abc") == 0, "printing");
  failures += check(s_PageSize == sizeof expected - 1, "size of 56-column output");
  failures += check(memcmp(s_PageBuffer, expected, sizeof expected - 1) == 0, "56-column output");
  failures += check(m_RecSidewaysCharsCur == 3, "columns written by the library");

  m_bCoverOpen = 1;
  failures += check(GetError("/dev/ttyS-none") == TZV_STATUS_COVER_OPEN, "flag set by the program");
  failures += check(strcmp(m_GetSensor, "\x1b#SENSOR") == 0, "initial value of a copied string");

  serPorts[3].set = 0;
  failures += check(GetError("/dev/ttyS-none") == TZV_FAILED, "registry shared with the program");
  return failures;
}
