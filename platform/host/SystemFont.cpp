#include "platform/host/SystemFont.h"

#include <algorithm>
#include <iterator>

namespace {

struct SYSTEM_FONT_GLYPH {
    CHAR16 Char;
    UINT8 Rows[SYSTEM_FONT_HEIGHT];
};

// In ascending order of the characters; made by tools/make_system_font.py.
constexpr SYSTEM_FONT_GLYPH gGlyphs[] = {
#include "SystemFontTable.inc"
};

constexpr CHAR16 gOSlash = 0x00F8;
constexpr CHAR16 gDegreeSign = 0x00B0;

} // namespace

const UINT8* SystemFontGlyph(CHAR16 Char)
{
    if (Char == gOSlash) {
        Char = gDegreeSign;
    }
    const SYSTEM_FONT_GLYPH* Glyph =
        std::lower_bound(std::begin(gGlyphs), std::end(gGlyphs), Char,
                         [](const SYSTEM_FONT_GLYPH& Entry, CHAR16 Wanted) { return Entry.Char < Wanted; });
    if (Glyph == std::end(gGlyphs) || Glyph->Char != Char) {
        return nullptr;
    }
    return Glyph->Rows;
}
