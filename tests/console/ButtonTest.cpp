#include "tests/console/ConsoleBench.h"

#include <set>

namespace {

constexpr UINT64 gNotify = 0x200;
constexpr UINT64 gTimer = 0x80000000;

struct EVENT_MADE {
    std::string Event;
    UINT64 Type;
    UINT64 Level;
    std::string Group; // empty without one
};

std::vector<EVENT_MADE> EventsMade(const RUN& Run)
{
    std::vector<EVENT_MADE> Made;
    for (const CALL_LINE& Line : Run.Calls) {
        if (Line.Call == "CreateEvent") {
            Made.push_back({Line.Text("event"), Line.Number("type"), Line.Number("tpl"), ""});
        } else if (Line.Call == "CreateEventEx" && Line.Text("status") == "0x0000000000000000") {
            Made.push_back({Line.Text("event"), Line.Number("type"), Line.Number("tpl"), Line.Text("group")});
        }
    }
    return Made;
}

TEST(Buttons, AreMadeWithTheirEvents)
{
    const std::vector<EVENT_MADE> Made = EventsMade(SCENE("bare").Play());
    struct EXPECTED {
        UINT64 Type;
        UINT64 Level;
        bool Group;
    };
    std::vector<EXPECTED> Expected(3, {gTimer, 8, false}); // 5 s, 200 ms, 2 s
    for (int Button = 0; Button < 6; Button++) {
        Expected.push_back({gNotify, 16, true});           // the primary event
        Expected.push_back({gNotify, 16, false});          // the secondary
        Expected.push_back({gNotify | gTimer, 16, false}); // the action
        if (Button >= 3) {
            Expected.push_back({gNotify, 8, true}); // the legend, behind Full speed, Default and Cancel
        }
    }
    ASSERT_GE(Made.size(), Expected.size());
    std::set<std::string> Groups;
    UINTN Grouped = 0;
    for (UINTN I = 0; I < Expected.size(); I++) {
        SCOPED_TRACE(I);
        EXPECT_EQ(Made[I].Type, Expected[I].Type);
        EXPECT_EQ(Made[I].Level, Expected[I].Level);
        EXPECT_EQ(!Made[I].Group.empty(), Expected[I].Group);
        if (!Made[I].Group.empty()) {
            Groups.insert(Made[I].Group);
            Grouped++;
        }
    }
    EXPECT_EQ(Groups.size(), Grouped) << "each group has a name of its own";
}

// The numbers of the events that a turn signalled, and the service calls between them.
std::vector<std::string> SignalsAndCommands(const RUN& Run, UINT64 Turn)
{
    std::vector<std::string> Found;
    for (const CALL_LINE& Line : Run.InTurn(Turn)) {
        if (Line.Call == "SignalEvent") {
            Found.push_back(Line.Text("event"));
        } else if (Line.Call == "SetAllFansFullSpeed" || Line.Call == "LoadDefaultFanSettings" ||
                   Line.Call == "RestoreFanSettings") {
            Found.push_back(Line.Call);
        }
    }
    return Found;
}

TEST(Buttons, DoTheirOwnWorkFirstThenTheActionThenTheLegend)
{
    // On fan 9's page, which has no box to signal anything. Full speed's events are made 10th to 13th behind the timers.
    SCENE Scene;
    const RUN Run = Scene.Click(800, 140).Click(600, 570).Turns().Play();
    const std::vector<EVENT_MADE> Made = EventsMade(Run);
    const UINTN First = 3 + 3 * 3;
    EXPECT_EQ(SignalsAndCommands(Run, 11),
              (std::vector<std::string>{Made[First].Event, Made[First + 2].Event, Made[First + 3].Event,
                                        "SetAllFansFullSpeed"}))
        << "both signals wait until the button has done with the click";
}

TEST(Buttons, ReachTheirCommands)
{
    const struct {
        int X, Y;
        const char* Call;
    } Cases[] = {
        {600, 570, "SetAllFansFullSpeed"}, {745, 570, "LoadDefaultFanSettings"}, {890, 570, "RestoreFanSettings"},
        {800, 95, "CreateMessageBox"},     {880, 95, "CreateMessageBox"},
    };
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.X * 1000 + Case.Y);
        const RUN Run = SCENE().Click(Case.X, Case.Y).Play();
        for (const char* Call :
             {"SetAllFansFullSpeed", "LoadDefaultFanSettings", "RestoreFanSettings", "CreateMessageBox"}) {
            EXPECT_EQ(Run.Named(Call).size(), std::string(Call) == Case.Call ? 1u : 0u) << Call;
        }
    }
}

TEST(Buttons, FromAKeyACommandIsFollowedByOneLegend)
{
    const auto Legends = [](const RUN& Run, UINT64 Turn) {
        UINTN Count = 0;
        for (const CALL_LINE& Line : Run.NamedInTurn("Blt", Turn)) {
            Count += Line.Number("x") == 836 && Line.Number("y") == 250 && Line.Number("width") == 120 ? 1 : 0;
        }
        return Count;
    };
    const RUN Run = SCENE().Move(600, 20).Turns().Key("f").Key("x").Play();
    EXPECT_EQ(Legends(Run, 3), 1u);
    EXPECT_EQ(Legends(Run, 4), 0u);
}

TEST(Boxes, AHeldPointerLeavesNoTraceInABoxThatAKeyRepaints)
{
    // The pointer is held over fan 4's box while a key repaints it; then it goes away, and the box is as before.
    SCENE Scene;
    Scene.Move(600, 20).Turns(2).Screenshot("before");
    Scene.Move(288, 236).Turns().Press().Turns().Key("d").Move(600, 20).Turns().Release(300000).Turns(2);
    Scene.Key("d").Turns(2).Screenshot("after").Turns();
    const RUN Run = Scene.Play();
    EXPECT_TRUE(SameRectangle(Run.Picture("before"), Run.Picture("after"), 286, 232, 20, 20));
}

TEST(Boxes, ShowTheirStateAndThePointerOverThem)
{
    // The pointer stands at the box's lower right corner.
    SCENE Scene;
    Scene.Move(600, 20).Turns(2).Screenshot("checked");
    Scene.Move(304, 250).Turns(2).Screenshot("hover checked");
    Scene.Press().Turns().Release(50000).Turns(3).Screenshot("clicked");
    Scene.Move(600, 20).Turns(2).Screenshot("unchecked");
    Scene.Move(304, 250).Turns(2).Screenshot("hover unchecked").Turns();
    const RUN Run = Scene.Play();
    const auto Same = [&Run](const char* A, const char* B) {
        return SameRectangle(Run.Picture(A), Run.Picture(B), 286, 232, 18, 18);
    };
    EXPECT_FALSE(Same("checked", "hover checked"));
    EXPECT_FALSE(Same("checked", "unchecked"));
    EXPECT_FALSE(Same("unchecked", "hover unchecked"));
    EXPECT_FALSE(Same("hover checked", "hover unchecked"));
    EXPECT_TRUE(Same("clicked", "hover unchecked")) << "the frame under the pointer comes back with the next hover step";
    ASSERT_EQ(Run.AllSettings().size(), 1u);
    EXPECT_EQ(Run.LastSetting(4).substr(0, 2), "00") << "the curve is off";
}

} // namespace
