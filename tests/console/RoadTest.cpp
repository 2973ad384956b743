// One click and one tick, followed from the pointer and the timer through the service to the picture.
#include "tests/console/ConsoleBench.h"

namespace {

using STORY = std::vector<std::string>;

// What happens in a turn, in words; what has none is left out.
STORY Story(const RUN& Run, TURN Turn)
{
    const std::pair<AREA, const char*> Painted[] = {
        {gBox, "box"}, {gLegend, "legend"}, {gFrame, "frame"}, {Gauge(0), "gauge 0"}, {Gauge(1), "gauge 1"}};
    STORY Words;
    for (const CALL_LINE& Call : Run.InTurn(Turn)) {
        if (Call.Call == "WaitForEvent") {
            Words.push_back("wait " + Call.Text("index"));
        } else if (Call.Call == "SignalEvent") {
            Words.push_back("signal");
        } else if (Call.Call == "GetItemValue") {
            Words.push_back("read " + Call.Text("item"));
        } else if (Call.Call.starts_with("SetFan")) {
            Words.push_back("write " + Call.Text("record").substr(0, 2));
        } else if (Call.Call == "Blt") {
            for (const auto& [Area, Name] : Painted) {
                Words.insert(Words.end(), AreaOf(Call) == Area ? 1 : 0, Name);
            }
        }
    }
    return Words;
}

TEST(Road, OfOneClickOnTheBox)
{
    SCENE Scene;
    const TURN Down = Scene.Turns().Move(gBox.Center()).Turns(2).Press().Mark(); // hover has come to its end before
    const RUN Run = Scene.Turns().Release(184999).Turns(4).Play();
    // Readouts are read in odd turns. Nothing happens at the press, while it is held, or at the release: a click is a
    // matter of the scan after it.
    ASSERT_EQ(Down.Number, 5u);
    EXPECT_EQ(Story(Run, 5), (STORY{"wait 3", "read 2", "read 6"}));
    EXPECT_EQ(Story(Run, 6), STORY{"wait 3"});
    EXPECT_EQ(Story(Run, 7), (STORY{"wait 3", "read 7"}));
    // The box's first event flips and paints it, its second mirrors the state and paints it at rest; the links of the
    // unchecked box write, then those of a click inside bring the legend up to date: both wait until the second event's
    // function, at whose priority they are, has returned. The frame isn't live any more.
    EXPECT_EQ(Story(Run, 8),
              (STORY{"wait 3", "signal", "box", "signal", "box", "signal", "signal", "write 00", "legend"}));
    // The state is back at rest, so the pointer enters the box anew.
    EXPECT_EQ(Story(Run, 9), (STORY{"wait 3", "box", "read 8"}));
    EXPECT_EQ(Story(Run, 10), STORY{"wait 3"});
    EXPECT_EQ(Run.Writes().size(), 1u);
}

TEST(Road, OfOneTick)
{
    const RUN Run = SCENE().Turns().Ticks().Turns().Ticks().Ticks().Play();
    EXPECT_EQ(Story(Run, 2), (STORY{"wait 1", "read 0", "read 4", "frame", "read 11", "gauge 0"}));
    EXPECT_EQ(Story(Run, 4), (STORY{"wait 1", "read 0", "read 4", "frame", "read 12"}));
    EXPECT_EQ(Story(Run, 5), (STORY{"wait 1", "read 2", "read 6", "read 0", "read 4", "frame", "read 13", "gauge 1"}));
}

TEST(Road, OfATickWhileTheButtonIsHeldEndsAtTheChart)
{
    const PLACE Node1 = NodePlace(EIGHT_ROWS, 1);
    const PLACE Nothing = {600, 540};
    SCENE Scene;
    Scene.Turns().Hover(Nothing).Press();
    const TURN OnNothing = Scene.Turns().Ticks().Mark(); // a curve's chart shows itself all the same
    Scene.Release().Turns();
    const TURN InDrag = Scene.Move(Node1).Press().Turns(2).Move(Node1.By(10, 0)).Ticks().Mark();
    const TURN OnSliderPage = Scene.Release().Turns(2).Tab(9).Move(Nothing).Press().Turns().Ticks().Mark();
    const RUN Run = Scene.Release().Turns(2).Play();
    EXPECT_EQ(Story(Run, OnNothing), (STORY{"wait 1", "read 0", "read 4", "frame"}));
    // During a drag the frame goes out once, by the drag; the sample is taken behind it.
    STORY Drag = Story(Run, InDrag);
    std::erase_if(Drag, [](const std::string& Word) { return Word == "signal"; });
    ASSERT_GE(Drag.size(), 4u);
    EXPECT_EQ(std::count(Drag.begin(), Drag.end(), "frame"), 1);
    EXPECT_EQ(STORY(Drag.end() - 3, Drag.end()), (STORY{"frame", "read 0", "read 4"}));
    // The chart of a page of a slider alone waits for the mouse to be at rest.
    const STORY Held = Story(Run, OnSliderPage);
    EXPECT_EQ(STORY(Held.end() - 2, Held.end()), (STORY{"read 0", "read 9"}));
}

TEST(ChartSource, IsAnIndexOnTheScreenAndAnItemOnTheBoard)
{
    // The board has source 1 alone: the one radio is number 0, and item 0 is what a tick asks for.
    EXPECT_EQ(SCENE("second-source").Turns().Ticks().Play().Items(2).at(0), 0);
    // No source and no fan: the tick goes straight to the voltages.
    EXPECT_EQ(SCENE("bare").Turns().Ticks().Play().Items(2).at(0), 11);
}

TEST(ChartSource, ClearsTheTemperatureOfTheChartOnTopAlone)
{
    SCENE Scene;
    Scene.Reading(0, 50).Reading(1, 20).Reading(9, UINT64{0}).Reading(10, UINT64{0}).Tab(9).Ticks(3).Tab(10).Ticks(3);
    const RUN Run = Scene.Source(1).Ticks().Screenshot("fan 10").Tab(9).Ticks().Screenshot("fan 9").Play();
    constexpr UINT32 Temperature = 0xF7B500;
    // 50 degrees are height 120 of 241, row 121 of the chart; 20 degrees height 48, row 193. The newest is column 390.
    const auto At = [&](const char* Name, int Column, int Row) {
        return PixelAt(Run.Picture(Name), {gFrame.X + Column, gFrame.Y + Row});
    };
    EXPECT_EQ(At("fan 10", 390, 193), Temperature);
    for (int Column = 380; Column < 390; Column++) {
        EXPECT_EQ(At("fan 10", Column, 121), gPanelGray) << Column;
        EXPECT_EQ(At("fan 10", Column, 193), gPanelGray) << Column;
    }
    EXPECT_EQ(At("fan 9", 390, 193), Temperature);
    for (int Column = 387; Column < 390; Column++) {
        EXPECT_EQ(At("fan 9", Column, 121), Temperature) << Column; // the samples of the earlier source
    }
}

} // namespace
