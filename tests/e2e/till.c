/* A till for the tests: does one thing on a port and says what came of it, line by line.
 *
 *     till once|reprint|framed|identity|flags PORT SETTINGS SECONDS
 *
 * SECONDS is how long it waits for anything. When TILL_BEFORE_PRINTING is a shell command, `once`
 * and `framed` run it between the claim and the receipt. Ends with 0 when it came to a result,
 * whatever the result is; with 1 when the port cannot be opened, with 2 when what it waits for does
 * not come. */
#define _POSIX_C_SOURCE 200809L /* nanosleep */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <tzvio_state.h>

static const char kReceipt[] =
    "CORNER SHOP\n"
    "Till 3\n"
    "\n"
    "  2 Coffee, ground, 500 g            11.80\n"
    "  1 Wholemeal bread                   3.20\n"
    "  6 Apples                            2.70\n"
    "  1 Umbrella, black                  14.90\n"
    "  4 Oat biscuits                      6.00\n"
    "TOTAL                                38.60\n"
    "Thank you\n";

enum { kPauseMs = 10, kCannotOpen = 1, kTimedOut = 2 };

static long patience_ms;

static void pause_briefly(void) {
  const struct timespec pause = {0, kPauseMs * 1000000L};
  nanosleep(&pause, NULL);
}

/* Waits until what a query of the port tells is the value; whether it came to that. */
static int wait_for(long (*query)(const char*), const char* port, long value) {
  for (long waited = 0; waited < patience_ms; waited += kPauseMs) {
    if (query(port) == value) return 1;
    pause_briefly();
  }
  return 0;
}

/* Claims the port and waits for the monitor's first cycle. */
static int claim(const char* port) {
  return ClaimDevice(port, 0) == 0 && wait_for(GetError, port, TZV_STATUS_OK);
}

static void print_receipt(const char* port) {
  printf("printed %ld\n", PrintNormal(port, kReceipt));
  printf("cut %ld\n", CutPaper(port, 100));
}

static int print_once(const char* port) {
  const char* command = getenv("TILL_BEFORE_PRINTING");
  if (!claim(port)) return kTimedOut;
  if (command != NULL && system(command) != 0) return kTimedOut;
  TransactionPrint(port, TZV_TRANSACTION_BEGIN);
  print_receipt(port);
  printf("result %ld\n", TransactionPrint(port, TZV_TRANSACTION_END));
  return 0;
}

static int print_framed(const char* port) {
  printf("protocol %ld\n", SetProtocol(port, 1));
  return print_once(port);
}

static long bytes_held(const char* port) {
  (void)port;                                            /* the ports of a link share one buffer */
  return __atomic_load_n(&s_PageSize, __ATOMIC_RELAXED); /* the monitor's thread writes it */
}

/* The first healthy report after the claim finds the receipt there, and has it printed. */
static int reprint(const char* port) {
  printf("mode %ld\n", SetRePrintMode(port, 1));
  print_receipt(port);
  printf("held %d\n", bytes_held(port) > 0);
  ClaimDevice(port, 0);
  const int done = wait_for(bytes_held, port, 0);
  printf(done ? "reprinted, result %ld\n" : "not reprinted, result %ld\n", GetError(port));
  return 0;
}

static void show_version(const char* port) {
  char version[256];
  const long length = GetFWVersion(port, version);
  printf("version %ld %.*s\n", length, length > 0 ? (int)length : 0, version);
}

static void change_serial_number(const char* port) {
  static const char kNumber[] = "SHOP-0042";
  char number[256];
  printf("stored %ld\n", SetSerialNumber(port, kNumber, (long)strlen(kNumber)));
  const long length = GetSerialNumber(port, number);
  printf("serial number %ld %.*s\n", length, length > 0 ? (int)length : 0, number);
}

/* An empty transaction is confirmed when the monitor has read all that came before. */
static long settle(const char* port) {
  TransactionPrint(port, TZV_TRANSACTION_BEGIN);
  return TransactionPrint(port, TZV_TRANSACTION_END);
}

/* What the printer answers is asked for before the claim, because a monitor takes the
 * acknowledgement of a serial number in the second that SetSerialNumber waits; or when the first
 * report has been read, which would be taken for an answer, and read in one with a report of the
 * drawer leaves the drawer's state as it was. */
static int show_identity(const char* port) {
  show_version(port);
  change_serial_number(port);
  if (!claim(port)) return kTimedOut;
  printf("settled %ld\n", settle(port));
  printf("drawer before %ld\n", GetDrawerStatus(port));
  printf("opened %ld\n", OpenCashDrawer(port));
  printf("drawer %s\n", wait_for(GetDrawerStatus, port, 1) ? "open" : "still closed");
  printf("beep %ld\n", WarningBeep(port));
  printf("mark %ld\n", CheckBlackMark(port));
  printf("status %ld\n", GetPrinterStatus(port));
  return 0;
}

/* Prints a line, at which a fault may set in, and shows the codes until there is none again. */
static int show_flags(const char* port) {
  if (!claim(port)) return kTimedOut;
  PrintNormal(port, "Good morning\n");
  long shown = TZV_STATUS_OK;
  for (long waited = 0; waited < patience_ms; waited += kPauseMs) {
    const long code = GetError(port);
    if (code != shown) {
      printf("error %ld\n", code);
      if (code == TZV_STATUS_OK) return 0;
      shown = code;
    }
    pause_briefly();
  }
  return kTimedOut;
}

struct Scenario {
  const char* name;
  int (*run)(const char* port);
};

static const struct Scenario kScenarios[] = {
    {"once", print_once},        {"reprint", reprint},  {"framed", print_framed},
    {"identity", show_identity}, {"flags", show_flags},
};

static int run_scenario(const char* name, const char* port) {
  for (unsigned i = 0; i < sizeof kScenarios / sizeof *kScenarios; ++i) {
    if (strcmp(name, kScenarios[i].name) == 0) return kScenarios[i].run(port);
  }
  fprintf(stderr, "no scenario %s\n", name);
  return kCannotOpen;
}

int main(int argc, char** argv) {
  if (argc != 5) return kCannotOpen;
  patience_ms = 1000 * strtol(argv[4], NULL, 10);
  setvbuf(stdout, NULL, _IOLBF, 0); /* each line at once, into a pipe too */
  const char* port = argv[2];
  const long opened = OpenPort(port, argv[3]);
  printf("open %ld\n", opened);
  if (opened < 0) return kCannotOpen;
  const int status = run_scenario(argv[1], port);
  if (status == kTimedOut) puts("timed out");
  ReleaseDevice(port);
  ClosePort(port);
  return status;
}
