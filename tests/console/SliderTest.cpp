// Dragging the thumb of a slider: how the offset follows the pointer, where it snaps, what it shows meanwhile.
#include "tests/console/ConsoleBench.h"

namespace {

// The slider of fan 9 on the board "full": level 3 of 6, so the thumb's top stands 120 below the control's, at y 382 to
// 421; the column runs from x 382 to 411, the band from y 262 to 502.
constexpr PLACE gThumb = ThumbPlace(3);

WRITES Levels(int Fan, const std::vector<int>& Written)
{
    WRITES Expected;
    for (const int Level : Written) {
        Expected.push_back(SettingOf(Fan).Level(Level));
    }
    return Expected;
}

TEST(Slider, FollowsThePointerFromItsGrabPointAndStopsAtItsEnds)
{
    struct {
        int GrabY; // anywhere on the thumb
        std::vector<PLACE> Through;
        int Written;
    } const Cases[] = {
        {383, {{397, 303}}, 5},             // 80 up: two rows, whatever the grab point
        {420, {{397, 340}}, 5},             // the same from the thumb's foot
        {402, {{397, 441}}, 2},             // 39 down: nearest is one row down
        {402, {{900, 362}}, 4},             // beside the column the thumb still follows
        {402, {{10, 442}}, 2},              // on its other side too
        {402, {{397, 100}}, 6},             // above: the top
        {402, {{397, 700}}, 1},             // below: the bottom
        {402, {{397, 263}}, 6},             // inside the band, and further than the thumb can go: 120 - 139
        {402, {{397, 501}}, 1},             // 120 + 99
        {402, {{397, 442}, {900, 100}}, 2}, // beyond the band beside the column: the last offset
        {402, {{397, 442}, {10, 760}}, 2},
        {402, {{397, 442}, {382, 300}}, 2}, // the exact lines keep the last offset too
        {402, {{397, 442}, {412, 300}}, 2},
        {402, {{397, 442}, {397, 262}}, 2},
        {402, {{397, 442}, {397, 502}}, 2},
        {402, {{397, 442}, {381, 300}}, 6}, // and their neighbours don't: 120 - 102, nearest to 0
        {402, {{397, 442}, {413, 300}}, 6},
    };
    SCENE Scene;
    Scene.Tab(9);
    std::vector<int> Expected;
    for (const auto& Case : Cases) {
        Scene.Drag({397, Case.GrabY}, Case.Through).Key("c"); // Cancel puts the thumb back
        Expected.push_back(Case.Written);
    }
    EXPECT_EQ(Scene.Play().Writes(), Levels(9, Expected));
}

TEST(Slider, SnapsToTheNearestRowAndFromTheMiddleToTheLowerOne)
{
    SCENE Scene;
    Scene.Tab(9);
    for (const int Y : {-20, -21, 19, 20}) { // offset 100: the middle of the rows at 80 and 120; 99, 139, 140
        Scene.Drag(gThumb, {gThumb.By(0, Y)}).Key("c");
    }
    EXPECT_EQ(Scene.Play().Writes(), Levels(9, {3, 4, 3, 2}));
}

TEST(Slider, TakesTheLastDragsOffsetWhenLetGoBeforeItsFirstStep)
{
    // No drag so far: offset 0, the top level. A short press ends a drag like a long one. Then the other slider's drag
    // leaves offset 160.
    SCENE Scene;
    Scene.Tab(9).Move(gThumb).Press().Turns().Release(50000).Turns(2).Key("c").Tab(10).Thumb(2);
    Scene.Tab(9).Move(gThumb).Press().Turns().Release(50000).Turns(2);
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{SettingOf(9).Level(6), SettingOf(10).Level(2), SettingOf(9).Level(2)}));
}

TEST(Slider, LeavesNoGridAndNoLinesBehind)
{
    SCENE Scene;
    Scene.Tab(9)
        .Away()
        .Screenshot("rest")
        .Move(gThumb)
        .Press()
        .Turns(2)
        .Move(gThumb.By(0, 10))
        .Turns()
        .Screenshot("drag");
    const RUN Run = Scene.Turns().Release(10000).Turns().Away().Screenshot("dropped").Play();
    EXPECT_EQ(Run.Writes(), Levels(9, {3})); // 130 is nearest to 120
    EXPECT_TRUE(Run.Differ("rest", "drag", gFrame.Part(200, 0, 100, 241)));
    Run.ExpectSame("rest", "dropped", gFrame);
}

TEST(Slider, OfAPageWithACurveTakesADragOnlyWhileTheBoxIsOff)
{
    // Fan 7 comes up checked; its slider stands at level 3, hidden. With the box off it is live, and keeps the nodes.
    SCENE Scene;
    Scene.Tab(7).Thumb(4).Box().Thumb(4).Box().Drag(ThumbPlace(4), {ThumbPlace(5)});
    const WRITE Fan7 = SettingOf(7);
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{Fan7, Fan7.Off(), Fan7.Off().Level(4), Fan7.Level(4)}));
}

TEST(Slider, OfAPageThatOnlyHoldsItsLevelIsNeverReached)
{
    // Fan 6: neither while it is checked nor, with neither frame nor slider live, afterwards.
    SCENE Scene;
    Scene.Tab(6).Thumb(4).Box().Thumb(4);
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{SettingOf(6), SettingOf(6).Off()}));
}

} // namespace
