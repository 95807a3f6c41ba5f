// Firmware images of any length: one frame with the region's bytes, zeros where the file ends, and
// their checksum.
#include <string>

#include "input.h"
#include "memory_file.h"
#include "open_link.h"

namespace fuzz {
namespace {

struct Region {
  char code;
  char size_code;
  std::size_t offset;
  std::size_t length;
};
constexpr Region kRegions[] = {
    {'D', 5, 0x100000, 0x50000}, {'E', 8, 0, 0x80000}, {'F', 8, 0x80000, 0x80000}};
constexpr std::size_t kLargestImage = 0x180000;

/// The frame of a region of zeros but for the content, up to the file's end.
std::string expected_frame(const Region& region, std::size_t size, std::size_t at,
                           std::string_view content) {
  std::string image(kLargestImage, '\0');
  if (at < size) image.replace(at, content.size(), content);
  const std::string bytes = image.substr(region.offset, region.length);
  char sum = 0;
  for (const char byte : bytes) sum = static_cast<char>(sum ^ byte);
  return std::string{'\x1d', '~', region.code, region.size_code, '\0', '\0'} + bytes + sum;
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace fuzz;
  static MemoryFile file;
  Input input(data, size);
  // On a network it is one send, on USB 8192 packets.
  constexpr std::size_t kNetwork = 3;
  OpenLink till(testkit::kLinks[input.choice(64) == 0 ? 2 : kNetwork]);
  const auto region = static_cast<long>(input.byte()) - 1;
  const auto length = static_cast<uint32_t>(input.number()) % kLargestImage;
  const std::string_view content = input.rest();
  const std::size_t at = length - std::min<std::size_t>(length, content.size());
  const std::string_view kept = content.substr(0, length);
  file.fill(static_cast<off_t>(length), static_cast<off_t>(at), kept);

  const long result = UpdateFW(till.port, file.path(), region);
  const bool known = region >= 0 && region < static_cast<long>(std::size(kRegions));
  check(result == (known ? 0 : -1), "UpdateFW takes the three regions");
  const std::string expected =
      known ? expected_frame(kRegions[region], length, at, kept) : std::string();
  check(till.sent() == expected, "the frame of the region");
  return 0;
}
