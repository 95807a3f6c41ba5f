// Lists of image files.
#include "image/image_list.h"

#include <string>
#include <vector>

#include "check.h"
#include "input.h"

namespace fuzz {
namespace {

/// Every name that ends with '|'.
std::vector<std::string> second_reading(const std::string& list) {
  std::vector<std::string> names(1);
  for (const char c : list) {
    if (c == '|') {
      names.emplace_back();
    } else {
      names.back() += c;
    }
  }
  names.pop_back();
  return names;
}

/// Not too many, and none too long.
bool acceptable(const std::vector<std::string>& names) {
  if (names.size() > kMostImages) return false;
  for (const std::string& name : names) {
    if (name.size() >= kImageNameSize) return false;
  }
  return true;
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace fuzz;
  const std::string list = up_to_nul(Input(data, size).rest());
  const auto images = parse_image_list(list.c_str());
  const std::vector<std::string> names = second_reading(list);
  check(images.has_value() == acceptable(names), "accepted is what the rules accept");
  if (!images) return 0;
  check(static_cast<std::size_t>(images->Count) == names.size(), "all names");
  for (std::size_t i = 0; i < names.size(); ++i) {
    check(images->BitmapsList[i] == names[i], "each name as it stands");
  }
  return 0;
}
