// tzvio ports
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <vector>

#include "commands.h"
#include "device_look.h"
#include "hardware.h"
#include "link.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> device_nodes() {
  std::vector<std::string> nodes;
  for (const char* folder : {"/dev", "/dev/usb"}) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
      const bool is_device = entry.is_character_file(error);
      if (is_device && link_of(entry.path().string())) nodes.push_back(entry.path().string());
    }
  }
  std::sort(nodes.begin(), nodes.end());
  return nodes;
}

Result run(bool all) {
  Result result;
  Json found = Json::array();
  for (const std::string& node : device_nodes()) {
    const Link link = *link_of(node);
    const Hardware hardware = hardware_behind(link, node);
    if (hardware == Hardware::kNone && !all) continue;
    const bool usable = access(node.c_str(), R_OK | W_OK) == 0;
    const OwningGroup group = group_of_device(node);
    result.text += node + " " + name_of(link);
    if (!usable) result.text += ", may not be used by this user (group " + group.name + ")";
    if (hardware == Hardware::kNone) result.text += ", nothing behind it";
    result.text += "\n";
    found.push_back({{"port", node},
                     {"link", name_of(link)},
                     {"usable", usable},
                     {"group", group.name},
                     {"hardware", hardware != Hardware::kNone}});
  }
  result.fields = {{"ports", found}};
  if (found.empty())
    result.words = "no device that a printer could be at; network ports are not looked for";
  return result;
}

}  // namespace

void add_ports(CLI::App& app, Invocation& invocation) {
  CLI::App* const command =
      add_command(app, "ports", "List the devices that a printer could be at");
  const auto all = std::make_shared<bool>(false);
  command->add_flag("--all", *all, "Serial ports with nothing behind them too");
  command->footer("  tzvio ports");
  set_work(command, invocation, [all](const Options&) { return run(*all); });
}

}  // namespace cli
