#include "graphics/Text.h"
#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"

namespace {

constexpr PIXEL gInk = {200, 100, 50, 0};
constexpr PIXEL gPaper = {12, 12, 12, 0};

struct PICTURE_OF_TEXT {
    EFI_STATUS Status;
    UINT16 Width = 0xEEEE;
    UINT16 Height = 0xEEEE;
    std::vector<UINT32> Colors;
};

PICTURE_OF_TEXT Render(const std::u16string& Text, const PIXEL* Ink = &gInk, const PIXEL* Paper = &gPaper)
{
    PICTURE_OF_TEXT Picture;
    TEMPORARY<PIXEL> Pixels;
    Picture.Status = StringToBlt(Ink, Paper, &Pixels.Data, &Picture.Width, &Picture.Height, Text.c_str());
    if (!EfiError(Picture.Status)) {
        for (UINTN I = 0; I < UINTN{Picture.Width} * Picture.Height; I++) {
            Picture.Colors.push_back(ColorOf(Pixels.Data[I]));
        }
    } else {
        EXPECT_EQ(Pixels.Data, nullptr);
    }
    return Picture;
}

using TEXT = TOOLKIT;

TEST_F(TEXT, HasALimitByTheFirmwaresGeneration)
{
    const struct {
        UINT8 Generation;
        UINTN Length;
        bool Taken;
    } Cases[] = {{0, 1, true},  {0, 63, true},  {0, 64, false},  {4, 0, false}, {4, 1, true},
                 {4, 64, true}, {4, 128, true}, {4, 129, false}, {5, 64, false}};
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.Generation * 1000 + Case.Length);
        Again(Case.Generation);
        const PICTURE_OF_TEXT Picture = Render(std::u16string(Case.Length, u'x'));
        EXPECT_EQ(Picture.Status, Case.Taken ? EFI_SUCCESS : EFI_INVALID_PARAMETER);
        EXPECT_EQ(Picture.Width, Case.Taken ? Case.Length * 8 : 0xEEEE);
        EXPECT_EQ(Fields("StringToImage", "text").size(), Case.Taken ? 1u : 0u);
    }
}

// The colours of a rectangle of a surface.
std::vector<UINT32> Read(const PIXEL* Surface, UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    std::vector<UINT32> Colors;
    for (UINTN Row = Y; Row < Y + Height; Row++) {
        for (UINTN Column = X; Column < X + Width; Column++) {
            Colors.push_back(ColorAt(Surface, Column, Row));
        }
    }
    return Colors;
}

// A text's picture with another colour for its paper.
std::vector<UINT32> OnGround(const PICTURE_OF_TEXT& Text, PIXEL Ground)
{
    std::vector<UINT32> Colors = Text.Colors;
    std::replace(Colors.begin(), Colors.end(), ColorOf(gPaper), ColorOf(Ground));
    return Colors;
}

using CALLS = std::vector<BLT_CALL>;

TEST_F(TEXT, InVideoAndOpaqueModeMakesAPair)
{
    const PICTURE_OF_TEXT Picture = Render(u"Help");
    (void)Blts();
    EXPECT_EQ(DrawString(300, 200, u"Help", DRAW_STRING_VIDEO, &gInk, &gPaper, gGuiCore), EFI_SUCCESS);
    EXPECT_EQ(Blts(), (CALLS{{300, 200, 32, 19, 128}})) << "the text alone, without the pointer";
    EXPECT_EQ(Read(Display(), 300, 200, 32, 19), Picture.Colors);
    EXPECT_EQ(ColorAt(gGuiCore->Screen, 300, 200), ColorOf(gScreenFill));

    const std::vector<UINT32> Shown = Read(Display(), 500, 200, 32, 19);
    EXPECT_EQ(DrawString(500, 200, u"Help", DRAW_STRING_OPAQUE, &gInk, &gPaper, gGuiCore), EFI_SUCCESS);
    EXPECT_TRUE(Blts().empty());
    EXPECT_EQ(Read(Display(), 500, 200, 32, 19), Shown);
    EXPECT_EQ(Read(gGuiCore->Screen, 500, 200, 32, 19), Picture.Colors);
}

TEST_F(TEXT, InKeyedModeBringsItsLettersAlone)
{
    const PICTURE_OF_TEXT Picture = Render(u"RPM");
    (void)Blts();
    EXPECT_EQ(DrawString(300, 200, u"RPM", DRAW_STRING_KEYED, &gInk, &gPaper, gGuiCore), EFI_SUCCESS);
    EXPECT_EQ(Blts(), (CALLS{{300, 200, 24, 19, 96}, {174, 196, 16, 24, 0}}));
    EXPECT_EQ(Read(gGuiCore->Screen, 300, 200, 24, 19), OnGround(Picture, gScreenFill));
    EXPECT_EQ(Read(Display(), 300, 200, 24, 19), OnGround(Picture, gScreenFill));

    // Ink like paper: nothing is seen, and the place is composed all the same.
    EXPECT_EQ(DrawString(500, 200, u"RPM", DRAW_STRING_KEYED, &gPaper, &gPaper, gGuiCore), EFI_SUCCESS);
    EXPECT_EQ(Blts(), (CALLS{{500, 200, 24, 19, 96}, {174, 196, 16, 24, 0}}));
    EXPECT_EQ(Read(gGuiCore->Screen, 500, 200, 24, 19), std::vector<UINT32>(24 * 19, ColorOf(gScreenFill)));
}

TEST_F(TEXT, InBoxModeStandsAtTheRightOfACleanBox)
{
    const struct {
        const CHAR16* Drawn;
        const CHAR16* Seen; // five places, blanks are the clean background
    } Cases[] = {{u"12345", u"12345"}, {u"678", u"  678"}, {u"100001", u"00001"}, {u"-7", u"   -7"}};
    for (const auto& Case : Cases) {
        SCOPED_TRACE(std::string(Case.Seen, Case.Seen + 5));
        const PICTURE_OF_TEXT Seen = Render(Case.Seen);
        (void)Blts();
        EXPECT_EQ(DrawString(300, 200, Case.Drawn, DRAW_STRING_BOX, &gInk, &gPaper, gGuiCore), EFI_SUCCESS);
        EXPECT_EQ(Blts()[0], (BLT_CALL{300, 200, 40, 19, 160}));
        EXPECT_EQ(Read(gGuiCore->Screen, 300, 200, 40, 19), OnGround(Seen, gBackgroundFill));
        EXPECT_EQ(Read(Display(), 300, 200, 40, 19), OnGround(Seen, gBackgroundFill));
    }
}

} // namespace
