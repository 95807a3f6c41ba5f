// What is printed by one command: collected whole, sent, and confirmed.
#pragma once

#include <functional>
#include <optional>

#include "outcome.h"
#include "session.h"

namespace cli {

// Calls operations of the library that print; what went wrong, or nothing.
using Fill = std::function<std::optional<Result>(Session&)>;

// Has one operation add to what is collected; what went wrong, or nothing. Most operations count
// what does not fit as a success, so the result alone does not tell.
std::optional<Result> collected(const Session& session, const std::function<long()>& operation);

// More than one transaction holds.
Result too_large();

// As one confirmed transaction, or sent without a question.
Result print_job(const Options& options, bool confirm, const Fill& fill);

// "--confirm", which is the default, and "--no-confirm".
void add_confirm_option(CLI::App* command, bool& confirm);

}  // namespace cli
