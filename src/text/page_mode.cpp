#include "text/page_mode.h"

#include "dispatch/port_operations.h"
#include "text/position.h"

namespace {

constexpr std::string_view kEnterPageMode = "\033L";
constexpr std::string_view kPrintAndLeavePageMode = "\033\f\033S";  // ESC FF, ESC S

}  // namespace

long start_page_mode(const Transport& transport, const char* portName) {
  return hand_on(transport, portName, {kEnterPageMode});
}

long end_page_mode(const Transport& transport, const char* portName) {
  return hand_on(transport, portName, {kPrintAndLeavePageMode});
}

long print_text_xy(const Transport& transport, const char* portName, const char* writeBuffer,
                   long PosX, long PosY) {
  if (writeBuffer == nullptr) return kFailed;
  return hand_on(transport, portName,
                 {PrintXCommand(PosX), PrintYCommand(PosY), writeBuffer, "\n"});
}
