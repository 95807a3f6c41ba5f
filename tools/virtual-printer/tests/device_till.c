/* Does one thing after another with a device, and says what came of each.
 *
 *     device_till NAME
 * [claim|release|compat|nibble|status|dsr|query|write:N|all:N|read|gone|back]...
 *
 * `query` asks for one byte of status; `write` writes N line feeds in one call, `all` as many calls
 * as it takes; `read` waits for bytes; `gone` waits until a write fails, and `back` until the name
 * can be opened again. */
#include <errno.h>
#include <fcntl.h>
#include <linux/ppdev.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

enum { kPauseMs = 5, kMostPauses = 6000 };

static const char* name;
static int device = -1;
static char line_feeds[4096];

static void say(const char* what, long result) {
  printf("%s %ld%s%s\n", what, result, result < 0 ? " " : "", result < 0 ? strerror(errno) : "");
}

static void open_device(void) {
  device = open(name, O_RDWR | O_NOCTTY | O_NONBLOCK);
}

static long write_all(long length) {
  long written = 0;
  for (int pauses = 0; written < length && pauses < kMostPauses; ++pauses) {
    const ssize_t some = write(device, line_feeds, (size_t)(length - written));
    if (some > 0) written += some;
    if (some <= 0) poll(NULL, 0, kPauseMs);
  }
  return written;
}

static long read_some(void) {
  char bytes[64];
  ssize_t length = -1;
  for (int pauses = 0; length < 0 && pauses < kMostPauses; ++pauses) {
    length = read(device, bytes, sizeof bytes);
    if (length < 0) poll(NULL, 0, kPauseMs);
  }
  return length;
}

static long wait_until_gone(void) {
  long result = 0;
  for (int pauses = 0; result >= 0 && pauses < kMostPauses; ++pauses) {
    result = write(device, line_feeds, 1);
    if (result >= 0) poll(NULL, 0, kPauseMs);
  }
  return result;
}

static long wait_until_back(void) {
  close(device);
  open_device();
  for (int pauses = 0; device < 0 && pauses < kMostPauses; ++pauses) {
    poll(NULL, 0, kPauseMs);
    open_device();
  }
  return device < 0 ? -1 : 0;
}

static long negotiate(int mode) {
  return ioctl(device, PPNEGOT, &mode);
}

static long status(void) {
  unsigned char value = 0;
  return ioctl(device, PPRSTATUS, &value) < 0 ? -1 : value & 0x88;
}

static long dsr(void) {
  int lines = 0;
  return ioctl(device, TIOCMGET, &lines) < 0 ? -1 : (lines & TIOCM_DSR) != 0;
}

static long act(const char* word) {
  if (strcmp(word, "claim") == 0) return ioctl(device, PPCLAIM);
  if (strcmp(word, "release") == 0) return ioctl(device, PPRELEASE);
  if (strcmp(word, "compat") == 0) return negotiate(256);
  if (strcmp(word, "nibble") == 0) return negotiate(0);
  if (strcmp(word, "status") == 0) return status();
  if (strcmp(word, "dsr") == 0) return dsr();
  if (strcmp(word, "read") == 0) return read_some();
  if (strcmp(word, "gone") == 0) return wait_until_gone();
  if (strcmp(word, "back") == 0) return wait_until_back();
  if (strncmp(word, "all:", 4) == 0) return write_all(strtol(word + 4, NULL, 10));
  if (strncmp(word, "write:", 6) == 0) {
    return write(device, line_feeds, (size_t)strtol(word + 6, NULL, 10));
  }
  if (strcmp(word, "query") == 0) return write(device, "\x10\x04\x01", 3);
  fprintf(stderr, "no such word: %s\n", word);
  exit(EXIT_FAILURE);
}

int main(int argc, char** argv) {
  if (argc < 2) return EXIT_FAILURE;
  setvbuf(stdout, NULL, _IOLBF, 0);
  name = argv[1];
  memset(line_feeds, '\n', sizeof line_feeds);
  open_device();
  if (device < 0) say("open", device);
  for (int i = 2; i < argc && device >= 0; ++i) say(argv[i], act(argv[i]));
  return 0;
}
