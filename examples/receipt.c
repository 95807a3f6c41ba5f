/* Prints a receipt on the port given as the first argument. */
#include <stdio.h>
#include <tzvio.h>

static const char* const kReceipt[] = {
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
    "\x1b|cA\x1b|bC\x1b|rvC  2 COFFEES = 1 FREE CUP  \n",
    "\x1b|cA\x1b|3CSee you soon\n",
    "\x1b|fP",
};

int main(int argc, char** argv) {
  const char* port = argc > 1 ? argv[1] : "/dev/ttyS0";
  const long opened = OpenPort(port, "9600,none,8,1,none");
  if (opened != TZV_STATUS_OK) {
    fprintf(stderr, "%s: OpenPort gives %ld\n", port, opened);
    return 1;
  }
  for (unsigned i = 0; i < sizeof kReceipt / sizeof *kReceipt; ++i) {
    if (PrintNormal(port, kReceipt[i]) != 0) return 1;
  }
  /* The answer comes after the printer has read everything before the question. */
  const long state = GetPrinterStatus(port);
  ClosePort(port);
  if (state != TZV_STATUS_OK) fprintf(stderr, "%s: the printer reports %ld\n", port, state);
  return state == TZV_STATUS_OK ? 0 : 1;
}
