/* The examples of the manual's pages, each in a function of its own. */
#ifndef MANUAL_EXAMPLES_H
#define MANUAL_EXAMPLES_H

#ifdef __cplusplus
extern "C" {
#endif

struct ManualExample {
  const char* name; /* the operation, or the picture of an escape sequence */
  void (*run)(const char* port, const char* settings);
  int port_closed;       /* it opens the port itself */
  const char* sends[4];  /* bytes in hexadecimal numbers, by link: serial, parallel, USB, network */
  const char* prints[4]; /* on standard output */
};

extern const struct ManualExample kManualExamples[];
extern const int kManualExampleCount;

#ifdef __cplusplus
}
#endif

#endif
