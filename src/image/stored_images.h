// Pictures that the printer keeps.
#pragma once

#include "dispatch/transport.h"

long save_nv_bitmap(const Transport& transport, const char* portName, const char* BitmapList,
                    long ImageMode);
long print_nv_bitmap(const Transport& transport, const char* portName, long NVImageNumber,
                     long Alignment);
long print_nv_bitmap_xy(const Transport& transport, const char* portName, long NVImageNumber,
                        long PosX, long PosY);
long delete_nv_bitmap(const Transport& transport, const char* portName);
