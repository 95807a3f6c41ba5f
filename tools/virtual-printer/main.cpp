// A thermal receipt printer that is not there: a terminal device to print to, pictures to look at.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "port_link.h"
#include "private_dev.h"
#include "service.h"
#include "signal_queue.h"

namespace virtual_printer {
namespace {

// As other programs that run programs: their own failures must not look like the command's.
constexpr int kOwnFailure = 125;
constexpr int kBadUsage = 2;
constexpr int kUnknownBytesMet = 3;

constexpr std::string_view kPortPrefix = "/dev/ttyS";
constexpr std::string_view kCommandMark = "--";

struct Options {
  std::string port = "/dev/ttyS-virtual";
  std::string output = ".";
  bool strict = false;
  std::vector<std::string> command;
};

std::string check_port_name(const std::string& name) {
  const bool good = name.starts_with(kPortPrefix) && name.size() > kPortPrefix.size() &&
                    name.find('/', kPortPrefix.size()) == std::string::npos;
  return good ? "" : "the name must begin with /dev/ttyS and go on without a slash";
}

void describe(CLI::App& app, Options& options) {
  // The last of several counts, so that a script's defaults can be overridden.
  app.option_defaults()->take_last();
  app.add_option("--port", options.port, "Name of the port to print to")
      ->check(CLI::Validator(check_port_name, "/dev/ttyS..."))
      ->capture_default_str();
  app.add_option("--output", options.output, "Folder for the receipts")
      ->option_text("DIR")
      ->capture_default_str();
  app.add_flag("--strict", options.strict, "Exit status 3 if unknown bytes came");
  app.footer(
      "\nWith COMMAND, the printer runs it and ends with it; else it runs until interrupted.\n"
      "Each cut writes receipt-NNN.png and receipt-NNN.txt; uncut paper is written at the end.");
}

bool is_refusal(const std::error_code& code) {
  return code == std::errc::permission_denied || code == std::errc::read_only_file_system ||
         code == std::errc::operation_not_permitted;
}

std::unique_ptr<PortName> name_in_private_dev(const Options& options, const std::string& device,
                                              const std::system_error& refusal) {
  const std::string first = std::string(refusal.what());
  if (options.command.empty()) {
    throw std::runtime_error(first + "\nRun it as root, or give it the command to run: " +
                             "virtual-printer -- COMMAND ARGS...");
  }
  try {
    enter_private_dev();
    return std::make_unique<PortName>(options.port, device);
  } catch (const std::system_error& second) {
    throw std::runtime_error(first + "\n" + second.what() +
                             "\nRun it as root, or let users make namespaces of their own " +
                             "(sysctl user.max_user_namespaces above 0, and where they exist " +
                             "kernel.unprivileged_userns_clone=1 and " +
                             "kernel.apparmor_restrict_unprivileged_userns=0)");
  }
}

std::unique_ptr<PortName> name_port(const Options& options, const std::string& device) {
  try {
    return std::make_unique<PortName>(options.port, device);
  } catch (const std::system_error& refusal) {
    if (!is_refusal(refusal.code())) throw;
    return name_in_private_dev(options, device, refusal);
  }
}

int run(const Options& options) {
  SignalQueue signals({SIGINT, SIGTERM, SIGHUP, SIGCHLD});
  std::signal(SIGPIPE, SIG_IGN);  // a reader of our lines that goes away must not end the printer
  PortLink link;
  const auto name = name_port(options, link.device());
  Service service(link, signals, options.output);
  std::printf("ready %s\n", options.port.c_str());
  std::fflush(stdout);
  int status = 0;
  if (options.command.empty()) {
    service.run();
  } else {
    status = service.run(options.command);
  }
  return options.strict && service.met_unknown_bytes() ? kUnknownBytesMet : status;
}

int run_command_line(int argc, char** argv) {
  // The command's words are its own: not one of them is ours to interpret.
  char** const end = argv + argc;
  char** const mark = std::find(argv, end, kCommandMark);
  Options options;
  if (mark != end) options.command.assign(mark + 1, end);
  CLI::App app(
      "Plays a thermal receipt printer behind a serial port.\n"
      "virtual-printer [OPTIONS] [-- COMMAND ARGS...]");
  describe(app, options);
  try {
    app.parse(static_cast<int>(mark - argv), argv);
    if (mark != end && options.command.empty()) {
      throw CLI::ValidationError("--", "COMMAND is missing");
    }
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kBadUsage;
  }
  return run(options);
}

}  // namespace
}  // namespace virtual_printer

int main(int argc, char** argv) {
  try {
    return virtual_printer::run_command_line(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "virtual-printer: %s\n", error.what());
  } catch (...) {
    std::fputs("virtual-printer: failed for a reason without a name\n", stderr);
  }
  return virtual_printer::kOwnFailure;
}
