#include "logo.h"

#include <stdio.h>
#include <stdlib.h>

enum {
  kWidth = 192,
  kHeight = 72,
  kRowBytes = kWidth / 8, /* a multiple of four, as the format wants it */
  kMast = 92,
  kDeck = 48,
  kKeel = 60
};

/* A boat in the harbour, by the dot's distance from its mast and from the top. */
static int is_black(int x, int y) {
  const int right = x - kMast;
  const int up = kDeck - y;
  if (y >= kKeel) return (y - kKeel + abs(x % 24 - 12)) % 12 < 3;          /* waves */
  if (y >= kDeck) return abs(right) < 52 - 2 * (y - kDeck);                /* hull */
  if (right == 0 || right == 1) return y >= 4;                             /* mast */
  if (right > 4) return up > 4 && up < 40 && right < 44 - up;              /* sail */
  return right < -3 && up > 4 && up < 32 && right > up - 36 && up % 6 > 1; /* striped foresail */
}

static void put_number(FILE* file, unsigned long number, int bytes) {
  for (; bytes > 0; --bytes, number /= 256) fputc((int)(number % 256), file);
}

static void put_headers(FILE* file) {
  enum { kPixelsAt = 14 + 40 + 8, kPixels = kRowBytes * kHeight };
  fputs("BM", file);
  put_number(file, kPixelsAt + kPixels, 4);
  put_number(file, 0, 4);
  put_number(file, kPixelsAt, 4);
  put_number(file, 40, 4);
  put_number(file, kWidth, 4);
  put_number(file, kHeight, 4);
  put_number(file, 1, 2); /* plane */
  put_number(file, 1, 2); /* bit for each dot */
  put_number(file, 0, 4); /* not compressed */
  put_number(file, kPixels, 4);
  put_number(file, 7092, 4); /* dots to the metre, both ways */
  put_number(file, 7092, 4);
  put_number(file, 0, 4);
  put_number(file, 0, 4);
  put_number(file, 0xffffff, 4); /* colour 0 is white, so that a set bit prints */
  put_number(file, 0x000000, 4);
}

int write_logo(const char* path) {
  FILE* const file = fopen(path, "wb");
  if (file == NULL) return -1;
  put_headers(file);
  for (int y = kHeight - 1; y >= 0; --y) { /* the lowest row first */
    for (int x = 0; x < kWidth; x += 8) {
      int byte = 0;
      for (int dot = x; dot < x + 8; ++dot) byte = byte * 2 + is_black(dot, y);
      fputc(byte, file);
    }
  }
  return fclose(file);
}
