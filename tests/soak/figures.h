// What a process uses, at several points of a long run.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace soak {

struct Usage {
  std::size_t receipts = 0;
  std::size_t threads = 0;
  std::size_t descriptors = 0;
  std::size_t resident_kib = 0;
  double processor_ms = 0;  ///< since the process began
};

/// What this process uses now, or another of that number.
Usage measure(std::size_t receipts, const std::string& process = "self");

/// Points of one run, from its beginning on.
class Figures {
 public:
  void add(const Usage& usage) { points_.push_back(usage); }
  const std::vector<Usage>& points() const { return points_; }
  /// Empty when threads and descriptors are as many at the end as at the beginning and memory has
  /// grown by no more than that; otherwise what has grown.
  std::string growth(std::size_t kib) const;
  /// A line for each point, with the processor time per receipt since the one before.
  std::string table() const;

 private:
  std::vector<Usage> points_;
};

/// Adds the text to the report and shows it: on standard output, and in the file that
/// TZVIO_SOAK_REPORT names.
void report(const std::string& text);

/// A number from the environment; `otherwise` when there is none.
std::size_t asked(const char* variable, std::size_t otherwise);

/// Whether LINK in the environment leaves that one in: all, or those whose names begin so.
bool is_chosen(const std::string& link);

}  // namespace soak
