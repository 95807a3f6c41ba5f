#include "private_dev.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "descriptor.h"

namespace virtual_printer {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDeviceFolder = "/dev";

void write_line(const char* path, const std::string& line) {
  const Descriptor file(
      check(open(path, O_WRONLY | O_CLOEXEC), std::string("cannot open ") + path));
  check(static_cast<int>(write(file.number(), line.data(), line.size())),
        std::string("cannot write ") + path);
}

// The user stays who he is; only the right to mount is gained, and only inside.
void enter_namespaces() {
  const std::string user = std::to_string(geteuid());
  const std::string group = std::to_string(getegid());
  check(unshare(CLONE_NEWUSER | CLONE_NEWNS), "cannot make a private namespace");
  write_line("/proc/self/setgroups", "deny");
  write_line("/proc/self/uid_map", user + " " + user + " 1");
  write_line("/proc/self/gid_map", group + " " + group + " 1");
}

void bind(const fs::path& source, const fs::path& target) {
  if (mount(source.c_str(), target.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0) return;
  if (errno == ENOENT) return;  // the entry has gone meanwhile
  check(-1, "cannot show " + target.string() + " in a private /dev");
}

void reproduce(const fs::directory_entry& entry) {
  const fs::path target = fs::path(kDeviceFolder) / entry.path().filename();
  if (entry.is_symlink()) {
    fs::copy_symlink(entry.path(), target);
  } else if (entry.is_directory()) {
    fs::create_directory(target);
    bind(entry.path(), target);
  } else {
    std::ofstream(target).close();  // something to bind the device to
    bind(entry.path(), target);
  }
}

}  // namespace

// The machine's /dev stays reachable through a descriptor while an empty folder is put over it
// and filled with what it holds.
void enter_private_dev() {
  enter_namespaces();
  check(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr), "cannot keep mounts private");
  const Descriptor machine_dev(
      check(open(kDeviceFolder, O_PATH | O_DIRECTORY | O_CLOEXEC), "cannot open /dev"));
  check(mount("tmpfs", kDeviceFolder, "tmpfs", MS_NOSUID, "mode=0755"), "cannot cover /dev");
  const std::string old_entries = "/proc/self/fd/" + std::to_string(machine_dev.number());
  for (const auto& entry : fs::directory_iterator(old_entries)) reproduce(entry);
}

}  // namespace virtual_printer
