#include "soak/printer_program.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "../../tools/virtual-printer/control.h"

namespace soak {

namespace fs = std::filesystem;

PrinterProgram::PrinterProgram(Line line, fs::path folder)
    : line_(std::move(line)), folder_(std::move(folder)) {
  fs::create_directories(paper_folder_);
  // This process's own, so that tests may run beside each other.
  device_ = line_.device + "-soak-" + std::to_string(getpid());
}

PrinterProgram::~PrinterProgram() {
  stop();
  if (line_.is_terminal) unlink(device_.c_str());
}

std::vector<std::string> PrinterProgram::words() const {
  std::vector<std::string> words{VIRTUAL_PRINTER_PROGRAM, "--output", paper_folder_};
  if (line_.is_network()) {
    words.insert(words.end(), {"--listen", listen_});
  } else if (line_.is_terminal) {
    words.insert(words.end(), {"--port", device_, "--terminal"});
  } else {
    words.insert(words.end(), {"--port", device_, "--environment", "--socket", folder_ / "socket"});
  }
  return words;
}

bool PrinterProgram::start() {
  program_ = std::make_unique<ChildProgram>(words(), folder_ / "printer.errors");
  return wait_until_ready();
}

bool PrinterProgram::wait_until_ready() {
  constexpr int kPatienceMs = 30000;
  pollfd output{descriptor(), POLLIN, 0};
  while (poll(&output, 1, kPatienceMs) > 0 && !program_->is_silent()) {
    while (const auto line = next_line()) {
      if (line->starts_with("env ")) environment_ = *line + ' ';
      if (!line->starts_with("ready ")) continue;
      if (line_.is_network()) listen_ = line->substr(line->rfind(' ') + 1);
      return true;
    }
  }
  return false;
}

void PrinterProgram::kill() {
  program_->end(SIGKILL);
  program_.reset();
}

void PrinterProgram::stop() {
  if (runs()) program_->end(SIGTERM);
  program_.reset();
}

bool PrinterProgram::ask(const std::string& request) const {
  try {
    const std::string name = line_.is_network() ? "SOCKET:127.0.0.1:" + listen_ : device_;
    return virtual_printer::ask_printer(name, request).done;
  } catch (const std::runtime_error&) {
    return false;  // it was killed
  }
}

std::optional<std::string> PrinterProgram::next_line() {
  return program_->next_line();
}

std::string PrinterProgram::command_of(const std::string& program) const {
  if (line_.is_network()) return program + " SOCKET:127.0.0.1 " + listen_;
  return environment_ + program + ' ' + device_ + " '" + line_.settings + '\'';
}

// A receipt's picture is written after its text, so what has a picture is whole.
void PrinterProgram::read_into(Paper& paper) const {
  std::vector<fs::path> pictures;
  for (const auto& entry : fs::directory_iterator(paper_folder_)) {
    if (entry.path().extension() == ".png") pictures.push_back(entry.path());
  }
  // Numbers of more digits are of later receipts.
  const auto comes_before = [](const fs::path& a, const fs::path& b) {
    const std::string first = a.filename(), second = b.filename();
    return first.size() != second.size() ? first.size() < second.size() : first < second;
  };
  std::sort(pictures.begin(), pictures.end(), comes_before);
  for (fs::path file : pictures) {
    fs::remove(file);
    std::ifstream text(file.replace_extension(".txt"));
    for (std::string line; std::getline(text, line);) paper.line(line);
    if (file.stem().string().find("uncut") == std::string::npos) paper.cut();
    fs::remove(file);
  }
}

}  // namespace soak
