#include "text_input.h"

#include <tzvio_state.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "job.h"

namespace cli {
namespace {

struct Escape {
  char letter;
  char byte;
};
constexpr std::array<Escape, 6> kEscapes{
    {{'e', '\x1b'}, {'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'0', '\0'}, {'\\', '\\'}}};

// The byte of two hexadecimal digits; none when they are not there.
std::optional<char> byte_of(std::string_view digits) {
  unsigned byte = 0;
  const char* const end = digits.data() + digits.size();
  const auto [rest, error] = std::from_chars(digits.data(), end, byte, 16);
  if (digits.size() != 2 || error != std::errc() || rest != end) return std::nullopt;
  return static_cast<char>(byte);
}

std::optional<char> letter_escape(char letter) {
  for (const Escape& escape : kEscapes) {
    if (escape.letter == letter) return escape.byte;
  }
  return std::nullopt;
}

Result unreadable(const std::string& path) {
  return {.outcome = Outcome::kBadFile,
          .words = path + ": " + std::strerror(errno) + "; nothing was printed"};
}

std::variant<std::string, Result> read_all(std::FILE* file, const std::string& path) {
  std::string text;
  std::array<char, 65536> piece;
  while (text.size() <= TZV_PAGE_BUFFER_SIZE) {
    const std::size_t count = std::fread(piece.data(), 1, piece.size(), file);
    text.append(piece.data(), count);
    if (std::ferror(file) != 0) return unreadable(path);
    if (count == 0) return text;
  }
  return too_large();
}

}  // namespace

std::variant<std::string, Result> read_text(const std::string& path) {
  if (path == "-") return read_all(stdin, "standard input");
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             std::fclose);
  if (file == nullptr) return unreadable(path);
  return read_all(file.get(), path);
}

std::optional<std::string> unescaped(const std::string& text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      plain += text[i];
      continue;
    }
    if (++i == text.size()) return std::nullopt;
    const bool hex = text[i] == 'x';
    const auto byte =
        hex ? byte_of(std::string_view(text).substr(i + 1, 2)) : letter_escape(text[i]);
    if (!byte) return std::nullopt;
    plain += *byte;
    if (hex) i += 2;
  }
  return plain;
}

Result bad_escape() {
  return {.outcome = Outcome::kUsage,
          .words =
              "with --escapes a backslash is followed by e, n, r, t, 0, xHH or another "
              "backslash; nothing was printed"};
}

}  // namespace cli
