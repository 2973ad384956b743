#include "graphics/Artwork.h"

#include "graphics/BltFont.h"
#include "tests/gui/ToolkitBench.h"

namespace {

using ARTWORK = TOOLKIT;

TEST_F(ARTWORK, ThatIsMissingLeavesNothingBehind)
{
    for (const UINT32 Instance : {1u, 12u, 99u}) {
        PIXEL* Picture = reinterpret_cast<PIXEL*>(1);
        UINT32 Width = 5;
        UINT32 Height = 5;
        EXPECT_EQ(LoadJpegBlt(Instance, &gArtworkFileGuid, &Picture, &Width, &Height), EFI_SUCCESS);
        EXPECT_EQ(Picture, nullptr);
        EXPECT_EQ(Width + Height, 0u);
    }
    constexpr EFI_GUID NoFile = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    VOID* Data = nullptr;
    UINTN Size = 0;
    EXPECT_EQ(FindImageFile(&NoFile, 0, &Data, &Size), EFI_NO_MEDIA);
    EXPECT_NE(Boot->Consoles.ErrorText.find("Can't find the image (InitCursorBlt)"), std::string::npos);
}

// The duty scale's digits: 14 glyphs of 6 by 10.
struct DIGITS : TOOLKIT {
    BLT_FONT* Font = nullptr;

    DIGITS() { EXPECT_EQ(CreateBltFont(&Font, 9, &gArtworkFileGuid), EFI_SUCCESS); }
    ~DIGITS() override { (void)DestroyBltFont(Font); }

    bool Shows(const PIXEL* Surface, UINTN X, UINTN Y, UINTN Glyph) const
    {
        for (UINTN I = 0; I < 60; I++) {
            if (ColorAt(Surface, X + I % 6, Y + I / 6) != ColorOf(Font->Master[Glyph * 60 + I])) {
                return false;
            }
        }
        return true;
    }
    bool IsUntouched(UINTN X, UINTN Y, UINTN Width) const
    {
        for (UINTN I = 0; I < Width * 10; I++) {
            if (ColorAt(gGuiCore->Screen, X + I % Width, Y + I / Width) != ColorOf(gScreenFill)) {
                return false;
            }
        }
        return true;
    }
};

TEST_F(DIGITS, LeaveThePlaceOfAnUnknownCharacterAlone)
{
    EXPECT_EQ(DrawBltFontString(Font, 300, 200, u"1 0x-.\u00F8C", gGuiCore->Screen), EFI_SUCCESS);
    EXPECT_TRUE(Shows(gGuiCore->Screen, 300, 200, 1));
    EXPECT_TRUE(IsUntouched(306, 200, 6));
    EXPECT_TRUE(Shows(gGuiCore->Screen, 312, 200, 0));
    EXPECT_TRUE(IsUntouched(318, 200, 6));
    for (UINTN I = 0; I < 4; I++) {
        EXPECT_TRUE(Shows(gGuiCore->Screen, 324 + I * 6, 200, 10 + I)) << I;
        EXPECT_TRUE(Shows(Display(), 324 + I * 6, 200, 10 + I)) << I;
    }
    EXPECT_TRUE(IsUntouched(348, 200, 6));
    EXPECT_FALSE(Shows(gGuiCore->Screen, 300, 200, 0)) << "glyphs differ";

    (void)Blts();
    EXPECT_EQ(DrawBltFontString(Font, 7, 8, u"1", nullptr), EFI_UNSUPPORTED);
    EXPECT_EQ(Font->X, 7u);
    EXPECT_EQ(Font->Y, 8u);
    EXPECT_EQ(DrawBltFontString(Font, 300, 300, u"", gGuiCore->Screen), EFI_SUCCESS);
    EXPECT_TRUE(Blts().empty());
}

TEST_F(DIGITS, KeepNoTraceOfThePointer)
{
    // A held pointer over the string goes into the blocks that are composed, and not into the next string.
    gGuiCore->MouseState = L_HOLD;
    gGuiCore->PointerX = 300;
    gGuiCore->PointerY = 200;
    EXPECT_EQ(DrawBltFontString(Font, 300, 200, u"111", gGuiCore->Screen), EFI_SUCCESS);
    EXPECT_TRUE(Shows(gGuiCore->Screen, 300, 200, 1));
    EXPECT_TRUE(Shows(gGuiCore->Screen, 312, 200, 1)) << "nor into a later place of the same string";
    EXPECT_FALSE(Shows(Display(), 300, 200, 1)) << "the pointer stays in sight";
    EXPECT_EQ(DrawBltFontString(Font, 500, 200, u"1", gGuiCore->Screen), EFI_SUCCESS);
    EXPECT_TRUE(Shows(gGuiCore->Screen, 500, 200, 1));
    EXPECT_TRUE(Shows(Display(), 500, 200, 1));
}

} // namespace
