// Talking to a running printer from another command line: one request, one answer, over a Unix
// socket that only its user may use.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "descriptor.h"

namespace virtual_printer {

struct ControlReply {
  bool done = false;  // as the request wanted it
  std::string text;

  bool operator==(const ControlReply&) const = default;
};

// Where a printer listens for requests, by its link's name.
std::string control_path(const std::string& printer);

// A printer's end.
class ControlSocket {
 public:
  // Takes over a path that a printer left behind; throws std::runtime_error when a running one has
  // it, and std::system_error when the system refuses it.
  explicit ControlSocket(std::string path);
  ControlSocket(const ControlSocket&) = delete;
  ControlSocket& operator=(const ControlSocket&) = delete;
  ~ControlSocket();

  // To be polled: the first takes new callers, the others wait for their requests.
  std::vector<int> descriptors() const;

  // Answers whoever has asked, without waiting.
  void serve(const std::function<ControlReply(const std::string&)>& answer);

 private:
  void accept_callers();

  std::string path_;
  Descriptor listener_;
  std::vector<Descriptor> callers_;
};

// The other end: asks and waits for the answer. Throws std::runtime_error when there is no such
// printer or it ends before it answers.
ControlReply ask_printer(const std::string& printer, const std::string& request);

}  // namespace virtual_printer
