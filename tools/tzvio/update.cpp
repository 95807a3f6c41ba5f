// tzvio update
#include <tzvio.h>

#include <filesystem>
#include <memory>

#include "byte_count.h"
#include "commands.h"
#include "device/firmware_frame.h"
#include "progress_bar.h"
#include "session.h"
#include "text_input.h"

namespace cli {
namespace {

struct Update {
  std::string file;
  long region = 0;
  bool yes = false;
};

// A file that is too short would be sent with zeros in the place of what it lacks.
std::optional<Result> check_file(const Update& update, const FirmwareRegion& region) {
  std::error_code error;
  const auto size = std::filesystem::file_size(update.file, error);
  if (error || access(update.file.c_str(), R_OK) != 0) {
    return Result{.outcome = Outcome::kBadFile,
                  .words = update.file + ": " + (error ? error.message() : "cannot be read")};
  }
  const auto needed = static_cast<std::size_t>(region.offset) + region.length;
  if (size >= needed) return std::nullopt;
  return Result{.outcome = Outcome::kBadFile,
                .words = update.file + " is too short: region " + std::to_string(update.region) +
                         " ends at byte " + std::to_string(needed) + " of an image, and it has " +
                         std::to_string(size)};
}

Result send(const Options& options, const Update& update, std::size_t total) {
  Session session(options);
  if (auto failed = session.open()) return *failed;
  if (auto failed = session.fault_at_open()) return *failed;
  ProgressBar bar(total, options.quiet || options.json);
  const ByteCount count([&bar](std::size_t bytes) { bar.show(bytes); });
  const long result = UpdateFW(session.port(), update.file.c_str(), update.region);
  const Json fields{{"bytes", total}, {"bytes_sent", count.bytes()}};
  if (result == 0 && count.bytes() >= total) {
    return {.words = "sent whole; the printer itself says whether it has taken it",
            .fields = fields};
  }
  return {.outcome = Outcome::kRefused,
          .words = options.port + ": only " + std::to_string(count.bytes()) + " of " +
                   std::to_string(total) +
                   " bytes were taken: leave the printer switched on, and send it again",
          .fields = fields};
}

Result run(const Options& options, const Update& update) {
  const auto region = firmware_region(update.region);
  if (auto failed = check_file(update, *region)) return *failed;
  if (!update.yes) {
    return {.outcome = Outcome::kUsage,
            .words =
                "the file is long enough; nothing was sent: an update that is cut short can "
                "leave the printer unusable. Add --yes to send it"};
  }
  return send(options, update, kFirmwareHeader + region->length + kFirmwareTrailer);
}

}  // namespace

void add_update(CLI::App& app, Invocation& invocation) {
  CLI::App* const command =
      add_command(app, "update", "Send one region of a firmware image to the printer");
  const auto update = std::make_shared<Update>();
  command->add_option("FILE", update->file, "The image")->option_text("FILE")->required();
  command->add_option("--region", update->region, "Which region of it, 0 to 2")
      ->option_text("0|1|2")
      ->check(CLI::Range(0, 2))
      ->required();
  command->add_flag("--yes", update->yes, "Really send it");
  command->footer(
      "On a terminal a bar shows how far it is.\n  tzvio update image.bin --region 1 --yes");
  set_work(command, invocation, [update](const Options& options) { return run(options, *update); });
}

}  // namespace cli
