// What a command can come to: exit codes, their names, and what is told about one of them.
#pragma once

#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace cli {

// The numbers are the exit codes.
enum class Outcome {
  kDone = 0,
  kUsage = 1,
  kNoDevice = 2,
  kNoPermission = 3,
  kNotAccepted = 4,
  kNoAnswer = 5,
  kCoverOpen = 6,
  kPaperOut = 7,
  kOffline = 8,
  kUnconfirmed = 9,
  kCutterJam = 10,
  kTimedOut = 11,
  kRefused = 12,
  kBadFile = 13,
  kNotPrintable = 14,
  kProblem = 15,
  kInUse = 16,
  kInterrupted = 130,
  kTerminated = 143,
};

struct OutcomeRow {
  Outcome outcome;
  std::string_view name;  // in JSON
  std::string_view meaning;
};

inline constexpr std::array<OutcomeRow, 19> kOutcomes{{
    {Outcome::kDone, "done", "done; what was to be printed is on paper; all is well"},
    {Outcome::kUsage, "usage", "wrong options or arguments"},
    {Outcome::kNoDevice, "no-device", "no such device, nothing behind it, or not reachable"},
    {Outcome::kNoPermission, "no-permission", "the device may not be used by this user"},
    {Outcome::kNotAccepted, "not-accepted", "no link takes the port's name or the settings"},
    {Outcome::kNoAnswer, "no-answer", "the printer does not answer"},
    {Outcome::kCoverOpen, "cover-open", "the printer's cover is open"},
    {Outcome::kPaperOut, "paper-out", "the paper is out"},
    {Outcome::kOffline, "offline", "the printer is offline, or without power"},
    {Outcome::kUnconfirmed, "unconfirmed",
     "sent but not confirmed: nobody knows whether it printed"},
    {Outcome::kCutterJam, "cutter-jam", "the cutter is jammed"},
    {Outcome::kTimedOut, "timed-out", "nothing moved for the time of --timeout"},
    {Outcome::kRefused, "refused", "the printer or the line did not take all of it"},
    {Outcome::kBadFile, "bad-file", "a file cannot be read, or is not what it should be"},
    {Outcome::kNotPrintable, "not-printable", "nothing, or nothing useful, would be printed"},
    {Outcome::kProblem, "problem", "doctor found something the matter"},
    {Outcome::kInUse, "in-use", "another program has the port open"},
    {Outcome::kInterrupted, "interrupted", "ended by Ctrl-C"},
    {Outcome::kTerminated, "terminated", "ended by SIGTERM"},
}};

std::string_view name_of(Outcome outcome);

// Fields in the order in which they are added.
using Json = nlohmann::ordered_json;

struct Result {
  Outcome outcome = Outcome::kDone;
  std::string words = {};        // one line, for people: standard error
  std::string text = {};         // what was asked for: standard output
  Json fields = Json::object();  // the same for programs
};

}  // namespace cli
