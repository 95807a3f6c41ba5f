// The commands that place the next item on a page, GS } X and GS } Y: positions in dots, which are
// not checked. Quotient and remainder are those of signed numbers, so -1 goes out as FF 00.
#pragma once

#include "dispatch/command.h"

constexpr Command<5> PrintXCommand(long PosX) {
  return command(0x1d, '}', 'X', PosX % 256, PosX / 256);
}

constexpr Command<5> PrintYCommand(long PosY) {
  return command(0x1d, '}', 'Y', PosY % 256, PosY / 256);
}
