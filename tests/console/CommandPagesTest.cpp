// What the pages show after a command on all fans, whichever page it was given on and in whatever moment, and what it
// leads the console to write: box, nodes and legend tell the same story, and a fan gets only what somebody chose.
#include "tests/console/ConsoleBench.h"

namespace {

constexpr int gTabCenter[] = {323, 422, 521, 620, 720, 818, 917}; // of fans 4 to 10

struct COMMAND {
    const char* Key;
    int ButtonX;
    bool On; // what it makes of a curve that is on by default
};
constexpr COMMAND gFullSpeed = {"f", 560, false};
constexpr COMMAND gDefault = {"d", 710, true};
constexpr COMMAND gCancel = {"c", 857, true};
constexpr COMMAND gCommands[] = {gDefault, gCancel, gFullSpeed};

// A page with a box. Node 1's centre, the centre one column right of it, and the middle of node 3, above all lines of a
// chart; on fans 7 and 8 a slider takes the frame's place while the box is off.
struct PAGE {
    const char* Board;
    int Fan;
    bool Rows8;
    bool HasSlider;
    int X() const { return Rows8 ? 487 : 457; }
    int Y() const { return Rows8 ? 397 : 442; }
    int TopX() const { return Rows8 ? 667 : 577; }
    int TopY() const { return Rows8 ? 277 : 282; }
};
constexpr PAGE gPages[] = {{"full", 4, true, false},  {"full", 5, true, false}, {"kind0", 5, false, false},
                           {"full", 6, false, false}, {"full", 7, false, true}, {"full", 8, false, true},
                           {"small", 6, false, false}};

void Go(SCENE& Scene, int Fan) { Scene.Click(gTabCenter[Fan - 4], 150); }

// Every box is checked when the scene begins, and by default.
SCENE OnPage(const PAGE& Page, bool OldestFirst = false)
{
    SCENE Scene(Page.Board);
    Scene.Options.GroupsOldestFirst = OldestFirst;
    Scene.Options.LowTextPictures = true; // many turns, which sanitizers make slow
    if (Page.Fan == 8) { // off in the simulated board's own defaults
        const std::string On = Record("01 07 05 03 01 01 02 04 06 00 03");
        Scene.Line("setting 8 " + On).Line("default 8 " + On);
    }
    Go(Scene, Page.Fan);
    return Scene;
}

void Give(SCENE& Scene, const COMMAND& Command, bool ByButton)
{
    if (ByButton) {
        Scene.Click(Command.ButtonX, 575);
    } else {
        Scene.Key(Command.Key);
    }
}

// What reached the fans after a turn.
std::vector<std::string> WritesAfter(const RUN& Run, UINT64 Turn)
{
    std::vector<std::string> Found;
    for (const CALL_LINE& Call : Run.Calls) {
        if (Call.Turn > Turn && Call.Call.starts_with("SetFan")) {
            Found.push_back(Call.Call.substr(6, Call.Call.size() - 13) + ":" + Call.Text("record"));
        }
    }
    return Found;
}

UINTN Colored(const PICTURE& Picture, UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    UINTN Count = 0;
    for (UINTN Row = Y; Row < Y + Height; Row++) {
        for (UINTN Column = X; Column < X + Width; Column++) {
            const UINT32 Pixel = PixelAt(Picture, Column, Row);
            const auto [Least, Most] = std::minmax({Pixel & 0xFF, Pixel >> 8 & 0xFF, Pixel >> 16});
            Count += Most - Least > 32 ? 1 : 0;
        }
    }
    return Count;
}

constexpr UINT32 gPanel = 0x242424;

bool NodesShow(const PICTURE& Picture, const PAGE& Page)
{
    return CountColor(Picture, gPanel, Page.TopX() - 8, Page.TopY() - 8, 16, 16) < 200;
}

bool LegendIsColored(const PICTURE& Picture) { return Colored(Picture, 836, 250, 120, 130) > 0; }

void ExpectPage(const RUN& Run, const std::string& Name, const PAGE& Page, bool On)
{
    SCOPED_TRACE(std::string(Page.Board) + " fan " + std::to_string(Page.Fan) + ": " + Name);
    const PICTURE& Picture = Run.Picture(Name);
    EXPECT_EQ(SameRectangle(Picture, Run.Picture("checked"), 286, 232, 20, 20), On); // the box
    EXPECT_EQ(LegendIsColored(Picture), On);
    EXPECT_EQ(NodesShow(Picture, Page), On);
}

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
    void Expect(const RUN& Run) const
    {
        for (const auto& [Name, On] : Shots) {
            ExpectPage(Run, Name, Page, On);
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
        Scene.Key("d");
        Go(Scene, Elsewhere);
        Scene.Key(Case.Before);
        Go(Scene, Page.Fan);
        Go(Scene, Elsewhere);
        Scene.Ticks(); // what the other page shows is on the screen
        Give(Scene, Case.Command, Case.ByButton);
        Go(Scene, Page.Fan);
        const std::string How = std::string(Case.Command.Key) + (Case.ByButton ? " by button" : " by key");
        Looks.Take(How, Case.Command.On);
        Scene.Ticks();
        Looks.Take(How + ", a tick later", Case.Command.On);
    }
    Scene.Click(296, 242); // the box off by hand
    Go(Scene, Elsewhere);
    Scene.Key("d");
    Go(Scene, Page.Fan);
    Looks.Take("box off, default elsewhere", true);
    Looks.Expect(Scene.Play());
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
                    Scene.Click(296, 242).Move(600, 540); // to the other state than the command's
                }
                Scene.Ticks();
                Give(Scene, Command, ByButton);
                if (!Page.HasSlider) { // there the slider stands in the frame's place until the next tick
                    Looks.Take(Name, Command.On);
                }
                Scene.Ticks();
                Looks.Take(Name + ", a tick later", Command.On);
                Scene.Key("d");
            }
        }
        Looks.Expect(Scene.Play());
    }
}

