#include "link.h"

#include "dispatch/port_impl.h"

namespace cli {
namespace {

#define TZVIO_CLI_SERIAL(type, field, serial, ...) serial,
#define TZVIO_CLI_PARALLEL(type, field, serial, parallel, ...) parallel,
#define TZVIO_CLI_USB(type, field, serial, parallel, usb, ...) usb,
#define TZVIO_CLI_NETWORK(type, field, serial, parallel, usb, network, ...) network,
#define TZVIO_CLI_NONE(...)
#define TZVIO_CLI_STATE(LINK) \
  { TZV_STATE_FIELDS(LINK, LINK, TZVIO_CLI_NONE) }

const LinkState kSerialState TZVIO_CLI_STATE(TZVIO_CLI_SERIAL);
const LinkState kParallelState TZVIO_CLI_STATE(TZVIO_CLI_PARALLEL);
const LinkState kUsbState TZVIO_CLI_STATE(TZVIO_CLI_USB);
const LinkState kNetworkState TZVIO_CLI_STATE(TZVIO_CLI_NETWORK);

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
