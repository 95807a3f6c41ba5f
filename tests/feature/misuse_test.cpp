// Operations called as they should not be: with arguments that make no sense, and from states in
// which they do. Each gives one of its results, touches nothing outside of its buffers, and the
// next proper call works.
#include <gmock/gmock.h>

#include <climits>
#include <functional>
#include <set>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using testing::AnyOf;

char room[256];

/// A call with one number, or one pointer, that may be anything.
struct Careless {
  std::string name;
  std::function<long(const char* port, long number)> call;
  std::set<long> results;
};

const std::set<long> kMinusOneToNought = {-1, 0};

/// `what` with any number in each of its places; the other places are in order. Sizes beyond the
/// buffer are the caller's own affair, so a size is never too large here, only negative.
const std::vector<Careless> kNumbers = {
    {"ClaimDevice", [](auto port, long n) { return ClaimDevice(port, n); }, {0}},
    {"CutPaper", [](auto port, long n) { return CutPaper(port, n); }, {0}},
    {"WritePortPosition", [](auto port, long n) { return WritePortPosition(port, n); }, {0}},
    {"SelfTest", [](auto port, long n) { return SelfTest(port, n); }, kMinusOneToNought},
    {"TransactionPrint", [](auto port, long n) { return TransactionPrint(port, n); }, {0, 4}},
    {"SetRePrintMode", [](auto port, long n) { return SetRePrintMode(port, n); }, {0}},
    {"SetProtocol", [](auto port, long n) { return SetProtocol(port, n); }, {0}},
    {"PrintBitmap", [](auto port, long n) { return PrintBitmap(port, "/none.bmp", n); }, {-1}},
    {"SaveNVBitmap", [](auto port, long n) { return SaveNVBitmap(port, "", n); }, {0}},
    {"PrintNVBitmap_number", [](auto port, long n) { return PrintNVBitmap(port, n, 0); }, {0}},
    {"PrintNVBitmap_place", [](auto port, long n) { return PrintNVBitmap(port, 1, n); }, {0}},
    {"PrintNVBitmapXY_number",
     [](auto port, long n) { return PrintNVBitmapXY(port, n, 0, 0); },
     {0}},
    {"PrintNVBitmapXY_x", [](auto port, long n) { return PrintNVBitmapXY(port, 1, n, 0); }, {0}},
    {"PrintNVBitmapXY_y", [](auto port, long n) { return PrintNVBitmapXY(port, 1, 0, n); }, {0}},
    {"PrintTextXY_x", [](auto port, long n) { return PrintTextXY(port, "x", n, 0); }, {0}},
    {"PrintTextXY_y", [](auto port, long n) { return PrintTextXY(port, "x", 0, n); }, {0}},
    {"PrintBarCode_symbology",
     [](auto port, long n) { return PrintBarCode(port, "12", n, 50, 300, 0, 0); },
     {0}},
    {"PrintBarCode_height",
     [](auto port, long n) { return PrintBarCode(port, "12", 107, n, 300, 0, 0); },
     {0}},
    {"PrintBarCode_width",
     [](auto port, long n) { return PrintBarCode(port, "12", 107, 50, n, 0, 0); },
     {0}},
    {"PrintBarCode_place",
     [](auto port, long n) { return PrintBarCode(port, "12", 107, 50, 300, n, 0); },
     {0}},
    {"PrintBarCode_text",
     [](auto port, long n) { return PrintBarCode(port, "12", 107, 50, 300, 0, n); },
     {0}},
    {"Print2DBarCode_symbology",
     [](auto port, long n) { return Print2DBarCode(port, "x", 1, n, 4, 1, 0); },
     {0}},
    {"Print2DBarCode_1",
     [](auto port, long n) { return Print2DBarCode(port, "x", 1, 201, n, 1, 0); },
     {0}},
    {"Print2DBarCode_2",
     [](auto port, long n) { return Print2DBarCode(port, "x", 1, 200, 4, n, 0); },
     {0}},
    {"Print2DBarCode_place",
     [](auto port, long n) { return Print2DBarCode(port, "x", 1, 201, 4, 1, n); },
     {0}},
    {"Print2DBarCodeXY_x",
     [](auto port, long n) { return Print2DBarCodeXY(port, "x", 1, 201, 4, 1, n, 0); },
     {0}},
    {"Print2DBarCodeXY_y",
     [](auto port, long n) { return Print2DBarCodeXY(port, "x", 1, 200, 4, 1, 0, n); },
     {0}},
    {"UpdateFW_type", [](auto port, long n) { return UpdateFW(port, "/none.bin", n); },
     kMinusOneToNought},
};

const std::vector<long> kAnyNumber = {LONG_MIN, INT_MIN, -65536, -257,  -256,    -255,
                                      -1,       0,       1,      2,     3,       255,
                                      256,      257,     65535,  65536, INT_MAX, LONG_MAX};