TEST(CommandPages, ACurveThatIsOffAtTheStartHasItsNodesWhenTheDefaultsSwitchItOn)
{
    for (const int Fan : {7, 8}) {
        SCENE Scene;
        Scene.Line("setting " + std::to_string(Fan) + " " + Record("00 07 05 03 01 01 02 04 06 00 03"));
        Scene.Line("default " + std::to_string(Fan) + " " + Record("01 07 05 03 01 01 02 04 06 00 03"));
        Go(Scene, Fan);
        Scene.Key("d").Ticks().Screenshot("default").Turns();
        const RUN Run = Scene.Play();
        EXPECT_TRUE(NodesShow(Run.Picture("default"), {"full", Fan, false, true})) << Fan;
        EXPECT_TRUE(LegendIsColored(Run.Picture("default"))) << Fan;
    }
}

TEST(CommandPages, TheFramesNewPictureCostsOneBlt)
{
    SCENE Scene;
    Go(Scene, 6);
    Scene.Turns(2).Key("f").Key("d").Key("c");
    const RUN Run = Scene.Play();
    for (UINT64 Turn = Scene.TurnsSoFar - 2; Turn <= Scene.TurnsSoFar; Turn++) {
        UINTN Blts = 0;
        for (const CALL_LINE& Blt : Run.NamedInTurn("Blt", Turn)) {
            Blts += Blt.Number("x") == 382 && Blt.Number("y") == 262 && Blt.Number("width") == 391;
        }
        EXPECT_EQ(Blts, 1u) << Turn;
    }
}

// --- A letter during a drag ---

struct GRIP {
    PAGE Page;
    bool Thumb; // the box is off then, where there is one
    int FromX, FromY, ToX, ToY;
    // What a drop writes at the one place and at the other; the last byte is the level, which Full speed raises to 6.
    const char* AtTo;
    const char* AtFrom;
};

constexpr const char* gMoved8 = "01 0a 07 05 01 02 04 06 08 00 01";
constexpr const char* gStart8 = "01 0a 07 04 01 02 04 06 08 00 01";
constexpr const char* gMoved6 = "01 07 05 04 01 01 02 04 06 00 03";
constexpr const char* gStart6 = "01 07 05 03 01 01 02 04 06 00 03";

constexpr GRIP gGrips[] = {
    {gPages[0], false, 487, 397, 517, 397, gMoved8, gStart8},
    {gPages[1], false, 487, 397, 517, 397, gMoved8, gStart8},
    {gPages[2], false, 457, 442, 487, 442, gMoved6, gStart6},
    {gPages[3], false, 457, 442, 487, 442, gMoved6, gStart6},
    {gPages[4], false, 457, 442, 487, 442, gMoved6, gStart6},
    {gPages[5], false, 457, 442, 487, 442, gMoved6, gStart6},
    {gPages[4], true, 397, 402, 397, 362, "00 07 05 03 01 01 02 04 06 00 04", "00 07 05 03 01 01 02 04 06 00 03"},
    {gPages[5], true, 397, 402, 397, 362, "00 07 05 03 01 01 02 04 06 00 04", "00 07 05 03 01 01 02 04 06 00 03"},
    {{"full", 9, false, true}, true, 397, 402, 397, 362, "00 00 00 00 00 00 00 00 00 00 04",
     "00 00 00 00 00 00 00 00 00 00 03"},
    {{"full", 10, false, true}, true, 397, 322, 397, 362, "00 00 00 00 00 00 00 00 00 00 04",
     "00 00 00 00 00 00 00 00 00 00 05"},
};

