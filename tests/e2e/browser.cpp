#include "browser.h"

#include <fcntl.h>
#include <httplib.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace fs = std::filesystem;

namespace {

constexpr const char* kDriver = "/usr/bin/chromedriver";
constexpr std::chrono::seconds kPatience{60};
constexpr std::chrono::milliseconds kPause{20};

// A sandbox is refused to root, and a container has little shared memory.
constexpr const char* kNewSession =
    R"({"capabilities":{"alwaysMatch":{"goog:chromeOptions":{"args":["--headless=new",)"
    R"("--no-sandbox","--disable-dev-shm-usage","--disable-gpu","--window-size=1360,1000"]}}}})";

pid_t start_driver(const std::string& output) {
  std::string program = kDriver;
  std::string port = "--port=0";  // any that is free, as it says
  std::array<char*, 3> arguments{program.data(), port.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  pid_t pid = 0;
  const int failed = posix_spawn(&pid, kDriver, &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) throw std::runtime_error("cannot start the browser's driver");
  return pid;
}

// What stands between two others; empty when it does not.
std::string between(const std::string& text, const std::string& before, const std::string& after) {
  const std::size_t begin = text.find(before);
  if (begin == std::string::npos) return "";
  const std::size_t end = text.find(after, begin + before.size());
  if (end == std::string::npos) return "";
  return text.substr(begin + before.size(), end - begin - before.size());
}

std::string port_in(const fs::path& output) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (std::chrono::steady_clock::now() < deadline) {
    std::ifstream file(output);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::string port = between(text, "successfully on port ", ".");
    if (!port.empty()) return port;
    std::this_thread::sleep_for(kPause);
  }
  throw std::runtime_error("the browser's driver does not start");
}

std::string json_string(const std::string& text) {
  std::string json = "\"";
  for (const char byte : text) {
    if (byte == '"' || byte == '\\') json += '\\';
    json += byte;
  }
  return json + '"';
}

}  // namespace

bool Browser::is_installed() {
  return fs::exists(kDriver);
}

Browser::Browser() {
  driver_ = start_driver(folder_.path() / "out");
  client_ =
      std::make_unique<httplib::Client>("http://127.0.0.1:" + port_in(folder_.path() / "out"));
  client_->set_read_timeout(kPatience);
  const std::string id = between(ask("/session", kNewSession), R"("sessionId":")", "\"");
  if (id.empty()) throw std::runtime_error("the browser does not start");
  session_ = "/session/" + id;
}

// The driver ends its browser when it is told to, not when it is killed.
Browser::~Browser() {
  client_->Delete(session_);
  kill(driver_, SIGTERM);
  waitpid(driver_, nullptr, 0);
}

void Browser::open(const std::string& url) {
  ask(session_ + "/url", R"({"url":)" + json_string(url) + "}");
}

std::string Browser::value_of(const std::string& expression) {
  const std::string answer =
      ask(session_ + "/execute/sync",
          R"({"args":[],"script":)" + json_string("return " + expression) + "}");
  return answer.substr(0, answer.rfind('}')).substr(answer.find(':') + 1);
}

bool Browser::wait_for(const std::string& expression) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (std::chrono::steady_clock::now() < deadline) {
    if (value_of(expression) == "true") return true;
    std::this_thread::sleep_for(kPause);
  }
  return false;
}

// The key's code in the protocol is one of its own.
void Browser::press_enter() {
  ask(session_ + "/actions",
      R"({"actions":[{"type":"key","id":"keys","actions":[{"type":"keyDown","value":"\uE007"},)"
      R"({"type":"keyUp","value":"\uE007"}]}]})");
}

std::string Browser::ask(const std::string& command, const std::string& json) {
  const auto answer = client_->Post(command, json, "application/json");
  return answer ? answer->body : "";
}
