// The same calls on all four links: what arrives at the printer, the results, the answers and the
// exported state must be equal. Meant to differ, and left out here:
//
// - when a monitor looks at its line, so how often it enables the reports and repeats a request;
// - how many requests an end sends that nothing was begun for: on a network the monitor may see the
//   first one's answer before the caller waits for it;
// - ReleaseDevice's last word on a network;
// - ReadPort that finds nothing: 0, -1 or -2;
// - a cut or a drawer pulse that a full transaction does not take: -2, or 0 where the link's record
//   says so;
// - UpdateFW on a USB port that is not open: 0;
// - the confirmation of a job that the printer mixes with other bytes: pieces of a write arrive
//   apart on USB.
#include <vector>

#include "input.h"
#include "memory_file.h"
#include "till.h"

namespace fuzz {
namespace {

struct Arguments {
  std::string text;
  std::string reply;
  std::array<long, 4> n{};
};

/// A call, or something that happens. It reads as many numbers as it says, and its texts.
struct Action {
  const char* name;
  std::size_t numbers;
  bool has_text, has_reply;
  long (*run)(Till&, const Arguments&);
};

/// A picture, and a name that no file has.
const char* picture(long number) {
  static const MemoryFile& file = []() -> const MemoryFile& {
    static MemoryFile picture;
    constexpr std::string_view kNineByTwo{
        "BM\x46\0\0\0\0\0\0\0\x3e\0\0\0\x28\0\0\0\x09\0\0\0\x02\0\0\0\x01\0\x01\0"
        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
        "\0\0\0\0\xff\xff\xff\0\xaa\x80\0\0\x55\0\0\0",
        70};
    picture.fill(kNineByTwo);
    return picture;
  }();
  return number % 4 == 3 ? "/nowhere.bmp" : file.path();
}

long print_bitmap(Till& till, const Arguments& a) {
  return PrintBitmap(till.port, picture(a.n[0]), a.n[1]);
}

long save_bitmaps(Till& till, const Arguments& a) {
  std::string list;
  for (long i = 0; i < a.n[0] % 34; ++i) list += std::string(picture(a.n[1])) + "|";
  return SaveNVBitmap(till.port, list.c_str(), 0);
}

long set(Till& till, const Arguments& a) {
  const testkit::ExportedState& state = till.state;
  long* const settings[] = {
      state.RecLineChars, state.RecLineSpacing, state.RecLinesToPaperCut,  state.MapMode,
      state.RotateCtrl,   state.RecLineWidth,   state.RecSidewaysCharsCur, state.SaveFlag,
      state.DeviceType};
  *settings[static_cast<std::size_t>(a.n[0]) % std::size(settings)] = a.n[1];
  return 0;
}

/// The printer speaks by itself.
long report(Till& till, const Arguments& a) {
  till.printer.input += a.text;
  return 0;
}

/// How soon the printer confirms jobs from now on, if it does.
long confirm(Till& till, const Arguments& a) {
  constexpr long kSoon = 300;  // milliseconds
  till.printer.mute();
  if (a.n[0] % 3 != 2) till.printer.confirm_jobs(a.n[0] % 3 * kSoon);
  return 0;
}

/// Its last word on a network is no call's business.
long release(Till& till, const Arguments&) {
  const long result = ReleaseDevice(till.port);
  till.forget_sent();
  return result;
}

/// Another day: the port is closed, and opened again with the printer in some condition.
long reopen(Till& till, const Arguments& a) {
  constexpr int64_t kMonitorEnds = 2000;  // milliseconds
  release(till, a);
  till.open.kernel.run_for(kMonitorEnds);
  ClosePort(till.port);
  till.printer.input.clear();
  till.printer.mute();
  till.printer.answer({"\x10\x04\x02", 3}, std::string(1, static_cast<char>(a.n[0])));
  till.printer.answer({"\x10\x04\x04", 3}, std::string(1, static_cast<char>(a.n[1])));
  const long result = OpenPort(till.port, till.open.link.settings.c_str());
  till.printer.mute();
  till.printer.confirm_jobs();
  return result;
}

bool is_open(const Till& till) {
  return GetError(till.port) != -1;
}

/// Whether a cut or a pulse may find no room in what is collected.
bool is_full(const Till& till) {
  constexpr long kLongestCommand = 7;
  return *till.state.PageSize > TZV_PAGE_BUFFER_SIZE - kLongestCommand;
}

long cut(Till& till, const Arguments& a) {
  const bool full = is_full(till);
  const long result = CutPaper(till.port, a.n[0]);
  return full ? 0 : result;
}

long pulse(Till& till, const Arguments&) {
  const bool full = is_full(till);
  const long result = OpenCashDrawer(till.port);
  return full ? 0 : result;
}

long read(Till& till, const Arguments& a) {
  till.printer.input += a.reply;
  const long count = ReadPort(till.port, till.buffer.data(), a.n[0] % 257);
  return is_open(till) ? std::max(count, 0L) : count;
}

/// The printer answers a frame; beside a confirmation the order of its bytes would be open.
long transaction(Till& till, const Arguments& a) {
  if (*till.state.bProtocol == 0) till.arm({});
  const bool request_goes_ahead = *till.state.TransactionPrint == 0;
  const long result = TransactionPrint(till.port, a.n[0] - 1);
  if (request_goes_ahead) till.forget_sent_requests();
  return result;
}

long update(Till& till, const Arguments& a) {
  return is_open(till) ? UpdateFW(till.port, "/nowhere.bin", a.n[0] - 1) : 0;
}

long print_sized(Till& till, const Arguments& a) {
  return PrintNormalSize(till.port, a.text.data(), static_cast<long>(a.text.size()));
}

long barcode(Till& till, const Arguments& a) {
  return PrintBarCode(till.port, a.text.c_str(), 100 + a.n[0] % 14, a.n[1], a.n[2], a.n[3],
                      a.n[1] % 4);
}

long symbol(Till& till, const Arguments& a) {
  return Print2DBarCode(till.port, a.text.data(), static_cast<long>(a.text.size()),
                        199 + a.n[0] % 4, a.n[1], a.n[2], a.n[3]);
}

long symbol_xy(Till& till, const Arguments& a) {
  return Print2DBarCodeXY(till.port, a.text.data(), static_cast<long>(a.text.size()),
                          199 + a.n[0] % 4, a.n[1], a.n[2], a.n[3], a.n[1]);
}

#define TILL_CALL(...) [](Till& till, [[maybe_unused]] const Arguments& a) { return __VA_ARGS__; }
// New ones go to the end: kept inputs name them by their place.
constexpr Action kActions[] = {
    {"PrintNormal", 0, true, false, TILL_CALL(PrintNormal(till.port, a.text.c_str()))},
    {"PrintNormalSize", 0, true, false, print_sized},
    {"PrintBitmap", 2, false, false, print_bitmap},
    {"PrintBarCode", 4, true, false, barcode},
    {"Print2DBarCode", 4, true, false, symbol},
    {"Print2DBarCodeXY", 4, true, false, symbol_xy},
    {"SaveNVBitmap", 2, false, false, save_bitmaps},
    {"PrintNVBitmap", 2, false, false, TILL_CALL(PrintNVBitmap(till.port, a.n[0], a.n[1]))},
    {"PrintNVBitmapXY", 3, false, false,
     TILL_CALL(PrintNVBitmapXY(till.port, a.n[0], a.n[1], a.n[2]))},
    {"DeleteNVBitmap", 0, false, false, TILL_CALL(DeleteNVBitmap(till.port))},
    {"PrintTextXY", 2, true, false,
     TILL_CALL(PrintTextXY(till.port, a.text.c_str(), a.n[0], a.n[1]))},
    {"StartPageMode", 0, false, false, TILL_CALL(StartPageMode(till.port))},
    {"EndPageMode", 0, false, false, TILL_CALL(EndPageMode(till.port))},
    {"CutPaper", 1, false, false, cut},
    {"WritePortPosition", 1, false, false, TILL_CALL(WritePortPosition(till.port, a.n[0]))},
    {"OpenCashDrawer", 0, false, false, pulse},
    {"GetDrawerStatus", 0, false, false, TILL_CALL(GetDrawerStatus(till.port))},
    {"WarningBeep", 0, false, false, TILL_CALL(WarningBeep(till.port))},
    {"SelfTest", 1, false, false, TILL_CALL(SelfTest(till.port, a.n[0]))},
    {"CheckBlackMark", 0, false, true, TILL_CALL(CheckBlackMark(till.port))},
    {"SetData", 0, true, false,
     TILL_CALL(SetData(till.port, a.text.data(), static_cast<long>(a.text.size())))},
    {"GetData", 0, true, true,
     TILL_CALL(
         GetData(till.port, a.text.data(), static_cast<long>(a.text.size()), till.buffer.data()))},
    {"SetSerialNumber", 0, true, true,
     TILL_CALL(SetSerialNumber(till.port, a.text.data(), static_cast<long>(a.text.size())))},
    {"GetSerialNumber", 0, false, true, TILL_CALL(GetSerialNumber(till.port, till.buffer.data()))},
    {"GetFWVersion", 0, false, true, TILL_CALL(GetFWVersion(till.port, till.buffer.data()))},
    {"GetPrinterStatus", 0, false, true, TILL_CALL(GetPrinterStatus(till.port))},
    {"UpdateFW", 1, false, false, update},
    {"WritePort", 0, true, false,
     TILL_CALL(WritePort(till.port, a.text.data(), static_cast<long>(a.text.size())))},
    {"ReadPort", 1, false, true, read},
    {"GetError", 0, false, false, TILL_CALL(GetError(till.port))},
    {"ClaimDevice", 0, false, false, TILL_CALL(ClaimDevice(till.port, 0))},
    {"ReleaseDevice", 0, false, false, release},
    {"TransactionPrint", 1, false, true, transaction},
    {"SetRePrintMode", 1, false, false, TILL_CALL(SetRePrintMode(till.port, a.n[0]))},
    {"SetProtocol", 1, false, false, TILL_CALL(SetProtocol(till.port, a.n[0]))},
    {"ClosePort", 0, false, false, TILL_CALL(ClosePort(till.port))},
    {"reopen", 2, false, false, reopen},
    {"set", 2, false, false, set},
    {"report", 0, true, false, report},
    {"confirm", 1, false, false, confirm},
};
#undef TILL_CALL

struct Step {
  const Action& action;
  Arguments arguments;
};

std::vector<Step> steps_from(Input& input) {
  constexpr std::size_t kMost = 24;
  std::vector<Step> steps;
  while (!input.empty() && steps.size() < kMost) {
    const Action& action = kActions[input.choice(std::size(kActions))];
    Arguments arguments;
    for (std::size_t i = 0; i < action.numbers; ++i) arguments.n[i] = input.number();
    if (action.has_text) arguments.text = input.piece();
    if (action.has_reply) arguments.reply = input.piece();
    steps.push_back({action, std::move(arguments)});
  }
  return steps;
}

std::vector<Seen> play(const std::vector<Step>& steps, const testkit::Link& link) {
  std::vector<Seen> seen;
  Till till(link);
  till.printer.confirm_jobs();
  for (const auto& [action, arguments] : steps) {
    till.arm(arguments.reply);
    seen.push_back(till.look(action.run(till, arguments)));
  }
  return seen;
}

void show(const char* link, const Seen& seen) {
  std::fprintf(
      stderr, "%s: result %ld\n  sent %s\n  by its monitor %s\n  collected %s\n  answer %s\n  %s\n",
      link, seen.result, testkit::hex(seen.sent).c_str(),
      testkit::hex(seen.sent_by_monitor).c_str(), testkit::hex(seen.collected).c_str(),
      testkit::hex(seen.answer.substr(0, seen.answer.find_last_not_of('\0') + 1)).c_str(),
      seen.state.c_str());
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace fuzz;
  Input input(data, size);
  const std::vector<Step> steps = steps_from(input);
  const testkit::Link& first = testkit::kLinks.front();
  const std::vector<Seen> expected = play(steps, first);
  for (std::size_t other = 1; other < testkit::kLinks.size(); ++other) {
    const testkit::Link& link = testkit::kLinks[other];
    const std::vector<Seen> seen = play(steps, link);
    for (std::size_t i = 0; i < steps.size(); ++i) {
      if (seen[i] == expected[i]) continue;
      std::fprintf(stderr, "step %zu, %s\n", i, steps[i].action.name);
      show(first.name.c_str(), expected[i]);
      show(link.name.c_str(), seen[i]);
      check(false, "every link does the same");
    }
  }
  return 0;
}
