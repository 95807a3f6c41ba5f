#include "child_process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

#include "descriptor.h"

namespace virtual_printer {
namespace {

constexpr int kCannotRun = 126;
constexpr int kNotFound = 127;
constexpr int kSignalBase = 128;

[[noreturn]] void become(const std::vector<char*>& arguments) {
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  std::signal(SIGPIPE, SIG_DFL);
  execvp(arguments.front(), arguments.data());
  const int status = errno == ENOENT ? kNotFound : kCannotRun;
  std::perror(arguments.front());
  _exit(status);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command) {
  std::vector<std::string> words = command;
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_ = check(fork(), "cannot start " + command.front());
  if (pid_ == 0) become(arguments);
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
