// StringToImage of the font protocol: a string in the system font, 8 by 19 pixels a character, as a picture.
//
// The picture is made from pool, in one of the two forms that firmwares in the field give: with row information asked
// for, a wide one of 800 by 600 of which only the rows' cells are painted (what is beside them is zero, wider lines are
// wrapped or cut), or with BOOT_OPTIONS::LowTextPictures one of 800 by the rows' height, so that nothing lies below the
// text; without it, one of the text's own size. Line breaks and characters without a glyph are passed over.
#pragma once

#include "uefi/Hii.h"

struct BOOT;

constexpr UINT16 gWideImageWidth = 800;
constexpr UINT16 gWideImageHeight = 600;

// EFI_INVALID_PARAMETER for a null string or Blt; EFI_UNSUPPORTED for a picture of the caller's and flags that nobody
// here sets; EFI_OUT_OF_RESOURCES without pool, and then nothing is left behind.
EFI_STATUS RenderString(BOOT& Boot, EFI_HII_OUT_FLAGS Flags, const CHAR16* String,
                        const EFI_FONT_DISPLAY_INFO* Information, EFI_IMAGE_OUTPUT** Blt,
                        EFI_HII_ROW_INFO** RowInfoArray, UINTN* RowInfoArraySize);
