#include "device_look.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <grp.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <vector>

namespace cli {
namespace {

constexpr std::string_view kSocketPrefix = "SOCKET:";
constexpr int kConnectPatienceMs = 3000;

std::string no_rights_words(const std::string& path) {
  const OwningGroup group = group_of_device(path);
  if (group.name.empty() || group.ours) return path + " may not be opened by this user";
  return path + " may not be opened by this user: it belongs to the group " + group.name +
         ". Have root run: usermod -aG " + group.name + " USER, then log in again";
}

Look device_fault(const std::string& path, int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return {Outcome::kNoDevice, "there is no " + path + "; `tzvio ports` lists what there is"};
    case EACCES:
    case EPERM:
      return {Outcome::kNoPermission, no_rights_words(path)};
    case EBUSY:
      return {Outcome::kInUse, path + " is in use by another program"};
    case ENXIO:
    case ENODEV:
    case EIO:
      return {Outcome::kNoDevice, path + " has no hardware behind it, or its cable is unplugged"};
    default:
      return {Outcome::kNoDevice, path + " cannot be opened: " + std::strerror(error)};
  }
}

// 0 or an errno.
int connect_within_patience(int connection, const sockaddr_in& address) {
  if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
    return 0;
  if (errno != EINPROGRESS) return errno;
  pollfd pending{connection, POLLOUT, 0};
  if (poll(&pending, 1, kConnectPatienceMs) <= 0) return ETIMEDOUT;
  int error = 0;
  socklen_t size = sizeof error;
  getsockopt(connection, SOL_SOCKET, SO_ERROR, &error, &size);
  return error;
}

Look connection_fault(const std::string& where, int error) {
  switch (error) {
    case 0:
      return {};
    case ECONNREFUSED:
      return {Outcome::kNoDevice, where +
                                      ": the machine there refuses the connection: it is not "
                                      "the printer, or its port is another one"};
    case ETIMEDOUT:
      return {Outcome::kNoDevice, where +
                                      ": nothing answers: is the printer switched on, and in "
                                      "this network?"};
    default:
      return {Outcome::kNoDevice, where + ": " + std::strerror(error)};
  }
}

}  // namespace

Look look_at_device(const std::string& path) {
  const int device = open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (device < 0) return device_fault(path, errno);
  close(device);
  return {};
}

Look look_at_address(const std::string& address, const std::string& settings) {
  sockaddr_in target{};
  target.sin_family = AF_INET;
  const int tcp_port = tcp_port_in(settings);
  target.sin_port = htons(static_cast<in_port_t>(tcp_port));
  if (inet_pton(AF_INET, address.c_str(), &target.sin_addr) != 1) {
    return {Outcome::kNotAccepted,
            "'" + address + "' is no IPv4 address of four numbers, as in SOCKET:192.168.0.10"};
  }
  if (tcp_port == 0) {
    return {Outcome::kNotAccepted, "'" + settings + "' is no TCP port from 1 to 65535"};
  }
  const int connection = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (connection < 0) return {Outcome::kRefused, std::strerror(errno)};
  const int error = connect_within_patience(connection, target);
  close(connection);
  return connection_fault(address + " port " + std::to_string(tcp_port), error);
}

Look look_at_port(Link link, const std::string& port, const std::string& settings) {
  return link == Link::kNetwork ? look_at_address(address_in(port), settings)
                                : look_at_device(port);
}

std::string address_in(const std::string& port) {
  return port.starts_with(kSocketPrefix) ? port.substr(kSocketPrefix.size()) : "";
}

int tcp_port_in(const std::string& settings) {
  constexpr int kHighest = 65535;
  int number = 0;
  const char* const end = settings.data() + settings.size();
  const auto [rest, error] = std::from_chars(settings.data(), end, number);
  return error == std::errc() && rest == end && number > 0 && number <= kHighest ? number : 0;
}

OwningGroup group_of_device(const std::string& path) {
  struct stat node {};
  if (stat(path.c_str(), &node) != 0) return {};
  const group* const known = getgrgid(node.st_gid);
  std::vector<gid_t> ours(static_cast<std::size_t>(std::max(getgroups(0, nullptr), 0)));
  const int count = getgroups(static_cast<int>(ours.size()), ours.data());
  ours.resize(static_cast<std::size_t>(std::max(count, 0)));
  const bool in_it =
      node.st_gid == getegid() || std::find(ours.begin(), ours.end(), node.st_gid) != ours.end();
  return {known != nullptr ? known->gr_name : std::to_string(node.st_gid), in_it};
}

}  // namespace cli
