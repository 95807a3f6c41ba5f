#include "soak/child_program.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace soak {

namespace {

std::array<int, 2> make_line() {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) < 0) {
    throw std::system_error(errno, std::generic_category(), "no sockets");
  }
  return ends;
}

}  // namespace

ChildProgram::ChildProgram(const std::vector<std::string>& words, const std::string& errors) {
  std::vector<std::string> copies = words;
  std::vector<char*> arguments;
  arguments.reserve(copies.size() + 1);
  for (std::string& word : copies) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const auto ends = make_line();
  pid_ = fork();
  if (pid_ == 0) {
    // Other threads run on in the parent: only what is safe in a signal's handler is allowed here.
    const int file = open(errors.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(ends[1], STDIN_FILENO);
    dup2(ends[1], STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    execv(arguments.front(), arguments.data());
    _exit(EXIT_FAILURE);
  }
  close(ends[1]);
  line_ = ends[0];
}

ChildProgram::~ChildProgram() {
  end(SIGKILL);
  close(line_);
}

void ChildProgram::say(const std::string& line) const {
  const std::string bytes = line + '\n';
  // Whoever is gone shows by its silence.
  (void)send(line_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

std::optional<std::string> ChildProgram::next_line() {
  std::array<char, 4096> buffer{};
  ssize_t length = 0;
  while ((length = recv(line_, buffer.data(), buffer.size(), MSG_DONTWAIT)) > 0) {
    said_.append(buffer.data(), static_cast<std::size_t>(length));
  }
  is_silent_ = length == 0 || errno != EAGAIN;
  const std::size_t end = said_.find('\n');
  if (end == std::string::npos) return std::nullopt;
  std::string line = said_.substr(0, end);
  said_.erase(0, end + 1);
  return line;
}

void ChildProgram::end(int signal) {
  if (pid_ <= 0) return;
  kill(pid_, signal);
  while (waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) continue;
  pid_ = -1;
}

}  // namespace soak
