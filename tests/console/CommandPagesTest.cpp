// What the pages show after a command on all fans, whichever page it was given on and in whatever moment, and what it
// leads the console to write: box, nodes and legend tell the same story, and a fan gets only what somebody chose.
#include "tests/console/ConsoleBench.h"

namespace {

struct COMMAND {
    const char* Key;
    BUTTON Button;
    bool On; // what it makes of a curve that is on by default
};
constexpr COMMAND gFullSpeed = {"f", FULL_SPEED, false};
constexpr COMMAND gDefault = {"d", DEFAULT, true};
constexpr COMMAND gCancel = {"c", CANCEL, true};
constexpr COMMAND gCommands[] = {gDefault, gCancel, gFullSpeed};

// A page with a box; on fans 7 and 8 a slider takes the frame's place while the box is off.
struct PAGE {
    const char* Board;
    int Fan;
    GRID Grid;
    bool HasSlider;
};
constexpr PAGE gPages[] = {{"full", 4, EIGHT_ROWS, false}, {"full", 5, EIGHT_ROWS, false},
                           {"kind0", 5, SIX_ROWS, false},  {"full", 6, SIX_ROWS, false},
                           {"full", 7, SIX_ROWS, true},    {"full", 8, SIX_ROWS, true},
                           {"small", 6, SIX_ROWS, false}};

constexpr PLACE gAside = {600, 540}; // on nothing

// Every box is checked when the scene begins, and by default.
SCENE OnPage(const PAGE& Page, bool OldestFirst = false)
{
    SCENE Scene(Page.Board);
    Scene.Options.GroupsOldestFirst = OldestFirst;
    if (Page.Fan == 8) { // off in the simulated board's own defaults
        Scene.Setting(SettingOf(8).On()).Default(SettingOf(8).On());
    }
    return Scene.Tab(Page.Fan);
}

SCENE& Give(SCENE& Scene, const COMMAND& Command, bool ByButton)
{
    return ByButton ? Scene.Button(Command.Button) : Scene.Key(Command.Key);
}

// Node 3 is above all lines of a chart.
bool NodesShow(const PICTURE& Picture, GRID Grid)
{
    const PLACE Top = NodePlace(Grid, 3);
    return CountColor(Picture, gPanelGray, {Top.X - 8, Top.Y - 8, 16, 16}) < 200;
}

// Told by the colour of node 1's text.
bool LegendIsColored(const PICTURE& Picture) { return CountColor(Picture, 0x006DF7, gLegend) > 0; }

// Looks in the turn in which the page shows, and after the next tick.
struct LOOKS {
    SCENE& Scene;
    const PAGE& Page;
    std::vector<std::pair<std::string, bool>> Shots = {};

