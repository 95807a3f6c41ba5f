/* Prints a receipt as one confirmed transaction, and deals with everything that can go wrong.
 *
 *     receipt PORT [SETTINGS]
 *
 * Ends with 0 when the printer has confirmed that the receipt is printed. */
#define _POSIX_C_SOURCE 200809L /* nanosleep */
#include <stdio.h>
#include <stdlib.h>
#include <time.h>
#include <tzvio.h>
#include <unistd.h>

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

enum { kAttempts = 10, kPatienceSeconds = 60 };

static const char* in_words(long code) {
  switch (code) {
    case TZV_STATUS_OK:
      return "ready";
    case TZV_STATUS_COVER_OPEN:
      return "the cover is open";
    case TZV_STATUS_PAPER_EMPTY:
      return "paper is out";
    case TZV_STATUS_OFFLINE:
      return "offline, or no confirmation came";
    case TZV_STATUS_PAPER_NEAR_EMPTY:
      return "paper is near its end";
    case TZV_STATUS_CUTTER_JAM:
      return "the cutter is jammed";
    default:
      return "the port does not work";
  }
}

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

/* The whole receipt in one transaction; 0 when it is on paper. */
static long print_receipt(const char* port) {
  if (TransactionPrint(port, TZV_TRANSACTION_BEGIN) != 0) return TZV_FAILED;
  if (print_logo(port) != 0) return TZV_FAILED;
  for (unsigned i = 0; i < sizeof kSale / sizeof *kSale; ++i) {
    if (PrintNormal(port, kSale[i]) != 0) return TZV_FAILED;
  }
  print_symbols(port);
  CutPaper(port, 100);
  return TransactionPrint(port, TZV_TRANSACTION_END);
}

/* An empty transaction is confirmed when everything before it is printed. */
static long confirm_what_was_sent(const char* port) {
  TransactionPrint(port, TZV_TRANSACTION_BEGIN);
  return TransactionPrint(port, TZV_TRANSACTION_END);
}

/* Waits until the printer is ready. Returns whether it was seen in a state in which it keeps what
 * it has received: cover, paper or cutter, rather than without power. */
static int wait_until_ready(const char* port, long code) {
  const struct timespec pause = {0, 20 * 1000 * 1000};
  int keeps_data = 0;
  for (int looks = 0; looks < kPatienceSeconds * 50; ++looks) {
    keeps_data |= code == TZV_STATUS_COVER_OPEN || code == TZV_STATUS_PAPER_EMPTY ||
                  code == TZV_STATUS_CUTTER_JAM;
    if (code == TZV_STATUS_OK || code == TZV_STATUS_PAPER_NEAR_EMPTY) break;
    nanosleep(&pause, NULL);
    /* Any write makes a lost network connection anew, even one of nothing. */
    if (looks % 50 == 49) WritePort(port, "", 0);
    code = GetError(port);
  }
  return keeps_data;
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

  long result = print_receipt(port);
  for (int attempt = 1; result != 0 && result != TZV_FAILED && attempt < kAttempts; ++attempt) {
    printf("not confirmed: %ld, %s\n", result, in_words(result));
    if (wait_until_ready(port, result)) {
      /* The printer held what it had received and prints on: ask, rather than print it twice. */
      result = confirm_what_was_sent(port);
    } else {
      /* Nobody can say what became of it. A receipt printed twice can be torn off; one that is
       * missing cannot be put back. */
      result = print_receipt(port);
    }
  }
  printf(result == 0 ? "confirmed: the receipt is printed\n" : "given up: %ld\n", result);
  ReleaseDevice(port);
  ClosePort(port);
  return result == 0 ? 0 : 1;
}