/// Sizes that are refused, with buffers that hold nothing of that size.
const std::vector<Careless> kSizes = {
    {"WritePort", [](auto port, long n) { return WritePort(port, "x", n); }, {-1}},
    {"ReadPort", [](auto port, long n) { return ReadPort(port, room, n); }, {-1}},
    {"PrintNormalSize", [](auto port, long n) { return PrintNormalSize(port, "x", n); }, {-2}},
    {"Print2DBarCode",
     [](auto port, long n) { return Print2DBarCode(port, "x", n, 201, 4, 1, 0); },
     {0}},
    {"Print2DBarCodeXY",
     [](auto port, long n) { return Print2DBarCodeXY(port, "x", n, 201, 4, 1, 0, 0); },
     {0}},
    {"SetData", [](auto port, long n) { return SetData(port, "x", n); }, {-1}},
    {"GetData", [](auto port, long n) { return GetData(port, "x", n, room); }, {-1}},
    {"SetSerialNumber", [](auto port, long n) { return SetSerialNumber(port, "x", n); }, {-1}},
};

/// Null where there should be text, data or room; the number says how much there would be of it.
const std::vector<Careless> kNulls = {
    {"WritePort", [](auto port, long n) { return WritePort(port, nullptr, n); }, {-1}},
    {"ReadPort", [](auto port, long n) { return ReadPort(port, nullptr, n); }, {-1, 0}},
    {"PrintNormal", [](auto port, long) { return PrintNormal(port, nullptr); }, {-1}},
    {"PrintNormalSize", [](auto port, long n) { return PrintNormalSize(port, nullptr, n); }, {-1}},
    {"PrintTextXY", [](auto port, long) { return PrintTextXY(port, nullptr, 0, 0); }, {-1}},
    {"PrintBitmap", [](auto port, long) { return PrintBitmap(port, nullptr, 0); }, {-1}},
    {"SaveNVBitmap", [](auto port, long) { return SaveNVBitmap(port, nullptr, 0); }, {-1}},
    {"PrintBarCode",
     [](auto port, long) { return PrintBarCode(port, nullptr, 107, 50, 300, 0, 0); },
     {0}},
    {"Print2DBarCode",
     [](auto port, long n) { return Print2DBarCode(port, nullptr, n, 201, 4, 1, 0); },
     {0}},
    {"Print2DBarCodeXY",
     [](auto port, long n) { return Print2DBarCodeXY(port, nullptr, n, 200, 4, 1, 0, 0); },
     {0}},
    {"SetData", [](auto port, long n) { return SetData(port, nullptr, n); }, {-1}},
    {"GetData_command", [](auto port, long n) { return GetData(port, nullptr, n, room); }, {-1}},
    {"GetData_room", [](auto port, long n) { return GetData(port, "x", n > 0, nullptr); }, {-1}},
    {"SetSerialNumber", [](auto port, long n) { return SetSerialNumber(port, nullptr, n); }, {-1}},
    {"GetSerialNumber", [](auto port, long) { return GetSerialNumber(port, nullptr); }, {-1}},
    {"GetFWVersion", [](auto port, long) { return GetFWVersion(port, nullptr); }, {-1}},
    {"UpdateFW", [](auto port, long) { return UpdateFW(port, nullptr, 0); }, {-1}},
};

class Misuse : public EveryLink {
 protected:
  Misuse() { printer.answer_everything(); }
  ~Misuse() override {
    ReleaseDevice(port);
    kernel.run_for(3000);
  }

  void expect_results(const std::vector<Careless>& calls, const std::vector<long>& numbers) {
    for (const Careless& careless : calls) {
      for (const long number : numbers) {
        const std::string what = careless.name + " " + std::to_string(number);
        EXPECT_THAT(careless.results, testing::Contains(careless.call(port, number))) << what;
        expect_next_call_works(what);
      }
    }
  }

  void expect_next_call_works(const std::string& what) {
    // A monitor that is released before its first cycle leaves the printer counting as offline.
    kernel.run_for(1000);
    ReleaseDevice(port);
    kernel.run_for(1000);
    TransactionPrint(port, 1);
    TransactionPrint(port, 0);
    SetRePrintMode(port, 0);
    SetProtocol(port, 0);
    printer.output.clear();
    EXPECT_EQ(WritePort(port, "next", 4), 4) << what;
    EXPECT_EQ(sent(), "next") << what;
    EXPECT_EQ(kernel.open_descriptors(), 1U) << what;
  }
};
TZV_ON_EVERY_LINK(Misuse);

TEST_P(Misuse, any_number_in_any_place) {
  expect_results(kNumbers, kAnyNumber);
}

TEST_P(Misuse, sizes_below_0_send_nothing) {
  expect_results(kSizes, {-1, -4096, INT_MIN, LONG_MIN});
}

