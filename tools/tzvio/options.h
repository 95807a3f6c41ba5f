// The options that every command has.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "outcome.h"

namespace cli {

struct Options {
  std::string port;
  std::string settings;  // empty: the link's usual ones
  bool json = false;
  bool quiet = false;
  int timeout_s = 30;
  int wait_s = 0;
  long columns = 42;
  long line_width = 640;
  long unit = 0;  // TZV_MAP_...
};

// Whom the command line asks for what.
struct Invocation {
  Options options;
  std::string command;
  std::function<Result(const Options&)> run;
};

void describe_common_options(CLI::App& app, Options& options);

// A subcommand that takes the common options too. Its work is what the second call says.
CLI::App* add_command(CLI::App& app, const std::string& name, const std::string& description);
void set_work(CLI::App* command, Invocation& invocation, std::function<Result(const Options&)> run);

// An option whose value is one of a few words.
template <typename Choices, typename Value>
CLI::Option* add_choice(CLI::App& app, const std::string& name, Value& value,
                        const Choices& choices, const std::string& help) {
  std::string words;
  std::vector<std::string> names;
  for (const auto& [word, number] : choices) {
    words += (words.empty() ? "" : "|") + std::string(word);
    names.emplace_back(word);
  }
  return app
      .add_option_function<std::string>(
          name,
          [&value, choices](const std::string& chosen) {
            for (const auto& [word, number] : choices) {
              if (chosen == word) value = static_cast<Value>(number);
            }
          },
          help)
      ->option_text(words)
      ->check(CLI::IsMember(names));
}

}  // namespace cli
