// A PNG without compression: a few lines of code, and no memory but the file's own.
#pragma once

#include "uefi/GraphicsOutput.h"

// The size of the file in bytes. Width is at most 21000, so that a row fits into a block.
UINTN StoredPngSize(UINT32 Width, UINT32 Height);
// Writes all of the file to Out. Pixels are rows from top to bottom without gaps; their reserved bytes aren't looked at.
VOID BuildStoredPng(UINT8* Out, const EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Pixels, UINT32 Width, UINT32 Height);
