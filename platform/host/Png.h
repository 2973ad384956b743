// PNG files of the display, written and read back.
//
// Pixels are 32-bit words in the display's order (blue in the lowest byte, then green, red, and a reserved byte), rows
// top to bottom without gaps.
#pragma once

#include <vector>

#include "uefi/Base.h"

// Writes Width by Height pixels to the file at Path, replacing it. The reserved bytes aren't looked at: every pixel of
// the file is opaque. The same pixels give the same bytes. False when the file can't be written.
bool WritePng(const char* Path, const UINT32* Pixels, unsigned Width, unsigned Height);

// Reads the file at Path, of any PNG kind; transparency is dropped and the reserved bytes are zero. False, with the
// out-arguments untouched, when it can't be read or is no PNG.
bool ReadPng(const char* Path, std::vector<UINT32>* Pixels, unsigned* Width, unsigned* Height);
