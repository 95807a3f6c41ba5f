/* Printing that stays with a receipt until it is on paper: for a till to copy. */
#ifndef CONFIRMED_H
#define CONFIRMED_H

/* What a status code means. */
const char* in_words(long code);

/* Waits, for a minute at most, until the claimed printer is ready; `code` is what is known of it so
 * far. Returns whether it still has what it had received: it was stopped by its cover, paper or
 * cutter, and not without power meanwhile. */
int wait_until_ready(const char* port, long code);

/* Prints as one transaction, on a port that is claimed, and sees every fault through: waits until
 * it is over, and finds out, without printing twice where that can be known, whether it came out.
 *
 * print  prints all of it, with PrintNormal and its like; 0 when nothing failed
 *
 *   0  on paper, whole
 *  -1  the port does not work, or `print` failed
 *  >0  given up after ten attempts: the last status code */
long print_confirmed(const char* port, long (*print)(const char* port));

#endif