// All of the two faces but the rectangle that they stand around: the labels at the left and at the foot, the captions.
bool ChartFaceStandsAround(const PICTURE& Picture, const PICTURE& Rest)
{
    return SameRectangle(Picture, Rest, 328, 247, 50, 270) && SameRectangle(Picture, Rest, 328, 520, 560, 24);
}

TEST(CommandPages, ADragOutlivesALetter)
{
    for (const GRIP& Grip : gGrips) {
        SCOPED_TRACE(std::string(Grip.Page.Board) + " fan " + std::to_string(Grip.Page.Fan) +
                     (Grip.Thumb ? " thumb" : " node"));
        SCENE Scene = OnPage(Grip.Page);
        Scene.Ticks().Screenshot("checked");
        if (Grip.Thumb && Grip.Page.Fan <= 8) {
            Scene.Click(296, 242);
        }
        const UINT64 Begin = Scene.TurnsSoFar;
        std::vector<std::string> Expected;
        for (const COMMAND& Command : gCommands) {
            const auto Expect = [&](std::string Bytes) {
                if (!Command.On && !Grip.Thumb && !Grip.Page.Rows8) {
                    Bytes.back() = '6';
                }
                Expected.push_back(std::to_string(Grip.Page.Fan) + ":" + Record(Bytes));
            };
            Scene.Move(Grip.FromX, Grip.FromY).Press().Turns(2).Move(Grip.ToX, Grip.ToY).Turns();
            Scene.Key(Command.Key).Release(300000).Turns(2);
            Expect(Grip.AtTo);
            Scene.Ticks().Screenshot(Command.Key);
            if (!Grip.Thumb) { // a press on node 2 without motion leaves everything where it is
                Scene.Drag(Grip.Page.Rows8 ? 577 : 517, Grip.Page.Rows8 ? 337 : 362, {});
                Scene.Turns();
                Expect(Grip.AtTo);
            }
            Scene.Drag(Grip.ToX, Grip.ToY, {{Grip.FromX, Grip.FromY}});
            Expect(Grip.AtFrom);
        }
        const RUN Run = Scene.Play();
        EXPECT_EQ(WritesAfter(Run, Begin), Expected);
        for (const COMMAND& Command : gCommands) {
            EXPECT_TRUE(ChartFaceStandsAround(Run.Picture(Command.Key), Run.Picture("checked"))) << Command.Key;
            if (Grip.Page.Fan <= 8) {
                ExpectPage(Run, Command.Key, Grip.Page, !Grip.Thumb);
            }
        }
    }
}

TEST(CommandPages, AfterADragWithALetterAnotherPagesScaleIsItsOwn)
{
    SCENE Scene;
    Go(Scene, 8);
    Scene.Move(397, 402).Press().Turns(2).Move(397, 362).Turns().Key("d").Release(300000).Turns(2);
    Go(Scene, 4);
    Scene.Move(487, 397).Press().Turns(2).Move(499, 409).Turns(2).Screenshot("drag").Turns();
    const RUN Run = Scene.Play();
    // "87.5" to "12.5", four glyphs from x 336 on, every other row from y 306; a scale of 6 rows has nothing that far left.
    for (UINTN Y = 306; Y < 500; Y += 60) {
        EXPECT_LT(CountColor(Run.Picture("drag"), gPanel, 336, Y, 6, 8), 48u) << Y;
    }
}

TEST(CommandPages, ADropAfterDefaultKeepsToTheCurveThatDefaultBroughtBack)
{
    // Node 1 is over column 4 when Default moves its neighbours to columns 0 and 2: it falls between them, on their rows.
    SCENE Scene;
    Scene.Line("default 4 " + Record("01 04 03 02 01 01 02 03 04"));
    Scene.Move(487, 397).Press().Turns(2).Move(517, 397).Turns().Key("d").Release(300000).Turns(2);
    Scene.Drag(427, 427, {{427, 457}}); // it is there, and takes a drag to the row below
    EXPECT_EQ(Scene.Play().Settings(4), (std::vector<std::string>{Record("01 04 03 02 01 01 03 03 04 00 01"),
                                                                  Record("01 04 03 02 01 01 02 03 04 00 01")}));
}

