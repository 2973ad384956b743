// Digit strip font: a picture of fourteen stacked glyphs with which the numbers of the chart scales are drawn.
#pragma once

#include "graphics/Palette.h"

struct BLT_FONT {
    PIXEL* Pixels; // working copy: its glyph blocks are handed to ComposeScreen, which may write the pointer into them
    PIXEL* Master; // untouched copy
    UINT32 X;      // where the last string was drawn
    UINT32 Y;
    UINT32 GlyphWidth;
    UINT32 GlyphHeight;
    UINT32 ImageWidth;
    UINT32 ImageHeight;
    UINT32 GlyphCount;
    const CHAR16* const* GlyphTable; // which character each glyph shows, in the order of the strip
};

// The strip's characters from its top: the ten digits, "-", ".", the degree sign (U+00F8) and "C"; ended by a null.
extern const CHAR16* const gBltFontGlyphs[];

// Loads the JPEG strip of that section into a new font. EFI_UNSUPPORTED, the font untouched, when *Font isn't null. When
// the strip can't be had *Font stays null, with a report line, and strings of the font draw nothing.
EFI_STATUS CreateBltFont(BLT_FONT** Font, UINT32 Instance, const EFI_GUID* FileGuid);

// Draws the string into a 1024-wide surface and onto the display, one glyph width a character; a character without a
// glyph leaves its place as it is. EFI_UNSUPPORTED without a surface or a font.
EFI_STATUS DrawBltFontString(BLT_FONT* Font, UINT32 X, UINT32 Y, const CHAR16* String, PIXEL* Dst);

// Frees the font; null does nothing.
EFI_STATUS DestroyBltFont(BLT_FONT* Font);
