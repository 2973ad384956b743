#include "platform/board/SystemFont.h"

#include <cstring>

#include <gtest/gtest.h>

namespace {

bool HasInk(const UINT8* Rows, UINTN From, UINTN To)
{
    for (UINTN Row = From; Row < To; Row++) {
        if (Rows[Row] != 0) {
            return true;
        }
    }
    return false;
}

} // namespace

TEST(SystemFont, HasADifferentGlyphForEveryPrintableCharacterOfAsciiAndALookForAllOfLatin1)
{
    for (CHAR16 Char = 0x21; Char < 0x7F; Char++) {
        const UINT8* Rows = SystemFontGlyph(Char);
        ASSERT_NE(Rows, nullptr) << "U+" << std::hex << static_cast<unsigned>(Char);
        EXPECT_TRUE(HasInk(Rows, 0, SYSTEM_FONT_HEIGHT));
        for (CHAR16 Other = 0x21; Other < Char; Other++) {
            EXPECT_NE(std::memcmp(Rows, SystemFontGlyph(Other), SYSTEM_FONT_HEIGHT), 0)
                << static_cast<char>(Char) << " looks like " << static_cast<char>(Other);
        }
    }
    for (CHAR16 Char = 0xA0; Char <= 0xFF; Char++) {
        EXPECT_NE(SystemFontGlyph(Char), nullptr) << "U+" << std::hex << static_cast<unsigned>(Char);
    }
}

TEST(SystemFont, ShowsTheCodeOfTheConsolesDegreeSignAsADegreeSign)
{
    const UINT8* Rows = SystemFontGlyph(0x00F8);
    ASSERT_NE(Rows, nullptr);
    EXPECT_EQ(std::memcmp(Rows, SystemFontGlyph(0x00B0), SYSTEM_FONT_HEIGHT), 0);
    // A degree sign hangs at the top, where the letter with the stroke, as its capital shows, reaches the baseline.
    EXPECT_TRUE(HasInk(Rows, 0, 8));
    EXPECT_FALSE(HasInk(Rows, 8, SYSTEM_FONT_HEIGHT));
    EXPECT_TRUE(HasInk(SystemFontGlyph(0x00D8), 8, SYSTEM_FONT_BASELINE));
}
