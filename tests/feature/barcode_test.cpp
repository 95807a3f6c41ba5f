// Barcodes through the library: one write for a linear symbol, one for each command of the others,
// refusals. What each argument becomes is tested with the commands themselves.
#include <gmock/gmock.h>

#include "support/links.h"
#include "tzvio.h"

namespace testkit {
namespace {

using testing::ElementsAre;

class Barcode : public EveryLink {
 protected:
  long print(const char* data = "12345678", long symbology = TZV_BARCODE_EAN8) {
    return PrintBarCode(port, data, symbology, 80, 300, TZV_ALIGN_CENTER, TZV_TEXT_NONE);
  }
  const std::string ean8 =
      "\035f0\035w\004\035h\x51\033a1\035H0\035kD\x08"
      "12345678";
};
TZV_ON_EVERY_LINK(Barcode);

TEST_P(Barcode, a_linear_symbol_goes_out_in_one_write) {
  EXPECT_EQ(print(), 0);
  EXPECT_THAT(printer.writes, ElementsAre(ean8));
}

TEST_P(Barcode, settings_of_the_link_apply) {
  *state.RecLineWidth = 299;
  EXPECT_EQ(print(), 0);
  EXPECT_EQ(sent(), "");
  *state.RecLineWidth = 300;
  *state.RecLineChars = 56;
  *state.MapMode = TZV_MAP_METRIC;
  EXPECT_EQ(print(), 0);
  // 3 mm are 21 dots, and 0.8 mm 6.
  EXPECT_EQ(hex(sent()), hex("\035f1\035w\002\035h\007\033a1\035H0\035kD\x08"
                             "12345678"));
  EXPECT_EQ(*state.RecLineWidth, 300);
}

TEST_P(Barcode, what_cannot_be_printed_as_asked_gives_0_and_sends_nothing) {
  EXPECT_EQ(print("123456"), 0);
  EXPECT_EQ(print("12345678", 100), 0);
  EXPECT_EQ(print(nullptr), 0);
  EXPECT_EQ(PrintBarCode(port, "12345678", TZV_BARCODE_EAN8, 80, 300, 0, 3), 0);
  EXPECT_EQ(PrintBarCode(port, "12345678", TZV_BARCODE_EAN8, 80, 641, 0, 0), 0);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(Barcode, a_transaction_collects_the_symbol) {
  *state.TransactionPrint = 1;
  EXPECT_EQ(print(), 0);
  EXPECT_EQ(state.collected(), ean8);
  EXPECT_EQ(sent(), "");
}

TEST_P(Barcode, a_refused_or_failed_write_still_gives_0) {
  *state.bPaperEmpty = 1;
  EXPECT_EQ(print(), 0);
  *state.bPaperEmpty = 0;
  break_writes();
  EXPECT_EQ(print(), 0);
  EXPECT_EQ(sent(), "");
}

TEST_P(Barcode, a_closed_port_gives_minus_1_whatever_is_asked) {
  ClosePort(port);
  EXPECT_EQ(print(), -1);
  EXPECT_EQ(print(nullptr), -1);
}

}  // namespace
}  // namespace testkit
