#include "tests/console/ConsoleBench.h"

namespace {

using ITEMS = std::vector<int>;
using CALLS = std::vector<std::string>;

bool IsVoltage(int Item) { return Item >= 11; }

// Readouts take odd turns alone, so that a tick in an even turn shows the tick's own reads.
TEST(Loop, ReadsEachSensorOnceInFourteenTurns)
{
    const RUN Run = SCENE().Turns(28).Play();
    const ITEMS Cycle[14] = {{0, 4}, {}, {1, 5}, {}, {2, 6}, {}, {7}, {}, {8}, {}, {9}, {}, {10}, {}};
    for (UINT64 Turn = 1; Turn <= 28; Turn++) {
        EXPECT_EQ(Run.Items(Turn), Cycle[(Turn - 1) % 14]) << "turn " << Turn;
    }
}

TEST(Loop, ReadsOneVoltageATickAndEachEighthTickNone)
{
    // At 5 s the tick gives way to the timer of 5 s, so up to there.
    SCENE Scene;
    for (int Tick = 0; Tick < 24; Tick++) {
        Scene.Turns().Ticks();
    }
    const RUN Run = Scene.Play();
    for (int Tick = 0; Tick < 24; Tick++) {
        SCOPED_TRACE(Tick);
        const TURN Turn = 2 * static_cast<UINT64>(Tick + 1);
        // The chart of fan 4 first.
        ITEMS Items = {0, 4};
        Items.insert(Items.end(), Tick % 8 < 7 ? 1 : 0, 11 + Tick % 8);
        EXPECT_EQ(Run.Items(Turn), Items);
    }
}

TEST(Loop, AHeldLeftButtonStopsTheVoltagesAndNothingElse)
{
    SCENE Scene;
    Scene.Move(gAway).Ticks().Press().Ticks(14); // on nothing; one voltage has been read
    const TURN After = Scene.Line("left up").Turns(2).Ticks().Mark();
    const RUN Run = Scene.Play();
    int Readouts = 0;
    for (UINT64 Turn = 4; Turn < 18; Turn++) {
        const ITEMS Items = Run.Items(Turn);
        EXPECT_FALSE(std::any_of(Items.begin(), Items.end(), IsVoltage)) << "turn " << Turn;
        ASSERT_GE(Items.size(), 2u);
        EXPECT_EQ((ITEMS{Items[Items.size() - 2], Items.back()}), (ITEMS{0, 4})) << "the chart, in turn " << Turn;
        Readouts += Items.size() > 2 ? 1 : 0;
    }
    EXPECT_EQ(Readouts, 7);
    EXPECT_EQ(Run.Items(After).back(), 12) << "the rotation goes on where it stood";
}

TEST(Loop, OfTimersDueTogetherTheLowerComesFirstAndNoneIsLost)
{
    // 200 ms, 2 s and 5 s are due together at 10 s.
    const RUN Run = SCENE().Turns().Advance(10000000).Turns(5).Play();
    const UINT64 Index[] = {3, 0, 1, 2, 3, 3};
    for (UINT64 Turn = 1; Turn <= 6; Turn++) {
        SCOPED_TRACE(Turn);
        const std::vector<CALL_LINE> Waits = Run.NamedInTurn("WaitForEvent", Turn);
        ASSERT_EQ(Waits.size(), 1u);
        EXPECT_EQ(Waits[0].Number("count"), 4u);
        EXPECT_EQ(Waits[0].Number("index"), Index[Turn - 1]);
        const ITEMS Items = Run.Items(Turn);
        EXPECT_EQ(std::any_of(Items.begin(), Items.end(), IsVoltage), Index[Turn - 1] == 1);
    }
}

TEST(Loop, SamplesBeforeItObeysAKeyAndTakesOneKeyATurn)
{
    const RUN Run = SCENE().Turns().Line("key F").Line("key 1 0").Line("key d").Line("key C").Ticks().Turns(4).Play();
    EXPECT_EQ(Run.OrderInTurn(2, {"GetItemValue", "SetAllFansFullSpeed"}),
              (CALLS{"GetItemValue", "GetItemValue", "GetItemValue", "SetAllFansFullSpeed"}));
    EXPECT_EQ(Run.OrderInTurn(3, {"LoadDefaultFanSettings", "RestoreFanSettings", "SetAllFansFullSpeed"}), CALLS{})
        << "a stroke with another scan code and no character is dropped";
    EXPECT_EQ(Run.NamedInTurn("LoadDefaultFanSettings", 4).size(), 1u);
    EXPECT_EQ(Run.NamedInTurn("RestoreFanSettings", 5).size(), 1u);
    EXPECT_EQ(Run.Writes(), WRITES{}) << "a key sends no single fan's setting";
}

// What is left of a run once the loop has ended, without repetitions; a variable with its name.
CALLS Teardown(const RUN& Run)
{
    CALLS Calls;
    for (const CALL_LINE& Line : Run.InTurn(Run.Session.Turns)) {
        const bool Ends = Line.Call == "CloseEvent" || Line.Call == "SetVariable" || Line.Call == "CloseCursor" ||
                          Line.Call == "Stall" || Line.Call == "Return";
        const std::string Name = Line.Call == "SetVariable" ? Line.Text("name") : Line.Call;
        if ((Ends || (!Calls.empty() && Line.Call == "Blt")) && (Calls.empty() || Calls.back() != Name)) {
            Calls.push_back(Name);
        }
    }
    return Calls;
}

TEST(Loop, EscapeRightButtonAndExitButtonEndItAlikeAndInOrder)
{
    const RUN Escape = SCENE().Turns(2).Key("esc").Turns(9).Play();
    EXPECT_EQ(Escape.Session.Turns, 3u);
    const RUN Right = SCENE().Turns(2).Line("right down").Turns(9).Play();
    EXPECT_EQ(Right.Session.Turns, 3u);
    SCENE Scene;
    const TURN Click = Scene.Button(EXIT).Mark();
    const RUN Exit = Scene.Turns(9).Play();
    EXPECT_EQ(Exit.Session.Turns, Click.Number);
    EXPECT_EQ(Right.Count("ReadKeyStroke") + Exit.Count("ReadKeyStroke"), 0u);

    // The timers and what is dragged; each chart stores speed and temperature; the other controls; the settings; a short
    // wait; the pointer; what the boxes' links left. Nothing is painted: the last picture stays.
    CALLS Expected = {"CloseEvent"};
    for (int Fan = gFirstFan; Fan <= gLastFan; Fan++) {
        Expected.insert(Expected.end(), {"LineChartRPM", "LineChartTempature"});
    }
    Expected.insert(Expected.end(), {"CloseEvent", "GlobalVariable", "CloseCursor", "Stall", "CloseEvent", "Return"});
    for (const RUN* Run : {&Escape, &Right, &Exit}) {
        EXPECT_EQ(Teardown(*Run), Expected);
        ASSERT_EQ(Run->Count("Stall"), 1u);
        EXPECT_EQ(Run->Named("Stall")[0].Number("asked"), 300000u);
        EXPECT_EQ(Run->Session.OpenEvents, 0u);
    }
    // A name of its own for each fan's speed, from fan 4 on; one for the temperature of all.
    std::vector<std::string> Guids;
    for (const CALL_LINE& Line : Escape.Named("SetVariable")) {
        if (Line.Text("name") == "LineChartRPM") {
            Guids.push_back(Line.Text("guid").substr(0, 8));
        } else if (Line.Text("name") == "LineChartTempature") {
            EXPECT_EQ(Line.Text("guid"), "7BE9DF7E-521C-4547-AB36-673B074CC55D");
        }
    }
    const CALLS Each = {"FE2A31D4", "55D26D12", "AEFF8490", "9F2A1282", "C352DF79", "659F4BA5", "E20DC3DF"};
    ASSERT_GE(Guids.size(), Each.size());
    EXPECT_EQ(CALLS(Guids.end() - 7, Guids.end()), Each);
}

} // namespace
