// The one screen that the console and its board speak of, and the cell of a character of its texts.
#pragma once

#include "uefi/GraphicsOutput.h"

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

constexpr UINT32 gScreenWidth = 1024;
constexpr UINT32 gScreenHeight = 768;
constexpr UINTN gScreenBytes = 0x300000; // 1024 x 768 pixels of 4 bytes

// A character of the texts' font, in pixels.
constexpr UINT32 gCharacterWidth = 8;
constexpr UINT32 gCharacterHeight = 19;

// No picture of the catalogue is larger than the screen; a decoder's word for anything beyond this isn't taken.
constexpr UINT32 gLargestSide = 4096;
constexpr bool PlausibleSize(UINT32 Width, UINT32 Height)
{
    return Width > 0 && Height > 0 && Width <= gLargestSide && Height <= gLargestSide;
}
