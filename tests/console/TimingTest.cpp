// Boards whose timer isn't a nanosecond a tick, and boards whose services take their time.
#include "tests/console/ConsoleBench.h"

namespace {

constexpr PLACE gFullSpeed = Button(FULL_SPEED).Center();

std::vector<UINT64> IndicesOfWaits(const RUN& Run, UINT64 FirstTurn, UINT64 LastTurn)
{
    std::vector<UINT64> Indices;
    for (UINT64 Turn = FirstTurn; Turn <= LastTurn; Turn++) {
        for (const CALL_LINE& Wait : Run.NamedInTurn("WaitForEvent", Turn)) {
            Indices.push_back(Wait.Number("index"));
        }
    }
    return Indices;
}

TEST(Timing, APressIsMeasuredInTimeWhateverTheTimersPeriod)
{
    for (const UINT64 Femtoseconds : {333333ull, 69841279ull, 1000000000ull}) { // 3 GHz, 14.318 MHz, 1 MHz
        for (const auto& [Held, Clicks] : {std::pair<UINT64, UINTN>{184990, 1}, {185010, 0}}) {
            SCENE Scene;
            Scene.Options.TimerPeriod = Femtoseconds;
            const RUN Run = Scene.Move(gFullSpeed).Press().Turns(3).Release(Held).Turns(3).Play();
            EXPECT_EQ(Run.Named("SetAllFansFullSpeed").size(), Clicks) << Femtoseconds << " fs, " << Held << " us";
        }
    }
}

TEST(Timing, SlowSensorsHoldUpNeitherTheTickNorAClick)
{
    // Each turn finds its tick due, though one with five readings takes as long as a tick. The three readings between
    // press and release stay below the length of a click.
    SCENE Scene;
    Scene.Line("slow GetItemValue 40000").Ticks(10).Hover(gFullSpeed).Press().Release().Turns(3);
    const RUN Run = Scene.Play();
    EXPECT_EQ(IndicesOfWaits(Run, 2, 10), std::vector<UINT64>(9, 1));
    EXPECT_EQ(Run.Named("SetAllFansFullSpeed").size(), 1u);
}

TEST(Timing, ASlowDisplayLeavesADragWhereThePointerLetsGo)
{
    const RUN Run = SCENE()
                        .Line("slow Blt 30000")
                        .Ticks(2)
                        .Drag(NodePlace(EIGHT_ROWS, 2), {{590, 320}, {606, 307}})
                        .Ticks(2)
                        .Play();
    EXPECT_EQ(Run.Writes(), WRITES{SettingOf(4).Node(2, {1, -1}).Level(1)});
}

TEST(Timing, ASlowStartTellsEachTimerOnceHoweverManyOfItsPeriodsWentBy)
{
    const RUN Run = SCENE().Line("slow ConvertJPEGToUgaBltA 500000").Turns(6).Play();
    EXPECT_GT(Run.NamedInTurn("WaitForEvent", 1)[0].Microseconds, 10000000u);
    EXPECT_EQ(IndicesOfWaits(Run, 1, 6), (std::vector<UINT64>{0, 1, 2, 3, 3, 3}));
}

} // namespace
