/* The public headers in a C99 translation unit, and in a C++ one (the build compiles this file as
 * both), under pedantic warnings. */
#include "tzvio.h"
#include "tzvio_state.h"
#include "tzvio_unifiedpos.h"

/* Including them twice is harmless. */
#include "tzvio.h"
#include "tzvio_state.h"
#include "tzvio_unifiedpos.h"

int main(void) {
  const SerPort* port = &serPorts[TZV_PORTS - 1];
  return tzv_upos_map_mode(TZV_UPOS_MM_DOTS) + port->set + GetError("COM1") == TZV_NOT_ACCEPTED &&
                 m_RecLineChars == 42
             ? 0
             : 1;
}
