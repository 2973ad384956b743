#include "tests/console/ConsoleBench.h"

namespace {

// Readouts take odd turns alone, so that a tick in an even turn shows the tick's own reads.
std::vector<std::string> ItemsInTurn(const RUN& Run, UINT64 Turn)
{
    std::vector<std::string> Items;
    for (const CALL_LINE& Line : Run.NamedInTurn("GetItemValue", Turn)) {
        Items.push_back(Line.Text("item"));
    }
    return Items;
}

bool IsVoltage(const std::string& Item) { return std::stoi(Item) >= 11; }

// Left edges of the gauges that a turn sent to the display.
std::vector<UINT64> GaugesInTurn(const RUN& Run, UINT64 Turn)
{
    std::vector<UINT64> Lefts;
    for (const CALL_LINE& Line : Run.NamedInTurn("Blt", Turn)) {
        if (Line.Number("y") == 624 && Line.Number("width") == 127 && Line.Number("height") == 81) {
            Lefts.push_back(Line.Number("x"));
        }
    }
    return Lefts;
}

using ITEMS = std::vector<std::string>;

TEST(Loop, ReadsEachSensorOnceInFourteenTurns)
{
    const RUN Run = SCENE().Turns(28).Play();
    const ITEMS Cycle[14] = {{"0", "4"}, {}, {"1", "5"}, {}, {"2", "6"}, {}, {"7"}, {}, {"8"}, {}, {"9"}, {}, {"10"}, {}};
    for (UINT64 Turn = 1; Turn <= 28; Turn++) {
        EXPECT_EQ(ItemsInTurn(Run, Turn), Cycle[(Turn - 1) % 14]) << "turn " << Turn;
    }
}

TEST(Loop, ReadsOneVoltageATickAndPaintsOneGaugeInTwo)
{
    // At 5 s the tick gives way to the timer of 5 s, so up to there.
    SCENE Scene;
    for (int Tick = 0; Tick < 24; Tick++) {
        Scene.Turns().Ticks();
    }
    const RUN Run = Scene.Play();
    const UINT64 Lefts[7] = {69, 196, 323, 450, 577, 704, 831};
    for (UINT64 Tick = 1; Tick <= 24; Tick++) {
        SCOPED_TRACE(Tick);
        // The chart of fan 4 first; then the voltages, each eighth tick none.
        ITEMS Items = {"0", "4"};
        const UINT64 Voltage = (Tick - 1) % 8;
        if (Voltage < 7) {
            Items.push_back(std::to_string(11 + Voltage));
        }
        EXPECT_EQ(ItemsInTurn(Run, 2 * Tick), Items);
        const UINT64 Step = (Tick - 1) % 14 + 1; // odd ones paint
        EXPECT_EQ(GaugesInTurn(Run, 2 * Tick),
                  Step % 2 == 1 ? std::vector<UINT64>{Lefts[Step / 2]} : std::vector<UINT64>{});
    }
}

TEST(Loop, AHeldLeftButtonStopsTheVoltagesAndNothingElse)
{
    SCENE Scene;
    Scene.Move(600, 20).Ticks().Line("left down").Turns(); // on nothing; one voltage has been read
    for (int Tick = 0; Tick < 14; Tick++) {
        Scene.Ticks();
    }
    Scene.Line("left up").Turns(2).Ticks();
    const RUN Run = Scene.Play();
    int Readouts = 0;
    int Charts = 0;
    for (UINT64 Turn = 4; Turn < 18; Turn++) {
        const ITEMS Items = ItemsInTurn(Run, Turn);
        EXPECT_TRUE(std::none_of(Items.begin(), Items.end(), IsVoltage)) << "turn " << Turn;
        EXPECT_TRUE(GaugesInTurn(Run, Turn).empty()) << "turn " << Turn;
        Charts += Items.size() >= 2 && Items[Items.size() - 2] == "0" && Items.back() == "4" ? 1 : 0;
        Readouts += Items.size() > 2 ? 1 : 0;
    }
    EXPECT_EQ(Charts, 14);
    EXPECT_EQ(Readouts, 7);
    // Then both rotations go on where they stood: voltage 12, and the step after gauge 0.
    EXPECT_EQ(ItemsInTurn(Run, 20).back(), "12");
    EXPECT_TRUE(GaugesInTurn(Run, 20).empty());
}

TEST(Loop, OfTimersDueTogetherTheLowerComesFirstAndNoneIsLost)
{
    // 200 ms, 2 s and 5 s are due together at 10 s.
    const RUN Run = SCENE().Turns().Advance(10000000).Turns(5).Play();
    const UINT64 Index[] = {3, 0, 1, 2, 3, 3};
    for (UINT64 Turn = 1; Turn <= 6; Turn++) {
        const std::vector<CALL_LINE> Waits = Run.NamedInTurn("WaitForEvent", Turn);
        ASSERT_EQ(Waits.size(), 1u);
        EXPECT_EQ(Waits[0].Number("count"), 4u);
        EXPECT_EQ(Waits[0].Number("index"), Index[Turn - 1]) << "turn " << Turn;
        const ITEMS Items = ItemsInTurn(Run, Turn);
        EXPECT_EQ(std::any_of(Items.begin(), Items.end(), IsVoltage), Index[Turn - 1] == 1) << "turn " << Turn;
    }
}

TEST(Loop, SamplesBeforeItObeysAKeyAndTakesOneKeyATurn)
{
    const RUN Run = SCENE().Turns().Line("key F").Line("key 1 0").Line("key d").Line("key C").Ticks().Turns(4).Play();
    EXPECT_EQ(Run.OrderInTurn(2, {"GetItemValue", "SetAllFansFullSpeed"}),
              (ITEMS{"GetItemValue", "GetItemValue", "GetItemValue", "SetAllFansFullSpeed"}));
    EXPECT_TRUE(Run.OrderInTurn(3, {"LoadDefaultFanSettings", "RestoreFanSettings", "SetAllFansFullSpeed"}).empty())
        << "a stroke with another scan code and no character is dropped";
    EXPECT_EQ(Run.NamedInTurn("LoadDefaultFanSettings", 4).size(), 1u);
    EXPECT_EQ(Run.NamedInTurn("RestoreFanSettings", 5).size(), 1u);
    EXPECT_TRUE(Run.AllSettings().empty()) << "a key sends no single fan's setting";
}

// What is left of a run once the loop has ended.
std::vector<std::string> Teardown(const RUN& Run)
{
    std::vector<std::string> Calls;
    for (const CALL_LINE& Line : Run.Calls) {
        if (Line.Call == "CloseEvent" || Line.Call == "SetVariable" || Line.Call == "CloseCursor" ||
            Line.Call == "Stall" || Line.Call == "Return") {
            Calls.push_back(Line.Call + " " + (Line.Call == "SetVariable" ? Line.Text("name") : Line.Text("event")));
        }
    }
    return Calls;
}

TEST(Loop, EscapeRightButtonAndExitButtonEndItAlike)
{
    const RUN Escape = SCENE().Turns(2).Key("esc").Turns(9).Play();
    EXPECT_EQ(Escape.Session.Turns, 3u);
    const RUN Right = SCENE().Turns(2).Line("right down").Turns(9).Play();
    EXPECT_EQ(Right.Session.Turns, 3u);
    EXPECT_TRUE(Right.Named("ReadKeyStroke").empty());
    // Down in turn 2, up in turn 4, clicked by the scan of turn 5.
    const RUN Exit = SCENE().Click(957, 95).Turns(9).Play();
    EXPECT_EQ(Exit.Session.Turns, 5u);
    EXPECT_TRUE(Exit.Named("ReadKeyStroke").empty());

    EXPECT_EQ(Teardown(Right), Teardown(Escape));
    EXPECT_EQ(Teardown(Exit), Teardown(Escape));
    for (const RUN* Run : {&Escape, &Right, &Exit}) {
        const std::vector<CALL_LINE> Stalls = Run->Named("Stall");
        ASSERT_EQ(Stalls.size(), 1u);
        EXPECT_EQ(Stalls[0].Number("asked"), 300000u);
    }
}

TEST(Loop, IsTakenDownInItsOrder)
{
    const RUN Run = SCENE().Turns(2).Key("esc").Play();
    std::vector<CALL_LINE> Calls;
    bool Ended = false;
    for (const CALL_LINE& Line : Run.Calls) {
        Ended = Ended || Line.Call == "CloseEvent";
        if (Ended) {
            Calls.push_back(Line);
        }
    }
    // What each event was created as: 'T' a timer, 'N' at TPL_NOTIFY, 'C' at TPL_CALLBACK; small for one that may be a
    // timer too.
    std::map<std::string, char> Kinds;
    for (const char* Create : {"CreateEvent", "CreateEventEx"}) {
        for (const CALL_LINE& Line : Run.Named(Create)) {
            const bool Timer = (Line.Number("type") & 0x80000000) != 0;
            const bool Notifies = (Line.Number("type") & 0x200) != 0;
            const char Level = Line.Number("tpl") == 16 ? 'N' : 'C';
            Kinds[Line.Text("event")] = !Notifies ? 'T' : Timer ? static_cast<char>(Level + 'a' - 'A') : Level;
        }
    }
    std::string Order;
    std::vector<UINT64> Closed; // as many as letters, 0 for what is no event
    std::vector<std::string> Variables;
    for (const CALL_LINE& Line : Calls) {
        if (Line.Call == "CloseEvent") {
            Order += Kinds[Line.Text("event")];
        } else if (Line.Call == "SetVariable") {
            Order += Line.Text("name") == "GlobalVariable" ? 'G' : 'V';
            Variables.push_back(Line.Text("guid"));
        } else if (Line.Call == "CloseCursor") {
            Order += 'X';
        } else if (Line.Call == "Stall") {
            Order += 'Z';
        } else if (Line.Call == "Blt") {
            Order += '!'; // the last picture stays
        } else {
            continue;
        }
        Closed.push_back(Line.Number("event"));
    }
    const std::string Timers = "TTT";
    const std::string FramesAndSliders(5 * 2 + 5 * 2, 'c');
    const std::string Charts(7 * 2, 'V');
    const std::string Boxes((3 + 5) * 2, 'C');
    // A tab's entry: the selection, the group, the targets. Pages of curve or slider have two targets that only switch.
    const std::string FanBar = "nCCCC" "nCCCC" "nCCCC" "nCCC" "nCCC" "nCCC" "nCCC" "C";
    const std::string TemperatureBar = "nC" "nC" "nC" "C";
    const std::string Buttons = "nNN" "nNN" "nNN" "CnNN" "CnNN" "CnNN";
    const std::string Tabs(7 * 2, 'N');
    const std::string ToButtons = Timers + FramesAndSliders + Charts + Boxes + FanBar + TemperatureBar;
    // After everything else the events of the boxes' links: four where a page has a frame alone, five with a slider too.
    const std::string Links(3 * 4 + 2 * 5, 'C');
    EXPECT_EQ(Order, ToButtons + Buttons + Tabs + "GXZ" + Links);

    // About, Help, Exit as they were made; then Cancel, Default, Full speed, which were made the other way round.
    ASSERT_GT(Closed.size(), ToButtons.size() + Buttons.size());
    const UINT64* First = Closed.data() + ToButtons.size();
    EXPECT_LT(First[0], First[3]);
    EXPECT_LT(First[3], First[6]);
    EXPECT_GT(First[9], First[13]);
    EXPECT_GT(First[13], First[17]);
    EXPECT_GT(First[17], First[6]);

    // Each chart stores speed and temperature, fan 4 to fan 10; the settings come last.
    const char* Temperature = "7BE9DF7E-521C-4547-AB36-673B074CC55D";
    EXPECT_EQ(Variables, (std::vector<std::string>{
                             "FE2A31D4-E344-4B1C-AC0A-54B699BAEBF6", Temperature,
                             "55D26D12-33F2-4000-B17D-D220FDB3B5F2", Temperature,
                             "AEFF8490-BEDF-460D-BE5F-62997F9B2DA5", Temperature,
                             "9F2A1282-0C21-48A8-8F51-7E42F50C01C4", Temperature,
                             "C352DF79-3511-4D1F-99F4-D1BC4AB19FA1", Temperature,
                             "659F4BA5-4D74-46DB-8F50-BF9CD44A26A3", Temperature,
                             "E20DC3DF-0041-4A25-B304-76F16B0776FD", Temperature,
                             "1D1140CD-3B1C-4B04-A3BE-D8A923E573B8"}));
}

} // namespace