    void Take(const std::string& Name, bool On)
    {
        Scene.Screenshot(Name).Turns();
        Shots.push_back({Name, On});
    }
    void Expect() const
    {
        Scene.Options.KeepTrace = false; // long scenes, of which only the pictures are looked at
        const RUN Run = Scene.Play();
        for (const auto& [Name, On] : Shots) {
            SCOPED_TRACE(std::string(Page.Board) + " fan " + std::to_string(Page.Fan) + ": " + Name);
            EXPECT_EQ(!Run.Differ(Name, "checked", gBox), On);
            EXPECT_EQ(LegendIsColored(Run.Picture(Name)), On);
            EXPECT_EQ(NodesShow(Run.Picture(Name), Page.Grid), On);
        }
    }
};

void ExpectThatPageComesUpAsItStands(const PAGE& Page, bool OldestFirst)
{
    SCOPED_TRACE(OldestFirst ? "groups oldest first" : "groups newest first");
    const int Elsewhere = Page.Fan == 4 ? 6 : 4;
    SCENE Scene = OnPage(Page, OldestFirst);
    Scene.Ticks().Screenshot("checked");
    LOOKS Looks = {Scene, Page};
    struct {
        const char* Before;
        COMMAND Command;
        bool ByButton;
    } const Cases[] = {{"d", gFullSpeed, false}, {"f", gDefault, false}, {"f", gCancel, false}, {"f", gDefault, true}};
    for (const auto& Case : Cases) {
        Scene.Key("d").Tab(Elsewhere).Key(Case.Before).Tab(Page.Fan);
        Scene.Tab(Elsewhere).Ticks(); // what the other page shows is on the screen
        Give(Scene, Case.Command, Case.ByButton).Tab(Page.Fan);
        const std::string How = std::string(Case.Command.Key) + (Case.ByButton ? " by button" : " by key");
        Looks.Take(How, Case.Command.On);
        Scene.Ticks();
        Looks.Take(How + ", a tick later", Case.Command.On);
    }
    Scene.Box().Tab(Elsewhere).Key("d").Tab(Page.Fan);
    Looks.Take("box off, default elsewhere", true);
    Looks.Expect();
}

TEST(CommandPages, APageThatComesUpShowsWhatACommandGivenElsewhereMadeOfIt)
{
    for (const PAGE& Page : gPages) {
        ExpectThatPageComesUpAsItStands(Page, false);
    }
    for (const UINTN Index : {0, 2, 3, 4}) { // a firmware may run a group's members in the other order
        ExpectThatPageComesUpAsItStands(gPages[Index], true);
    }
}

TEST(CommandPages, ThePageOnTopShowsWhatACommandMadeOfIt)
{
    for (const PAGE& Page : gPages) {
        SCENE Scene = OnPage(Page);
        Scene.Ticks().Screenshot("checked");
        LOOKS Looks = {Scene, Page};
        for (const bool ByButton : {false, true}) {
            for (const COMMAND& Command : gCommands) {
                const std::string Name = std::string(Command.Key) + (ByButton ? " by button" : " by key");
                if (Command.On) {
                    Scene.Box().Move(gAside); // to the other state than the command's
                }
                Give(Scene.Ticks(), Command, ByButton);
                if (!Page.HasSlider) { // there the slider stands in the frame's place until the next tick
                    Looks.Take(Name, Command.On);
                }
                Scene.Ticks();
                Looks.Take(Name + ", a tick later", Command.On);
                Scene.Key("d");
            }
        }
        Looks.Expect();
    }
}

TEST(CommandPages, ACurveThatIsOffAtTheStartHasItsNodesWhenTheDefaultsSwitchItOn)
{
    for (const int Fan : {7, 8}) {
        SCENE Scene;
        Scene.Setting(SettingOf(Fan).Off()).Default(SettingOf(Fan).On());
        const RUN Run = Scene.Tab(Fan).Key("d").Ticks().Screenshot("default").Turns().Play();
        EXPECT_TRUE(NodesShow(Run.Picture("default"), SIX_ROWS)) << Fan;
        EXPECT_TRUE(LegendIsColored(Run.Picture("default"))) << Fan;
    }
}

TEST(CommandPages, TheFramesNewPictureCostsOneBlt)
{
    SCENE Scene;
    const TURN Last = Scene.Tab(6).Turns(2).Key("f").Key("d").Key("c").Mark();
    const RUN Run = Scene.Play();
    for (const UINT64 Back : {0, 1, 2}) {
        EXPECT_EQ(Run.Painted(Last - Back, gFrame), 1u) << Back;
    }
}

// --- A letter during a drag ---

SCENE& Hold(SCENE& Scene, PLACE From, PLACE To) { return Scene.Move(From).Press().Turns(2).Move(To).Turns(); }
SCENE& Drop(SCENE& Scene) { return Scene.Release(300000).Turns(2); }

constexpr PLACE gNode1 = NodePlace(EIGHT_ROWS, 1);
constexpr PLACE gNode1OfSix = NodePlace(SIX_ROWS, 1);

TEST(CommandPages, AfterADragWithALetterAnotherPagesScaleIsItsOwn)
{
    SCENE Scene;
    Drop(Hold(Scene.Tab(8), ThumbPlace(3), ThumbPlace(4)).Key("d"));
    Hold(Scene.Tab(4), gNode1, gNode1.By(12, 12)).Turns().Screenshot("drag").Turns();
    const RUN Run = Scene.Play();
    // "87.5" to "12.5", four glyphs from x 336 on, every other row from y 306; a scale of 6 rows has nothing that far left.
    for (int Y = 306; Y < 500; Y += 60) {
        EXPECT_LT(CountColor(Run.Picture("drag"), gPanelGray, {336, Y, 6, 8}), 48u) << Y;
    }
}

TEST(CommandPages, ADropAfterDefaultKeepsToTheCurveThatDefaultBroughtBack)
{
    // Node 1 is over column 4 when Default moves its neighbours to columns 0 and 2: it falls between them, on their rows.
    const WRITE Steep = SettingFromBytes(4, "01 04 03 02 01 01 02 03 04");
    SCENE Scene;
    Drop(Hold(Scene.Default(Steep), gNode1, gNode1.By(30, 0)).Key("d"));
    Scene.Drag({427, 427}, {{427, 457}}); // it is there, and takes a drag to the row below
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{Steep.Node(1, {0, -1}).Level(1), Steep.Level(1)}));
}

