/* Prints a receipt with a logo, a voucher and a QR Code as one confirmed transaction, and deals
 * with everything that can go wrong (confirmed.c).
 *
 *     receipt PORT [SETTINGS]
 *
 * Ends with 0 when the printer has confirmed that the receipt is printed. */
#define _POSIX_C_SOURCE 200809L /* mkstemp */
#include <stdio.h>
#include <stdlib.h>
#include <tzvio.h>
#include <unistd.h>

#include "confirmed.h"
#include "logo.h"

static const char* const kSale[] = {
    "\x1b|cA\x1b|4CCORNER SHOP\n",
    "\x1b|cA12 Harbour Street\n",
    "\x1b|cAThank you for your visit\n\n",
    "\x1b|bCQty Item                            Amount\n",
    "\x1b|uC                                          \n",
    "  2 Coffee, ground, 500 g            11.80\n",
    "  1 Wholemeal bread                   3.20\n",
    "  6 Apples                            2.70\n",
    "  1 Umbrella, black                  14.90\n",
    "\x1b|uC                                          \n",
    "\x1b|rA\x1b|2CTOTAL   32.60\n",
    "\x1b|rACash   40.00\n",
    "\x1b|rAChange    7.40\n\n",
    "\x1b|cA\x1b|bC\x1b|rvC  2 COFFEES = 1 FREE CUP  \n\n",
};

/* The voucher is one of the shop's own article numbers; the printer adds the check digit. */
static const char kVoucher[] = "200000100042";
static const char kFeedback[] = "https://shop.example/visit/4711";

/* The file is there only while it is printed. */
static long print_logo(const char* port) {
  char path[] = "/tmp/receipt-logo-XXXXXX";
  const int file = mkstemp(path);
  if (file < 0) return TZV_FAILED;
  close(file);
  const long result =
      write_logo(path) == 0 ? PrintBitmap(port, path, TZV_ALIGN_CENTER) : TZV_FAILED;
  unlink(path);
  return result;
}

/* Scanners and telephones want white space around a symbol. */
static void print_symbols(const char* port) {
  PrintBarCode(port, kVoucher, TZV_BARCODE_EAN13, 70, 300, TZV_ALIGN_CENTER, TZV_TEXT_BELOW);
  PrintNormal(port, "\n\n");
  Print2DBarCode(port, kFeedback, 0, TZV_BARCODE_QRCODE, 6, 1, TZV_ALIGN_CENTER);
  PrintNormal(port, "\x1b|cATell us about your visit\n");
  PrintNormal(port, "\x1b|cA\x1b|3CSee you soon\n");
}

static long print_receipt(const char* port) {
  if (print_logo(port) != 0) return TZV_FAILED;
  for (unsigned i = 0; i < sizeof kSale / sizeof *kSale; ++i) {
    if (PrintNormal(port, kSale[i]) != 0) return TZV_FAILED;
  }
  print_symbols(port);
  return CutPaper(port, 100);
}

int main(int argc, char** argv) {
  setvbuf(stdout, NULL, _IOLBF, 0); /* each line at once, into a pipe too */
  const char* port = argc > 1 ? argv[1] : "/dev/ttyS0";
  const long opened = OpenPort(port, argc > 2 ? argv[2] : "9600,none,8,1,none");
  if (opened < 0) {
    fprintf(stderr, "%s: OpenPort gives %ld\n", port, opened);
    return 1;
  }
  /* Without the status monitor no confirmation can be seen. */
  ClaimDevice(port, 0);
  wait_until_ready(port, TZV_STATUS_OFFLINE);

  const long result = print_confirmed(port, print_receipt);
  ReleaseDevice(port);
  ClosePort(port);
  return result == 0 ? 0 : 1;
}
