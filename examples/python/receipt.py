#!/usr/bin/env python3
"""Prints a receipt as one confirmed transaction.

    receipt.py PORT SETTINGS
"""

import ctypes
import sys
import time

# long is what the library's width makes it; ctypes knows.
tzvio = ctypes.CDLL("libTZVIO.so.0")
TEXT, LONG = ctypes.c_char_p, ctypes.c_long
for name, arguments in {
    "OpenPort": [TEXT, TEXT],
    "ClosePort": [TEXT],
    "ClaimDevice": [TEXT, LONG],
    "ReleaseDevice": [TEXT],
    "GetError": [TEXT],
    "TransactionPrint": [TEXT, LONG],
    "PrintNormal": [TEXT, TEXT],
    "CutPaper": [TEXT, LONG],
}.items():
    function = getattr(tzvio, name)
    function.argtypes, function.restype = arguments, LONG

BEGIN, END = 1, 0

RECEIPT = [
    b"\x1b|cA\x1b|4CCORNER SHOP\n\n",
    b"  2 Coffee, ground, 500 g            11.80\n",
    b"\x1b|rA\x1b|bC\x1b|2CTOTAL   11.80\n",
]


def wait_until_ready(port):
    for _ in range(300):
        if tzvio.GetError(port) == 0:
            break
        time.sleep(0.1)


def main():
    port, settings = (argument.encode() for argument in sys.argv[1:3])
    opened = tzvio.OpenPort(port, settings)
    if opened < 0:
        sys.exit(f"cannot use {port.decode()}: {opened}")
    tzvio.ClaimDevice(port, 0)
    wait_until_ready(port)

    tzvio.TransactionPrint(port, BEGIN)
    for line in RECEIPT:
        tzvio.PrintNormal(port, line)
    tzvio.CutPaper(port, 100)
    result = tzvio.TransactionPrint(port, END)

    print("on paper" if result == 0 else f"not confirmed: {result}")
    tzvio.ReleaseDevice(port)
    tzvio.ClosePort(port)
    sys.exit(0 if result == 0 else 1)


if __name__ == "__main__":
    main()
