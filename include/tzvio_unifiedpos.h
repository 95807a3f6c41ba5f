/* For code that comes with UnifiedPOS constants: several of them mean something else to TZVIO, or
 * nothing. These functions convert, inline; the library knows nothing of them.
 *
 *     tzv_upos_TransactionPrint(port, PTR_TP_TRANSACTION);
 *     m_MapMode = tzv_upos_map_mode(PTR_MM_METRIC);
 *     PrintBitmap(port, "logo.bmp", tzv_upos_alignment(PTR_BM_CENTER));
 *
 * They take the numbers that UnifiedPOS gives its names, whichever header those come from; the same
 * numbers stand below under names of our own.
 */
#ifndef TZVIO_UNIFIEDPOS_H
#define TZVIO_UNIFIEDPOS_H

#include "tzvio.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What a converter gives for a number that has no counterpart here. The tzv_upos_... operations
 * return it, and send nothing. */
enum { TZV_UPOS_NONE = -4 };

/* The numbers of UnifiedPOS: PTR_TP_..., PTR_BC_... and PTR_BM_..., PTR_BC_TEXT_..., PTR_MM_... */
enum { TZV_UPOS_TP_TRANSACTION = 11, TZV_UPOS_TP_NORMAL = 12 };
enum { TZV_UPOS_LEFT = -1, TZV_UPOS_CENTER = -2, TZV_UPOS_RIGHT = -3 };
enum { TZV_UPOS_TEXT_NONE = -11, TZV_UPOS_TEXT_ABOVE = -12, TZV_UPOS_TEXT_BELOW = -13 };
enum {
  TZV_UPOS_MM_DOTS = 1,
  TZV_UPOS_MM_TWIPS = 2,
  TZV_UPOS_MM_ENGLISH = 3,
  TZV_UPOS_MM_METRIC = 4
};

/* PTR_BCS_... */
enum {
  TZV_UPOS_BCS_UPCA = 101,
  TZV_UPOS_BCS_UPCE = 102,
  TZV_UPOS_BCS_EAN8 = 103,  /* and JAN8 */
  TZV_UPOS_BCS_EAN13 = 104, /* and JAN13 */
  TZV_UPOS_BCS_ITF = 106,
  TZV_UPOS_BCS_CODABAR = 107,
  TZV_UPOS_BCS_CODE39 = 108,
  TZV_UPOS_BCS_CODE93 = 109,
  TZV_UPOS_BCS_CODE128 = 110,
  TZV_UPOS_BCS_CODE128_PARSED = 123,
  TZV_UPOS_BCS_PDF417 = 201,
  TZV_UPOS_BCS_QRCODE = 204
};

/* ResultCode: OPOS_... and JPOS_...; ResultCodeExtended: EPTR_... */
enum {
  TZV_UPOS_SUCCESS = 0,
  TZV_UPOS_E_CLOSED = 101,
  TZV_UPOS_E_ILLEGAL = 106,
  TZV_UPOS_E_OFFLINE = 108,
  TZV_UPOS_E_FAILURE = 111,
  TZV_UPOS_E_EXTENDED = 114
};
enum { TZV_UPOS_COVER_OPEN = 201, TZV_UPOS_REC_EMPTY = 203 };

/* `PrintMode` of TransactionPrint: PTR_TP_NORMAL, handed over as it is, would begin one. */
static inline long tzv_upos_print_mode(long control) {
  switch (control) {
    case TZV_UPOS_TP_TRANSACTION:
      return TZV_TRANSACTION_BEGIN;
    case TZV_UPOS_TP_NORMAL:
      return TZV_TRANSACTION_END;
    default:
      return TZV_UPOS_NONE;
  }
}

/* `Alignment` of pictures and barcodes: PTR_BM_LEFT and PTR_BC_LEFT, handed over as they are, would
 * centre. There is no alignment by a distance from the left. */
static inline long tzv_upos_alignment(long alignment) {
  switch (alignment) {
    case TZV_UPOS_LEFT:
      return TZV_ALIGN_LEFT;
    case TZV_UPOS_CENTER:
      return TZV_ALIGN_CENTER;
    case TZV_UPOS_RIGHT:
      return TZV_ALIGN_RIGHT;
    default:
      return TZV_UPOS_NONE;
  }
}

/* `TextPosition` of PrintBarCode. */
static inline long tzv_upos_text_position(long position) {
  switch (position) {
    case TZV_UPOS_TEXT_NONE:
      return TZV_TEXT_NONE;
    case TZV_UPOS_TEXT_ABOVE:
      return TZV_TEXT_ABOVE;
    case TZV_UPOS_TEXT_BELOW:
      return TZV_TEXT_BELOW;
    default:
      return TZV_UPOS_NONE;
  }
}

/* `Symbology` of PrintBarCode and Print2DBarCode: most of the numbers exist in both, and mean
 * another symbology from 105 on. The data of Code 128 is what UnifiedPOS calls parsed: it names its
 * code set, as in "{B12345". */