TEST(CommandPages, AThingInHandStaysWhereThePointerHoldsItWhenDefaultMovesIt)
{
    // Default moves node 1 of fan 4 and the thumb of fan 9 while they are in hand; both fall where the pointer is.
    const WRITE Fan4 = SettingFromBytes(4, "01 0a 08 03 01 02 03 06 08");
    SCENE Scene;
    Scene.Default(Fan4).Default(SettingOf(9).Level(1));
    Drop(Hold(Scene, gNode1, gNode1.By(30, 0)).Key("d").Turns(3)).Tab(9).Key("c");
    Drop(Hold(Scene, ThumbPlace(3), ThumbPlace(4)).Key("d").Turns(3));
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{Fan4.Node(1, {2, -1}).Level(1), SettingOf(9).Level(4)}));
}

TEST(CommandPages, OneThingInHandKeepsAnotherFromBeingTakenUp)
{
    // On fan 7 a letter swaps frame and slider while a node or the thumb is in hand. The pointer then passes over what has
    // come in: the thumb on the top row, and node 0 on the bottom row, both in the first column.
    SCENE Scene;
    Hold(Scene.Tab(7), gNode1OfSix, {440, 300}).Key("f").Move(ThumbPlace(6)).Turns(2);
    Drop(Scene.Move(gNode1OfSix.By(30, 0)).Turns(2)).Key("c").Box();
    Hold(Scene, ThumbPlace(3), {397, 380}).Key("d").Move(NodePlace(SIX_ROWS, 0)).Turns(2);
    Drop(Scene.Move(ThumbPlace(4)).Turns(2));
    const WRITE Moved = SettingOf(7).Node(1, {1, 0});
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{SettingOf(7), Moved.Level(6), Moved.Off(), Moved.Off().Level(4)}));
}

TEST(CommandPages, TheChartStaysAwayWhileAnythingIsInHand)
{
    // A letter changes which control lies under the chart; the one in hand may be the other.
    for (const auto& [Fan, Thumb] : {std::pair{6, false}, {7, false}, {7, true}}) {
        SCENE Scene;
        Scene.Tab(Fan);
        if (Thumb) {
            Hold(Scene.Box(), ThumbPlace(3), ThumbPlace(4));
        } else {
            Hold(Scene, gNode1OfSix, gNode1OfSix.By(30, 0));
        }
        std::vector<TURN> Ticks;
        for (const COMMAND& Command : gCommands) {
            Ticks.push_back(Scene.Key(Command.Key).Turns().Ticks().Mark());
        }
        // Each tick's turn sends the rectangle once, for the drag, and not for the chart.
        const RUN Run = Scene.Play();
        for (const TURN Tick : Ticks) {
            EXPECT_EQ(Run.Painted(Tick, gFrame), 1u) << "fan " << Fan << ", turn " << Tick.Number;
        }
    }
}

} // namespace
