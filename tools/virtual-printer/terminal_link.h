// A line over a pseudo-terminal, with a link in /dev under which a till finds it.
#pragma once

#include <stdexcept>

#include "descriptor.h"
#include "link.h"

namespace virtual_printer {

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

  const std::string& text() const { return name_; }

 private:
  std::string name_;
  std::string device_;
};

class TerminalLink : public Link {
 public:
  explicit TerminalLink(const std::string& name);

  std::string name() const override { return name_.text(); }
  std::string settings() const override { return kSerialSettings; }
  std::vector<int> descriptors() const override { return {printer_end_.number()}; }
  std::string read_waiting(std::size_t most) override;
  std::size_t write(std::string_view bytes) override;

  // That a till may open a serial port with; the line has no speed.
  static constexpr const char* kSerialSettings = "9600,none,8,1,none";

 private:
  Descriptor printer_end_;
  // Held open so that the line stays up, and stays raw, from one user to the next.
  Descriptor till_end_;
  PortName name_;
};

}  // namespace virtual_printer
