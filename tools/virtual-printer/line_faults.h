// How the line spoils what goes over it, beside the conditions that come and go: numbers and
// switches, each by one name on the command line and in `set`.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace virtual_printer {

// Nothing is the matter where the value is 0.
struct LineFaults {
  int answer_delay_ms = 0;
  int answer_split = 0;     // each byte by itself
  int answer_glue_ms = 0;   // answers within such a time go out as one
  int answer_double = 0;    // each answer two times
  int answer_garble = 0;    // the seed by which a bit of each answer is flipped
  int mute = 0;             // no answer at all
  int slow = 0;             // bytes that are taken each second
  int nibble_refusals = 0;  // negotiations that are refused before one is granted
};

struct LineSetting {
  std::string_view name;
  int LineFaults::*value;
  std::string_view unit;  // empty: a switch
  int most;
  std::string_view help;

  bool is_switch() const { return unit.empty(); }
};

// In the order in which people are shown them.
// clang-format off
inline constexpr std::array kLineSettings{
    LineSetting{"answer-delay", &LineFaults::answer_delay_ms, "MS", 3600000,
                "Answers come so much later"},
    LineSetting{"answer-split", &LineFaults::answer_split, "", 1,
                "Answers come byte by byte, 5 ms apart"},
    LineSetting{"answer-glue", &LineFaults::answer_glue_ms, "MS", 3600000,
                "Answers within such a time come as one"},
    LineSetting{"answer-double", &LineFaults::answer_double, "", 1, "Answers come twice"},
    LineSetting{"answer-garble", &LineFaults::answer_garble, "SEED", 2147483646,
                "A bit of each answer is flipped, the same ones for the same seed"},
    LineSetting{"mute", &LineFaults::mute, "", 1, "Answers do not come"},
    LineSetting{"slow", &LineFaults::slow, "BYTES", 10000000,
                "So many bytes are taken off the line in a second"},
    LineSetting{"nibble-refusals", &LineFaults::nibble_refusals, "COUNT", 1000000000,
                "So often nibble mode is refused before it is granted"},
};
// clang-format on

const LineSetting* line_setting_named(std::string_view name);

// "on" and "off" for a switch, a number or "off" for the others; nothing when it is neither.
std::optional<int> parse_value(const LineSetting& setting, std::string_view text);
std::string value_in_words(const LineSetting& setting, const LineFaults& faults);

}  // namespace virtual_printer
