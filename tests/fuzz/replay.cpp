// Runs a fuzz target over files and folders of kept inputs, with any compiler.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

namespace {

int replayed = 0;

void replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  // Exactly as large as the content, so that a sanitizer sees a read behind it.
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  const std::unique_ptr<uint8_t[]> input(new uint8_t[content.size()]);
  std::copy(content.begin(), content.end(), input.get());
  std::fprintf(stderr, "%s\n", path.c_str());
  LLVMFuzzerTestOneInput(input.get(), content.size());
  ++replayed;
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      replay(argv[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (entry.is_regular_file()) replay(entry.path());
    }
  }
  std::printf("%d inputs\n", replayed);
  return replayed > 0 ? 0 : 1;
}
