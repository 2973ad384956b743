// StringToImage of the font protocol: a string in the system font, 8 by 19 pixels a character, as a picture.
//
// Without a picture of the caller's, one is made from pool, in one of the two forms that firmwares in the field give:
// with row information asked for, a wide one of 800 by 600 of which only the rows' cells are painted (what is beside them
// is zero, wider lines are wrapped or cut), or with BOOT_OPTIONS::LowTextPictures one of 800 by the rows' height, so that
// nothing lies below the text; without it, one of the text's own size. With a picture of the caller's, or the
// display itself, the text is drawn there at (X, Y) and cut at the edges.
#pragma once

#include "uefi/Hii.h"

struct BOOT;

constexpr UINT16 gWideImageWidth = 800;
constexpr UINT16 gWideImageHeight = 600;

// EFI_INVALID_PARAMETER for a null string or Blt and for flags that contradict each other; EFI_OUT_OF_RESOURCES without
// pool, and then nothing is left behind; the warning 1 when a character had no glyph and wasn't to be passed over.
EFI_STATUS RenderString(BOOT& Boot, EFI_HII_OUT_FLAGS Flags, const CHAR16* String,
                        const EFI_FONT_DISPLAY_INFO* Information, EFI_IMAGE_OUTPUT** Blt, UINTN X, UINTN Y,
                        EFI_HII_ROW_INFO** RowInfoArray, UINTN* RowInfoArraySize, UINTN* ColumnInfoArray);
