#include "receipt_files.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "descriptor.h"
#include "drawing.h"
#include "png.h"
#include "text_rendition.h"

namespace virtual_printer {
namespace {

constexpr const char* kUncutMark = "-uncut";

std::string base_name(int number) {
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), "receipt-%03d", number);
  return name.data();
}

void write_file(const std::filesystem::path& path, const std::string& content) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace

RenderedReceipt render(const Receipt& receipt) {
  const DotImage dots = draw(receipt);
  return {text_of(receipt), png_of(dots), dots.height()};
}

ReceiptFiles::ReceiptFiles(std::filesystem::path directory) : directory_(std::move(directory)) {
  std::filesystem::create_directories(directory_);
  check(access(directory_.c_str(), W_OK | X_OK), "cannot write receipts to " + directory_.string());
}

// A number counts as taken by any of its four files, so that picture and text always belong
// together and nothing of an earlier run is overwritten.
bool ReceiptFiles::is_taken(int number) const {
  for (const char* mark : {"", kUncutMark}) {
    for (const char* extension : {".png", ".txt"}) {
      if (std::filesystem::exists(directory_ / (base_name(number) + mark + extension))) return true;
    }
  }
  return false;
}

std::filesystem::path ReceiptFiles::write(const RenderedReceipt& receipt, PaperEnd end) {
  do {
    ++last_number_;
  } while (is_taken(last_number_));
  const auto base =
      directory_ / (base_name(last_number_) + (end == PaperEnd::kUncut ? kUncutMark : ""));
  std::filesystem::path picture = base.string() + ".png";
  write_file(base.string() + ".txt", receipt.text);
  write_file(picture, receipt.picture);
  return picture;
}

}  // namespace virtual_printer
