// The commands. Each adds itself to the command line, with options of its own.
#pragma once

#include "options.h"

namespace cli {

void add_print(CLI::App& app, Invocation& invocation);
void add_barcode(CLI::App& app, Invocation& invocation);
void add_image(CLI::App& app, Invocation& invocation);
void add_logo(CLI::App& app, Invocation& invocation);
void add_cut(CLI::App& app, Invocation& invocation);
void add_drawer(CLI::App& app, Invocation& invocation);
void add_status(CLI::App& app, Invocation& invocation);
void add_watch(CLI::App& app, Invocation& invocation);
void add_identify(CLI::App& app, Invocation& invocation);
void add_update(CLI::App& app, Invocation& invocation);
void add_doctor(CLI::App& app, Invocation& invocation);
void add_ports(CLI::App& app, Invocation& invocation);
void add_check_bmp(CLI::App& app, Invocation& invocation);
void add_check_barcode(CLI::App& app, Invocation& invocation);
// For shell completion and the tests of the manual: what can be written where.
void add_words(CLI::App& app, Invocation& invocation);

}  // namespace cli
