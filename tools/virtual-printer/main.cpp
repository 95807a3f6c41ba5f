// A thermal receipt printer that is not there: a terminal device to print to, pictures to look at.

#include <csignal>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <variant>

#include "control.h"
#include "options.h"
#include "port_link.h"
#include "private_dev.h"
#include "service.h"
#include "signal_queue.h"

namespace virtual_printer {
namespace {

// As other programs that run programs: their own failures must not look like the command's.
constexpr int kOwnFailure = 125;
constexpr int kUnknownBytesMet = 3;
constexpr int kRequestFailed = 1;

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

// A printer whose conditions nobody can change still prints.
std::unique_ptr<ControlSocket> open_control(const std::string& port) {
  try {
    return std::make_unique<ControlSocket>(control_path(port));
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "virtual-printer: set and status will not work: %s\n", error.what());
    return nullptr;
  }
}

int serve(const Options& options) {
  SignalQueue signals({SIGINT, SIGTERM, SIGHUP, SIGCHLD});
  std::signal(SIGPIPE, SIG_IGN);  // a reader of our lines that goes away must not end the printer
  PortLink link;
  const auto name = name_port(options, link.device());
  const auto control = open_control(options.port);
  Service service(link, signals, control.get(), options.service);
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

int request(const Options& options) {
  try {
    const ControlReply reply = ask_printer(options.port, text_of(*options.request));
    std::fputs(reply.text.c_str(), stdout);
    return reply.done ? 0 : kRequestFailed;
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "virtual-printer: %s\n", error.what());
    return kRequestFailed;
  }
}

int run_command_line(int argc, char** argv) {
  const auto parsed = parse_command_line(argc, argv);
  if (const int* status = std::get_if<int>(&parsed)) return *status;
  const auto& options = std::get<Options>(parsed);
  return options.request ? request(options) : serve(options);
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
