// Reads a JPEG or a BMP from memory into pixels: the one place that knows the image library.
#pragma once

#include "uefi/GraphicsOutput.h"

enum STORED_IMAGE_FORMAT : UINT8 { STORED_IMAGE_JPEG, STORED_IMAGE_BMP };

// No side is longer than this: no screen needs more, and sizes in bytes stay far from overflowing.
constexpr UINT32 gMaxImageSide = 4096;

// Gives a new pool buffer of Height rows, each Stride pixels apart; Stride is Width raised to a multiple of RowMultiple,
// and what is past Width in a row is zero. Pixels have their reserved byte 0; an alpha channel is left out.
// EFI_UNSUPPORTED: not a picture of that format, or a side beyond gMaxImageSide. EFI_VOLUME_CORRUPTED: the picture is
// damaged. EFI_OUT_OF_RESOURCES: no pool. On a failure nothing is written and nothing stays allocated.
EFI_STATUS ReadStoredImage(STORED_IMAGE_FORMAT Format, const UINT8* Image, UINT32 ImageSize, UINT32 RowMultiple,
                           EFI_GRAPHICS_OUTPUT_BLT_PIXEL** Pixels, UINT32* Width, UINT32* Height, UINT32* Stride);
