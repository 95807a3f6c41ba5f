// tzvio image
#include <tzvio.h>

#include <memory>

#include "commands.h"
#include "job.h"
#include "picture_check.h"
#include "symbologies.h"

namespace cli {
namespace {

struct Image {
  std::string file;
  long alignment = TZV_ALIGN_CENTER;
  bool confirm = true;
};

// Looked at first: what the library refuses it says on standard output, which is for results.
Result run(const Options& options, const Image& image) {
  Result checked = check_picture(image.file, options, PictureUse::kPrint);
  if (checked.outcome != Outcome::kDone) return checked;
  return print_job(options, image.confirm, [&](Session& session) {
    return collected(
        session, [&] { return PrintBitmap(session.port(), image.file.c_str(), image.alignment); });
  });
}

}  // namespace

void add_image(CLI::App& app, Invocation& invocation) {
  CLI::App* const command = add_command(app, "image", "Print a BMP file dot for dot");
  const auto image = std::make_shared<Image>();
  command->add_option("FILE", image->file, "The picture; check-bmp says what suits")
      ->option_text("FILE")
      ->required();
  add_choice(*command, "--align", image->alignment, kAlignments, "centre unless given");
  add_confirm_option(command, image->confirm);
  command->footer("  tzvio image logo.bmp --align left");
  set_work(command, invocation, [image](const Options& options) { return run(options, *image); });
}

}  // namespace cli
