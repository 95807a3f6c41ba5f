// A program that runs beside the test, with lines to it and from it.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace soak {

class ChildProgram {
 public:
  /// Starts it, with its standard error at the end of that file. It ends with the thread that
  /// started it.
  ChildProgram(const std::vector<std::string>& words, const std::string& errors);
  ChildProgram(const ChildProgram&) = delete;
  ChildProgram& operator=(const ChildProgram&) = delete;
  ~ChildProgram();

  std::string id() const { return std::to_string(pid_); }
  void say(const std::string& line) const;
  /// To be polled for what it says.
  int descriptor() const { return line_; }
  /// What has been said and not read yet, without waiting.
  std::optional<std::string> next_line();
  /// Whether nothing will be said any more.
  bool is_silent() const { return is_silent_; }
  /// By a signal; waits for the end.
  void end(int signal);

 private:
  pid_t pid_ = -1;
  int line_ = -1;  // its standard input and output
  bool is_silent_ = false;
  std::string said_;
};

}  // namespace soak