TEST(CommandPages, AThingInHandStaysWhereThePointerHoldsItWhenDefaultMovesIt)
{
    // Default moves node 1 of fan 4 and the thumb of fan 9 while they are in hand; both fall where the pointer is.
    SCENE Scene;
    Scene.Line("default 4 " + Record("01 0a 08 03 01 02 03 06 08"));
    Scene.Line("default 9 " + Record("00 00 00 00 00 00 00 00 00 00 01"));
    Scene.Move(487, 397).Press().Turns(2).Move(517, 397).Turns().Key("d").Turns(3).Release(300000).Turns(2);
    Go(Scene, 9);
    Scene.Key("c").Move(397, 402).Press().Turns(2).Move(397, 362).Turns().Key("d").Turns(3).Release(300000).Turns(2);
    EXPECT_EQ(Scene.Play().AllSettings(),
              (std::vector<std::string>{"4:" + Record("01 0a 08 05 01 02 04 06 08 00 01"),
                                        "9:" + Record("00 00 00 00 00 00 00 00 00 00 04")}));
}

TEST(CommandPages, OneThingInHandKeepsAnotherFromBeingTakenUp)
{
    // On fan 7 a letter swaps frame and slider while a node or the thumb is in hand. The pointer then passes over what has
    // come in: the thumb on the top row, and node 0 on the bottom row, both in the first column.
    SCENE Scene;
    Go(Scene, 7);
    Scene.Move(457, 442).Press().Turns(2).Move(440, 300).Turns().Key("f").Move(397, 282).Turns(2);
    Scene.Move(487, 442).Turns(2).Release(300000).Turns(2).Key("c").Click(296, 242);
    Scene.Move(397, 402).Press().Turns(2).Move(397, 380).Turns().Key("d").Move(397, 482).Turns(2);
    Scene.Move(397, 362).Turns(2).Release(300000).Turns(2);
    const std::vector<std::string> Records = Scene.Play().Settings(7);
    ASSERT_EQ(Records.size(), 4u); // the tab, the node, the box, the thumb
    EXPECT_EQ(Records[1], Record("01 07 05 04 01 01 02 04 06 00 06"));
    EXPECT_EQ(Records[3], Record("00 07 05 04 01 01 02 04 06 00 04"));
}

TEST(CommandPages, TheChartStaysAwayWhileAnythingIsInHand)
{
    // A letter changes which control lies under the chart; the one in hand may be the other.
    for (const UINTN Index : {3, 4, 6}) {
        const GRIP& Grip = gGrips[Index];
        SCENE Scene = OnPage(Grip.Page);
        if (Grip.Thumb) {
            Scene.Click(296, 242);
        }
        Scene.Move(Grip.FromX, Grip.FromY).Press().Turns(2).Move(Grip.ToX, Grip.ToY).Turns();
        const UINT64 Begin = Scene.TurnsSoFar;
        for (const COMMAND& Command : gCommands) {
            Scene.Key(Command.Key).Turns().Ticks();
        }
        // Each tick's turn sends the rectangle once, for the drag, and not for the chart.
        const RUN Run = Scene.Play();
        for (UINT64 Turn = Begin + 3; Turn <= Scene.TurnsSoFar; Turn += 3) {
            UINTN Blts = 0;
            for (const CALL_LINE& Blt : Run.NamedInTurn("Blt", Turn)) {
                Blts += Blt.Number("x") == 382 && Blt.Number("y") == 262 && Blt.Number("width") == 391;
            }
            EXPECT_EQ(Blts, 1u) << "fan " << Grip.Page.Fan << ", turn " << Turn;
        }
    }
}

TEST(CommandPages, ALetterInTheTurnOfAReleaseIsALetter)
{
    for (const PAGE& Page : gPages) {
        SCENE Scene = OnPage(Page);
        const UINT64 Begin = Scene.TurnsSoFar;
        for (const COMMAND& Command : gCommands) { // from a box that is on, and from one that is off
            Scene.Move(600, 540).Press().Turns().Advance(50000).Line("left up").Key(Command.Key).Turns(3);
        }
        for (const char* Key : {"d", "f", "c"}) {
            Scene.Move(600, 540).Press().Turns().Advance(50000).Line("left up").Key(Key).Turns(3);
        }
        EXPECT_EQ(WritesAfter(Scene.Play(), Begin), std::vector<std::string>{}) << Page.Board << " fan " << Page.Fan;
    }
}

} // namespace
