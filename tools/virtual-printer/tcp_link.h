// A line over TCP, as a receipt printer with a network plug has it: one connection at a time.
#pragma once

#include <cstdint>

#include "stream_link.h"

namespace virtual_printer {

struct TcpAddress {
  std::string host = "127.0.0.1";
  std::uint16_t port = 0;  // any that is free

  bool operator==(const TcpAddress&) const = default;
};

// As people write it, "[ADDRESS:]PORT"; nothing when it is not well-formed.
std::optional<TcpAddress> parse_tcp_address(std::string_view text);

// What `set` and `status` know the printer by.
std::string name_of(const TcpAddress& address);

class TcpLink : public StreamLink {
 public:
  // Throws std::system_error when the address cannot be had.
  explicit TcpLink(TcpAddress address);

  std::string name() const override { return name_of(address_); }
  std::string port() const override { return "SOCKET:" + address_.host; }
  std::string settings() const override { return std::to_string(address_.port); }
  void show(const Conditions& conditions) override;

 private:
  Descriptor listen_anew() override;

  TcpAddress address_;
  bool powered_ = true;
};

}  // namespace virtual_printer
