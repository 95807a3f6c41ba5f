#include "options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <string_view>

#include "device_page.h"
#include "page_access.h"

namespace virtual_printer {
namespace {

constexpr int kBadUsage = 2;

constexpr std::string_view kCommandMark = "--";

// Of what begins the name, the device's number or word has to follow.
std::string check_port_name(const std::string& name) {
  const auto kind = tzvio_devices::kind_of(name);
  const bool good = kind != tzvio_devices::DeviceKind::kNone &&
                    tzvio_devices::kind_of(name.substr(0, name.size() - 1)) == kind &&
                    name.find('/', name.find_first_of("pS")) == std::string::npos &&
                    name.find_first_of(":= ") == std::string::npos;
  return good ? ""
              : "the name must begin with /dev/ttyS, /dev/usb/lp, /dev/usblp, /dev/parport or "
                "/dev/lp and go on without a slash, a colon, an equals sign or a blank";
}

// It goes into an environment variable in which these marks have a meaning.
std::string check_socket(const std::string& path) {
  return path.find_first_of(":= '") == std::string::npos
             ? ""
             : "the socket's path must be without colons, equals signs, blanks and quotes";
}

std::string check_tcp_address(const std::string& text) {
  return parse_tcp_address(text) ? "" : "the address must be [ADDRESS:]PORT, ADDRESS as 127.0.0.1";
}

std::string condition_names() {
  std::string names;
  for (const Condition condition : kAllConditions) {
    names += (names.empty() ? "" : ", ") + std::string(name_of(condition));
  }
  return names;
}

std::string check_fault(const std::string& text) {
  return parse_scripted_fault(text)
             ? ""
             : "the fault must be CONDITION@LINE or CONDITION@BYTEB, CONDITION one of " +
                   condition_names();
}

void describe_line(CLI::App& app, Options& options) {
  auto* const port = app.add_option("--port", options.port, "Name of the device to print to")
                         ->check(CLI::Validator(check_port_name, "/dev/..."))
                         ->capture_default_str();
  auto* const terminal =
      app.add_flag("--terminal", options.terminal,
                   "Makes a serial port's name lead to a pseudo-terminal, for a command too");
  auto* const environment =
      app.add_flag("--environment", options.environment,
                   "Plays the device without a command, and says what environment a program needs");
  terminal->excludes(environment);
  auto* const socket =
      app.add_option("--socket", options.socket,
                     "Where the device that is played has its socket: a printer that is started "
                     "again with the same is behind the same device")
          ->option_text("PATH")
          ->check(CLI::Validator(check_socket, ""))
          ->excludes(terminal);
  app.add_option_function<std::string>(
         "--listen",
         [&options](const std::string& text) { options.listen = parse_tcp_address(text); },
         "Prints what comes over TCP; on 127.0.0.1 unless given; port 0: any that is free")
      ->option_text("[ADDRESS:]PORT")
      ->check(CLI::Validator(check_tcp_address, ""))
      ->excludes(port)
      ->excludes(terminal)
      ->excludes(environment)
      ->excludes(socket);
}

void describe_files(CLI::App& app, Options& options) {
  app.add_option("--output", options.service.output_folder,
                 "Folder for the receipts; with a page, they are written only when it is given")
      ->option_text("DIR")
      ->capture_default_str();
  app.add_option("--memory", options.service.memory_file,
                 "File that keeps the serial number and stored images")
      ->option_text("FILE");
  app.add_option("--record", options.service.record_file, "File for all bytes that arrive")
      ->option_text("FILE");
  app.add_flag("--stay", options.service.stay,
               "Goes on when COMMAND has ended, until it is interrupted");
  app.add_flag("--strict", options.strict,
               "Exit status 3 if unknown bytes came, or something was refused");
}

std::string check_page_address(const std::string& text) {
  return is_address(text) ? "" : "the address must be in numbers, as 127.0.0.1 or ::1";
}

void describe_page(CLI::App& app, Options& options) {
  constexpr int kHighestPort = 65535;
  auto* const page =
      app.add_option("--page", options.page_address.port,
                     "Shows the printer in a browser, at the address that is told; any free PORT "
                     "unless given")
          ->option_text("[PORT]")
          ->expected(0, 1)
          ->check(CLI::Range(0, kHighestPort));
  app.add_option("--page-address", options.page_address.host,
                 "Where browsers reach the page: whoever can may press its buttons")
      ->option_text("ADDRESS")
      ->check(CLI::Validator(check_page_address, ""))
      ->capture_default_str()
      ->needs(page);
}

void describe_conditions(CLI::App& app, ServiceOptions& service) {
  constexpr int kHourMs = 3600 * 1000;
  auto* const fault =
      app.add_option_function<std::string>(
             "--fault",
             [&service](const std::string& text) { service.fault = parse_scripted_fault(text); },
             "A condition that sets in, once, when so many lines are printed or, with a B, bytes "
             "received; 0: at once")
          ->option_text("CONDITION@LINE")
          ->check(CLI::Validator(check_fault, ""));
  app.add_option_function<int>(
         "--recover-after",
         [&service](int number) { service.recovery = std::chrono::milliseconds(number); },
         "That condition ends so long after it has set in")
      ->option_text("MS")
      ->check(CLI::Range(0, kHourMs))
      ->needs(fault);
}

void describe_line_settings(CLI::App& app, LineFaults& faults) {
  for (const LineSetting& setting : kLineSettings) {
    const std::string name = "--" + std::string(setting.name);
    const std::string help(setting.help);
    int& value = faults.*setting.value;
    if (setting.is_switch()) {
      app.add_flag(name, value, help);
    } else {
      app.add_option(name, value, help)
          ->option_text(std::string(setting.unit))
          ->check(CLI::Range(0, setting.most));
    }
  }
}

// What the words after `set` and `fault` are, until they are all there.
struct RequestWords {
  std::string name;
  std::string value;
  std::string fault;
};

void describe_requests(CLI::App& app, RequestWords& words) {
  constexpr const char* kWhose = " of the running printer at --port or --listen";
  auto* const set = app.add_subcommand("set", std::string("Change something") + kWhose);
  set->fallthrough();
  set->add_option("NAME", words.name, names_that_can_be_set())->required();
  set->add_option("VALUE", words.value, "on, off or a number")->required();
  auto* const fault = app.add_subcommand(
      "fault",
      std::string("Have a condition set in, once, as --fault does, counted from now on,") + kWhose);
  fault->fallthrough();
  fault->add_option("WHEN", words.fault, "CONDITION@LINE or CONDITION@BYTEB")
      ->required()
      ->check(CLI::Validator(check_fault, ""));
  auto* const status =
      app.add_subcommand("status", std::string("Conditions and counters") + kWhose);
  status->fallthrough();
  app.require_subcommand(0, 1);
}

void describe_decoding(CLI::App& app, Options& options) {
  auto* const decode = app.add_subcommand(
      "decode", "Say in words what a till has sent, as --record keeps it: offset, bytes, meaning");
  options.decode.emplace();
  decode->add_option("FILE", options.decode->file, "What to decode; -: standard input")
      ->capture_default_str();
  decode->add_flag("--json", options.decode->json, "Each line a JSON object");
}

void describe(CLI::App& app, Options& options, RequestWords& words) {
  // The last of several counts, so that a script's defaults can be overridden.
  app.option_defaults()->take_last();
  describe_line(app, options);
  describe_files(app, options);
  describe_page(app, options);
  describe_conditions(app, options.service);
  describe_line_settings(app, options.service.line);
  describe_requests(app, words);
  describe_decoding(app, options);
  app.footer(
      "\nWith COMMAND, the printer runs it and ends with it; else it runs until interrupted.\n"
      "Each cut writes receipt-NNN.png and receipt-NNN.txt; uncut paper is written at the end.");
}

std::string request_of(const CLI::App& app, const RequestWords& words) {
  if (app.got_subcommand("status")) return "status";
  if (app.got_subcommand("fault")) return "fault " + words.fault;
  if (!app.got_subcommand("set")) return "";
  std::string request = "set " + words.name + " " + words.value;
  if (!parse_control_request(request)) {
    throw CLI::ValidationError(request, "nothing that can be set, or not to that; NAME is one of " +
                                            names_that_can_be_set());
  }
  return request;
}

// What no single option can say.
void settle(const CLI::App& app, Options& options, const RequestWords& words) {
  options.request = request_of(app, words);
  if (!app.got_subcommand("decode")) options.decode.reset();
  options.page = app.count("--page") > 0;
  if (options.page && app.count("--output") == 0) options.service.output_folder.clear();
}

// What no single option can see.
void check_together(const Options& options, bool has_mark) {
  const bool serial = tzvio_devices::kind_of(options.port) == tzvio_devices::DeviceKind::kSerial;
  if (options.terminal && !serial) {
    throw CLI::ValidationError("--terminal", "only a serial port can be a terminal");
  }
  if (options.environment && has_mark) {
    throw CLI::ValidationError("--environment", "the COMMAND has it already");
  }
  if (options.service.stay && !has_mark) {
    throw CLI::ValidationError("--stay", "without a COMMAND, the printer stays anyway");
  }
  if (has_mark && options.command.empty()) throw CLI::ValidationError("--", "COMMAND is missing");
  if (has_mark && (!options.request.empty() || options.decode)) {
    throw CLI::ValidationError("--", "set, fault, status and decode take no COMMAND");
  }
}

}  // namespace

std::variant<Options, int> parse_command_line(int argc, char** argv) {
  // The command's words are its own: not one of them is ours to interpret.
  char** const end = argv + argc;
  char** const mark = std::find(argv, end, kCommandMark);
  Options options;
  RequestWords words;
  if (mark != end) options.command.assign(mark + 1, end);
  CLI::App app(
      "Plays a thermal receipt printer behind a serial port, a parallel port, USB or TCP.\n"
      "virtual-printer [OPTIONS] [-- COMMAND ARGS...]");
  describe(app, options, words);
  try {
    app.parse(static_cast<int>(mark - argv), argv);
    settle(app, options, words);
    check_together(options, mark != end);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kBadUsage;
  }
  return options;
}

}  // namespace virtual_printer
