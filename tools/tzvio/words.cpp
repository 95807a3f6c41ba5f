// tzvio words
#include <memory>
#include <vector>

#include "commands.h"

namespace cli {
namespace {

bool is_shown(const CLI::App* command) {
  return !command->get_name().empty() && !command->get_group().empty();
}

// The innermost command among the words; those that are none are an option's values.
const CLI::App* command_of(const CLI::App* command, const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    const auto found = command->get_subcommands(
        [&word](const CLI::App* inner) { return inner->get_name() == word; });
    if (!found.empty()) command = found.front();
  }
  return command;
}

// A word and, behind a tabulator, what it takes. Arguments without a name have "=" for it.
std::string options_of(const CLI::App* command) {
  std::string lines;
  for (const CLI::Option* option : command->get_options()) {
    if (option->get_positional()) lines += "=\t" + option->get_option_text() + "\n";
    for (const std::string& name : option->get_lnames()) {
      lines += "--" + name +
               (option->get_option_text().empty() ? "" : "\t" + option->get_option_text()) + "\n";
    }
  }
  return lines;
}

std::string commands_of(const CLI::App* command) {
  std::string lines;
  for (const CLI::App* inner : command->get_subcommands(is_shown))
    lines += inner->get_name() + "\n";
  return lines;
}

}  // namespace

void add_words(CLI::App& app, Invocation& invocation) {
  CLI::App* const command = add_command(app, "words", "What can be written after these words");
  command->group("");
  const auto words = std::make_shared<std::vector<std::string>>();
  command->add_option("WORD", *words)->option_text("WORD...");
  set_work(command, invocation, [words, &app](const Options&) {
    const CLI::App* const asked = command_of(&app, *words);
    return Result{.text = commands_of(asked) + options_of(asked) +
                          (asked == &app ? "" : options_of(&app))};
  });
}

}  // namespace cli
