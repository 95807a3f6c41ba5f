#include "tills.h"

Words till(const std::string& scenario, const std::string& seconds) {
  return {"/bin/sh",
          "-c",
          R"(exec "$0" "$1" "$VIRTUAL_PRINTER_PORT" "$VIRTUAL_PRINTER_SETTINGS" "$2")",
          TILL_PROGRAM,
          scenario,
          seconds};
}

Words program(const std::string& path, const Words& words) {
  Words command{"/bin/sh", "-c",
                R"(exec "$0" "$VIRTUAL_PRINTER_PORT" "$VIRTUAL_PRINTER_SETTINGS" "$@")", path};
  command.insert(command.end(), words.begin(), words.end());
  return command;
}

Words receipt() {
  return program(RECEIPT_PROGRAM);
}

Words pictures_till(const Words& words) {
  return program(PICTURES_TILL_PROGRAM, words);
}
