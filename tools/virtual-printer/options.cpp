#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <functional>
#include <string_view>

namespace virtual_printer {
namespace {

constexpr int kBadUsage = 2;

constexpr std::string_view kPortPrefix = "/dev/ttyS";
constexpr std::string_view kCommandMark = "--";

std::string check_port_name(const std::string& name) {
  const bool good = name.starts_with(kPortPrefix) && name.size() > kPortPrefix.size() &&
                    name.find('/', kPortPrefix.size()) == std::string::npos;
  return good ? "" : "the name must begin with /dev/ttyS and go on without a slash";
}

std::string condition_names() {
  std::string names;
  for (const Condition condition : kAllConditions) {
    names += (names.empty() ? "" : ", ") + std::string(name_of(condition));
  }
  return names;
}

std::string check_condition(const std::string& name) {
  return condition_named(name) ? "" : "the condition must be one of " + condition_names();
}

std::string check_fault(const std::string& text) {
  return parse_scripted_fault(text)
             ? ""
             : "the fault must be CONDITION@LINE, CONDITION one of " + condition_names();
}

CLI::Option* add_milliseconds(CLI::App& app, const std::string& name, const std::string& text,
                              const std::function<void(std::chrono::milliseconds)>& use) {
  constexpr int kHourMs = 3600 * 1000;
  return app
      .add_option_function<int>(
          name, [use](const int& number) { use(std::chrono::milliseconds(number)); }, text)
      ->option_text("MS")
      ->check(CLI::Range(0, kHourMs));
}

void describe_port_and_paper(CLI::App& app, Options& options) {
  app.add_option("--port", options.port, "Name of the port to print to")
      ->check(CLI::Validator(check_port_name, "/dev/ttyS..."))
      ->capture_default_str();
  app.add_option("--output", options.service.output_folder, "Folder for the receipts")
      ->option_text("DIR")
      ->capture_default_str();
  app.add_option("--memory", options.service.memory_file, "File that keeps the serial number")
      ->option_text("FILE");
  app.add_flag("--strict", options.strict,
               "Exit status 3 if unknown bytes or frames that were refused came");
}

void describe_faults(CLI::App& app, Options& options) {
  ServiceOptions& service = options.service;
  auto* const fault =
      app.add_option_function<std::string>(
             "--fault",
             [&service](const std::string& text) { service.fault = parse_scripted_fault(text); },
             "A condition that sets in, once, when so many lines are printed; 0: at once")
          ->option_text("CONDITION@LINE")
          ->check(CLI::Validator(check_fault, ""));
  add_milliseconds(app, "--recover-after", "That condition ends so long after it has set in",
                   [&service](std::chrono::milliseconds time) { service.recovery = time; })
      ->needs(fault);
  AnswerFaults& answers = service.answer_faults;
  add_milliseconds(app, "--answer-delay", "Answers come so much later",
                   [&answers](std::chrono::milliseconds time) { answers.delay = time; });
  app.add_flag("--answer-split", answers.split, "Answers come byte by byte, 5 ms apart");
  app.add_flag("--answer-double", answers.twice, "Answers come twice");
  app.add_flag("--mute", answers.withheld, "Answers do not come");
}

// What the words after `set` are, until they are all there.
struct SetWords {
  std::string condition;
  std::string state;
};

void describe_requests(CLI::App& app, SetWords& words) {
  constexpr const char* kWhose = " of the running printer at --port";
  auto* const set = app.add_subcommand("set", std::string("Change a condition") + kWhose);
  set->fallthrough();
  set->add_option("CONDITION", words.condition, condition_names())
      ->required()
      ->check(CLI::Validator(check_condition, ""));
  set->add_option("STATE", words.state, "on or off")
      ->required()
      ->check(CLI::IsMember({"on", "off"}));
  auto* const status =
      app.add_subcommand("status", std::string("Conditions and counters") + kWhose);
  status->fallthrough();
  app.require_subcommand(0, 1);
}

void describe(CLI::App& app, Options& options, SetWords& words) {
  // The last of several counts, so that a script's defaults can be overridden.
  app.option_defaults()->take_last();
  describe_port_and_paper(app, options);
  describe_faults(app, options);
  describe_requests(app, words);
  app.footer(
      "\nWith COMMAND, the printer runs it and ends with it; else it runs until interrupted.\n"
      "Each cut writes receipt-NNN.png and receipt-NNN.txt; uncut paper is written at the end.");
}

std::optional<ControlRequest> request_of(const CLI::App& app, const SetWords& words) {
  if (app.got_subcommand("status")) return ControlRequest{};
  if (!app.got_subcommand("set")) return std::nullopt;
  const auto condition = condition_named(words.condition);
  return ControlRequest{ConditionChange{condition.value(), words.state == "on"}};
}

}  // namespace

std::variant<Options, int> parse_command_line(int argc, char** argv) {
  // The command's words are its own: not one of them is ours to interpret.
  char** const end = argv + argc;
  char** const mark = std::find(argv, end, kCommandMark);
  Options options;
  SetWords words;
  if (mark != end) options.command.assign(mark + 1, end);
  CLI::App app(
      "Plays a thermal receipt printer behind a serial port.\n"
      "virtual-printer [OPTIONS] [-- COMMAND ARGS...]");
  describe(app, options, words);
  try {
    app.parse(static_cast<int>(mark - argv), argv);
    options.request = request_of(app, words);
    if (mark != end && options.command.empty()) {
      throw CLI::ValidationError("--", "COMMAND is missing");
    }
    if (mark != end && options.request) {
      throw CLI::ValidationError("--", "a request to a running printer takes no COMMAND");
    }
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kBadUsage;
  }
  return options;
}

}  // namespace virtual_printer
