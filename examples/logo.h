/* The shop's logo, so that the example needs no file beside it. */
#ifndef EXAMPLES_LOGO_H
#define EXAMPLES_LOGO_H

/* Writes it as a BMP file of one bit for each dot; 0 when it is there. */
int write_logo(const char* path);

#endif
