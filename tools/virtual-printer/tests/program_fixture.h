// The program as people start it, for tests that judge it by what it leaves behind.
#pragma once

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "temporary_folder.h"

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

inline bool ordinary_users_have_namespaces() {
  return in_child([] {
           return become_ordinary_user() && unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 ? 0 : 1;
         }) == 0;
}

inline bool device_folder_is_writable() {
  return access("/dev", W_OK) == 0;
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
    fs::copy_file(VIRTUAL_PRINTER_PROGRAM, program());
    setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);
  }

  // Whatever went wrong, nothing of ours stays in the machine's /dev.
  ~ProgramTest() override { unlink(port_.c_str()); }

  void SetUp() override {
    if (!device_folder_is_writable() && !ordinary_users_have_namespaces()) {
      GTEST_SKIP() << "neither may /dev be written here nor a private one be made";
    }
  }

  // This process's own, so that tests may run beside each other.
  const std::string port_ = "/dev/ttyS-test" + std::to_string(getpid());

  fs::path in_folder(const std::string& name) const { return folder_.path() / name; }
  std::string program() const { return in_folder("virtual-printer"); }

  pid_t start(std::vector<std::string> arguments, User user = User::kThisOne) const {
    arguments.insert(arguments.begin(), {program(), "--port", port_, "--output", folder_.path()});
    const pid_t pid = fork();
    if (pid != 0) return pid;
    redirect(STDOUT_FILENO, in_folder("out"));
    redirect(STDERR_FILENO, in_folder("errors"));
    if (user == User::kOrdinary && !become_ordinary_user()) _exit(EXIT_FAILURE);
    prctl(PR_SET_PDEATHSIG, SIGTERM);  // a test that is ended leaves no printer behind
    std::vector<char*> words;
    words.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    execv(words.front(), words.data());
    _exit(EXIT_FAILURE);
  }

  Outcome finish(pid_t pid) const {
    const int status = exit_status_of(pid);
    return {status, content_of(in_folder("out")), content_of(in_folder("errors"))};
  }

  // Runs a shell script that finds the port's name in $port. Without the port it does not run: the
  // shell would make a file of the name.
  Outcome run_script(const std::string& script, std::vector<std::string> options = {},
                     User user = User::kThisOne) const {
    options.insert(options.end(),
                   {"--", "sh", "-c", "port=" + port_ + "; [ -c $port ] || exit 99\n" + script});
    return finish(start(options, user));
  }

 private:
  static void redirect(int descriptor, const fs::path& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (file < 0 || dup2(file, descriptor) < 0) _exit(EXIT_FAILURE);
  }

  TemporaryFolder folder_;
};

}  // namespace virtual_printer
