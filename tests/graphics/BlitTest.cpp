#include "shell/Board.h"
#include "tests/gui/ToolkitBench.h"

namespace {

constexpr PIXEL gDot = {1, 2, 3, 9};

using BLIT = TOOLKIT;

bool Same(PIXEL A, PIXEL B)
{
    return A.Blue == B.Blue && A.Green == B.Green && A.Red == B.Red && A.Reserved == B.Reserved;
}

TEST_F(BLIT, PasteRefusesAPlaceBeyondTheSurface)
{
    PIXEL* Screen = gGuiCore->Screen;
    EXPECT_EQ(PasteBlt(&gDot, 1, 1, 1024, 5, Screen), EFI_OUT_OF_RESOURCES);
    EXPECT_EQ(PasteBlt(&gDot, 1, 1, 5, 768, Screen), EFI_OUT_OF_RESOURCES);
    EXPECT_EQ(ColorAt(Screen, 0, 6), ColorOf(gScreenFill)) << "nothing ran over into the next row";
    EXPECT_EQ(PasteBlt(&gDot, 1, 0, 5, 5, Screen), EFI_SUCCESS);
    EXPECT_TRUE(Same(Screen[5 * 1024 + 5], gScreenFill));
    EXPECT_EQ(PasteBlt(&gDot, 1, 1, 1023, 767, Screen), EFI_SUCCESS);
    EXPECT_TRUE(Same(Screen[767 * 1024 + 1023], gDot)) << "all four bytes are copied";
}

TEST_F(BLIT, ExtractTakesItsVerticalOffsetFirstAndLeavesWhatHasNoSource)
{
    PIXEL Source[3 * 4]; // 3 wide, 4 high; blue tells column and row
    for (UINT8 I = 0; I < 12; I++) {
        Source[I] = {static_cast<UINT8>(I / 3 * 10 + I % 3), 0, 0, 7};
    }
    PIXEL Target[2 * 3] = {};
    EXPECT_EQ(ExtractBlt(Target, 2, 3, Source, 3, 4, 2, 1), EFI_SUCCESS); // down 2, right 1
    const UINT8 Expected[] = {21, 22, 31, 32, 0, 0};
    for (UINTN I = 0; I < 6; I++) {
        EXPECT_EQ(Target[I].Blue, Expected[I]) << I;
    }
    EXPECT_EQ(Target[0].Reserved, 7);
}

TEST_F(BLIT, OverlayDecidesByKeyThenBlendThenCopy)
{
    const PIXEL Source = {200, 100, 250, 8};
    const PIXEL Under = {100, 200, 50, 5};
    const PIXEL SameButReserved = {200, 100, 250, 77};
    const PIXEL Other = {200, 100, 251, 8};
    const struct {
        const char* Story;
        const PIXEL* Key;
        const PIXEL* Blend;
        UINT8 Percent;
        PIXEL Result;
    } Cases[] = {
        {"neither: the four bytes are copied", nullptr, nullptr, 50, Source},
        {"the key, whatever its reserved byte: nothing", &SameButReserved, nullptr, 0, Under},
        {"another key: a copy", &Other, nullptr, 0, Source},
        {"the blend colour: a mix, the reserved byte stays", nullptr, &SameButReserved, 50, {150, 150, 150, 5}},
        {"another blend colour: a copy", nullptr, &Other, 50, Source},
        {"key and blend alike: the key comes first", &Source, &Source, 50, Under},
        // 99 parts of 100 and 1 of 200 are 101; 99 of 200 and 1 of 100 are 199; 99 of 50 and 1 of 250 are 52.
        {"0 counts as 1", nullptr, &Source, 0, {101, 199, 52, 5}},
        {"1", nullptr, &Source, 1, {101, 199, 52, 5}},
        // 1 part of 100 and 99 of 200 are 199; 1 of 200 and 99 of 100 are 101; 1 of 50 and 99 of 250 are 248.
        {"99", nullptr, &Source, 99, {199, 101, 248, 5}},
        {"100 counts as 99", nullptr, &Source, 100, {199, 101, 248, 5}},
        {"255 counts as 99", nullptr, &Source, 255, {199, 101, 248, 5}},
    };
    for (const auto& Case : Cases) {
        PIXEL Target = Under;
        EXPECT_EQ(OverlayBlt(&Source, 1, 1, &Target, 1, 1, 0, 0, Case.Key, Case.Blend, Case.Percent), EFI_SUCCESS);
        EXPECT_TRUE(Same(Target, Case.Result)) << Case.Story << ": " << std::hex << ColorOf(Target);
    }
}

TEST_F(BLIT, OverlayCutsAtEveryEdge)
{
    PIXEL Source[10 * 2];
    for (UINT8 I = 0; I < 20; I++) {
        Source[I] = {static_cast<UINT8>(100 + I), 0, 0, 0};
    }
    const auto Row = [&Source](INT32 X, INT32 Y) {
        PIXEL Target[8 * 2] = {};
        EXPECT_EQ(OverlayBlt(Source, 10, 2, Target, 8, 2, X, Y, nullptr, nullptr, 0), EFI_SUCCESS);
        std::vector<int> Blues;
        for (const PIXEL& Pixel : Target) {
            Blues.push_back(Pixel.Blue);
        }
        return Blues;
    };
    using BLUES = std::vector<int>;
    EXPECT_EQ(Row(-3, 0), (BLUES{103, 104, 105, 106, 107, 108, 109, 0, 113, 114, 115, 116, 117, 118, 119, 0}));
    EXPECT_EQ(Row(6, 0), (BLUES{0, 0, 0, 0, 0, 0, 100, 101, 0, 0, 0, 0, 0, 0, 110, 111}));
    EXPECT_EQ(Row(-9, -1), (BLUES{119, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    const BLUES Nothing(16, 0);
    EXPECT_EQ(Row(-10, 0), Nothing);
    EXPECT_EQ(Row(0, -2), Nothing);
    EXPECT_EQ(Row(8, 0), Nothing);
    EXPECT_EQ(Row(0, 2), Nothing);
}

TEST_F(BLIT, GrayLeavesCutOutsAsTheyAre)
{
    PIXEL Picture[] = {{50, 100, 200, 3}, {255, 0, 255, 9}, {255, 1, 255, 0}, {0, 0, 0, 1}};
    EXPECT_EQ(GrayBlt(Picture, 2, 2, Picture, 2, 2), EFI_SUCCESS);
    // 59.8 of red, 58.7 of green and 5.7 of blue are 124.2.
    EXPECT_TRUE(Same(Picture[0], {124, 124, 124, 3})) << int{Picture[0].Blue};
    EXPECT_TRUE(Same(Picture[1], {255, 0, 255, 9}));
    // 76.245, 0.587 and 29.07: nearly the key is not the key.
    EXPECT_TRUE(Same(Picture[2], {105, 105, 105, 0})) << int{Picture[2].Blue};
    EXPECT_TRUE(Same(Picture[3], {0, 0, 0, 1}));
}

} // namespace
