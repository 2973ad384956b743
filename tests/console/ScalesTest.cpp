// The two faces of the scales around the chart, and the labels that light up during a drag.
#include "tests/console/ConsoleBench.h"

namespace {

constexpr UINT32 gWhite = 0xFFFFFF;

// Digits stand on the panel, with a step or two of the coding beside them.
bool HasInk(const PICTURE& Picture, UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    for (UINTN Row = Y; Row < Y + Height; Row++) {
        for (UINTN Column = X; Column < X + Width; Column++) {
            if ((PixelAt(Picture, Column, Row) >> 8 & 0xFF) > 0x24 + 24) {
                return true;
            }
        }
    }
    return false;
}

// Labels whose first glyph is 6 wide at X and whose top is Y: ink there, and none in the rows before.
void ExpectLabel(const PICTURE& Picture, UINTN X, UINTN Y)
{
    EXPECT_TRUE(HasInk(Picture, X, Y, 6, 14)) << X << ", " << Y;
    EXPECT_FALSE(HasInk(Picture, 331, Y - 4, 39, 4)) << X << ", " << Y;
}

UINTN White(const PICTURE& Picture, UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    return CountColor(Picture, gWhite, X, Y, Width, Height);
}

// The foot of the panel between the captions, where the temperatures are.
UINTN WhiteAtFoot(const PICTURE& Picture)
{
    return White(Picture, 391, 520, 400, 25);
}

UINTN WhiteAtLeft(const PICTURE& Picture)
{
    return White(Picture, 330, 247, 40, 270);
}

std::vector<std::string> LastTexts(const RUN& Run, UINT64 Turn, UINTN Count)
{
    std::vector<std::string> Texts;
    for (const CALL_LINE& Call : Run.NamedInTurn("StringToImage", Turn)) {
        Texts.push_back(Call.Text("text"));
    }
    return Texts.size() <= Count ? Texts : std::vector<std::string>(Texts.end() - static_cast<INT64>(Count), Texts.end());
}

TEST(Scales, ChangeTheirFaceForADragAndComeBackExactly)
{
    struct {
        const char* Name;
        int TabX;
        int GrabX;
        int GrabY;
    } const Pages[] = {{"8 rows", 323, 487, 397}, {"6 rows", 620, 457, 442}, {"thumb", 818, 397, 402}};
    for (const auto& Page : Pages) {
        SCOPED_TRACE(Page.Name);
        SCENE Scene;
        Scene.Click(Page.TabX, 150).Move(900, 700).Turns(2).Screenshot("rest");
        Scene.Move(Page.GrabX, Page.GrabY).Press().Turns(4).Screenshot("drag");
        // There and back, so that labels have lit up in several places; the clock hasn't come to a tick.
        for (const auto& [X, Y] : std::vector<std::pair<int, int>>{
                 {-45, 0}, {60, 60}, {0, 0}, {30, -40}, {0, 80}, {0, 0}}) {
            Scene.Move(Page.GrabX + X, Page.GrabY + Y).Turns(2);
        }
        Scene.Release(1000).Turns().Move(900, 700).Turns(2).Screenshot("back").Turns();
        const RUN Run = Scene.Play();
        const PICTURE& Rest = Run.Picture("rest");
        const PICTURE& Drag = Run.Picture("drag");
        EXPECT_TRUE(SameRectangle(Rest, Run.Picture("back"), 274, 220, 690, 328));

        // At rest: degrees at the left, revolutions at the right, from 259 to 501.
        for (const UINTN Y : {282, 305, 328, 351, 377, 400, 426, 450, 474}) {
            ExpectLabel(Rest, 348, Y);
            EXPECT_TRUE(HasInk(Rest, 800, Y, 6, 14)) << Y;
        }
        ExpectLabel(Rest, 342, 259);
        ExpectLabel(Rest, 354, 501);
        // The editor has no scale at the right, and temperatures along its foot, at 391 and each 30 pixels.
        EXPECT_FALSE(HasInk(Drag, 800, 251, 33, 260));
        for (UINTN Column = 0; Column < 13; Column++) {
            EXPECT_TRUE(HasInk(Drag, 391 + 30 * Column, 520, 12, 19)) << Column;
        }
        EXPECT_FALSE(SameRectangle(Rest, Drag, 328, 520, 60, 20)); // the captions change places
        EXPECT_FALSE(SameRectangle(Rest, Drag, 800, 520, 60, 20));
    }
}

TEST(Scales, StandAtTheRowsOfEitherGrid)
{
    SCENE Eight;
    Eight.Move(487, 397).Press().Turns(4).Screenshot("drag").Release(1000).Turns(2);
    const RUN RunOfEight = Eight.Play();
    const UINTN FirstX[] = {342, 336, 348, 336, 348, 336, 348, 336};
    for (UINTN Row = 0; Row < 8; Row++) {
        if (Row != 4) { // lit up, in its own place
            ExpectLabel(RunOfEight.Picture("drag"), FirstX[Row], 276 + 30 * Row);
        }
    }
    SCENE Six;
    Six.Click(620, 150).Move(457, 442).Press().Turns(4).Screenshot("drag").Release(1000).Turns(2);
    const RUN RunOfSix = Six.Play();
    for (UINTN Row = 0; Row < 6; Row++) {
        if (Row != 4) {
            ExpectLabel(RunOfSix.Picture("drag"), Row == 0 ? 342 : 348, 281 + 40 * Row);
        }
    }
    // Node 1 stands in row 4 of either: 50% of 8 rows at (346, 390), 60% of 6 rows at (346, 433).
    EXPECT_GT(White(RunOfEight.Picture("drag"), 346, 390, 16, 19), 0u);
    EXPECT_EQ(White(RunOfEight.Picture("drag"), 346, 390, 16, 19), WhiteAtLeft(RunOfEight.Picture("drag")));
    EXPECT_GT(White(RunOfSix.Picture("drag"), 346, 433, 16, 19), 0u);
    EXPECT_EQ(White(RunOfSix.Picture("drag"), 346, 433, 16, 19), WhiteAtLeft(RunOfSix.Picture("drag")));
}

TEST(Scales, ALitLabelGoesInOneTurnAndTheNextComesInTheTurnAfter)
{
    // Node 1 of fan 4 goes from column 3, row 4 to column 4, row 5.
    SCENE Scene;
    for (int Item : {0, 1, 2, 4, 5, 6, 7, 8, 9, 10}) {
        Scene.Line("reading " + std::to_string(Item) + " 7");
    }
    Scene.Move(487, 397).Press().Turns(); // the drag begins
    const UINT64 Begun = Scene.TurnsSoFar;
    Scene.Turns().Screenshot("first").Move(517, 427);
    const UINT64 Moved = Scene.TurnsSoFar;
    Scene.Screenshot("between").Turns().Screenshot("second").Turns(2).Release(1000).Turns(2);
    const RUN Run = Scene.Play();

    EXPECT_EQ(LastTexts(Run, Begun + 1, 4), (std::vector<std::string>{"55", "55", "50", "50"}));
    EXPECT_EQ(LastTexts(Run, Moved, 4), (std::vector<std::string>{"  ", "  ", "    ", "    "}));
    EXPECT_EQ(LastTexts(Run, Moved + 1, 4), (std::vector<std::string>{"60", "60", "37.5", "37.5"}));

    // Column c's label is at (2c + 1) x 15 + 376, row r's ends at 362 and begins at 30r + 270.
    const PICTURE& First = Run.Picture("first");
    EXPECT_GT(WhiteAtFoot(First), 0u);
    EXPECT_EQ(White(First, 481, 520, 16, 19), WhiteAtFoot(First));
    EXPECT_EQ(White(First, 346, 390, 16, 19), WhiteAtLeft(First));
    const PICTURE& Between = Run.Picture("between");
    EXPECT_EQ(WhiteAtFoot(Between), 0u);
    EXPECT_EQ(WhiteAtLeft(Between), 0u);
    EXPECT_TRUE(HasInk(Between, 481, 525, 12, 12)); // the digits are back
    EXPECT_TRUE(HasInk(Between, 348, 396, 12, 12));
    const PICTURE& Second = Run.Picture("second");
    EXPECT_GT(WhiteAtFoot(Second), 0u);
    EXPECT_EQ(White(Second, 511, 520, 16, 19), WhiteAtFoot(Second));
    EXPECT_EQ(White(Second, 330, 420, 32, 19), WhiteAtLeft(Second));
}

TEST(Scales, AThumbLightsAllTemperaturesAndItsRow)
{
    SCENE Scene;
    Scene.Click(818, 150).Move(397, 402).Press().Turns(3);
    // The highlights look before the slider's step does, so they follow a turn later than those of a node.
    Scene.Screenshot("lit").Move(397, 362).Turns().Screenshot("gone").Turns().Screenshot("lit again").Turns();
    Scene.Release(1000).Turns(2);
    const RUN Run = Scene.Play();
    for (UINTN Column = 0; Column < 13; Column++) {
        EXPECT_GT(White(Run.Picture("lit"), (2 * Column + 1) * 15 + 376, 520, Column == 12 ? 24 : 16, 19), 0u) << Column;
    }
    // Offset 120 is row 3, 70%, at y 393; offset 80 row 2, 80%, at y 353. Between the two the old label is gone.
    EXPECT_GT(White(Run.Picture("lit"), 346, 393, 16, 19), 0u);
    EXPECT_EQ(White(Run.Picture("lit"), 346, 393, 16, 19), WhiteAtLeft(Run.Picture("lit")));
    EXPECT_EQ(WhiteAtLeft(Run.Picture("gone")), 0u);
    EXPECT_GT(White(Run.Picture("lit again"), 346, 353, 16, 19), 0u);
    EXPECT_EQ(White(Run.Picture("lit again"), 346, 353, 16, 19), WhiteAtLeft(Run.Picture("lit again")));
}

} // namespace
