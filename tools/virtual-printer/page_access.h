// Who may see the page, and who may press its buttons.
#pragma once

#include <string>
#include <string_view>

namespace virtual_printer {

// Whether a host that a browser asks for can only be this machine. A name can be made to lead here
// by whoever owns it, for a page of theirs to read this one; an address cannot.
bool is_own_host(std::string_view host);

// Whether the page that asks is the one that this host has served.
bool is_own_page(std::string_view origin, std::string_view host);

// An address in numbers, of four or of sixteen bytes.
bool is_address(const std::string& text);

}  // namespace virtual_printer
