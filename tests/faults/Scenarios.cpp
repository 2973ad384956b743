#include <cstdlib>

#include "tests/console/ConsoleBench.h"
#include "tests/faults/FaultBench.h"

namespace {

constexpr PLACE gMiddle = {512, 400};
constexpr PLACE gCorner = {20, 760};

// Readings that don't go with the time: where a failure keeps a page from opening, the page's wait is missing, and the
// picture should not tell. What changes by itself is watched by one scenario without them.
SCENE& Read(SCENE& Scene, UINT64 Degrees, UINT64 Rpm, UINT64 Millivolts)
{
    for (int Item = 0; Item <= 17; Item++) {
        if (Item != 3) {
            Scene.Reading(Item, Item < 3 ? Degrees : Item < 11 ? Rpm : Millivolts);
        }
    }
    return Scene;
}

SCENE Begun()
{
    SCENE Scene;
    return Read(Scene, 0, 0, 1000).Turns(2);
}

// The last lines of a use: two tabs, a thumb taken and let go, which paints the scales anew, a source entered and left,
// which writes the sources' names, then the pointer off everything, other readings, and time for every readout and gauge
// to have its turn.
std::string Settled(SCENE Scene)
{
    Scene.Turns(2).Line(gSettleMark).Tab(9).Drag(ThumbPlace(3), {ThumbPlace(3).By(0, 1)});
    Scene.Drag(ThumbPlace(5), {ThumbPlace(5).By(0, 1)})
        .Tab(4)
        .Move(Source(2).Center())
        .Turns(3)
        .Move(gCorner)
        .Turns(20);
    return Read(Scene, 57, 1234, 1100).Ticks(45).Script;
}

SCENE& UseControls(SCENE& Scene)
{
    Scene.Tab(5).Box().Tab(9).Thumb(5).Tab(4).Node(0, {1, -1});
    return Scene.Key("f").Key("d").Source(1);
}

std::string ShortUse()
{
    SCENE Scene;
    UseControls(Scene.Move(gMiddle).Ticks(2)).Button(ABOUT).Turns(4).Key("enter").Turns(4).Ticks(2);
    return Scene.Script;
}

std::string Page(BUTTON Which) { return Settled(Begun().Button(Which).Move(gMiddle).Turns(3).Key("enter").Turns(5)); }

// The pointer keeps to the frame in the first start. Where it left a mark beside that, because the ground couldn't be
// painted back, the second start would come upon it and keep it as a part of the screen.
std::string TwoStarts()
{
    SCENE Scene;
    Read(Scene.Point(Tab(5).Center()), 0, 0, 1000).Turns(2).Tab(5).Restart().Ticks(3).Move(gMiddle).Ticks(2);
    return Settled(UseControls(Scene));
}

SCENE Watching()
{
    return SCENE().Turns(2).Point({1020, 765}).Ticks(40).Move({0, 0}).Turns(3).Move({1023, 767}).Turns(3);
}

constexpr UINTN gGaugeTop = 624; // first row of the voltage gauges

const std::vector<SCENARIO> gStarts = {
    {"StartOnTheFullBoard", "full", 0, ShortUse()},   {"StartOnGeneration4", "full", 4, ShortUse()},
    {"StartOnKind0", "kind0", 0, ShortUse()},         {"StartOnKind2", "kind2", 0, ShortUse()},
    {"StartOnTheSmallBoard", "small", 0, ShortUse()}, {"StartOnTheSecondSource", "second-source", 0, ShortUse()},
    {"StartOnTheBareBoard", "bare", 0, ShortUse()},
};

const std::vector<SCENARIO> gUses = {
    {"Buttons", "full", 0, Settled(Begun().Button(DEFAULT).Button(CANCEL).Move(Button(FULL_SPEED).Center()).Turns(3))},
    {"CheckBox", "full", 0, Settled(Begun().Box().Box())},
    {"Node", "full", 0, Settled(Begun().Node(0, {1, -1}).Drag(NodePlace(EIGHT_ROWS, 3), {{700, 300}}))},
    {"NodeBehindALayer", "full", 0, Settled(Begun().Node(0, {1, -1})), gDisplayHeight, {1024, 768, PANEL_BLT_ONLY}},
    {"Thumb", "full", 0, Settled(Begun().Tab(9).Thumb(5))},
    {"Tabs", "full", 0, Settled(Begun().Tab(5).Tab(7).Tab(10))},
    {"Sources", "full", 0, Settled(Begun().Source(1).Ticks(3).Source(0))},
    // A page that doesn't open lets Enter through, and nothing happens. But the gauges are then at another point of their
    // rotation, and which of two values a gauge was painted with last goes by that.
    {"AboutPage", "full", 0, Page(ABOUT), gGaugeTop},
    {"HelpPage", "full", 0, Page(HELP), gGaugeTop},
    {"Keys", "full", 0, Settled(Begun().Key("f").Key("d").Key("c"))},
    {"Watching", "full", 0, Settled(Watching())},
    {"Restart", "full", 0, TwoStarts(), gGaugeTop},
};

} // namespace

const SCENARIO& FindScenario(const std::string& Name)
{
    for (const std::vector<SCENARIO>* Scenarios : {&gStarts, &gUses}) {
        for (const SCENARIO& Scenario : *Scenarios) {
            if (Name == Scenario.Name) {
                return Scenario;
            }
        }
    }
    std::abort();
}
