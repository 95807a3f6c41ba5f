/* A till for the tests that prints what its words say, and ends with 0 when all of it is printed.
 *
 *     pictures_till PORT SETTINGS WORD...
 *
 *     linear SYMBOLOGY WIDTH DATA        text below the bars, which are 80 dots high
 *     matrix SYMBOLOGY PARAM1 PARAM2 DATA
 *     matrix-at X Y SYMBOLOGY PARAM1 PARAM2 DATA
 *     text-at X Y TEXT
 *     bitmap FILE ALIGNMENT
 *     store LIST                         stored NUMBER ALIGNMENT
 *     stored-at X Y NUMBER               erase
 *     page                               end-page
 *     update FILE TYPE                   cut
 */
#define _POSIX_C_SOURCE 200809L /* nanosleep */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <tzvio.h>

static const char* port;

static long number(const char* word) {
  return strtol(word, NULL, 10);
}

static long linear(char** words) {
  return PrintBarCode(port, words[2], number(words[0]), 80, number(words[1]), TZV_ALIGN_CENTER,
                      TZV_TEXT_BELOW);
}

static long matrix(char** words) {
  return Print2DBarCode(port, words[3], 0, number(words[0]), number(words[1]), number(words[2]),
                        TZV_ALIGN_CENTER);
}

static long matrix_at(char** words) {
  return Print2DBarCodeXY(port, words[5], 0, number(words[2]), number(words[3]), number(words[4]),
                          number(words[0]), number(words[1]));
}

static long text_at(char** words) {
  return PrintTextXY(port, words[2], number(words[0]), number(words[1]));
}

static long bitmap(char** words) {
  return PrintBitmap(port, words[0], number(words[1]));
}

static long store(char** words) {
  return SaveNVBitmap(port, words[0], 0);
}

static long stored(char** words) {
  return PrintNVBitmap(port, number(words[0]), number(words[1]));
}

static long stored_at(char** words) {
  return PrintNVBitmapXY(port, number(words[2]), number(words[0]), number(words[1]));
}

static long erase(char** words) {
  (void)words;
  return DeleteNVBitmap(port);
}

static long page(char** words) {
  (void)words;
  return StartPageMode(port);
}

static long end_page(char** words) {
  (void)words;
  return EndPageMode(port);
}

static long update(char** words) {
  return UpdateFW(port, words[0], number(words[1]));
}

static long cut(char** words) {
  (void)words;
  return CutPaper(port, 100);
}

static const struct {
  const char* word;
  int arguments;
  long (*print)(char** words);
} kWords[] = {
    {"linear", 3, linear},   {"matrix", 4, matrix}, {"matrix-at", 6, matrix_at},
    {"text-at", 3, text_at}, {"bitmap", 2, bitmap}, {"store", 1, store},
    {"stored", 2, stored},   {"erase", 0, erase},   {"stored-at", 3, stored_at},
    {"page", 0, page},       {"cut", 0, cut},       {"end-page", 0, end_page},
    {"update", 2, update},
};

/* How many words it took; 0 when they are wrong or did not print. */
static int print(char** words, int count) {
  for (size_t i = 0; i < sizeof kWords / sizeof *kWords; ++i) {
    if (strcmp(words[0], kWords[i].word) != 0 || count <= kWords[i].arguments) continue;
    return kWords[i].print(words + 1) == 0 ? kWords[i].arguments + 1 : 0;
  }
  return 0;
}

static int wait_until_ready(void) {
  const struct timespec pause = {0, 10 * 1000000L};
  for (int looks = 0; looks < 3000; ++looks) {
    if (GetError(port) == TZV_STATUS_OK) return 1;
    nanosleep(&pause, NULL);
  }
  return 0;
}

int main(int argc, char** argv) {
  if (argc < 3) return 1;
  port = argv[1];
  if (OpenPort(port, argv[2]) < 0 || ClaimDevice(port, 0) != 0 || !wait_until_ready()) return 1;
  int next = 3;
  while (next < argc) {
    const int taken = print(argv + next, argc - next);
    if (taken == 0) {
      fprintf(stderr, "not printed: %s\n", argv[next]);
      return 2;
    }
    next += taken;
  }
  /* An empty transaction is confirmed when everything before it is printed. */
  TransactionPrint(port, TZV_TRANSACTION_BEGIN);
  const long result = TransactionPrint(port, TZV_TRANSACTION_END);
  ReleaseDevice(port);
  ClosePort(port);
  return result == 0 ? 0 : 3;
}
