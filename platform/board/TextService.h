// StringToImage of the font protocol with a font of the package's own, 8 by 19 pixels a character: what the hosted firmware
// has, and what takes the place of the firmware's on machines that have none or whose letter at U+00F8 isn't the degree
// sign which the boards' strings mean by it. So the same text has the same pixels in every world.
//
// The picture is made from pool, in one of the two forms that firmwares in the field give: with row information asked for,
// one that is wider than the text, of which only the rows' cells are painted (what is beside them is zero, lines of more
// than 800 pixels are wrapped or cut); without it, one of the text's own size. Line breaks and characters without a glyph are passed over.
#pragma once

#include "shell/contract/Screen.h"
#include "uefi/Hii.h"

// Where the pictures come from.
struct TEXT_MEANS {
    VOID* (*Allocate)(UINTN Size); // a pool block, all bytes zero; null without pool
    VOID (*Free)(VOID* Block);
    // A wide picture is 800 by 600 pixels, as most firmwares give it whatever the text. Else it is a cell wider than the
    // longest row and as high as the rows: to clear 1.9 MB for a number takes many times as long as the number.
    bool Roomy = false;
};

// EFI_INVALID_PARAMETER for a null string or Blt; EFI_UNSUPPORTED for a picture of the caller's and flags that nobody
// here sets; EFI_OUT_OF_RESOURCES without pool, and then nothing is left behind.
EFI_STATUS RenderText(const TEXT_MEANS& Means, EFI_HII_OUT_FLAGS Flags, const CHAR16* String,
                      const EFI_FONT_DISPLAY_INFO* Information, EFI_IMAGE_OUTPUT** Blt, EFI_HII_ROW_INFO** RowInfoArray,
                      UINTN* RowInfoArraySize);

// Draws a string into a picture of Width x Height pixels, its upper left corner at (X, Y). What lies outside is left out.
VOID DrawText(PIXEL* Picture, UINTN Width, UINTN Height, UINTN X, UINTN Y, const CHAR16* String, PIXEL Foreground,
              PIXEL Background);

// Whether a font shows U+00F8 as a degree sign: with ink, and none of it in the lower half of the cell, where every letter
// has some.
bool ShowsDegreeSign(const EFI_HII_FONT_PROTOCOL* Font, VOID (*Free)(VOID* Block));
