// Dragging the thumb of a slider: how the offset follows the pointer, where it snaps, what it shows meanwhile.
#include "tests/console/ConsoleBench.h"

namespace {

// The slider of fan 9 on the board "full": level 2 of 6, so the thumb's top stands 120 below the control's, at y 382 to
// 421; the column runs from x 382 to 411, the band from y 262 to 502.
constexpr UINTN gSliderX = 382;
constexpr UINTN gSliderY = 262;
constexpr UINTN gSliderWidth = 391;
constexpr UINTN gSliderHeight = 241;

UINT32 SliderPixel(const PICTURE& Picture, UINTN X, UINTN Y)
{
    return PixelAt(Picture, gSliderX + X, gSliderY + Y);
}

SCENE OnPage9()
{
    SCENE Scene;
    Scene.Click(800, 150);
    return Scene;
}

// The record of a fan that has a level alone.
std::string FixedLevel(int Level)
{
    return Record("00 00 00 00 00 00 00 00 00 00 0" + std::to_string(Level));
}

TEST(Slider, FollowsThePointerFromItsGrabPointAndStopsAtItsEnds)
{
    struct {
        int GrabY; // anywhere on the thumb
        std::vector<std::pair<int, int>> Through;
        int Written; // level counted from 1
    } const Cases[] = {
        {383, {{397, 303}}, 5},               // 80 up: two rows, whatever the grab point
        {420, {{397, 340}}, 5},               // the same from the thumb's foot
        {402, {{397, 441}}, 2},               // 39 down: nearest is one row down
        {402, {{900, 362}}, 4},               // beside the column the thumb still follows
        {402, {{10, 442}}, 2},                // on its other side too
        {402, {{397, 100}}, 6},               // above: the top
        {402, {{397, 700}}, 1},               // below: the bottom
        {402, {{397, 263}}, 6},               // inside the band, and further than the thumb can go: 120 - 139
        {402, {{397, 501}}, 1},               // 120 + 99
        {402, {{397, 442}, {900, 100}}, 2},   // beyond the band beside the column: the last offset
        {402, {{397, 442}, {10, 760}}, 2},
        {402, {{397, 442}, {382, 300}}, 2},   // the exact lines keep the last offset too
        {402, {{397, 442}, {412, 300}}, 2},
        {402, {{397, 442}, {397, 262}}, 2},
        {402, {{397, 442}, {397, 502}}, 2},
        {402, {{397, 442}, {381, 300}}, 6},   // and their neighbours don't: 120 - 102, nearest to 0
        {402, {{397, 442}, {413, 300}}, 6},
    };
    SCENE Scene = OnPage9();
    std::vector<std::string> Expected;
    for (const auto& Case : Cases) {
        Scene.Drag(397, Case.GrabY, Case.Through).Key("c"); // Cancel puts the thumb back
        Expected.push_back("9:" + FixedLevel(Case.Written));
    }
    EXPECT_EQ(Scene.Play().AllSettings(), Expected);
}

TEST(Slider, SnapsToTheNearestRowAndFromTheMiddleToTheLowerOne)
{
    SCENE Scene = OnPage9();
    Scene.Drag(397, 402, {{397, 402 - 20}}).Key("c"); // offset 100: the middle of the rows at 80 and 120
    Scene.Drag(397, 402, {{397, 402 - 21}}).Key("c"); // offset 99
    Scene.Drag(397, 402, {{397, 402 + 19}}).Key("c"); // offset 139
    Scene.Drag(397, 402, {{397, 402 + 20}});          // offset 140
    EXPECT_EQ(Scene.Play().Settings(9),
              (std::vector<std::string>{FixedLevel(3), FixedLevel(4), FixedLevel(3), FixedLevel(2)}));
}

TEST(Slider, TakesTheLastDragsOffsetWhenLetGoBeforeItsFirstStep)
{
    SCENE Scene = OnPage9();
    // No drag so far: offset 0, the top level. A short press ends a drag like a long one.
    Scene.Move(397, 402).Press().Turns().Release(50000).Turns(2);
    Scene.Key("c");
    // The other slider's drag leaves offset 160; fan 10 stands at level 4 of 0 to 5, its thumb at y 302 to 341.
    Scene.Click(900, 150).Drag(397, 322, {{397, 442}});
    Scene.Click(800, 150).Move(397, 402).Press().Turns().Release(50000).Turns(2);
    EXPECT_EQ(Scene.Play().AllSettings(), (std::vector<std::string>{"9:" + FixedLevel(6), "10:" + FixedLevel(2),
                                                                    "9:" + FixedLevel(2)}));
}

TEST(Slider, ThePictureShowsGridColumnAndGuideLineDuringTheDragAndThePlainPanelAtRest)
{
    SCENE Scene = OnPage9();
    Scene.Move(900, 700).Turns(2).Screenshot("rest");
    Scene.Move(397, 402).Press().Turns(2).Move(397, 412).Turns().Screenshot("drag"); // offset 130
    Scene.Turns().Release(10000).Turns().Move(900, 700).Turns(2).Screenshot("dropped").Turns();
    const RUN Run = Scene.Play();
    EXPECT_EQ(Run.Settings(9), std::vector<std::string>{FixedLevel(3)}); // 130 is nearest to 120

    const PICTURE& Rest = Run.Picture("rest");
    const PICTURE& Drag = Run.Picture("drag");
    // At rest all is panel but the thumb's block.
    EXPECT_EQ(CountColor(Rest, 0x242424, gSliderX, gSliderY, gSliderWidth, 120), gSliderWidth * 120);
    EXPECT_EQ(CountColor(Rest, 0x242424, gSliderX + 30, gSliderY, gSliderWidth - 30, gSliderHeight),
              (gSliderWidth - 30) * gSliderHeight);
    EXPECT_EQ(CountColor(Rest, 0x242424, gSliderX, gSliderY + 160, gSliderWidth, 81), gSliderWidth * 81);
    EXPECT_EQ(SliderPixel(Rest, 15, 140), 0xE8EAEBu); // the thumb's bright line, 20 below its top
    EXPECT_TRUE(SameRectangle(Rest, Run.Picture("dropped"), gSliderX, gSliderY, gSliderWidth, gSliderHeight));

    constexpr UINT32 Red = 0xFF4324;
    constexpr UINT32 Line = 0x242424;
    constexpr UINT32 Cell = 0x2C2C2C;
    constexpr UINT32 TintedCell = 0x56302A; // 80% of 44, 44, 44 and 20% of 255, 67, 36
    constexpr UINT32 TintedLine = 0x4F2A24; // 80% of 36, 36, 36 and the same
    // The border is 99% of the colour over 1% of the tinted ground: 253, 66, 36 on either.
    struct {
        UINTN X;
        UINTN Y;
        UINT32 Color;
    } const Pixels[] = {
        {45, 20, Cell}, {60, 20, Line}, {61, 20, Line}, {62, 20, Cell}, {45, 40, Line}, {45, 41, Line}, {45, 42, Cell},
        {390, 20, Line}, {45, 240, Line},
        {15, 20, TintedCell}, {1, 20, TintedLine}, {2, 20, TintedCell}, {15, 40, TintedLine}, {15, 41, TintedLine},
        {15, 42, TintedCell}, {28, 20, TintedCell}, {30, 20, Line},
        // The guide line 20 below the thumb's top, across the whole width; the thumb lies over it.
        {30, 150, Red}, {200, 150, Red}, {390, 150, Red}, {200, 149, Cell}, {200, 151, Cell},
    };
    for (const auto& Pixel : Pixels) {
        EXPECT_EQ(SliderPixel(Drag, Pixel.X, Pixel.Y), Pixel.Color) << Pixel.X << ", " << Pixel.Y;
    }
    EXPECT_EQ(SliderPixel(Drag, 0, 20), 0xFD4224u);  // ground 4F2A24
    EXPECT_EQ(SliderPixel(Drag, 29, 20), 0xFD4224u); // ground 56302A
    EXPECT_EQ(SliderPixel(Drag, 5, 150), 0xE8EAEBu); // the thumb's bright line
}

TEST(Slider, OfAPageWithACurveTakesADragOnlyWhileTheBoxIsOff)
{
    // Fan 7 comes up checked; its slider stands at level 2, hidden. With the box off it is live, and keeps the nodes.
    SCENE Scene;
    Scene.Click(600, 150);
    Scene.Drag(397, 402, {{397, 362}});
    Scene.Click(296, 242);
    Scene.Drag(397, 402, {{397, 362}});
    Scene.Click(296, 242);
    Scene.Drag(397, 362, {{397, 322}});
    EXPECT_EQ(Scene.Play().AllSettings(), (std::vector<std::string>{
                                              "7:" + Record("01 07 05 03 01 01 02 04 06 00 03"), // the tab
                                              "7:" + Record("00 07 05 03 01 01 02 04 06 00 03"), // unchecked
                                              "7:" + Record("00 07 05 03 01 01 02 04 06 00 04"), // dropped
                                              "7:" + Record("01 07 05 03 01 01 02 04 06 00 04"), // checked
                                          }));
}

TEST(Slider, OfAPageThatOnlyHoldsItsLevelIsNeverReached)
{
    SCENE Scene;
    Scene.Click(500, 150); // fan 6: checked
    Scene.Drag(397, 402, {{397, 362}});
    Scene.Click(296, 242); // unchecked: neither frame nor slider is live
    Scene.Drag(397, 402, {{397, 362}});
    EXPECT_EQ(Scene.Play().AllSettings(), (std::vector<std::string>{
                                              "6:" + Record("01 07 05 03 01 01 02 04 06 00 03"),
                                              "6:" + Record("00 07 05 03 01 01 02 04 06 00 03"),
                                          }));
}

} // namespace
