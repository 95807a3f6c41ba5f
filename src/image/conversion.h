// Pixels -> one-bit rows -> columns of dots.
#pragma once

#include "image/bit_kernels.h"
#include "image/bmp_format.h"

/// Turns the pixels of a file into one-bit rows in the file's order, in a buffer of
/// `geometry.tmpbitsSize` bytes. `first_colour` is entry 0 of the colour table.
BitRows to_one_bit(const Geometry& geometry, const RGBQUAD& first_colour,
                   const std::uint8_t* pixels, std::uint8_t* buffer);

/// Turns one-bit rows into the columns of a raster, 8 x `newX` x `newY` bytes that are zero; dots
/// outside the picture are white.
void to_columns(const Geometry& geometry, const BitRows& rows, std::uint8_t* data);
