// Runs the tests in an environment that names the devices; or, as a till would,
//
//     device_preload_tests --till NAME BYTES
//
// opens a device and writes to it, and ends with the error's number when that fails.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "fake_printer.h"

namespace {

int be_till(const char* name, const char* bytes) {
  const int descriptor = open(name, O_RDWR | O_NOCTTY);
  if (descriptor < 0) return errno;
  return write(descriptor, bytes, std::strlen(bytes)) < 0 ? errno : 0;
}

// The library reads its environment once, so it must be right from the start.
void restart_with_devices(char** argv) {
  std::string folder = std::filesystem::temp_directory_path() / "device-preload-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) return;
  setenv(tzvio_devices::kFolderVariable, folder.c_str(), 1);
  setenv("TZVIO_DEVICES", tzvio_devices::environment_for_all_devices().c_str(), 1);
  execv("/proc/self/exe", argv);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::string(argv[1]) == "--till") return be_till(argv[2], argv[3]);
  const char* const folder = std::getenv(tzvio_devices::kFolderVariable);
  if (folder == nullptr) {
    restart_with_devices(argv);
    return EXIT_FAILURE;
  }
  testing::InitGoogleMock(&argc, argv);
  const int result = RUN_ALL_TESTS();
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return result;
}
