#include "link.h"

#include "dispatch/port_impl.h"

namespace cli {
namespace {

#define TZVIO_CLI_THREAD(type, field, serial, parallel, usb, network)
#define TZVIO_CLI_NUMBER(type, field, serial, parallel, usb, network, initial) serial,
#define TZVIO_CLI_BYTES(size, field, serial, parallel, usb, network, initial) serial,
const LinkState kSerialState{TZV_STATE_FIELDS(TZVIO_CLI_NUMBER, TZVIO_CLI_BYTES, TZVIO_CLI_THREAD)};
#undef TZVIO_CLI_NUMBER
#undef TZVIO_CLI_BYTES
#define TZVIO_CLI_NUMBER(type, field, serial, parallel, usb, network, initial) parallel,
#define TZVIO_CLI_BYTES(size, field, serial, parallel, usb, network, initial) parallel,
const LinkState kParallelState{
    TZV_STATE_FIELDS(TZVIO_CLI_NUMBER, TZVIO_CLI_BYTES, TZVIO_CLI_THREAD)};
#undef TZVIO_CLI_NUMBER
#undef TZVIO_CLI_BYTES
#define TZVIO_CLI_NUMBER(type, field, serial, parallel, usb, network, initial) usb,
#define TZVIO_CLI_BYTES(size, field, serial, parallel, usb, network, initial) usb,
const LinkState kUsbState{TZV_STATE_FIELDS(TZVIO_CLI_NUMBER, TZVIO_CLI_BYTES, TZVIO_CLI_THREAD)};
#undef TZVIO_CLI_NUMBER
#undef TZVIO_CLI_BYTES
#define TZVIO_CLI_NUMBER(type, field, serial, parallel, usb, network, initial) network,
#define TZVIO_CLI_BYTES(size, field, serial, parallel, usb, network, initial) network,
const LinkState kNetworkState{
    TZV_STATE_FIELDS(TZVIO_CLI_NUMBER, TZVIO_CLI_BYTES, TZVIO_CLI_THREAD)};

struct Row {
  Link link;
  const char* name;
  const char* settings;
  PortImpl (&table)();
  const LinkState& state;
};

// In the order in which the library asks them about a name.
const Row kRows[] = {
    {Link::kUsb, "USB", "", GetUsbPortImpl, kUsbState},
    {Link::kParallel, "parallel", "", GetParallelPortImpl, kParallelState},
    {Link::kSerial, "serial", "9600,none,8,1,none", GetSerialPortImpl, kSerialState},
    {Link::kNetwork, "network", "9100", GetNetPortImpl, kNetworkState},
};

const Row& row_of(Link link) {
  return kRows[static_cast<std::size_t>(link)];
}

}  // namespace

std::optional<Link> link_of(const std::string& port) {
  for (const Row& row : kRows) {
    if (row.table().MatchPortName(port.c_str()) == 0) return row.link;
  }
  return std::nullopt;
}

const char* name_of(Link link) {
  return row_of(link).name;
}

std::string no_link_words(const std::string& port) {
  return "no link accepts the name '" + port +
         "'; names begin with /dev/ttyS, /dev/usb/lp, /dev/usblp, /dev/parport, /dev/lp or SOCKET:";
}

std::string settings_for(std::optional<Link> link, const std::string& given) {
  return given.empty() && link ? row_of(*link).settings : given;
}

const LinkState& state_of(Link link) {
  return row_of(link).state;
}

}  // namespace cli
