#include "reporter.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>

namespace cli {
namespace {

const Invocation* told_about = nullptr;
std::atomic<bool> is_told = false;

// What a printer or a file says need not be UTF-8.
std::string one_line(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

Json object_of(const Result& result) {
  Json json{{"command", told_about->command}};
  if (!told_about->options.port.empty()) json["port"] = told_about->options.port;
  json["outcome"] = name_of(result.outcome);
  json["exit"] = static_cast<int>(result.outcome);
  json["message"] = result.words;
  json.update(result.fields);
  return json;
}

void to_standard_output(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

}  // namespace

void start_reporting(const Invocation& invocation) {
  told_about = &invocation;
}

int tell(const Result& result) {
  while (is_told.exchange(true)) pause();
  to_standard_output(told_about->options.json ? one_line(object_of(result)) : result.text);
  if (!result.words.empty()) tell_aside(result.words);
  return static_cast<int>(result.outcome);
}

void tell_line(const std::string& text, const Json& fields) {
  to_standard_output(told_about->options.json ? one_line(fields) : text + '\n');
}

void tell_aside(const std::string& words) {
  if (!told_about->options.quiet) std::fprintf(stderr, "tzvio: %s\n", words.c_str());
}

}  // namespace cli
