// The program as people start it, for tests that judge it by what it leaves behind.
#pragma once

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "support/temporary_folder.h"

namespace virtual_printer {

namespace fs = std::filesystem;

inline constexpr uid_t kNobody = 65534;
inline constexpr int kOwnFailure = 125;

inline std::string content_of(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

inline bool become_ordinary_user() {
  if (geteuid() != 0) return true;
  return setgroups(0, nullptr) == 0 && setresgid(kNobody, kNobody, kNobody) == 0 &&
         setresuid(kNobody, kNobody, kNobody) == 0;
}

inline int exit_status_of(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) continue;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Runs something in a child process; its result is the child's exit status.
inline int in_child(const std::function<int()>& work) {
  const pid_t pid = fork();
  if (pid == 0) _exit(work());
  return exit_status_of(pid);
}

enum class User { kThisOne, kOrdinary };

class ProgramTest : public testing::Test {
 protected:
  struct Outcome {
    int status;
    std::string out;
    std::string errors;
  };

  // An ordinary user has to reach the program and the folder wherever the build is.
  ProgramTest() {
    fs::permissions(folder_.path(), fs::perms::all);
    const fs::path build = fs::path(VIRTUAL_PRINTER_PROGRAM).parent_path();
    fs::copy_file(VIRTUAL_PRINTER_PROGRAM, program());
    fs::copy(build / "preload", in_folder("preload"), fs::copy_options::recursive);
    setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);
  }

  // Whatever went wrong, nothing of ours stays in the machine's /dev.
  ~ProgramTest() override { unlink(port_.c_str()); }

  // This process's own, so that tests may run beside each other.
  std::string port_ = "/dev/ttyS-test" + std::to_string(getpid());

  fs::path in_folder(const std::string& name) const { return folder_.path() / name; }
  std::string program() const { return in_folder("virtual-printer"); }

  // On the test's own port, or on the line that the arguments begin with.
  pid_t start(std::vector<std::string> arguments, User user = User::kThisOne) const {
    if (arguments.empty() || arguments.front() != "--listen") {
      arguments.insert(arguments.begin(), {"--port", port_});
    }
    const pid_t pid = fork();
    if (pid != 0) return pid;
    redirect(STDOUT_FILENO, in_folder("out"));
    redirect(STDERR_FILENO, in_folder("errors"));
    if (user == User::kOrdinary && !become_ordinary_user()) _exit(EXIT_FAILURE);
    become_printer(std::move(arguments));
  }

  Outcome finish(pid_t pid) const {
    const int status = exit_status_of(pid);
    return {status, content_of(in_folder("out")), content_of(in_folder("errors"))};
  }

  // Runs a shell script that finds the port's name in $port.
  Outcome run_script(const std::string& script, std::vector<std::string> options = {},
                     User user = User::kThisOne) const {
    options.insert(options.end(), {"--", "sh", "-c", "port=" + port_ + "\n" + script});
    return finish(start(options, user));
  }

  static void redirect(int descriptor, const fs::path& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (file < 0 || dup2(file, descriptor) < 0) _exit(EXIT_FAILURE);
  }

  [[noreturn]] void become_printer(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {program(), "--output", folder_.path()});
    prctl(PR_SET_PDEATHSIG, SIGTERM);  // a test that is ended leaves no printer behind
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    execv(words.front(), words.data());
    _exit(EXIT_FAILURE);
  }

 private:
  testkit::TemporaryFolder folder_;
};

// A printer without a command, whose lines the test reads one by one.
class ServingTest : public ProgramTest {
 protected:
  ~ServingTest() override {
    if (pid_ > 0) stop();
  }

  void start_serving(const std::vector<std::string>& arguments) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    pid_ = fork();
    if (pid_ == 0) {
      dup2(ends[1], STDOUT_FILENO);
      redirect(STDERR_FILENO, in_folder("errors"));
      become_printer(arguments);
    }
    close(ends[1]);
    lines_ = fdopen(ends[0], "r");
  }

  std::string next_line() {
    std::array<char, 1024> line{};
    return fgets(line.data(), line.size(), lines_) == nullptr ? "" : line.data();
  }

  int stop(int signal = SIGTERM) {
    kill(pid_, signal);
    const int status = exit_status_of(std::exchange(pid_, -1));
    fclose(lines_);
    return status;
  }

 private:
  pid_t pid_ = -1;
  FILE* lines_ = nullptr;
};

}  // namespace virtual_printer
