// The font of the package: an upright bitmap font with cells 8 pixels wide and 19 high, made at build
// time from a packaged console font.
#pragma once

#include "uefi/Base.h"

constexpr UINTN SYSTEM_FONT_WIDTH = 8;
constexpr UINTN SYSTEM_FONT_HEIGHT = 19;
// Row of the baseline: the first row below capital letters and digits.
constexpr UINTN SYSTEM_FONT_BASELINE = 13;

// The SYSTEM_FONT_HEIGHT row bytes of a character, top row first, the highest bit leftmost; null when the font has no
// glyph for it. U+00F8 gives the degree sign, as the fonts of the boards do whose strings the console speaks.
const UINT8* SystemFontGlyph(CHAR16 Char);
