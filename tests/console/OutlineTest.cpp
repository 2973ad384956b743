// The outline that joins the tab on top with the panel. Its pixels are in the reference pictures.
#include "tests/console/ConsoleBench.h"

namespace {

// Whether a tab is joined with the panel: its sides down to it, and the gap between them.
bool IsJoined(const PICTURE& Picture, int Fan)
{
    const AREA At = Tab(Fan);
    const auto Cyan = [&](int X, int Y) { return PixelAt(Picture, {X, Y}) == gOutlineCyan; };
    const bool Sides = Cyan(At.X - 1, 150) && Cyan(At.X - 1, 219) && Cyan(At.X + 97, 150) && Cyan(At.X + 97, 219);
    return Sides && Cyan(At.X + 20, 117) && !Cyan(At.X + 20, 220);
}

TEST(Outline, FollowsTheTabOnTop)
{
    SCENE Scene;
    Scene.Turns().Screenshot("4");
    for (int Fan = gLastFan; Fan > gFirstFan; Fan--) {
        Scene.Tab(Fan).Away().Screenshot(std::to_string(Fan));
    }
    const RUN Run = Scene.Play();
    for (int OnTop = gFirstFan; OnTop <= gLastFan; OnTop++) {
        for (int Fan = gFirstFan; Fan <= gLastFan; Fan++) {
            EXPECT_EQ(IsJoined(Run.Picture(std::to_string(OnTop)), Fan), Fan == OnTop) << Fan << " with " << OnTop;
        }
    }
}

TEST(Outline, LeavesThePlaceOfAMissingTabAlone)
{
    // The board has fans 4, 6 and 9. What stands at the place of fan 5's tab must stay as the frame's artwork has it.
    const RUN Run = SCENE("small").Turns().Screenshot("4").Tab(9).Away().Screenshot("9").Play();
    EXPECT_TRUE(IsJoined(Run.Picture("9"), 9));
    Run.ExpectSame("4", "9", {374, 117, 97, 103});
    for (const CALL_LINE& Blt : Run.Named("Blt")) {
        const AREA Area = AreaOf(Blt);
        const bool OnTab5 = Blt.Text("operation") == "fill" && Area.X >= 374 && Area.X < 471 && Area.Y < 220;
        ASSERT_FALSE(OnTab5) << Area.X << ", " << Area.Y;
    }
}

TEST(Outline, IsPaintedOnAChangeOfPageAndNotByAClickOnTheTabOnTop)
{
    SCENE Scene;
    const TURN Change = Scene.Turns().Tab(5).Mark();
    const RUN Run = Scene.Tab(5).Ticks(2).Play();
    for (UINT64 Turn = 1; Turn <= Scene.TurnsSoFar; Turn++) {
        bool Painted = false;
        for (const CALL_LINE& Blt : Run.NamedInTurn("Blt", Turn)) {
            Painted = Painted || (Blt.Text("operation") == "fill" && Blt.Number("width") == 1);
        }
        EXPECT_EQ(Painted, Turn == Change.Number) << Turn;
    }
}

} // namespace
