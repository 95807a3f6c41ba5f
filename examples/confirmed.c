#define _POSIX_C_SOURCE 200809L /* nanosleep, clock_gettime */
#include "confirmed.h"

#include <stdio.h>
#include <time.h>
#include <tzvio.h>

enum { kAttempts = 10, kPatienceSeconds = 60 };

const char* in_words(long code) {
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

int wait_until_ready(const char* port, long code) {
  const struct timespec pause = {0, 20 * 1000 * 1000};
  int holds = 0, jammed = 0, offline = 0;
  for (int looks = 0; looks < kPatienceSeconds * 50; ++looks) {
    holds |= code == TZV_STATUS_COVER_OPEN || code == TZV_STATUS_PAPER_EMPTY;
    jammed |= code == TZV_STATUS_CUTTER_JAM;
    offline |= code == TZV_STATUS_OFFLINE;
    if (code == TZV_STATUS_OK || code == TZV_STATUS_PAPER_NEAR_EMPTY) break;
    nanosleep(&pause, NULL);
    /* Any write makes a lost network connection anew, even one of nothing. */
    if (looks % 50 == 49) WritePort(port, "", 0);
    code = GetError(port);
  }
  /* Without power it has forgotten what it held. But a jam alone shows as offline now and then. */
  return jammed || (holds && !offline);
}

static long milliseconds_now(void) {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1000L + now.tv_nsec / 1000000L;
}

/* Prints all of it once. `sent` says whether the printer is known to have got it whole. An end that
 * finds a fault which the monitor has seen just before sends nothing, and returns at its first
 * look, after 20 ms; a fault that sets in while the receipt is printed shows later. And a write
 * whose rest nobody takes is given up after 5 s. */
static long print_once(const char* port, long (*print)(const char* port), int* sent) {
  if (TransactionPrint(port, TZV_TRANSACTION_BEGIN) != 0 || print(port) != 0) return TZV_FAILED;
  const long before = GetError(port);
  *sent = 0;
  if (before != TZV_STATUS_OK && before != TZV_STATUS_PAPER_NEAR_EMPTY) return before;
  const long start = milliseconds_now();
  const long result = TransactionPrint(port, TZV_TRANSACTION_END);
  const long took = milliseconds_now() - start;
  *sent = took > 50 && took < 5000;
  return result;
}

/* An empty transaction is confirmed when everything before it is printed. */
static long confirm_what_was_sent(const char* port) {
  TransactionPrint(port, TZV_TRANSACTION_BEGIN);
  return TransactionPrint(port, TZV_TRANSACTION_END);
}

long print_confirmed(const char* port, long (*print)(const char* port)) {
  const struct timespec monitor_has_looked = {1, 0};
  int sent = 0;
  long result = print_once(port, print, &sent);
  for (int attempt = 1; result != 0 && result != TZV_FAILED && attempt < kAttempts; ++attempt) {
    printf("not confirmed: %ld, %s\n", result, in_words(result));
    /* The monitor looks twice a second: what the end has met it may not have seen yet. */
    if (result == TZV_STATUS_OFFLINE) nanosleep(&monitor_has_looked, NULL);
    if (wait_until_ready(port, result) && sent) {
      /* The printer held what it had received and prints on: ask, rather than print it twice. */
      result = confirm_what_was_sent(port);
    } else {
      /* Nobody can say what became of it. A receipt printed twice can be torn off; one that is
       * missing cannot be put back. */
      result = print_once(port, print, &sent);
    }
  }
  printf(result == 0 ? "confirmed: the receipt is printed\n" : "given up: %ld\n", result);
  return result;
}
