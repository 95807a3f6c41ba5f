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

// ------------------------------------------------------------------------- two dimensions

class Barcode2D : public EveryLink {
 protected:
  long print(long symbology, const std::string& data, long Param1 = 4, long Param2 = 1,
             long alignment = TZV_ALIGN_CENTER) {
    return Print2DBarCode(port, data.c_str(), 0, symbology, Param1, Param2, alignment);
  }
};
TZV_ON_EVERY_LINK(Barcode2D);

TEST_P(Barcode2D, a_qr_code_goes_out_command_by_command) {
  EXPECT_EQ(print(TZV_BARCODE_QRCODE, "ABC", 6, 1), 0);
  EXPECT_THAT(printer.writes,
              ElementsAre("\033a1", std::string("\035(k\003\0001C\006", 8),
                          std::string("\035(k\003\0001E1", 8), std::string("\035(k\006\0001P0", 8),
                          "ABC", std::string("\035(k\003\0001Q0", 8), "\r\n"));
}

TEST_P(Barcode2D, a_pdf417_goes_out_command_by_command_and_nothing_follows) {
  EXPECT_EQ(print(TZV_BARCODE_PDF417, "ABC", 5, 3, TZV_ALIGN_LEFT), 0);
  EXPECT_THAT(printer.writes, ElementsAre("\033a0", std::string("\035(k\003\0000A\005", 8),
                                          std::string("\035(k\003\0000C\003", 8),
                                          std::string("\035(k\006\0000P0", 8), "ABC",
                                          std::string("\035(k\003\0000Q0", 8)));
}

TEST_P(Barcode2D, error_correction_levels) {
  for (const auto& [level, byte] : {std::pair{0L, '0'}, {1L, '1'}, {2L, '2'}, {3L, '3'}}) {
    printer.output.clear();
    EXPECT_EQ(print(TZV_BARCODE_QRCODE, "x", 4, level), 0);
    EXPECT_NE(sent().find(std::string("\035(k\003\0001E", 7) + byte), std::string::npos);
  }
}

TEST_P(Barcode2D, of_the_parameters_the_low_byte_goes_out) {
  EXPECT_EQ(print(TZV_BARCODE_PDF417, "x", 0x1234, -1), 0);
  EXPECT_NE(sent().find(std::string("\035(k\003\0000A\x34", 8)), std::string::npos);
  EXPECT_NE(sent().find(std::string("\035(k\003\0000C\xff", 8)), std::string::npos);
  printer.output.clear();
  // FF and 30 is 2F.
  EXPECT_EQ(print(TZV_BARCODE_QRCODE, "x", 4, 0xff), 0);
  EXPECT_NE(sent().find(std::string("\035(k\003\0001E\x2f", 8)), std::string::npos);
}

TEST_P(Barcode2D, alignments) {
  for (const auto& [alignment, bytes] :
       {std::pair{0L, "\033a0"}, {1L, "\033a1"}, {2L, "\033a2"}, {5L, "\033a1"}, {-1L, "\033a1"}}) {
    printer.output.clear();
    EXPECT_EQ(print(TZV_BARCODE_QRCODE, "x", 4, 1, alignment), 0);
    EXPECT_EQ(sent().substr(0, 3), bytes);
  }
}

TEST_P(Barcode2D, data_of_a_given_length_may_hold_nul_bytes) {
  const std::string data = std::string("a\0b", 3) + std::string(297, 'x');
  EXPECT_EQ(Print2DBarCode(port, data.data(), 300, TZV_BARCODE_QRCODE, 4, 1, 0), 0);
  // 303 is 2F 01.
  EXPECT_NE(sent().find(std::string("\035(k\x2f\0011P0", 8) + data), std::string::npos);
}

TEST_P(Barcode2D, data_of_8092_bytes_is_the_longest) {
  const std::string data(8093, 'x');
  for (const long symbology : {TZV_BARCODE_QRCODE, TZV_BARCODE_PDF417}) {
    EXPECT_EQ(Print2DBarCode(port, data.data(), 8093, symbology, 4, 1, 0), 0);
    EXPECT_EQ(print(symbology, data), 0);
    EXPECT_EQ(Print2DBarCodeXY(port, data.c_str(), 0, symbology, 4, 1, 0, 0), 0);
    EXPECT_EQ(sent(), "");
  }
  EXPECT_EQ(Print2DBarCode(port, data.data(), 8092, TZV_BARCODE_QRCODE, 4, 1, 0), 0);
  // 8095 is 9F 1F.
  EXPECT_NE(sent().find(std::string("\035(k\x9f\x1f") + "1P0" + data.substr(1)), std::string::npos);
}

