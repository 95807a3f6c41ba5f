#include "support/printed_paper.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kPatience{30};
constexpr std::chrono::milliseconds kPause{10};

// In a picture's header chunk, after eight bytes of signature and eight of the chunk's own.
constexpr std::size_t kWidthAt = 16;

std::string content_of(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::uint32_t width_of_picture(const fs::path& path) {
  const std::string png = content_of(path);
  if (png.size() < kWidthAt + 4 || png.compare(12, 4, "IHDR") != 0) return 0;
  std::uint32_t width = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    width = width << 8 | static_cast<unsigned char>(png[kWidthAt + i]);
  }
  return width;
}

std::vector<fs::path> sorted_files(const fs::path& folder, const std::string& extension) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == extension) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

PrintedPaper paper_in(const fs::path& folder) {
  PrintedPaper paper;
  for (fs::path file : sorted_files(folder, ".txt")) {
    paper.texts.push_back(content_of(file));
    paper.widths.push_back(width_of_picture(file.replace_extension(".png")));
  }
  return paper;
}

std::string lines_that_begin(const std::string& text, const std::string& beginning) {
  std::istringstream stream(text);
  std::string found;
  for (std::string line; std::getline(stream, line);) {
    if (line.compare(0, beginning.size(), beginning) == 0) found += line + '\n';
  }
  return found;
}

int exit_status_of(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// This process's own, so that tests may run beside each other.
std::string device_name(const std::string& beginning) {
  return beginning + "-e2e-" + std::to_string(getpid());
}

std::vector<std::string> address_on(Line line) {
  switch (line) {
    case Line::kParallel:
      return {"--port", device_name("/dev/parport")};
    case Line::kUsb:
      return {"--port", device_name("/dev/usb/lp")};
    case Line::kTcp:
      return {"--listen", "0"};
    default:
      return {"--port", device_name("/dev/ttyS")};
  }
}

}  // namespace

std::string PrintedPaper::in_one() const {
  std::string all;
  for (const std::string& text : texts) all += text;
  return all;
}

int Outcome::lines(const std::string& beginning) const {
  const std::string found = lines_from(beginning);
  return static_cast<int>(std::count(found.begin(), found.end(), '\n'));
}

std::string Outcome::lines_from(const std::string& beginning) const {
  return lines_that_begin(out, beginning);
}

std::string name_of(Line line) {
  switch (line) {
    case Line::kParallel:
      return "parallel";
    case Line::kUsb:
      return "usb";
    case Line::kTcp:
      return "tcp";
    default:
      return "serial";
  }
}

PrinterTest::PrinterTest(Line line) : address_(address_on(line)) {
  fs::create_directory(in_folder("paper"));
  setenv("XDG_RUNTIME_DIR", folder_.path().c_str(), 1);  // the socket of the printer's requests
}

// Whatever went wrong, nothing of ours goes on or stays.
PrinterTest::~PrinterTest() {
  if (printer_ > 0) {
    kill(printer_, SIGTERM);
    exit_status_of(printer_);
  }
}

void PrinterTest::SetUp() {
  for (const char* program : {VIRTUAL_PRINTER_PROGRAM, READ_PAPER_PROGRAM}) {
    if (!fs::exists(program)) GTEST_SKIP() << "there is no " << program;
  }
}

void PrinterTest::use(Line line) {
  address_ = address_on(line);
}

Outcome PrinterTest::run(const Words& command) {
  printer_ = spawn(command, "run");
  return finish();
}

Outcome PrinterTest::run_under_printer(const Words& options, const Words& command) {
  start_under_printer(options, command);
  return finish();
}

void PrinterTest::start_under_printer(const Words& options, const Words& command) {
  Words words{VIRTUAL_PRINTER_PROGRAM, "--output", in_folder("paper")};
  words.insert(words.end(), address_.begin(), address_.end());
  words.insert(words.end(), options.begin(), options.end());
  words.emplace_back("--");
  words.insert(words.end(), command.begin(), command.end());
  printer_ = spawn(words, "run");
  ASSERT_GT(printer_, 0) << "cannot start " << words.front();
}

Outcome PrinterTest::finish() {
  const int status = printer_ > 0 ? exit_status_of(printer_) : -1;
  printer_ = 0;
  return {status, content_of(in_folder("run.out")), content_of(in_folder("run.errors")),
          paper_in(in_folder("paper"))};
}

Outcome PrinterTest::end() {
  kill(printer_, SIGTERM);
  return finish();
}

bool PrinterTest::wait_for_line(const std::string& beginning, std::size_t count) const {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (std::chrono::steady_clock::now() < deadline) {
    if (lines(beginning).size() >= count) return true;
    std::this_thread::sleep_for(kPause);
  }
  return false;
}

PrinterTest::Words PrinterTest::lines(const std::string& beginning) const {
  std::istringstream stream(lines_that_begin(content_of(in_folder("run.out")), beginning));
  Words lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

bool PrinterTest::set(const std::string& name, const std::string& value) const {
  return ask({"set", name, value});
}

std::string PrinterTest::status() const {
  return ask({"status"}) ? content_of(in_folder("request.out")) : "";
}

// On a port that the printer found free, as its first line says it.
bool PrinterTest::ask(Words request) const {
  request.insert(request.begin(), VIRTUAL_PRINTER_PROGRAM);
  request.insert(request.end(), address_.begin(), address_.end());
  if (address_.front() == "--listen") {
    const std::string ready = lines("ready").front();
    request.back() = ready.substr(ready.rfind(' ') + 1);
  }
  const pid_t pid = spawn(request, "request");
  return pid > 0 && exit_status_of(pid) == 0;
}

std::string PrinterTest::request(const std::string& words) {
  return std::string(VIRTUAL_PRINTER_PROGRAM) + " " + words +
         R"( $(case "$VIRTUAL_PRINTER_PORT" in SOCKET:*) echo --listen "$VIRTUAL_PRINTER_SETTINGS";;)"
         R"( *) echo --port "$VIRTUAL_PRINTER_PORT";; esac))";
}

std::string PrinterTest::read_paper(const std::string& how) const {
  Words words{READ_PAPER_PROGRAM, how};
  for (const fs::path& file : sorted_files(in_folder("paper"), ".png")) words.push_back(file);
  const pid_t pid = spawn(words, "read");
  const int status = pid > 0 ? exit_status_of(pid) : -1;
  EXPECT_EQ(status, 0) << content_of(in_folder("read.errors"));
  return content_of(in_folder("read.out"));
}

std::string PrinterTest::file(const std::string& name, const std::string& content) const {
  const fs::path path = in_folder(name);
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

std::string PrinterTest::recorded() const {
  return content_of(in_folder("record"));
}

pid_t PrinterTest::spawn(const Words& words, const std::string& output_name) const {
  std::vector<std::string> copies = words;
  std::vector<char*> arguments;
  arguments.reserve(copies.size() + 1);
  for (std::string& word : copies) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  constexpr int kNew = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND;
  const std::string out = in_folder(output_name + ".out");
  const std::string errors = in_folder(output_name + ".errors");
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), kNew, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(), kNew, 0600);
  pid_t pid = -1;
  const int failed =
      posix_spawn(&pid, arguments.front(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return failed == 0 ? pid : -1;
}
