#include <set>

#include "tests/console/ConsoleBench.h"

namespace {

// The fans whose tabs a turn painted.
std::vector<int> TabsPainted(const RUN& Run, TURN Turn)
{
    std::vector<int> Fans;
    for (int Fan = gFirstFan; Fan <= gLastFan; Fan++) {
        Fans.insert(Fans.end(), Run.Painted(Turn, Tab(Fan)), Fan);
    }
    return Fans;
}

// The ring of a source's radio, left of its caption.
constexpr AREA Ring(int Number) { return Source(Number).Part(0, 0, 50, 32); }

// Whether the rings of two radios look alike.
bool SameRing(const PICTURE& A, int OfA, const PICTURE& B, int OfB)
{
    for (int Y = 0; Y < 32; Y++) {
        for (int X = 0; X < 50; X++) {
            if (PixelAt(A, {Ring(OfA).X + X, Ring(OfA).Y + Y}) != PixelAt(B, {Ring(OfB).X + X, Ring(OfB).Y + Y})) {
                return false;
            }
        }
    }
    return true;
}

TEST(PageBar, ATabGoesThroughItsFrames)
{
    SCENE Scene;
    Scene.Away().Screenshot("rest").Hover(Tab(6).Corner()).Screenshot("hover").Click(Tab(6).Corner()).Turns();
    Scene.Screenshot("clicked").Away().Screenshot("left").Hover(Tab(6).Corner()).Screenshot("over selected");
    const RUN Run = Scene.Away().Screenshot("end").Play();
    const AREA Tab6 = Tab(6).BesideCorner();
    EXPECT_TRUE(Run.Differ("rest", "hover", Tab6));
    Run.ExpectSame("clicked", "hover", Tab6); // the clicked tab keeps the frame under the pointer
    EXPECT_TRUE(Run.Differ("clicked", "rest", Tab(4))) << "and the others go to rest";
    EXPECT_TRUE(Run.Differ("left", "hover", Tab6));
    EXPECT_TRUE(Run.Differ("left", "rest", Tab6));
    Run.ExpectSame("over selected", "hover", Tab6);
    Run.ExpectSame("end", "left", Tab6);
    Run.ExpectSame("end", "clicked", Tab(4));
}

TEST(PageBar, AClickOnTheSelectedTabRunsThePagesFunctionsAndPaintsNoTab)
{
    SCENE Scene;
    const TURN To6 = Scene.Tab(6).Mark();
    const TURN Again6 = Scene.Tab(6).Mark();
    const TURN To4 = Scene.Tab(4).Mark();
    const TURN Again4 = Scene.Tab(4).Mark();
    const RUN Run = Scene.Turns(2).Play();
    EXPECT_EQ(TabsPainted(Run, To6), (std::vector<int>{4, 5, 7, 8, 9, 10})) << "all but the one that was clicked";
    EXPECT_EQ(TabsPainted(Run, Again6), std::vector<int>{});
    EXPECT_EQ(TabsPainted(Run, To4), (std::vector<int>{5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(TabsPainted(Run, Again4), std::vector<int>{});
    // The bar's event, then, with the page switched, the selection; the group; and what the box signals, its link. The
    // selected tab is not selected again.
    EXPECT_EQ(Run.NamedInTurn("SignalEvent", To4).size(), 4u);
    EXPECT_EQ(Run.NamedInTurn("SignalEvent", Again4).size(), 3u);
}

TEST(PageBar, OnlyThePageOnTopTakesTheMouse)
{
    // The boxes of fans 4 to 8 lie on one place; the pages of 9 and 10 have none.
    SCENE Scene;
    for (const int Fan : {10, 8, 5, 4, 9}) {
        Scene.Tab(Fan).Box();
    }
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{SettingOf(8), SettingOf(8).On(), SettingOf(5).Off(), SettingOf(4).Off()}));
    // So it is after a later start.
    EXPECT_EQ(SCENE().Turns().Tab(5).Restart().Turns(2).Box().Play().Writes(2), WRITES{SettingOf(5).Off()});
}

TEST(PageBar, TabsOfAbsentFansLeaveGaps)
{
    SCENE Scene("small");
    const RUN Run = Scene.Tab(5).Tab(6).Turns(2).Play();
    std::set<int> Painted;
    for (UINT64 Turn = 0; Turn <= Scene.TurnsSoFar; Turn++) {
        const std::vector<int> Tabs = TabsPainted(Run, Turn);
        Painted.insert(Tabs.begin(), Tabs.end());
    }
    EXPECT_EQ(Painted, (std::set<int>{4, 6, 9}));
}

TEST(PageBar, ARadioActsOnThePress)
{
    SCENE Scene;
    Scene.Turns().Away().Screenshot("start").Hover(Ring(1).Center()).Press(); // in turn 6
    const TURN Taken = Scene.Turns().Mark();
    Scene.Turns().Release(100000);
    const TURN Clicked = Scene.Turns().Mark();
    const TURN AtClick = Scene.Turns().Ticks().Mark(); // an even turn, without readouts
    // Source 2, held long: selected while the button is down, and after it.
    const TURN Held = Scene.Move(Ring(2).Center()).Press().Turns(3).Ticks().Mark();
    const TURN After = Scene.Release(300000).Turns(2).Ticks().Mark();
    const RUN Run = Scene.Away().Screenshot("end").Play();

    EXPECT_EQ(Run.NamedInTurn("SignalEvent", Taken).size(), 3u) << "the bar, the selection, the group";
    // The short release arrives as a click on what is selected now: the bar and the group, and no selection.
    EXPECT_EQ(Run.NamedInTurn("SignalEvent", Clicked).size(), 2u);
    // The chart's reads: the selected source, then fan 4; a held button lets no voltage be read.
    const auto FirstTwo = [&Run](TURN Turn) {
        std::vector<int> Items = Run.Items(Turn);
        Items.resize(2);
        return Items;
    };
    EXPECT_EQ(FirstTwo(AtClick), (std::vector<int>{1, 4}));
    EXPECT_EQ(Run.Items(Held), (std::vector<int>{2, 4}));
    EXPECT_EQ(FirstTwo(After), (std::vector<int>{2, 4}));

    const PICTURE& Start = Run.Picture("start");
    const PICTURE& End = Run.Picture("end");
    EXPECT_FALSE(SameRing(Start, 0, Start, 1));
    EXPECT_TRUE(SameRing(End, 2, Start, 0));
    EXPECT_TRUE(SameRing(End, 0, Start, 1));
    EXPECT_TRUE(SameRing(End, 1, Start, 2));
}

TEST(PageBar, OneSourceIsSelectedAlsoWhereARadioHasNoPlaceInTheRegistry)
{
    SCENE Scene = SceneWithOnly({0, 1, 2, 4});
    for (const int Number : {1, 0, 2, 1, 0}) {
        Scene.Click(Ring(Number).Center()).Move(gAway).Screenshot(std::to_string(100 + Scene.TurnsSoFar));
    }
    // A digit for each click. A radio that is missing takes none of them, and the others go on taking theirs.
    std::map<std::string, int> Selected;
    for (const RUN& Run : PlayWithoutOneComponent(Scene)) {
        std::string Path;
        for (const auto& [Name, Picture] : Run.Session.Pictures) {
            for (int Number = 0; Number < 3; Number++) {
                Path += PixelAt(Picture, {71, 312 + 37 * Number}) == 0xF7B500 ? std::to_string(Number) : "";
            }
        }
        Selected[Path]++;
    }
    EXPECT_GT(Selected["10210"], 8);
    Selected.erase("10210");
    EXPECT_EQ(Selected, (std::map<std::string, int>{{"11211", 1}, {"00220", 1}, {"10010", 1}}));
}

TEST(PageBar, ALongReleaseOverARadioStopsHoverFramesUntilTheFirstMember)
{
    // Without fans the last radio is the last component of all, and so a hit even in the turn of a long release.
    SCENE Scene;
    for (int Fan = gFirstFan; Fan <= gLastFan; Fan++) {
        Scene.Reading(Fan, "absent");
    }
    const auto Over = [&Scene](int Number, const char* Name) {
        Scene.Hover(Source(Number).Part(92, 17, 0, 0).Center()).Screenshot(Name).Away();
    };
    Scene.Away().Screenshot("rest");
    Over(1, "hover");
    Scene.Press().Turns().Point({147, 387}).Release(300000).Turns(3).Screenshot("long").Away();
    Over(1, "stuck");
    Over(0, "first");
    Over(1, "again");
    const RUN Run = Scene.Play();
    EXPECT_TRUE(Run.Differ("hover", "rest", Ring(1)));
    Run.ExpectSame("long", "rest", Ring(2));
    Run.ExpectSame("stuck", "rest", Ring(1));
    EXPECT_TRUE(Run.Differ("first", "rest", Ring(0)));
    Run.ExpectSame("again", "hover", Ring(1));
}

} // namespace
