#include "page_files.h"

#include "page_bytes.h"

namespace virtual_printer {
namespace {

template <std::size_t size>
constexpr std::string_view content_of(const std::array<char, size>& bytes) {
  return {bytes.data(), bytes.size()};
}

}  // namespace

const std::array<PageFile, 3> kPageFiles{{
    {"/", "text/html; charset=utf-8", content_of(page_html)},
    {R"(/page\.css)", "text/css; charset=utf-8", content_of(page_css)},
    {R"(/page\.js)", "text/javascript; charset=utf-8", content_of(page_js)},
}};

}  // namespace virtual_printer
