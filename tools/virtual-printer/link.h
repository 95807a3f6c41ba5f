// The printer's end of a line, whatever the line is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "conditions.h"

namespace virtual_printer {

using Environment = std::vector<std::pair<std::string, std::string>>;

class Link {
 public:
  Link() = default;
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;
  virtual ~Link() = default;

  // What `set` and `status` know the printer by.
  virtual std::string name() const = 0;

  // What a till opens: the port's name and its settings.
  virtual std::string port() const { return name(); }
  virtual std::string settings() const { return ""; }

  // What a program needs in its environment to find the port.
  virtual Environment environment() const { return {}; }

  // To be polled: something can be read, or somebody comes or goes.
  virtual std::vector<int> descriptors() const = 0;

  // Some of what has come, at most so much, without waiting; empty when nothing waits.
  virtual std::string read_waiting(std::size_t most) = 0;

  // How many bytes the line took: fewer than given when nobody reads the answers.
  virtual std::size_t write(std::string_view bytes) = 0;

  // Whether a connection has ended before the bytes read last, since this was asked last. Lines
  // that have none never say so.
  virtual bool take_hang_up() { return false; }

  // Shows the other end what it can see of the printer's conditions.
  virtual void show(const Conditions& /*conditions*/) {}

  // So many bytes from now on are taken, then none until the printer has been busy.
  virtual void limit_room(std::size_t /*bytes*/) {}

  // So many negotiations of nibble mode from now on are refused.
  virtual void refuse_nibble_mode(int /*times*/) {}
};

}  // namespace virtual_printer
