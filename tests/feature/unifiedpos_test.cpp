// The optional header for code that comes with UnifiedPOS constants. Its numbers are written out
// here, as the standard has them.
#include <gmock/gmock.h>

#include "support/links.h"
#include "tzvio_unifiedpos.h"

namespace testkit {
namespace {

TEST(UnifiedPos, transactions) {
  EXPECT_EQ(tzv_upos_print_mode(11), 1);
  EXPECT_EQ(tzv_upos_print_mode(12), 0);
  for (const long other : {0, 1, 10, 13}) EXPECT_EQ(tzv_upos_print_mode(other), TZV_UPOS_NONE);
}

TEST(UnifiedPos, alignments) {
  EXPECT_EQ(tzv_upos_alignment(-1), 0);
  EXPECT_EQ(tzv_upos_alignment(-2), 1);
  EXPECT_EQ(tzv_upos_alignment(-3), 2);
  for (const long other : {0, 1, 2, -4, 100}) EXPECT_EQ(tzv_upos_alignment(other), TZV_UPOS_NONE);
}

TEST(UnifiedPos, text_positions) {
  EXPECT_EQ(tzv_upos_text_position(-11), 0);
  EXPECT_EQ(tzv_upos_text_position(-12), 1);
  EXPECT_EQ(tzv_upos_text_position(-13), 2);
  for (const long other : {0, 1, 2, -1}) EXPECT_EQ(tzv_upos_text_position(other), TZV_UPOS_NONE);
}

TEST(UnifiedPos, map_modes) {
  for (const long mode : {1, 2, 3, 4}) EXPECT_EQ(tzv_upos_map_mode(mode), mode - 1);
  for (const long other : {0, 5}) EXPECT_EQ(tzv_upos_map_mode(other), TZV_UPOS_NONE);
}

TEST(UnifiedPos, symbologies) {
  const std::pair<long, long> both[] = {
      {101, TZV_BARCODE_UPCA},    {102, TZV_BARCODE_UPCE},   {103, TZV_BARCODE_EAN8},
      {104, TZV_BARCODE_EAN13},   {106, TZV_BARCODE_ITF},    {107, TZV_BARCODE_CODABAR},
      {108, TZV_BARCODE_CODE39},  {109, TZV_BARCODE_CODE93}, {110, TZV_BARCODE_CODE128},
      {123, TZV_BARCODE_CODE128}, {201, TZV_BARCODE_PDF417}, {204, TZV_BARCODE_QRCODE}};
  for (const auto& [theirs, ours] : both) EXPECT_EQ(tzv_upos_symbology(theirs), ours) << theirs;
  // Standard 2 of 5, with supplements, EAN-128, MaxiCode, Data Matrix: not printed here.
  for (const long other : {100, 105, 111, 118, 120, 200, 202, 203}) {
    EXPECT_EQ(tzv_upos_symbology(other), TZV_UPOS_NONE) << other;
  }
}

TEST(UnifiedPos, result_codes) {
  const std::pair<long, long> codes[] = {{0, 0},    {1, 114},  {2, 114}, {4, 108}, {8, 0},
                                         {16, 111}, {32, 0},   {64, 0},  {128, 0}, {-1, 101},
                                         {-2, 111}, {-3, 106}, {-4, 106}};
  for (const auto& [ours, theirs] : codes) EXPECT_EQ(tzv_upos_result_code(ours), theirs) << ours;
  EXPECT_EQ(tzv_upos_result_code_extended(TZV_STATUS_COVER_OPEN), 201);
  EXPECT_EQ(tzv_upos_result_code_extended(TZV_STATUS_PAPER_EMPTY), 203);
  EXPECT_EQ(tzv_upos_result_code_extended(TZV_STATUS_OFFLINE), 0);
}

class UnifiedPosOperations : public EveryLink {};
TZV_ON_EVERY_LINK(UnifiedPosOperations);

TEST_P(UnifiedPosOperations, a_transaction_begins_and_ends) {
  EXPECT_EQ(tzv_upos_TransactionPrint(port, 11), 0);
  EXPECT_EQ(state.collected(), "\033@");
  EXPECT_EQ(tzv_upos_TransactionPrint(port, 12), 4);  // no monitor
  EXPECT_EQ(*state.TransactionPrint, 0);
  EXPECT_EQ(tzv_upos_TransactionPrint(port, 1), TZV_UPOS_NONE);
  EXPECT_EQ(*state.TransactionPrint, 0);
  EXPECT_EQ(tzv_upos_TransactionPrint("/dev/ttyS9", 11), -1);
}

TEST_P(UnifiedPosOperations, a_barcode_is_that_of_its_name) {
  // PTR_BCS_ITF, PTR_BC_LEFT, PTR_BC_TEXT_BELOW: 20 fits one character pair five dots wide.
  EXPECT_EQ(tzv_upos_PrintBarCode(port, "1234", 106, 49, 205, -1, -13), 0);
  EXPECT_EQ(sent(),
            "\035f0\035w\x05\035h2\033a0\035H2\035kF\x04"
            "1234");
}

TEST_P(UnifiedPosOperations, what_has_no_counterpart_sends_nothing) {
  EXPECT_EQ(tzv_upos_PrintBarCode(port, "1234", 105, 49, 205, -1, -13), TZV_UPOS_NONE);
  EXPECT_EQ(tzv_upos_PrintBarCode(port, "1234", 204, 49, 205, -1, -13), TZV_UPOS_NONE);
  EXPECT_EQ(tzv_upos_PrintBarCode(port, "1234", 106, 49, 205, 0, -13), TZV_UPOS_NONE);
  EXPECT_EQ(tzv_upos_PrintBarCode(port, "1234", 106, 49, 205, -1, 2), TZV_UPOS_NONE);
  EXPECT_EQ(tzv_upos_PrintBitmap(port, "logo.bmp", 1), TZV_UPOS_NONE);
  EXPECT_EQ(sent(), "");
  EXPECT_EQ(tzv_upos_PrintBitmap(port, "/none.bmp", -2), -1);
}

}  // namespace
}  // namespace testkit
