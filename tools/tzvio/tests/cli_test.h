// The tool as people start it: its exit code, its words, its JSON, and what came out of the
// printer.
#pragma once

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "support/printed_paper.h"

namespace cli_test {

using Json = nlohmann::json;

// The last JSON object that was told; empty when there is none.
inline Json json_of(const Outcome& outcome) {
  std::istringstream lines(outcome.lines_from("{"));
  std::string last = "{}";
  for (std::string line; std::getline(lines, line);) last = line;
  return Json::parse(last);
}

class CliTest : public PrinterTest {
 protected:
  CliTest() : PrinterTest(Line::kTcp) {}

  // The tool as the printer's command: the environment says which port.
  static Words tool(const Words& words) { return script(R"(exec "$0" "$@")", words); }

  // A shell's command in which the tool is "$0".
  static Words script(const std::string& text, const Words& words = {}) {
    Words command{"/bin/sh", "-c",
                  "export TZVIO_PORT=\"$VIRTUAL_PRINTER_PORT\"\n"
                  "export TZVIO_SETTINGS=\"$VIRTUAL_PRINTER_SETTINGS\"\n" +
                      text,
                  TZVIO_PROGRAM};
    command.insert(command.end(), words.begin(), words.end());
    return command;
  }

  Outcome run_tool(const Words& words, const Words& options = {"--strict"}) {
    return run_under_printer(options, tool(words));
  }

  // Where no printer is needed.
  Outcome run_alone(Words words) {
    words.insert(words.begin(), TZVIO_PROGRAM);
    return run(words);
  }
};

// What runs without a printer at all.
class LoneCliTest : public CliTest {
 protected:
  void SetUp() override {}
};

}  // namespace cli_test