TEST_P(Misuse, sizes_beyond_what_fits_a_command_send_nothing) {
  const std::string long_data(8093, 'x');
  EXPECT_EQ(SetData(port, long_data.data(), 129), -1);
  EXPECT_EQ(GetData(port, long_data.data(), 129, room), -1);
  EXPECT_EQ(SetSerialNumber(port, long_data.data(), 124), -1);
  EXPECT_EQ(Print2DBarCode(port, long_data.data(), 8093, 201, 4, 1, 0), 0);
  for (const Careless& careless : kSizes) {
    if (careless.name == "SetData" || careless.name == "GetData") {
      EXPECT_EQ(careless.call(port, LONG_MAX), -1);
    }
  }
  EXPECT_EQ(sent(), "");
}

TEST_P(Misuse, null_in_any_place) {
  for (const Careless& careless : kNulls) {
    printer.output.clear();
    for (const long number : {0L, 1L, 128L}) careless.call(port, number);
    EXPECT_EQ(sent(), "") << careless.name;
  }
  expect_results(kNulls, {0, 1, 128});
}

TEST_P(Misuse, an_end_without_a_begin_asks_and_gives_4) {
  EXPECT_EQ(TransactionPrint(port, 0), 4);
  EXPECT_EQ(sent(), kProcessIdRequest);
  expect_next_call_works("end");
}

TEST_P(Misuse, a_begin_within_a_transaction_drops_what_was_collected) {
  EXPECT_EQ(TransactionPrint(port, 1), 0);
  PrintTextXY(port, "lost", 0, 0);
  EXPECT_EQ(TransactionPrint(port, 1), 0);
  EXPECT_EQ(state.collected(), "\033@");
}

TEST_P(Misuse, releasing_what_was_never_claimed) {
  EXPECT_EQ(ReleaseDevice(port), 0);
  EXPECT_EQ(ReleaseDevice(port), 0);
  expect_next_call_works("release");
}

TEST_P(Misuse, closing_twice_and_with_a_running_monitor) {
  EXPECT_EQ(ClaimDevice(port, 0), 0);
  EXPECT_EQ(ClosePort(port), 0);
  EXPECT_EQ(ClosePort(port), -1);
  EXPECT_EQ(ReleaseDevice(port), -1);  // by a name that is not open any more
  kernel.run_for(2000);
  EXPECT_EQ(OpenPort(port, link.settings.c_str()), 0);
  expect_next_call_works("close");
}

TEST_P(Misuse, a_transaction_across_a_close_is_gone) {
  EXPECT_EQ(TransactionPrint(port, 1), 0);
  PrintTextXY(port, "lost", 0, 0);
  EXPECT_EQ(ClosePort(port), 0);
  EXPECT_EQ(TransactionPrint(port, 0), -1);
  EXPECT_EQ(state.collected(), "");
  EXPECT_EQ(OpenPort(port, link.settings.c_str()), 0);
  EXPECT_EQ(*state.TransactionPrint, 0);
}

TEST_P(Misuse, every_kind_of_output_from_every_state) {
  const auto print_all = [this] {
    return std::vector<long>{PrintNormal(port, "x"), StartPageMode(port), EndPageMode(port),
                             CutPaper(port, 100),    WarningBeep(port),   OpenCashDrawer(port)};
  };
  for (int* const flag : {state.bCoverOpen, state.bPaperEmpty, state.bOffline, state.bCutterJam}) {
    *flag = 1;
    for (const long result : print_all()) EXPECT_THAT(result, AnyOf(0, -1, -2));
    EXPECT_EQ(sent(), "");
    *flag = 0;
  }
  for (const long result : print_all()) EXPECT_EQ(result, 0);
}

TEST_P(Misuse, no_descriptors_left) {
  ClosePort(port);
  kernel.fail(link.name == "network" ? "socket" : "open", EMFILE);
  EXPECT_EQ(OpenPort(port, link.settings.c_str()), -1);
  EXPECT_EQ(GetError(port), -1);
  EXPECT_EQ(kernel.open_descriptors(), 0U);
  EXPECT_EQ(OpenPort(port, link.settings.c_str()), 0);
}

TEST_P(Misuse, a_descriptor_beyond_what_select_holds) {
  ClosePort(port);
  kernel.number_descriptors_from(1024);
  const long opened = OpenPort(port, link.settings.c_str());
  // Only USB and network wait by select; the others do without.
  const bool waits = link.name == "usb" || link.name == "network";
  EXPECT_EQ(opened, waits ? -1 : 0);
  EXPECT_EQ(kernel.open_descriptors(), waits ? 0U : 1U);
  if (!waits) expect_next_call_works("descriptor 1024");
}

}  // namespace
}  // namespace testkit
