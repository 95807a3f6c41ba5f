// tzvio print
#include <tzvio.h>
#include <unistd.h>

#include <memory>
#include <vector>

#include "commands.h"
#include "job.h"
#include "text_input.h"

namespace cli {
namespace {

struct Print {
  std::vector<std::string> words;
  std::vector<std::string> files;
  bool escapes = false;
  bool cut = false;
  bool confirm = true;
};

std::string joined(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "" : " ") + word;
  return line;
}

// Each text is printed by itself, so attributes end with it.
std::variant<std::vector<std::string>, Result> texts_of(const Print& print) {
  std::vector<std::string> texts;
  if (!print.words.empty()) texts.push_back(joined(print.words));
  std::vector<std::string> files = print.files;
  if (print.words.empty() && files.empty()) files.emplace_back("-");
  for (const std::string& file : files) {
    auto text = read_text(file);
    if (auto* const failed = std::get_if<Result>(&text)) return *failed;
    texts.push_back(std::get<std::string>(text));
  }
  return texts;
}

// A line that is not ended would wait in the printer, and be forgotten by the next job.
void end_line(std::string& text) {
  if (!text.empty() && text.back() != '\n') text += '\n';
}

std::optional<Result> prepare(const Print& print, std::vector<std::string>& texts) {
  std::size_t size = 0;
  for (std::string& text : texts) {
    if (print.escapes) {
      const auto plain = unescaped(text);
      if (!plain) return bad_escape();
      text = *plain;
    }
    end_line(text);
    size += text.size();
  }
  if (size > 0 || print.cut) return std::nullopt;
  return Result{.outcome = Outcome::kUsage, .words = "there is nothing to print"};
}

std::optional<Result> fill(Session& session, const Print& print,
                           const std::vector<std::string>& texts) {
  for (const std::string& text : texts) {
    if (text.empty()) continue;
    auto failed = collected(session, [&] {
      return PrintNormalSize(session.port(), text.data(), static_cast<long>(text.size()));
    });
    if (failed) return failed;
  }
  if (!print.cut) return std::nullopt;
  return collected(session, [&] { return CutPaper(session.port(), 100); });
}

Result run(const Options& options, const Print& print) {
  auto read = texts_of(print);
  if (auto* const failed = std::get_if<Result>(&read)) return *failed;
  auto& texts = std::get<std::vector<std::string>>(read);
  if (auto failed = prepare(print, texts)) return *failed;
  return print_job(options, print.confirm,
                   [&](Session& session) { return fill(session, print, texts); });
}

}  // namespace

void add_print(CLI::App& app, Invocation& invocation) {
  CLI::App* const command =
      add_command(app, "print", "Print text: the words given, files, or else standard input");
  const auto print = std::make_shared<Print>();
  command
      ->add_option("TEXT", print->words,
                   "Words, printed with a blank between them; -- comes before one that begins "
                   "with -")
      ->option_text("TEXT...");
  command
      ->add_option("-f,--file", print->files, "A file to print, - being standard input; repeatable")
      ->option_text("FILE")
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command->add_flag(
      "-e,--escapes", print->escapes,
      "In the text \\e is ESC, \\n \\r \\t \\0 \\\\ and \\xHH as usual: '\\e|cA\\e|bCTotal' "
      "is centred and bold");
  command->add_flag("--cut", print->cut, "Feed five lines and cut the paper");
  add_confirm_option(command, print->confirm);
  command->footer(
      "A line that is not ended is ended. Nothing is sent unless the printer is ready and "
      "confirms,\n"
      "so 0 means: on paper.\n"
      "  tzvio print Hello --cut\n"
      "  tzvio print -e '\\e|cA\\e|4CCORNER SHOP' --port SOCKET:192.168.0.10\n"
      "  report | tzvio print --wait 60");
  set_work(command, invocation, [print](const Options& options) { return run(options, *print); });
}

}  // namespace cli
