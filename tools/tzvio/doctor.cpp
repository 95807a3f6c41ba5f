// tzvio doctor
#include <sys/stat.h>
#include <tzvio.h>

#include <filesystem>

#include "commands.h"
#include "condition.h"
#include "device_look.h"
#include "hardware.h"
#include "reporter.h"
#include "serial/serial_settings.h"
#include "session.h"

namespace cli {
namespace {

// Tells findings one by one, so that they stand even if a later look does not come back.
class Doctor {
 public:
  explicit Doctor(const Options& options)
      : options_(options),
        link_(link_of(options.port)),
        settings_(settings_for(link_, options.settings)) {}

  Result examine() {
    if (check_name() && check_settings() && check_way()) check_printer();
    Result result{.fields = {{"problems", problems_}}};
    if (problems_ == 0) {
      result.words = "all is well";
      return result;
    }
    result.outcome = Outcome::kProblem;
    result.words = std::to_string(problems_) + (problems_ == 1 ? " problem" : " problems");
    return result;
  }

 private:
  bool find(const char* check, bool good, const std::string& words) {
    tell_line(std::string(good ? "ok       " : "PROBLEM  ") + check + ": " + words,
              {{"check", check}, {"ok", good}, {"message", words}});
    problems_ += good ? 0 : 1;
    return good;
  }

  bool check_name() {
    if (link_) return find("name", true, options_.port + " is a " + name_of(*link_) + " port");
    return find("name", false, no_link_words(options_.port));
  }

  bool check_settings() {
    const bool bad_line = *link_ == Link::kSerial && !parse_serial_settings(settings_);
    const bool bad_port = *link_ == Link::kNetwork && tcp_port_in(settings_) == 0;
    if (bad_line) {
      return find("settings", false,
                  "'" + settings_ +
                      "' must be baud, parity, data bits, stop bits and flow "
                      "control, such as 9600,none,8,1,none");
    }
    if (bad_port) {
      return find("settings", false, "'" + settings_ + "' is no TCP port from 1 to 65535");
    }
    return settings_.empty() || find("settings", true, settings_);
  }

  // From here to the printer.
  bool check_way() {
    const Look look = look_at_port(*link_, options_.port, settings_);
    const bool good = look.outcome == Outcome::kDone;
    if (*link_ == Link::kNetwork) {
      return find("network", good, good ? "the address answers and the port is open" : look.words);
    }
    find("device", good, good ? "it is there and may be used" : look.words);
    const bool right_kind = check_kind();
    const bool driven = check_driver(good);
    check_users();
    return good && right_kind && driven;
  }

  bool check_kind() {
    struct stat node {};
    if (stat(options_.port.c_str(), &node) != 0 || S_ISCHR(node.st_mode)) return true;
    return find("kind", false, options_.port + " is no device but a file: remove it");
  }

  bool check_driver(bool opens) {
    switch (*link_) {
      case Link::kUsb:
        return opens || check_usb();
      case Link::kParallel:
        return check_parallel(opens);
      default:
        return check_serial(opens);
    }
  }

  bool check_usb() {
    const UsbPrinters printers = usb_printers();
    if (printers.plugged_in == 0) {
      return find("driver", false, "no USB printer is plugged in, or it is switched off");
    }
    if (printers.served == 0) {
      return find(
          "driver", false,
          "a USB printer is plugged in, but without its driver: have root run modprobe usblp");
    }
    return find("driver", false,
                "a USB printer is there, under another name: `tzvio ports` lists it");
  }

  bool check_parallel(bool opens) {
    const bool raw = options_.port.starts_with("/dev/parport");
    const bool is_node = std::filesystem::exists(options_.port);
    if (!raw && is_node) {
      return find(
          "driver", false,
          "the driver lp cannot tell how the printer is: use /dev/parport with the same number");
    }
    if (opens) return true;
    return has_driver("ppdev")
               ? find("driver", false, "the driver ppdev is there; the machine has no such port")
               : find("driver", false,
                      "the driver ppdev is missing: have root run modprobe ppdev parport_pc");
  }

  bool check_serial(bool opens) {
    if (!opens || hardware_behind(Link::kSerial, options_.port) != Hardware::kNone) return true;
    return find("driver", false, "there is no serial port behind this name: try another number");
  }

  void check_users() {
    for (const std::string& user : users_of(options_.port)) {
      find("use", false, user + " has it open: two programs cannot print at once");
    }
  }

  void check_printer() {
    Session session(options_);
    if (auto failed = session.open()) {
      find("printer", false, failed->words);
      return;
    }
    find("printer", true, "it answers");
    const auto failed = session.make_ready();
    const Condition condition = look_at(session.state());
    if (failed) {
      find("state", false,
           fault_of(condition) == Outcome::kDone
               ? failed->words
               : words_for(condition) + ": " + advice_for(failed->outcome));
      return;
    }
    find("state", true,
         std::string("it is ready and confirms what it prints") +
             (condition.paper_near_end ? "; the paper is near its end" : ""));
  }

  const Options& options_;
  std::optional<Link> link_;
  std::string settings_;
  int problems_ = 0;
};

Result run(const Options& options) {
  if (options.port.empty()) return no_port();
  return Doctor(options).examine();
}

}  // namespace

void add_doctor(CLI::App& app, Invocation& invocation) {
  CLI::App* const command = add_command(
      app, "doctor", "Find out why a printer does not print: a line for each thing looked at");
  command->footer("Nothing is printed.\n  tzvio doctor --port /dev/usb/lp0");
  set_work(command, invocation, run);
}

}  // namespace cli
