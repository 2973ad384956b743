// The outline that joins the tab on top with the panel, pixel by pixel.
#include "tests/console/ConsoleBench.h"

namespace {

constexpr UINT32 gOutline = 0x00FFFF;
constexpr UINT32 gPanel = 0x242424;
constexpr UINT32 gResting = 0x2C2C2C;
constexpr UINTN gTabX[] = {275, 374, 473, 572, 672, 770, 869}; // of fans 4 to 10, 97 wide
constexpr UINTN gTabWidth = 97;

// Colour of each pixel of the outlines around and under the tabs, with the tab of one fan on top; 0 where there is none.
// The tabs' outlines are painted in the order of the fans, each over the one before, and the selected one last.
std::map<std::pair<UINTN, UINTN>, UINT32> Outlines(UINTN Selected, const std::vector<UINTN>& Tabs)
{
    std::map<std::pair<UINTN, UINTN>, UINT32> Pixels;
    const auto PaintTab = [&](UINTN Tab, UINT32 Color) {
        for (UINTN X = gTabX[Tab] - 1; X <= gTabX[Tab] + gTabWidth; X++) {
            Pixels[{X, 117}] = Color;
        }
        for (UINTN Y = 117; Y <= 219; Y++) {
            Pixels[{gTabX[Tab] - 1, Y}] = Color;
            Pixels[{gTabX[Tab] + gTabWidth, Y}] = Color;
        }
        for (UINTN X = gTabX[Tab] + 41; X <= gTabX[Tab] + 56; X++) {
            for (UINTN Y = 220; Y <= 222; Y++) {
                Pixels[{X, Y}] = Color;
            }
        }
    };
    for (UINTN X = 274; X <= 963; X++) {
        Pixels[{X, 220}] = gPanel;
    }
    for (const UINTN Tab : Tabs) {
        PaintTab(Tab, Tab == 0 ? gPanel : gResting);
    }
    for (UINTN X = 274; X <= 963; X++) {
        Pixels[{X, 547}] = gOutline;
        // The gap is as wide as the tab with its right edge.
        if (X < gTabX[Selected] || X > gTabX[Selected] + gTabWidth) {
            Pixels[{X, 220}] = gOutline;
        }
    }
    for (UINTN Y = 220; Y <= 547; Y++) {
        Pixels[{274, Y}] = gOutline;
        Pixels[{963, Y}] = gOutline;
    }
    PaintTab(Selected, gOutline);
    return Pixels;
}

void ExpectOutlines(const PICTURE& Picture, UINTN Selected, const std::vector<UINTN>& Tabs)
{
    for (const auto& [Place, Color] : Outlines(Selected, Tabs)) {
        ASSERT_EQ(PixelAt(Picture, Place.first, Place.second), Color)
            << Place.first << ", " << Place.second << " with tab " << Selected;
    }
}

TEST(Outline, FollowsTheTabOnTop)
{
    const std::vector<UINTN> All = {0, 1, 2, 3, 4, 5, 6};
    SCENE Scene;
    Scene.Turns().Screenshot("0");
    for (UINTN Tab = 6; Tab >= 1; Tab -= 1) {
        Scene.Click(static_cast<int>(gTabX[Tab]) + 20, 150).Move(600, 720).Turns(2).Screenshot(std::to_string(Tab));
    }
    const RUN Run = Scene.Turns().Play();
    for (UINTN Tab = 0; Tab < 7; Tab++) {
        ExpectOutlines(Run.Picture(std::to_string(Tab)), Tab, All);
    }
    // The panel's right edge is also where the right edge of the last tab comes down: 869 + 97 is 966, beyond it.
    EXPECT_EQ(PixelAt(Run.Picture("6"), 966, 219), gOutline);
    EXPECT_EQ(PixelAt(Run.Picture("5"), 966, 219), gResting);
}

TEST(Outline, LeavesThePlaceOfAMissingTabAlone)
{
    // The board has fans 4, 6 and 9. What stands at the place of fan 5's tab must stay as the frame's artwork has it.
    SCENE Scene("small");
    Scene.Turns().Screenshot("4").Click(790, 150).Move(600, 720).Turns(2).Screenshot("9").Turns();
    const RUN Run = Scene.Play();
    ExpectOutlines(Run.Picture("9"), 5, {0, 2, 5});
    EXPECT_TRUE(SameRectangle(Run.Picture("4"), Run.Picture("9"), 374, 117, 97, 103));
    for (const CALL_LINE& Blt : Run.Named("Blt")) {
        const bool OnTab5 = Blt.Text("operation") == "fill" && Blt.Number("x") >= 374 && Blt.Number("x") < 471 &&
                            Blt.Number("y") < 220;
        ASSERT_FALSE(OnTab5) << Blt.Number("x") << ", " << Blt.Number("y");
    }
}

TEST(Outline, IsPaintedOnAChangeOfPageAndNotByAClickOnTheTabOnTop)
{
    SCENE Scene;
    Scene.Turns().Click(394, 150);
    const UINT64 Change = Scene.TurnsSoFar - 1;
    Scene.Click(394, 150);
    const UINT64 Again = Scene.TurnsSoFar - 1;
    Scene.Ticks(2);
    const RUN Run = Scene.Play();
    const auto Fills = [&](UINT64 Turn) {
        UINTN Count = 0;
        for (const CALL_LINE& Blt : Run.NamedInTurn("Blt", Turn)) {
            Count += Blt.Text("operation") == "fill" && Blt.Number("width") == 1 && Blt.Number("height") == 1;
        }
        return Count;
    };
    EXPECT_GT(Fills(Change), 0u);
    for (UINT64 Turn = 1; Turn <= Scene.TurnsSoFar; Turn++) {
        if (Turn != Change) {
            EXPECT_EQ(Fills(Turn), 0u) << Turn << (Turn == Again ? " (the click on the tab on top)" : "");
        }
    }
}

} // namespace
