#include "graphics/Artwork.h"

#include "graphics/BltFont.h"
#include "platform/board/ArtworkPack.h"
#include "support/Library.h"
#include "tests/gui/ToolkitBench.h"

namespace {

using ARTWORK = TOOLKIT;

PIXEL Tagged(UINTN Value) { return {static_cast<UINT8>(Value), static_cast<UINT8>(Value / 256), 0, 0}; }

TEST_F(ARTWORK, APictureWithPaddedRowsComesOutTight)
{
    std::vector<PIXEL> Padded(104 * 3);
    for (UINTN I = 0; I < Padded.size(); I++) {
        Padded[I] = Tagged(I);
    }
    TEMPORARY<PIXEL> Tight;
    ASSERT_EQ(CropBlt(&Tight.Data, 100, 3, 104, Padded.data()), EFI_SUCCESS);
    EXPECT_EQ(ColorOf(Tight.Data[99]), ColorOf(Tagged(99)));
    EXPECT_EQ(ColorOf(Tight.Data[100]), ColorOf(Tagged(104)));
    EXPECT_EQ(ColorOf(Tight.Data[299]), ColorOf(Tagged(2 * 104 + 99)));

    // Without pool: a report, and what was there stays.
    PIXEL Before;
    PIXEL* Out = &Before;
    Boot->Pool.FailFrom = 1;
    EXPECT_EQ(CropBlt(&Out, 100, 3, 104, Padded.data()), EFI_OUT_OF_RESOURCES);
    Boot->Pool.FailFrom = 0;
    EXPECT_EQ(Out, &Before);
    EXPECT_NE(Boot->Consoles.ErrorText.find("LocatePool fail"), std::string::npos);
}

TEST_F(ARTWORK, AMirrorImageTurnsEachRowRound)
{
    const PIXEL Oblong[] = {Tagged(1), Tagged(2), Tagged(3), Tagged(4), Tagged(5), Tagged(6)};
    TEMPORARY<PIXEL> Mirror;
    ASSERT_EQ(MirrorBlt(Oblong, &Mirror.Data, 3, 2), EFI_SUCCESS);
    const UINTN Expected[] = {3, 2, 1, 6, 5, 4};
    for (UINTN I = 0; I < 6; I++) {
        EXPECT_EQ(ColorOf(Mirror.Data[I]), ColorOf(Tagged(Expected[I])));
    }
}

TEST_F(ARTWORK, IsFoundUnderEitherSectionType)
{
    for (const UINT8 Type : {EFI_SECTION_RAW, EFI_SECTION_PE32}) {
        SetArtworkSectionType(Type);
        TEMPORARY<PIXEL> Picture;
        UINT32 Width = 0;
        UINT32 Height = 0;
        Boot->Trace.Lines.clear();
        EXPECT_EQ(LoadJpegBlt(20, &gArtworkFileGuid, &Picture.Data, &Width, &Height), EFI_SUCCESS);
        EXPECT_TRUE(Picture);
        EXPECT_EQ(Width, 97u);
        EXPECT_EQ(Height, 38u);
        EXPECT_EQ(Fields("GetArtworkSection", "type"), (std::vector<std::string>{std::to_string(Type)}));
    }
}

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

TEST_F(DIGITS, AreCreatedOnce)
{
    BLT_FONT* First = Font;
    EXPECT_EQ(CreateBltFont(&Font, 10, &gArtworkFileGuid), EFI_UNSUPPORTED);
    EXPECT_EQ(Font, First);
    EXPECT_EQ(Font->GlyphCount, 14u);
    EXPECT_EQ(Font->GlyphWidth, 6u);
    EXPECT_EQ(Font->GlyphHeight, 10u);
}

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
