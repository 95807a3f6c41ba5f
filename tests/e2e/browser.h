// A headless browser that shows one page, driven as a person would use it.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <memory>
#include <string>

#include "support/temporary_folder.h"

namespace httplib {
class Client;
}

class Browser {
 public:
  // Whether this machine has one.
  static bool is_installed();

  Browser();
  Browser(const Browser&) = delete;
  Browser& operator=(const Browser&) = delete;
  ~Browser();

  void open(const std::string& url);

  // The result of an expression, as JSON.
  std::string value_of(const std::string& expression);

  // Waits until an expression is true; whether it came to that.
  bool wait_for(const std::string& expression);

  // On whatever has the focus.
  void press_enter();

 private:
  std::string ask(const std::string& command, const std::string& json);

  testkit::TemporaryFolder folder_;
  pid_t driver_ = 0;
  std::unique_ptr<httplib::Client> client_;
  std::string session_;  // its path
};
