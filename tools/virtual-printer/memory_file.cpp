#include "memory_file.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace virtual_printer {

Memory open_memory(const std::string& path) {
  if (path.empty()) return {};
  if (!std::filesystem::exists(path)) {
    write_memory(path, {});
    return {};
  }
  std::ifstream file(path, std::ios::binary);
  const std::string content(std::istreambuf_iterator<char>(file), {});
  auto memory = memory_after(content);
  if (!file || !memory) throw std::runtime_error(path + " is no memory of a printer");
  return *std::move(memory);
}

void write_memory(const std::string& path, const Memory& memory) {
  if (path.empty()) return;
  const std::string fresh = path + ".new";
  const std::string content = commands_for(memory);
  std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + fresh);
  std::filesystem::rename(fresh, path);
}

}  // namespace virtual_printer
