#include "platform/board/SystemFont.h"

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
    const CHAR16 Wanted = Char == gOSlash ? gDegreeSign : Char;
    UINTN First = 0;
    UINTN Behind = sizeof(gGlyphs) / sizeof(gGlyphs[0]);
    while (First < Behind) {
        const UINTN Middle = (First + Behind) / 2;
        if (gGlyphs[Middle].Char == Wanted) {
            return gGlyphs[Middle].Rows;
        }
        if (gGlyphs[Middle].Char < Wanted) {
            First = Middle + 1;
        } else {
            Behind = Middle;
        }
    }
    return nullptr;
}
