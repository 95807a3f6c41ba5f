// What the printer answers when it is asked for its condition, and what it reports unasked.
#pragma once

#include <cstdint>
#include <string>

#include "conditions.h"

namespace virtual_printer {

// The answer to DLE EOT 1 to 4, one byte.
std::string real_time_status(std::uint8_t which, const Conditions& conditions);

// The four bytes of an automatic report.
std::string status_report(const Conditions& conditions);

std::string sensor_reply(const Conditions& conditions);
std::string mark_reply(const Conditions& conditions);

// Confirms that all before the request is printed; the identifier is the request's.
std::string process_id_reply(const std::string& identifier);

}  // namespace virtual_printer
