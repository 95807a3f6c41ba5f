#include "soak/figures.h"

#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace soak {

namespace {

std::size_t entries_of(const std::string& folder) {
  const std::filesystem::directory_iterator entries(folder);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

std::string row(const Usage& usage, double us_per_receipt) {
  char line[160];
  std::snprintf(line, sizeof line, "  %8zu  %7zu  %11zu  %10zu  %24.0f\n", usage.receipts,
                usage.threads, usage.descriptors, usage.resident_kib, us_per_receipt);
  return line;
}

}  // namespace

Usage measure(std::size_t receipts, const std::string& process) {
  const std::string folder = "/proc/" + process;
  Usage usage{.receipts = receipts,
              .threads = entries_of(folder + "/task"),
              .descriptors = entries_of(folder + "/fd")};
  std::size_t pages = 0;
  std::ifstream(folder + "/statm") >> pages >> pages;
  constexpr std::size_t kKib = 1024;
  usage.resident_kib = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / kKib;
  clockid_t clock = CLOCK_PROCESS_CPUTIME_ID;
  if (process != "self") clock_getcpuclockid(std::stoi(process), &clock);
  timespec used{};
  clock_gettime(clock, &used);
  usage.processor_ms =
      static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
  return usage;
}

std::string Figures::growth(std::size_t kib) const {
  const Usage& first = points_.front();
  const Usage& last = points_.back();
  std::string grown;
  if (last.threads > first.threads) grown += "threads ";
  if (last.descriptors > first.descriptors) grown += "descriptors ";
  if (last.resident_kib > first.resident_kib + kib) grown += "memory ";
  return grown;
}

std::string Figures::table() const {
  std::string text = "  receipts  threads  descriptors  memory KiB  processor us per receipt\n";
  for (std::size_t i = 0; i < points_.size(); ++i) {
    const Usage& before = points_[i > 0 ? i - 1 : 0];
    const auto receipts = static_cast<double>(points_[i].receipts - before.receipts);
    const double used = (points_[i].processor_ms - before.processor_ms) * 1e3;
    text += row(points_[i], receipts > 0 ? used / receipts : 0);
  }
  return text;
}

void report(const std::string& text) {
  std::fputs(text.c_str(), stdout);
  const char* const path = std::getenv("TZVIO_SOAK_REPORT");
  if (path != nullptr) std::ofstream(path, std::ios::app) << text;
}

std::size_t asked(const char* variable, std::size_t otherwise) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != 0 ? std::strtoul(value, nullptr, 10) : otherwise;
}

bool is_chosen(const std::string& link) {
  const char* const only = std::getenv("LINK");
  return only == nullptr || link.starts_with(only);
}

}  // namespace soak
