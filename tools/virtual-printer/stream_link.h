// Lines that are connections to a socket: over TCP, or from a device that is played.
#pragma once

#include <deque>
#include <optional>

#include "descriptor.h"
#include "link.h"

namespace virtual_printer {

class StreamLink : public Link {
 public:
  std::vector<int> descriptors() const override;
  std::string read_waiting(std::size_t most) override;
  std::size_t write(std::string_view bytes) override;
  bool take_hang_up() override { return std::exchange(hung_up_, false); }

 protected:
  // Whether a new connection takes the place of the one before it, or they share the line.
  enum class Sharing { kNewestAlone, kAll };
  explicit StreamLink(Sharing sharing) : sharing_(sharing) {}

  // A socket that listens, and does not block.
  virtual Descriptor listen_anew() = 0;
  // Nobody reaches the printer's name any more.
  virtual void stop_listening() { listener_ = Descriptor(); }

  enum class HangUp { kOrderly, kReset };
  void take_connections();
  void refuse_connections(HangUp how);

 private:
  struct Connection {
    Descriptor socket;
    std::optional<std::size_t> left;  // of one that was replaced: what it had sent by then
  };

  bool takes_connections() const { return listener_.number() >= 0; }
  void accept_new();
  void drop(std::size_t index);
  static void hang_up(Descriptor socket, HangUp how);

  Sharing sharing_;
  Descriptor listener_;
  std::deque<Connection> connections_;  // the oldest first
  bool hung_up_ = false;
};

}  // namespace virtual_printer
