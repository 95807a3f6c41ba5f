// Printing barcodes.
#pragma once

#include "dispatch/transport.h"

long print_barcode(const Transport& transport, const char* portName, const char* BarcodeData,
                   long Symbology, long Height, long Width, long Alignment, long TextPosition);
