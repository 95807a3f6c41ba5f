/* What an adopter writes first: compiled and run against the installed library. */
#include <stdio.h>
#include <tzvio.h>
#include <tzvio_state.h>

int main(void) {
  printf("%s %ld %ld\n", TZV_VERSION, OpenPort("COM1", ""), m_RecLineChars);
  return OpenPort("COM1", "") == TZV_NOT_ACCEPTED ? 0 : 1;
}
