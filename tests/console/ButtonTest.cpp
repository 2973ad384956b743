#include "tests/console/ConsoleBench.h"

namespace {

TEST(Buttons, DoTheirOwnWorkFirstThenTheActionThenTheLegend)
{
    // The button's own event, then those of the action and of the legend; on a page that has no box to signal anything.
    SCENE Scene;
    const TURN Click = Scene.Tab(9).Button(FULL_SPEED).Mark();
    const RUN Run = Scene.Play();
    EXPECT_EQ(Run.OrderInTurn(Click, {"SignalEvent", "SetAllFansFullSpeed"}),
              (std::vector<std::string>{"SignalEvent", "SignalEvent", "SignalEvent", "SetAllFansFullSpeed"}))
        << "both signals wait until the button has done with the click";
    // Button and action run at TPL_NOTIFY, the legend at TPL_CALLBACK.
    std::vector<UINT64> Levels;
    for (const CALL_LINE& Signal : Run.NamedInTurn("SignalEvent", Click)) {
        for (const CALL_LINE& Made : Run.InTurn(0)) {
            if (Made.Call.starts_with("CreateEvent") && Made.Text("event") == Signal.Text("event")) {
                Levels.push_back(Made.Number("tpl"));
            }
        }
    }
    EXPECT_EQ(Levels, (std::vector<UINT64>{16, 16, 8}));
}

TEST(Buttons, ReachTheirCommands)
{
    const std::pair<BUTTON, const char*> Cases[] = {{FULL_SPEED, "SetAllFansFullSpeed"},
                                                    {DEFAULT, "LoadDefaultFanSettings"},
                                                    {CANCEL, "RestoreFanSettings"},
                                                    {ABOUT, "CreateMessageBox"},
                                                    {HELP, "CreateMessageBox"}};
    for (const auto& [Which, Command] : Cases) {
        SCOPED_TRACE(Which);
        const RUN Run = SCENE().Button(Which).Play();
        for (const std::string Call :
             {"SetAllFansFullSpeed", "LoadDefaultFanSettings", "RestoreFanSettings", "CreateMessageBox"}) {
            EXPECT_EQ(Run.Count(Call), Call == Command ? 1u : 0u) << Call;
        }
    }
}

TEST(Boxes, AHeldPointerLeavesNoTraceInABoxThatAKeyRepaints)
{
    SCENE Scene;
    Scene.Away().Screenshot("before").Hover({288, 236}).Press().Turns().Key("d").Away().Release(300000).Turns(2);
    Scene.Key("d").Turns(2).Screenshot("after").Play().ExpectSame("before", "after", gBox);
}

TEST(Boxes, ShowTheirStateAndThePointerOverThem)
{
    SCENE Scene;
    Scene.Away().Screenshot("checked").Hover(gBox.Corner()).Screenshot("hover checked");
    Scene.Click(gBox.Corner()).Turns().Screenshot("clicked").Away().Screenshot("unchecked");
    const RUN Run = Scene.Hover(gBox.Corner()).Screenshot("hover unchecked").Play();
    const AREA Seen = gBox.BesideCorner();
    EXPECT_TRUE(Run.Differ("checked", "hover checked", Seen));
    EXPECT_TRUE(Run.Differ("checked", "unchecked", Seen));
    EXPECT_TRUE(Run.Differ("unchecked", "hover unchecked", Seen));
    EXPECT_TRUE(Run.Differ("hover checked", "hover unchecked", Seen));
    Run.ExpectSame("clicked", "hover unchecked",
                   Seen); // the frame under the pointer comes back with the next hover step
    EXPECT_EQ(Run.Writes(), WRITES{SettingOf(4).Off()});
}

} // namespace
