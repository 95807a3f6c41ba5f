// tzvio check-bmp
#include <memory>

#include "commands.h"
#include "picture_check.h"

namespace cli {

void add_check_bmp(CLI::App& app, Invocation& invocation) {
  CLI::App* const command = add_command(
      app, "check-bmp", "Say whether a BMP file would be printed, and why not; takes no printer");
  const auto file = std::make_shared<std::string>();
  command->add_option("FILE", *file, "The picture")->option_text("FILE")->required();
  command->footer("  tzvio check-bmp logo.bmp");
  set_work(command, invocation, [file](const Options& options) {
    return check_picture(*file, options, PictureUse::kPrint);
  });
}

}  // namespace cli
