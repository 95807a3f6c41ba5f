// The virtual printer as a program on one line, with its paper read as it comes out.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "soak/child_program.h"
#include "soak/receipts.h"

namespace soak {

/// Where a printer stands, and what is different there.
struct Line {
  std::string name;
  /// What the device's name begins with; empty on a network.
  std::string device;
  std::string settings;
  /// A real terminal, which has no modem lines; other devices are played.
  bool is_terminal = false;

  bool is_network() const { return device.empty(); }
  bool shows_power() const { return !is_terminal; }
};

class PrinterProgram {
 public:
  /// All of its files go into the folder.
  PrinterProgram(Line line, std::filesystem::path folder);
  ~PrinterProgram();

  /// Also again, behind the same port; whether it is ready.
  bool start();
  /// As a crash ends it, with no time for anything.
  void kill();
  /// In good order, with what is printed and not cut.
  void stop();
  bool runs() const { return program_ != nullptr; }

  /// Asks the running printer for something, as its command line does; whether it was done.
  bool ask(const std::string& request) const;
  int descriptor() const { return program_->descriptor(); }
  std::optional<std::string> next_line();

  /// For a shell: a program that is to print here.
  std::string command_of(const std::string& program) const;

  /// Shows the paper every receipt that has come out since the last time.
  void read_into(Paper& paper) const;

 private:
  std::vector<std::string> words() const;
  bool wait_until_ready();

  Line line_;
  std::filesystem::path folder_;
  std::filesystem::path paper_folder_ = folder_ / "paper";
  std::string device_;
  std::string listen_ = "0";  // any that is free; later the same again
  std::string environment_;   // that a till needs, for a shell
  std::unique_ptr<ChildProgram> program_;
};

}  // namespace soak