TEST_P(Barcode2D, what_cannot_be_printed_gives_0_and_sends_nothing) {
  EXPECT_EQ(print(202, "x"), 0);
  EXPECT_EQ(print(199, "x"), 0);
  EXPECT_EQ(Print2DBarCode(port, nullptr, 3, TZV_BARCODE_QRCODE, 4, 1, 0), 0);
  EXPECT_EQ(Print2DBarCode(port, "x", -1, TZV_BARCODE_QRCODE, 4, 1, 0), 0);
  EXPECT_EQ(Print2DBarCodeXY(port, nullptr, 0, TZV_BARCODE_QRCODE, 4, 1, 0, 0), 0);
  EXPECT_EQ(Print2DBarCodeXY(port, "x", 0, 109, 4, 1, 0, 0), 0);
  *state.bCoverOpen = 1;
  EXPECT_EQ(print(202, "x"), 0);
  EXPECT_TRUE(kernel.calls().empty());
}

TEST_P(Barcode2D, an_error_state_gives_minus_2_and_the_symbol_is_handed_on) {
  for (int* flag : {state.bCoverOpen, state.bPaperEmpty, state.bOffline, state.bCutterJam}) {
    *flag = 1;
    *state.TransactionPrint = 1;
    *state.PageSize = 0;
    EXPECT_EQ(print(TZV_BARCODE_QRCODE, "ABC"), -2);
    EXPECT_EQ(state.collected().size(), 3 + 4 * 8 + 3 + 2U);
    EXPECT_EQ(Print2DBarCodeXY(port, "ABC", 0, TZV_BARCODE_QRCODE, 4, 1, 0, 0), -2);
    *state.TransactionPrint = 0;
    EXPECT_EQ(print(TZV_BARCODE_PDF417, "ABC"), -2);
    *flag = 0;
  }
  EXPECT_EQ(sent(), "");
}

TEST_P(Barcode2D, failed_writes_are_not_told) {
  break_writes();
  EXPECT_EQ(print(TZV_BARCODE_QRCODE, "x"), 0);
}

TEST_P(Barcode2D, a_qr_code_at_a_position_is_placed_after_its_data) {
  EXPECT_EQ(Print2DBarCodeXY(port, "ABC", 0, TZV_BARCODE_QRCODE, 6, 3, 300, 20), 0);
  EXPECT_THAT(
      printer.writes,
      ElementsAre(std::string("\035(k\003\0001C\006", 8), std::string("\035(k\003\0001E3", 8),
                  std::string("\035(k\006\0001P0", 8), "ABC", std::string("\035}X\x2c\001", 5),
                  std::string("\035}Y\x14\0", 5), std::string("\035(k\003\0001Q0", 8), "\n"));
}

// Its class is QR Code's in all four commands, its first parameter the model.
TEST_P(Barcode2D, a_pdf417_at_a_position_is_a_qr_code) {
  EXPECT_EQ(Print2DBarCodeXY(port, "ABC", 0, TZV_BARCODE_PDF417, 50, 6, 0, 0), 0);
  EXPECT_THAT(
      printer.writes,
      ElementsAre(std::string("\035(k\003\0001A2", 8), std::string("\035(k\003\0001C\006", 8),
                  std::string("\035(k\006\0001P0", 8), "ABC", std::string("\035}X\0\0", 5),
                  std::string("\035}Y\0\0", 5), std::string("\035(k\003\0001Q0", 8), "\n"));
}

TEST_P(Barcode2D, a_closed_port_gives_minus_1_whatever_is_asked) {
  ClosePort(port);
  EXPECT_EQ(print(TZV_BARCODE_QRCODE, "x"), -1);
  EXPECT_EQ(print(202, "x"), -1);
  EXPECT_EQ(Print2DBarCodeXY(port, nullptr, 0, TZV_BARCODE_QRCODE, 4, 1, 0, 0), -1);
}

}  // namespace
}  // namespace testkit