static inline long tzv_upos_symbology(long symbology) {
  switch (symbology) {
    case TZV_UPOS_BCS_UPCA:
      return TZV_BARCODE_UPCA;
    case TZV_UPOS_BCS_UPCE:
      return TZV_BARCODE_UPCE;
    case TZV_UPOS_BCS_EAN8:
      return TZV_BARCODE_EAN8;
    case TZV_UPOS_BCS_EAN13:
      return TZV_BARCODE_EAN13;
    case TZV_UPOS_BCS_ITF:
      return TZV_BARCODE_ITF;
    case TZV_UPOS_BCS_CODABAR:
      return TZV_BARCODE_CODABAR;
    case TZV_UPOS_BCS_CODE39:
      return TZV_BARCODE_CODE39;
    case TZV_UPOS_BCS_CODE93:
      return TZV_BARCODE_CODE93;
    case TZV_UPOS_BCS_CODE128:
    case TZV_UPOS_BCS_CODE128_PARSED:
      return TZV_BARCODE_CODE128;
    case TZV_UPOS_BCS_PDF417:
      return TZV_BARCODE_PDF417;
    case TZV_UPOS_BCS_QRCODE:
      return TZV_BARCODE_QRCODE;
    default:
      return TZV_UPOS_NONE;
  }
}

/* The `MapMode` variables of tzvio_state.h: UnifiedPOS counts from 1. */
static inline long tzv_upos_map_mode(long map_mode) {
  switch (map_mode) {
    case TZV_UPOS_MM_DOTS:
      return TZV_MAP_DOTS;
    case TZV_UPOS_MM_TWIPS:
      return TZV_MAP_TWIPS;
    case TZV_UPOS_MM_ENGLISH:
      return TZV_MAP_ENGLISH;
    case TZV_UPOS_MM_METRIC:
      return TZV_MAP_METRIC;
    default:
      return TZV_UPOS_NONE;
  }
}

/* TransactionPrint with PTR_TP_...; results as TransactionPrint, or TZV_UPOS_NONE. */
static inline long tzv_upos_TransactionPrint(const char* portName, long control) {
  const long mode = tzv_upos_print_mode(control);
  return mode == TZV_UPOS_NONE ? mode : TransactionPrint(portName, mode);
}

/* PrintBarCode of a linear symbol with PTR_BCS_..., PTR_BC_... and PTR_BC_TEXT_...; Height and
 * Width in units of the `MapMode` variable. PDF417 and QR Code take other arguments:
 * Print2DBarCode. Results as PrintBarCode, or TZV_UPOS_NONE. */
static inline long tzv_upos_PrintBarCode(const char* portName, const char* BarcodeData,
                                         long symbology, long Height, long Width, long alignment,
                                         long text_position) {
  const long ours = tzv_upos_symbology(symbology);
  const long place = tzv_upos_alignment(alignment);
  const long text = tzv_upos_text_position(text_position);
  if (ours == TZV_UPOS_NONE || ours >= TZV_BARCODE_PDF417 || place == TZV_UPOS_NONE ||
      text == TZV_UPOS_NONE) {
    return TZV_UPOS_NONE;
  }
  return PrintBarCode(portName, BarcodeData, ours, Height, Width, place, text);
}

/* PrintBitmap with PTR_BM_LEFT, _CENTER or _RIGHT, as wide as the file is (PTR_BM_ASIS). Results as
 * PrintBitmap, or TZV_UPOS_NONE. */
static inline long tzv_upos_PrintBitmap(const char* portName, const char* Bitmap, long alignment) {
  const long place = tzv_upos_alignment(alignment);
  return place == TZV_UPOS_NONE ? place : PrintBitmap(portName, Bitmap, place);
}

/* The ResultCode for what OpenPort, GetError, GetPrinterStatus or the end of a transaction gave.
 * Paper near its end is no error, and neither are the paper sensors. A jammed cutter is a failure.
 */
static inline long tzv_upos_result_code(long result) {
  switch (result) {
    case TZV_STATUS_OK:
    case TZV_STATUS_PAPER_NEAR_EMPTY:
    case TZV_STATUS_SENSOR_1:
    case TZV_STATUS_SENSOR_2:
    case TZV_STATUS_SENSOR_3:
      return TZV_UPOS_SUCCESS;
    case TZV_STATUS_COVER_OPEN:
    case TZV_STATUS_PAPER_EMPTY:
      return TZV_UPOS_E_EXTENDED;
    case TZV_STATUS_OFFLINE:
      return TZV_UPOS_E_OFFLINE;
    case TZV_FAILED:
      return TZV_UPOS_E_CLOSED;
    case TZV_NOT_ACCEPTED:
    case TZV_UPOS_NONE:
      return TZV_UPOS_E_ILLEGAL;
    default:
      return TZV_UPOS_E_FAILURE;
  }
}

/* The ResultCodeExtended that belongs to TZV_UPOS_E_EXTENDED; otherwise 0. */
static inline long tzv_upos_result_code_extended(long result) {
  switch (result) {
    case TZV_STATUS_COVER_OPEN:
      return TZV_UPOS_COVER_OPEN;
    case TZV_STATUS_PAPER_EMPTY:
      return TZV_UPOS_REC_EMPTY;
    default:
      return 0;
  }
}

#ifdef __cplusplus
}
#endif

#endif
