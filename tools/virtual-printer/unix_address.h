// Addresses of Unix sockets.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <stdexcept>
#include <string>

namespace virtual_printer {

// bind or connect, with a path for the address.
template <typename Call>
int with_unix_address(const Call& call, int socket, const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    throw std::runtime_error("the name of the socket is too long: " + path);
  }
  path.copy(address.sun_path, path.size());
  // The way in which every socket address goes through this interface.
  return call(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

}  // namespace virtual_printer
