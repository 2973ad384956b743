// One click and one tick, followed from the pointer and the timer through the service to the picture.
#include "tests/console/ConsoleBench.h"

namespace {

bool IsBltOf(const CALL_LINE& Call, UINT64 X, UINT64 Y, UINT64 Width, UINT64 Height)
{
    return Call.Call == "Blt" && Call.Number("x") == X && Call.Number("y") == Y && Call.Number("width") == Width &&
           Call.Number("height") == Height;
}

// What happens in a turn, in words; what has none is left out.
std::vector<std::string> Story(const RUN& Run, UINT64 Turn)
{
    std::vector<std::string> Words;
    for (const CALL_LINE& Call : Run.InTurn(Turn)) {
        if (Call.Call == "WaitForEvent") {
            Words.push_back("wait " + Call.Text("index"));
        } else if (Call.Call == "SignalEvent") {
            Words.push_back("signal");
        } else if (Call.Call == "GetItemValue") {
            Words.push_back("read " + Call.Text("item"));
        } else if (Call.Call.starts_with("SetFan")) {
            Words.push_back("write " + Call.Text("record").substr(0, 2));
        } else if (IsBltOf(Call, 286, 232, 20, 20)) {
            Words.push_back("box");
        } else if (IsBltOf(Call, 836, 250, 120, 130)) {
            Words.push_back("legend");
        } else if (IsBltOf(Call, 382, 262, 391, 241)) {
            Words.push_back("frame");
        } else if (IsBltOf(Call, 69, 624, 127, 81)) {
            Words.push_back("gauge 0");
        } else if (IsBltOf(Call, 196, 624, 127, 81)) {
            Words.push_back("gauge 1");
        }
    }
    return Words;
}

using STORY = std::vector<std::string>;

TEST(Road, OfOneClickOnTheBox)
{
    SCENE Scene;
    Scene.Turns().Move(296, 242).Turns(2).Press(); // hover has come to its end before
    const UINT64 Down = Scene.TurnsSoFar;
    Scene.Turns().Release(184999);
    Scene.Turns(4);
    const RUN Run = Scene.Play();
    // Readouts are read in odd turns. Nothing happens at the press, while it is held, or at the release: a click is a
    // matter of the scan after it.
    ASSERT_EQ(Down, 5u);
    EXPECT_EQ(Story(Run, 5), (STORY{"wait 3", "read 2", "read 6"}));
    EXPECT_EQ(Story(Run, 6), STORY{"wait 3"});
    EXPECT_EQ(Story(Run, 7), (STORY{"wait 3", "read 7"}));
    // The box's first event flips and paints it, its second mirrors the state and paints it at rest; the links of the
    // unchecked box write, then those of a click inside bring the legend up to date: both wait until the second event's
    // function, at whose priority they are, has returned. The frame isn't live any more.
    EXPECT_EQ(Story(Run, 8), (STORY{"wait 3", "signal", "box", "signal", "box", "signal", "signal", "write 00",
                                    "legend"}));
    // The state is back at rest, so the pointer enters the box anew.
    EXPECT_EQ(Story(Run, 9), (STORY{"wait 3", "box", "read 8"}));
    EXPECT_EQ(Story(Run, 10), STORY{"wait 3"});
    EXPECT_EQ(Run.AllSettings().size(), 1u);
}

TEST(Road, OfOneTick)
{
    SCENE Scene;
    Scene.Turns().Ticks().Turns().Ticks().Ticks();
    const RUN Run = Scene.Play();
    EXPECT_EQ(Story(Run, 2), (STORY{"wait 1", "read 0", "read 4", "frame", "read 11", "gauge 0"}));
    EXPECT_EQ(Story(Run, 4), (STORY{"wait 1", "read 0", "read 4", "frame", "read 12"}));
    EXPECT_EQ(Story(Run, 5), (STORY{"wait 1", "read 2", "read 6", "read 0", "read 4", "frame", "read 13", "gauge 1"}));
}

TEST(Road, OfATickWhileTheButtonIsHeldEndsAtTheChart)
{
    SCENE Scene;
    Scene.Turns().Move(600, 540).Turns().Press();     // on nothing
    Scene.Turns().Ticks().Release().Turns();          // turns 5, 6: a curve's chart shows itself all the same
    Scene.Move(487, 397).Press().Turns(2).Move(497, 397).Ticks();
    const UINT64 InDrag = Scene.TurnsSoFar;
    Scene.Release().Turns(2).Click(818, 150).Move(600, 540).Press().Turns().Ticks();
    const UINT64 OnSliderPage = Scene.TurnsSoFar;
    Scene.Release().Turns(2);
    const RUN Run = Scene.Play();
    EXPECT_EQ(Story(Run, 6), (STORY{"wait 1", "read 0", "read 4", "frame"}));
    // During a drag the frame goes out once, by the drag; the sample is taken behind it.
    STORY Drag = Story(Run, InDrag);
    std::erase_if(Drag, [](const std::string& Word) { return Word == "signal"; });
    ASSERT_GE(Drag.size(), 4u);
    EXPECT_EQ(std::count(Drag.begin(), Drag.end(), "frame"), 1);
    EXPECT_EQ(STORY(Drag.end() - 3, Drag.end()), (STORY{"frame", "read 0", "read 4"}));
    // The chart of a page of a slider alone waits for the mouse to be at rest.
    STORY Held = Story(Run, OnSliderPage);
    EXPECT_EQ(STORY(Held.end() - 2, Held.end()), (STORY{"read 0", "read 9"}));
}

TEST(ChartSource, FollowsTheRadioAtThePress)
{
    SCENE Scene;
    Scene.Turns().Move(80, 348).Turns().Press().Turns().Release(50000).Turns(2).Ticks();
    const UINT64 First = Scene.TurnsSoFar;
    Scene.Move(80, 385).Press().Turns().Release(300000).Turns(2).Ticks(); // however long the press
    const UINT64 Second = Scene.TurnsSoFar;
    const RUN Run = Scene.Play();
    const auto Read = [&](UINT64 Turn) {
        std::vector<CALL_LINE> Calls = Run.NamedInTurn("GetItemValue", Turn);
        return Calls.size() < 3 ? "" : Calls[Calls.size() - 3].Text("item") + " " + Calls[Calls.size() - 2].Text("item");
    };
    EXPECT_EQ(Read(First), "1 4");
    EXPECT_EQ(Read(Second), "2 4");
}

TEST(ChartSource, IsAnIndexOnTheScreenAndAnItemOnTheBoard)
{
    // The board has source 1 alone: the one radio is number 0, and item 0 is what a tick asks for.
    SCENE Scene("second-source");
    Scene.Turns().Ticks();
    const RUN Run = Scene.Play();
    EXPECT_EQ(Story(Run, 2)[1], "read 0");

    SCENE Bare("bare");
    Bare.Turns().Ticks();
    EXPECT_EQ(Story(Bare.Play(), 2)[1], "read 11"); // no source and no fan: the tick goes straight to the voltages
}

TEST(ChartSource, ClearsTheTemperatureOfTheChartOnTopAlone)
{
    SCENE Scene;
    Scene.Line("reading 0 50").Line("reading 1 20").Line("reading 9 0").Line("reading 10 0");
    Scene.Click(818, 150).Ticks(3);
    Scene.Click(917, 150).Ticks(3);
    Scene.Move(80, 348).Press().Turns().Line("left up").Turns(3).Ticks().Screenshot("fan 10");
    Scene.Click(818, 150).Ticks().Screenshot("fan 9").Turns();
    const RUN Run = Scene.Play();
    constexpr UINT32 Temperature = 0xF7B500;
    // 50 degrees are height 120 of 241, row 121 of the chart; 20 degrees height 48, row 193. The newest is column 390.
    const auto At = [&](const char* Name, UINTN Column, UINTN Row) {
        return PixelAt(Run.Picture(Name), 382 + Column, 262 + Row);
    };
    EXPECT_EQ(At("fan 10", 390, 193), Temperature);
    for (UINTN Column = 380; Column < 390; Column++) {
        EXPECT_EQ(At("fan 10", Column, 121), 0x242424u) << Column;
        EXPECT_EQ(At("fan 10", Column, 193), 0x242424u) << Column;
    }
    EXPECT_EQ(At("fan 9", 390, 193), Temperature);
    for (UINTN Column = 387; Column < 390; Column++) {
        EXPECT_EQ(At("fan 9", Column, 121), Temperature) << Column; // the samples of the earlier source
    }
}

} // namespace
