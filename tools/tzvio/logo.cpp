// tzvio logo store, print and delete
#include <tzvio.h>

#include <memory>
#include <vector>

#include "byte_count.h"
#include "commands.h"
#include "image/bmp_raster.h"
#include "image/image_list.h"
#include "job.h"
#include "picture_check.h"
#include "symbologies.h"

namespace cli {
namespace {

// Commands that go out at once, and are then asked for. `expected` is their number of bytes.
Result send_at_once(const Options& options, std::size_t expected,
                    const std::function<long(const char*)>& operation) {
  Session session(options);
  if (auto failed = session.open()) return *failed;
  if (auto failed = session.make_ready()) return *failed;
  const ByteCount count;
  const long result = operation(session.port());
  const std::size_t sent = count.bytes();
  const Json fields{{"bytes", expected}, {"bytes_sent", sent}};
  if (result != 0 || sent < expected) {
    return {.outcome = Outcome::kRefused,
            .words = options.port + ": only " + std::to_string(sent) + " of " +
                     std::to_string(expected) + " bytes were taken; switch the printer off and on",
            .fields = fields};
  }
  if (session.settle() == Session::kConfirmed) return {.words = "done", .fields = fields};
  return {.outcome = Outcome::kUnconfirmed,
          .words = options.port + ": sent, but the printer does not confirm it",
          .fields = fields};
}

// A list as the library takes it, and how many bytes it sends for that.
struct List {
  std::string names;
  std::size_t bytes = 5;  // ESC @, FS q n
};

Result list_refused() {
  return {.outcome = Outcome::kUsage,
          .words = "at most " + std::to_string(kMostImages) + " files, with names of at most " +
                   std::to_string(kImageNameSize - 1) + " characters and no | in them"};
}

// All are looked at first: a file that fails on the way would leave the printer waiting for it.
Result store(const Options& options, const std::vector<std::string>& files) {
  constexpr std::size_t kSizeBytes = 4;
  List list;
  for (const std::string& file : files) {
    Result checked = check_picture(file, options, PictureUse::kStore);
    if (checked.outcome != Outcome::kDone) return checked;
    if (file.find('|') != std::string::npos) return list_refused();
    list.names += file + "|";
    const LoadedBmp loaded = load_bmp(file.c_str());
    if (loaded.raster) list.bytes += kSizeBytes + loaded.raster->count();
  }
  if (!parse_image_list(list.names.c_str())) return list_refused();
  return send_at_once(options, list.bytes,
                      [&](const char* port) { return SaveNVBitmap(port, list.names.c_str(), 0); });
}

void add_store(CLI::App* logo, Invocation& invocation) {
  CLI::App* const command =
      add_command(*logo, "store", "Store BMP files in place of all that were stored");
  const auto files = std::make_shared<std::vector<std::string>>();
  command->add_option("FILE", *files, "The pictures, numbered from 1")
      ->option_text("FILE...")
      ->required();
  set_work(command, invocation, [files](const Options& options) { return store(options, *files); });
}

struct PrintLogo {
  long number = 1;
  long alignment = TZV_ALIGN_CENTER;
  bool confirm = true;
};

void add_print_logo(CLI::App* logo, Invocation& invocation) {
  CLI::App* const command = add_command(*logo, "print", "Print a stored picture");
  const auto chosen = std::make_shared<PrintLogo>();
  command->add_option("NUMBER", chosen->number, "Which one, from 1; 1 unless given")
      ->option_text("NUMBER")
      ->check(CLI::Range(1, kMostImages));
  add_choice(*command, "--align", chosen->alignment, kAlignments, "centre unless given");
  add_confirm_option(command, chosen->confirm);
  set_work(command, invocation, [chosen](const Options& options) {
    return print_job(options, chosen->confirm, [&](Session& session) {
      return collected(session, [&] {
        return PrintNVBitmap(session.port(), chosen->number, chosen->alignment);
      });
    });
  });
}

void add_delete(CLI::App* logo, Invocation& invocation) {
  CLI::App* const command = add_command(*logo, "delete", "Erase all stored pictures");
  set_work(command, invocation, [](const Options& options) {
    constexpr std::size_t kEraseSize = 2;  // FS e
    return send_at_once(options, kEraseSize, [](const char* port) { return DeleteNVBitmap(port); });
  });
}

}  // namespace

void add_logo(CLI::App& app, Invocation& invocation) {
  CLI::App* const logo = add_command(app, "logo", "Pictures in the printer's own memory");
  add_store(logo, invocation);
  add_print_logo(logo, invocation);
  add_delete(logo, invocation);
  logo->require_subcommand(1);
  logo->footer("  tzvio logo store logo.bmp voucher.bmp\n  tzvio logo print 2 --align left");
}

}  // namespace cli
