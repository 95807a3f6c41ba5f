// The printer's end of the line: a pseudo-terminal, and the name under which the till finds it.
// A link over TCP would be a second class with the same reads and writes.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "descriptor.h"

namespace virtual_printer {

class PortLink {
 public:
  PortLink();

  int descriptor() const { return printer_end_.number(); }
  const std::string& device() const { return device_; }

  // What has come, without waiting; empty when nothing waits.
  std::string read_waiting();

  // How many bytes the line took: fewer than given when nobody reads the answers.
  std::size_t write(std::string_view bytes);

 private:
  Descriptor printer_end_;
  // Held open so that the line stays up, and stays raw, from one user to the next.
  Descriptor till_end_;
  std::string device_;
};

// The name exists and is somebody's.
class NameTaken : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A name in /dev that leads to a device, for as long as this object lives.
class PortName {
 public:
  // Replaces nothing but a link that an earlier printer left behind, and throws NameTaken for
  // anything else; throws std::system_error when the system refuses the name.
  PortName(std::string name, std::string device);
  PortName(const PortName&) = delete;
  PortName& operator=(const PortName&) = delete;
  ~PortName();

 private:
  std::string name_;
  std::string device_;
};

}  // namespace virtual_printer
