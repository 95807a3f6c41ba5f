// A thermal receipt printer that is not there: a line to print to, pictures to look at.

#include <csignal>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <variant>

#include "control.h"
#include "decoding.h"
#include "device_link.h"
#include "options.h"
#include "page.h"
#include "service.h"
#include "signal_queue.h"
#include "tcp_link.h"
#include "terminal_link.h"

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

std::unique_ptr<Link> make_terminal(const std::string& port) {
  try {
    return std::make_unique<TerminalLink>(port);
  } catch (const std::system_error& refusal) {
    if (!is_refusal(refusal.code())) throw;
    throw std::runtime_error(std::string(refusal.what()) +
                             "\nRun it as root; or give it the command to run, " +
                             "virtual-printer -- COMMAND ARGS...; or let it say what environment " +
                             "a program needs, virtual-printer --environment");
  }
}

// A command has its device played, because no name in /dev is needed for that. Without one, only a
// terminal can be found by any program, and only a serial port is one.
std::unique_ptr<Link> make_link(const Options& options) {
  if (options.listen) return std::make_unique<TcpLink>(*options.listen);
  const bool serial = tzvio_devices::kind_of(options.port) == tzvio_devices::DeviceKind::kSerial;
  const bool played = !serial || options.environment || !options.command.empty();
  if (played && !options.terminal)
    return std::make_unique<DeviceLink>(options.port, options.socket);
  return make_terminal(options.port);
}

// In single quotes, because the loader is to see $LIB and the shell is not.
void tell_environment(const Environment& environment) {
  if (environment.empty()) return;
  std::printf("env");
  for (const auto& [name, value] : environment) {
    std::printf(" %s='%s'", name.c_str(), value.c_str());
  }
  std::printf("\n");
}

void tell_ready(const Options& options, const Link& link) {
  const std::string settings = options.listen ? " " + link.settings() : "";
  std::printf("ready %s%s\n", link.port().c_str(), settings.c_str());
  std::fflush(stdout);
}

// With which the command finds its printer, whatever the line.
Environment environment_of_command(const Link& link) {
  Environment environment = link.environment();
  environment.emplace_back("VIRTUAL_PRINTER_PORT", link.port());
  environment.emplace_back("VIRTUAL_PRINTER_SETTINGS", link.settings());
  return environment;
}

// A printer whose conditions nobody can change still prints.
std::unique_ptr<ControlSocket> open_control(const std::string& printer) {
  try {
    return std::make_unique<ControlSocket>(control_path(printer));
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "virtual-printer: set and status will not work: %s\n", error.what());
    return nullptr;
  }
}

int serve(const Options& options) {
  SignalQueue signals({SIGINT, SIGTERM, SIGHUP, SIGCHLD});
  std::signal(SIGPIPE, SIG_IGN);  // a reader of our lines that goes away must not end the printer
  const auto link = make_link(options);
  const auto control = open_control(link->name());
  std::optional<Page> page;
  if (options.page) page.emplace(options.page_address);
  Service service(*link, signals, control.get(), page ? &*page : nullptr, options.service);
  if (options.command.empty()) tell_environment(link->environment());
  if (page) std::printf("page %s\n", page->url().c_str());
  tell_ready(options, *link);
  int status = 0;
  if (options.command.empty()) {
    service.run();
  } else {
    status = service.run(options.command, environment_of_command(*link));
  }
  return options.strict && !service.met_only_known_bytes() ? kUnknownBytesMet : status;
}

int request(const Options& options) {
  try {
    const std::string printer = options.listen ? name_of(*options.listen) : options.port;
    const ControlReply reply = ask_printer(printer, options.request);
    std::fputs(reply.text.c_str(), stdout);
    return reply.done ? 0 : kRequestFailed;
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "virtual-printer: %s\n", error.what());
    return kRequestFailed;
  }
}

int decode(const DecodeRequest& request) {
  std::ifstream file;
  const bool from_file = request.file != "-";
  if (from_file) file.open(request.file, std::ios::binary);
  std::istream& capture = from_file ? file : std::cin;
  if (capture) {
    decode_capture(capture, [&](const TranscriptEntry& entry) {
      std::printf("%s\n", (request.json ? json_of(entry) : line_of(entry)).c_str());
    });
  }
  // The end alone is no failure to read.
  if (!capture.eof()) throw std::runtime_error("cannot read " + request.file);
  return 0;
}

int run_command_line(int argc, char** argv) {
  const auto parsed = parse_command_line(argc, argv);
  if (const int* status = std::get_if<int>(&parsed)) return *status;
  const auto& options = std::get<Options>(parsed);
  if (options.decode) return decode(*options.decode);
  return !options.request.empty() ? request(options) : serve(options);
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
