#include "memory_file.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace virtual_printer {

Identity open_memory(const std::string& path) {
  Identity identity;
  if (path.empty()) return identity;
  if (!std::filesystem::exists(path)) {
    write_memory(path, identity.serial_number);
    return identity;
  }
  std::ifstream file(path, std::ios::binary);
  identity.serial_number.assign(std::istreambuf_iterator<char>(file), {});
  if (!file || identity.serial_number.size() > kLongestSerialNumber) {
    throw std::runtime_error("cannot read a serial number from " + path);
  }
  return identity;
}

void write_memory(const std::string& path, const std::string& serial_number) {
  if (path.empty()) return;
  const std::string fresh = path + ".new";
  std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
  file.write(serial_number.data(), static_cast<std::streamsize>(serial_number.size()));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + fresh);
  std::filesystem::rename(fresh, path);
}

}  // namespace virtual_printer
