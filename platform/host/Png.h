// PNG files of the display.
//
// Pixels are 32-bit words in the display's order (blue in the lowest byte, then green, red, and a reserved byte), rows
// top to bottom without gaps.
#pragma once

#include "uefi/Base.h"

// Writes Width by Height pixels to the file at Path, replacing it. The reserved bytes aren't looked at: every pixel of
// the file is opaque. The same pixels give the same bytes. False when the file can't be written.
bool WritePng(const char* Path, const UINT32* Pixels, unsigned Width, unsigned Height);
