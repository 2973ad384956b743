#include "tests/console/ConsoleBench.h"

namespace {

// Left edges of the tabs that a turn painted.
std::vector<UINT64> TabsPainted(const RUN& Run, UINT64 Turn)
{
    std::vector<UINT64> Lefts;
    for (const CALL_LINE& Line : Run.NamedInTurn("Blt", Turn)) {
        if (Line.Number("y") == 118 && Line.Number("width") == 97 && Line.Number("height") == 63) {
            Lefts.push_back(Line.Number("x"));
        }
    }
    return Lefts;
}

// The inside of a tab, without its outline and without the place where the pointer stands in these tests.
bool SameTab(const RUN& Run, const char* A, const char* B, UINTN Left)
{
    return SameRectangle(Run.Picture(A), Run.Picture(B), Left + 3, 121, 78, 52);
}

// The ring of a source's radio, left of its caption, in two pictures or at two rows.
bool SameRing(const PICTURE& A, UINTN Y, const PICTURE& B, UINTN OtherY)
{
    for (UINTN Row = 0; Row < 32; Row++) {
        for (UINTN Column = 0; Column < 50; Column++) {
            if (PixelAt(A, 55 + Column, Y + Row) != PixelAt(B, 55 + Column, OtherY + Row)) {
                return false;
            }
        }
    }
    return true;
}

TEST(PageBar, ATabGoesThroughItsFrames)
{
    // Tabs of fans 4 and 6; the pointer stands at a tab's lower right.
    SCENE Scene;
    Scene.Move(600, 20).Turns(2).Screenshot("rest");
    Scene.Move(558, 176).Turns(2).Screenshot("hover");
    Scene.Press().Turns(2).Release(50000).Turns(3).Screenshot("clicked");
    Scene.Move(600, 20).Turns(2).Screenshot("left");
    Scene.Move(558, 176).Turns(2).Screenshot("over selected");
    Scene.Move(600, 20).Turns(2).Screenshot("end").Turns();
    const RUN Run = Scene.Play();
    EXPECT_FALSE(SameTab(Run, "rest", "hover", 473));
    EXPECT_TRUE(SameTab(Run, "clicked", "hover", 473)) << "the clicked tab keeps the frame under the pointer";
    EXPECT_FALSE(SameTab(Run, "clicked", "rest", 275)) << "and the others go to rest";
    EXPECT_FALSE(SameTab(Run, "left", "hover", 473));
    EXPECT_FALSE(SameTab(Run, "left", "rest", 473));
    EXPECT_TRUE(SameTab(Run, "over selected", "hover", 473));
    EXPECT_TRUE(SameTab(Run, "end", "left", 473));
    EXPECT_TRUE(SameTab(Run, "end", "clicked", 275));
}

TEST(PageBar, AClickOnTheSelectedTabRunsThePagesFunctionsAndPaintsNoTab)
{
    // Each click is down in its second turn, up in its fourth, and delivered by the scan of its fifth.
    const RUN Run = SCENE().Click(500, 140).Click(500, 140).Click(300, 140).Click(300, 140).Turns(2).Play();
    EXPECT_EQ(TabsPainted(Run, 5), (std::vector<UINT64>{275, 374, 572, 672, 770, 869}))
        << "all but the one that was clicked";
    EXPECT_EQ(TabsPainted(Run, 11), std::vector<UINT64>{});
    EXPECT_EQ(TabsPainted(Run, 17), (std::vector<UINT64>{374, 473, 572, 672, 770, 869}));
    EXPECT_EQ(TabsPainted(Run, 23), std::vector<UINT64>{});

    // Fan 6's box runs its links at both clicks, and the setting goes out unchanged. Fan 4's looks where the pointer is.
    ASSERT_EQ(Run.NamedInTurn("SetFan6Setting", 5).size(), 1u);
    ASSERT_EQ(Run.NamedInTurn("SetFan6Setting", 11).size(), 1u);
    EXPECT_EQ(Run.Settings(6)[0], Run.Settings(6)[1]);
    EXPECT_EQ(Run.AllSettings().size(), 2u);

    // The bar's event, then, with the page switched, the selection; the group; and what the box signals, its link. The
    // selected tab is not selected again.
    EXPECT_EQ(Run.NamedInTurn("SignalEvent", 17).size(), 4u);
    EXPECT_EQ(Run.NamedInTurn("SignalEvent", 23).size(), 3u);
}

TEST(PageBar, OnlyThePageOnTopTakesTheMouse)
{
    // The boxes of fans 4 to 8 lie on one place; fan 9's page has none.
    const struct {
        int TabX;
        int Fan;
    } Pages[] = {{900, 0}, {700, 8}, {400, 5}, {300, 4}, {800, 0}};
    for (const auto& Page : Pages) {
        SCOPED_TRACE(Page.TabX);
        SCENE Scene;
        Scene.Click(Page.TabX, 140);
        const UINT64 Before = Scene.TurnsSoFar;
        const RUN Run = Scene.Click(296, 242).Turns(2).Play();
        std::vector<std::string> After;
        for (const CALL_LINE& Line : Run.Calls) {
            if (Line.Turn > Before && Line.Call.starts_with("SetFan")) {
                After.push_back(Line.Call);
            }
        }
        EXPECT_EQ(After, Page.Fan == 0 ? std::vector<std::string>{}
                                       : std::vector<std::string>{"SetFan" + std::to_string(Page.Fan) + "Setting"});
    }
}

TEST(PageBar, ASecondStartOnAnotherPageGivesItTheMouse)
{
    SCENE Scene;
    Scene.Turns().Click(500, 140).Restart().Turns(2).Click(296, 242).Turns();
    const RUN Run = Scene.Play();
    std::vector<std::string> Second;
    for (const CALL_LINE& Line : Run.Calls) {
        if (Line.Start == 2 && Line.Turn > 0 && Line.Call.starts_with("SetFan")) {
            Second.push_back(Line.Call);
        }
    }
    EXPECT_EQ(Second, std::vector<std::string>{"SetFan6Setting"});
}

TEST(PageBar, TabsOfAbsentFansLeaveGaps)
{
    const RUN Run = SCENE("small").Click(410, 140).Click(500, 140).Turns(2).Play();
    std::vector<UINT64> Tabs;
    for (const CALL_LINE& Line : Run.Named("Blt")) {
        if (Line.Number("y") == 118 && Line.Number("width") == 97) {
            Tabs.push_back(Line.Number("x"));
        }
    }
    std::sort(Tabs.begin(), Tabs.end());
    Tabs.erase(std::unique(Tabs.begin(), Tabs.end()), Tabs.end());
    EXPECT_EQ(Tabs, (std::vector<UINT64>{275, 473, 770}));
    EXPECT_EQ(Run.AllSettings().size(), 1u) << "where fan 5's tab would be there is nothing to click";
    EXPECT_FALSE(Run.LastSetting(6).empty());
}

TEST(PageBar, ARadioActsOnThePress)
{
    // Sources 0, 1, 2 stand at y 296, 333, 370. The chart's tick reads the selected one.
    SCENE Scene;
    Scene.Move(600, 20).Turns(2).Screenshot("start");
    Scene.Move(75, 345).Turns().Press(); // seen in turn 6
    Scene.Turns();                        // taken in turn 7
    const UINT64 Taken = Scene.TurnsSoFar;
    Scene.Turns().Release(100000).Turns();
    const UINT64 Clicked = Scene.TurnsSoFar;
    Scene.Turns().Ticks(); // an even turn, without readouts
    const UINT64 Tick = Scene.TurnsSoFar;
    // Source 2, held long: selected while the button is down, and after it.
    Scene.Move(75, 382).Press().Turns(3).Ticks();
    const UINT64 Held = Scene.TurnsSoFar;
    Scene.Release(300000).Turns(2).Ticks();
    const UINT64 After = Scene.TurnsSoFar;
    Scene.Move(600, 20).Turns(2).Screenshot("end").Turns();
    const RUN Run = Scene.Play();

    EXPECT_EQ(Run.NamedInTurn("SignalEvent", Taken).size(), 3u) << "the bar, the selection, the group";
    // The short release arrives as a click on what is selected now: the bar and the group, and no selection.
    EXPECT_EQ(Run.NamedInTurn("SignalEvent", Clicked).size(), 2u);
    const auto SourceAtTick = [&Run](UINT64 Turn) {
        const std::vector<CALL_LINE> Reads = Run.NamedInTurn("GetItemValue", Turn);
        std::string Items;
        for (const CALL_LINE& Read : Reads) {
            Items += Read.Text("item") + " ";
        }
        return Items;
    };
    // The chart's reads: the selected source, then fan 4; a held button lets no voltage be read.
    EXPECT_EQ(SourceAtTick(Tick).substr(0, 4), "1 4 ");
    EXPECT_EQ(SourceAtTick(Held), "2 4 ");
    EXPECT_EQ(SourceAtTick(After).substr(0, 4), "2 4 ");

    const PICTURE& Start = Run.Picture("start");
    const PICTURE& End = Run.Picture("end");
    EXPECT_FALSE(SameRing(Start, 296, Start, 333));
    EXPECT_TRUE(SameRing(End, 370, Start, 296));
    EXPECT_TRUE(SameRing(End, 296, Start, 333));
    EXPECT_TRUE(SameRing(End, 333, Start, 370));
}

TEST(PageBar, OneSourceIsSelectedAlsoWhereARadioHasNoPlaceInTheRegistry)
{
    SCENE Scene = SceneWithOnly({0, 1, 2, 4});
    for (const int Y : {345, 308, 382, 345, 308}) {
        Scene.Click(75, Y).Move(600, 20).Screenshot(std::to_string(100 + Scene.TurnsSoFar));
    }
    // A digit for each click. A radio that is missing takes none of them, and the others go on taking theirs.
    std::map<std::string, int> Selected;
    for (const RUN& Run : PlayWithoutOneComponent(Scene)) {
        std::string Path;
        for (const auto& [Name, Picture] : Run.Session.Pictures) {
            for (int Source = 0; Source < 3; Source++) {
                Path += PixelAt(Picture, 71, 312 + 37 * Source) == 0xF7B500 ? std::to_string(Source) : "";
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
    for (int Fan = 4; Fan <= 10; Fan++) {
        Scene.Line("reading " + std::to_string(Fan) + " absent");
    }
    const auto Over = [&Scene](int Y, const char* Name) { Scene.Move(147, Y).Turns(2).Screenshot(Name); };
    const auto Away = [&Scene] { Scene.Move(600, 20).Turns(2); };
    Away();
    Scene.Screenshot("rest");
    Over(350, "hover");
    Away();
    Scene.Press().Turns().Line("pointer 147 387").Release(300000).Turns(3).Screenshot("long");
    Away();
    Over(350, "stuck");
    Away();
    Over(313, "first");
    Away();
    Over(350, "again");
    const RUN Run = Scene.Turns().Play();
    const auto Same = [&Run](const char* A, const char* B, UINTN Y) {
        return SameRing(Run.Picture(A), Y, Run.Picture(B), Y);
    };
    EXPECT_FALSE(Same("hover", "rest", 333));
    EXPECT_TRUE(Same("long", "rest", 370));
    EXPECT_TRUE(Same("stuck", "rest", 333));
    EXPECT_FALSE(Same("first", "rest", 296));
    EXPECT_TRUE(Same("again", "hover", 333));
}

} // namespace
