// What others see on a receipt: the symbols that two independent scanners read off its picture, and
// its dots. A native program, because the tests may be 32-bit ones.
//
//     read-paper scan PICTURE...    lines "NAME READER KIND DATA", NAME without folder and ".png"
//     read-paper dots PICTURE       a line for each row, "#" for ink and "." for paper
#include <zbar.h>

// Behind the other: its macros have the names of the other's types.
#define ZX_USE_UTF8
#include <ZXing/ReadBarcode.h>
#include <cairo.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr unsigned char kDark = 0x80;

struct Grey {
  int width;
  int height;
  std::vector<unsigned char> pixels;

  bool is_dark(int x, int y) const {
    return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(x)] < kDark;
  }
};

Grey load(const char* path) {
  const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
      cairo_image_surface_create_from_png(path), cairo_surface_destroy);
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
    throw std::runtime_error(std::string("cannot read ") + path);
  }
  Grey picture{cairo_image_surface_get_width(surface.get()),
               cairo_image_surface_get_height(surface.get()),
               {}};
  const unsigned char* row = cairo_image_surface_get_data(surface.get());
  for (int y = 0; y < picture.height; ++y, row += cairo_image_surface_get_stride(surface.get())) {
    // Of four bytes to the pixel; a grey one has its shade in all colours.
    const unsigned char* pixel = row;
    for (int x = 0; x < picture.width; ++x, pixel += 4) picture.pixels.push_back(*pixel);
  }
  return picture;
}

void tell(const char* path, const char* reader, const std::string& kind, std::string_view data) {
  std::printf("%s %s %s ", std::filesystem::path(path).stem().c_str(), reader, kind.c_str());
  for (const char byte : data) {
    const bool plain = byte >= ' ' && byte <= '~' && byte != '\\';
    plain ? std::printf("%c", byte) : std::printf("\\x%02X", static_cast<unsigned char>(byte));
  }
  std::printf("\n");
}

void scan_with_zxing(const char* path, const Grey& picture) {
  ZXing::DecodeHints hints;
  hints.setReturnCodabarStartEnd(true);
  const ZXing::ImageView view(picture.pixels.data(), picture.width, picture.height,
                              ZXing::ImageFormat::Lum);
  for (const ZXing::Result& result : ZXing::ReadBarcodes(view, hints)) {
    tell(path, "zxing", ZXing::ToString(result.format()), result.bytes().asString());
  }
}

void scan_with_zbar(const char* path, const Grey& picture) {
  zbar::ImageScanner scanner;
  scanner.set_config(zbar::ZBAR_NONE, zbar::ZBAR_CFG_ENABLE, 1);
  zbar::Image image(static_cast<unsigned>(picture.width), static_cast<unsigned>(picture.height),
                    "Y800", picture.pixels.data(), picture.pixels.size());
  scanner.scan(image);
  for (auto symbol = image.symbol_begin(); symbol != image.symbol_end(); ++symbol) {
    tell(path, "zbar", symbol->get_type_name(), symbol->get_data());
  }
}

void scan(const char* path) {
  const Grey picture = load(path);
  scan_with_zxing(path, picture);
  scan_with_zbar(path, picture);
}

void print_dots(const char* path) {
  const Grey picture = load(path);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) std::putchar(picture.is_dark(x, y) ? '#' : '.');
    std::putchar('\n');
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    for (int i = 2; i < argc; ++i) {
      std::strcmp(argv[1], "dots") == 0 ? print_dots(argv[i]) : scan(argv[i]);
    }
    return argc > 2 ? 0 : 2;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "read-paper: %s\n", error.what());
    return 1;
  }
}
