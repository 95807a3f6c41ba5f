// Printing PDF417 and QR Code symbols.
#pragma once

#include "dispatch/transport.h"

long print_2d_barcode(const Transport& transport, const char* portName, const char* BarcodeData,
                      long DataLength, long Symbology, long Param1, long Param2, long Alignment);
long print_2d_barcode_xy(const Transport& transport, const char* portName, const char* BarcodeData,
                         long DataLength, long Symbology, long Param1, long Param2, long PosX,
                         long PosY);
