#include "child_process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "descriptor.h"

namespace virtual_printer {
namespace {

constexpr int kCannotRun = 126;
constexpr int kNotFound = 127;
constexpr int kSignalBase = 128;

[[noreturn]] void become(const std::vector<char*>& arguments, const Environment& environment) {
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  std::signal(SIGPIPE, SIG_DFL);
  for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
  execvp(arguments.front(), arguments.data());
  const int status = errno == ENOENT ? kNotFound : kCannotRun;
  std::perror(arguments.front());
  _exit(status);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command,
                           const Environment& environment) {
  std::vector<std::string> words = command;
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_ = check(fork(), "cannot start " + command.front());
  if (pid_ == 0) become(arguments, environment);
}

std::optional<int> ChildProcess::ended() {
  int status = 0;
  if (check(waitpid(pid_, &status, WNOHANG), "cannot wait for the command") == 0) return {};
  if (WIFSIGNALED(status)) return kSignalBase + WTERMSIG(status);
  return WEXITSTATUS(status);
}

void ChildProcess::send_signal(int signal) const {
  kill(pid_, signal);
}

}  // namespace virtual_printer
