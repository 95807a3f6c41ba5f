// The links of the library, and the variables that it exports for each.
#pragma once

#include <tzvio_state.h>

#include <optional>
#include <string>

namespace cli {

enum class Link { kUsb, kParallel, kSerial, kNetwork };

// Whose port has that name, as the library sees it; none when no link accepts it. Only before a
// port is open.
std::optional<Link> link_of(const std::string& port);

const char* name_of(Link link);

// What a name that no link accepts should be.
std::string no_link_words(const std::string& port);

// Those that were given, or else the link's usual ones.
std::string settings_for(std::optional<Link> link, const std::string& given);

// One link's variables, by the names of their rows.
struct LinkState {
#define TZVIO_CLI_NUMBER(type, field, serial, parallel, usb, network, initial) type& field;
#define TZVIO_CLI_BYTES(size, field, serial, parallel, usb, network, initial) char(&field)[size];
#define TZVIO_CLI_THREAD(type, field, serial, parallel, usb, network)
  TZV_STATE_FIELDS(TZVIO_CLI_NUMBER, TZVIO_CLI_BYTES, TZVIO_CLI_THREAD)
#undef TZVIO_CLI_NUMBER
#undef TZVIO_CLI_BYTES
};

const LinkState& state_of(Link link);

// A variable that the monitor's thread writes.
template <typename Number>
Number seen(const Number& variable) {
  return __atomic_load_n(&variable, __ATOMIC_SEQ_CST);
}

}  // namespace cli
