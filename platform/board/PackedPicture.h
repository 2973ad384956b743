// A picture as the artwork pack stores those whose JPEG would take long to decode: mostly references to what stands to the
// left and above, so that reading one is little more than copying it. The image decoder takes it in a JPEG's place.
//
// Layout, little-endian: 4 bytes "VTRP", 16-bit width, 16-bit height; then steps that fill the rows one after the other, a
// row being the width raised to a multiple of eight, with zeros past it. A step is 16 bits: its number of pixels less one in
// the lower 14, in the upper two what they are: PACKED_NEW pixels that follow, of 3 bytes each (blue, green, red),
// PACKED_LEFT ones like the last, PACKED_ABOVE ones like those a row earlier.
#pragma once

#include "platform/board/StoredImage.h"

enum PACKED_STEP : UINT8 { PACKED_NEW = 0, PACKED_LEFT = 1, PACKED_ABOVE = 2 };

constexpr UINT8 gPackedSignature[4] = {'V', 'T', 'R', 'P'};
constexpr UINT32 gPackedHeadSize = 8;
constexpr UINT32 gPackedRowMultiple = 8;
constexpr UINT32 gPackedMostPixels = 1u << 14; // of a step

bool IsPackedPicture(const UINT8* Image, UINT32 ImageSize);

// As ReadStoredImage.
EFI_STATUS ReadPackedPicture(const UINT8* Image, UINT32 ImageSize, EFI_GRAPHICS_OUTPUT_BLT_PIXEL** Pixels,
                             UINT32* Width, UINT32* Height, UINT32* Stride);
