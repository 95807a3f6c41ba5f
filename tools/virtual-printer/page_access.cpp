#include "page_access.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>

namespace virtual_printer {
namespace {

bool is_number(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(),
                                      [](char digit) { return digit >= '0' && digit <= '9'; });
}

// The port that follows the last colon, and brackets around an address that has colons itself.
std::string without_port(std::string_view host) {
  const std::size_t colon = host.rfind(':');
  if (colon != std::string_view::npos && is_number(host.substr(colon + 1))) {
    host = host.substr(0, colon);
  }
  const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
  return std::string(bracketed ? host.substr(1, host.size() - 2) : host);
}

}  // namespace

bool is_own_host(std::string_view host) {
  const std::string name = without_port(host);
  return name == "localhost" || is_address(name);
}

bool is_own_page(std::string_view origin, std::string_view host) {
  return origin == "http://" + std::string(host);
}

bool is_address(const std::string& text) {
  std::array<unsigned char, sizeof(in6_addr)> bytes{};
  return inet_pton(AF_INET, text.c_str(), bytes.data()) == 1 ||
         inet_pton(AF_INET6, text.c_str(), bytes.data()) == 1;
}

}  // namespace virtual_printer
