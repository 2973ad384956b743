#include "tests/console/ConsoleBench.h"

namespace {

// Full speed is the button at (531, 558), Default the one at (678, 558); each 138 by 26.
constexpr int gFullSpeedX = 600;
constexpr int gDefaultX = 745;
constexpr int gButtonY = 570;

UINTN FullSpeeds(const RUN& Run) { return Run.Named("SetAllFansFullSpeed").size(); }
UINTN Defaults(const RUN& Run) { return Run.Named("LoadDefaultFanSettings").size(); }

TEST(Pointer, APressIsAClickBelow185Milliseconds)
{
    const struct {
        UINT64 Held;
        UINTN Clicks;
    } Cases[] = {
        {0, 1},
        {184999, 1},
        {185000, 0},
        {5000000, 0},
        // The femtoseconds of a press count in 64 bits: after 18446.744 s they begin anew, 99.3 ms before this release.
        {18446744173000, 1},
    };
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.Held);
        const RUN Run =
            SCENE().Move(gFullSpeedX, gButtonY).Press().Turns(3).Release(Case.Held).Turns(3).Play();
        EXPECT_EQ(FullSpeeds(Run), Case.Clicks);
    }
}

TEST(Pointer, APressIsTimedAcrossTheTimersEnd)
{
    // The timer counts nanoseconds from near its end; it goes over it after 100 ms, in the middle of each press.
    for (const auto& [Held, Clicks] : {std::pair<UINT64, UINTN>{184999, 1}, {185000, 0}}) {
        SCOPED_TRACE(Held);
        SCENE Scene;
        Scene.Options.TimerAtStart = 0 - 100000000ull;
        const RUN Run = Scene.Move(gFullSpeedX, gButtonY).Press().Turns(3).Release(Held).Turns(3).Play();
        EXPECT_EQ(FullSpeeds(Run), Clicks);
    }
}

TEST(Pointer, AClickGoesToWhatIsUnderThePointerAtTheRelease)
{
    // Slid from one button to another.
    const RUN Slid = SCENE()
                         .Move(gFullSpeedX, gButtonY)
                         .Press()
                         .Turns(2)
                         .Line("pointer 745 570")
                         .Release(50000)
                         .Turns(2)
                         .Play();
    EXPECT_EQ(FullSpeeds(Slid), 0u);
    EXPECT_EQ(Defaults(Slid), 1u);

    // Off the button: nothing is clicked.
    const RUN Off =
        SCENE().Move(gFullSpeedX, gButtonY).Press().Turns(2).Line("pointer 600 20").Release(50000).Turns(2).Play();
    EXPECT_EQ(FullSpeeds(Off) + Defaults(Off), 0u);

    // From nothing onto a button.
    const RUN On =
        SCENE().Move(600, 20).Press().Turns(2).Line("pointer 600 570").Release(50000).Turns(2).Play();
    EXPECT_EQ(FullSpeeds(On), 1u);

    // The scan after the release works on the position that the release came with.
    const RUN Late =
        SCENE().Move(gFullSpeedX, gButtonY).Press().Turns(2).Release(50000).Move(gDefaultX, gButtonY).Turns(2).Play();
    EXPECT_EQ(FullSpeeds(Late), 1u);
    EXPECT_EQ(Defaults(Late), 0u);
}

TEST(Pointer, AButtonThatComesDownBeforeTheClickIsOverRepeatsIt)
{
    // Down again in the turn after the release: each scan until it comes up clicks once more, and the press itself
    // isn't seen.
    const RUN Run = SCENE()
                        .Move(gFullSpeedX, gButtonY)
                        .Press()
                        .Turns(2)
                        .Release(50000)
                        .Line("left down")
                        .Turns(3)
                        .Line("left up")
                        .Turns(5)
                        .Play();
    EXPECT_EQ(FullSpeeds(Run), 4u);
}

TEST(Pointer, TwoQuickClicksAreTwoClicks)
{
    EXPECT_EQ(FullSpeeds(SCENE().Click(gFullSpeedX, gButtonY).Click(gFullSpeedX, gButtonY).Play()), 2u);
}

TEST(Pointer, AButtonShowsThePointerOverItEvenDuringAPress)
{
    // The pointer stands at the button's lower right, so that its picture leaves most of the button free.
    SCENE Scene;
    Scene.Move(600, 20).Turns().Screenshot("rest").Move(662, 580).Turns().Screenshot("hover");
    Scene.Press().Turns(2).Screenshot("pressed").Move(600, 20).Turns().Screenshot("left");
    Scene.Move(662, 580).Turns().Screenshot("back").Release(400000).Turns().Screenshot("released");
    Scene.Move(600, 20).Turns(2).Screenshot("end").Turns();
    const RUN Run = Scene.Play();
    EXPECT_EQ(FullSpeeds(Run), 0u);

    const auto Same = [&Run](const char* A, const char* B) {
        return SameRectangle(Run.Picture(A), Run.Picture(B), 531, 558, 130, 21);
    };
    EXPECT_FALSE(Same("rest", "hover"));
    EXPECT_TRUE(Same("pressed", "hover"));
    EXPECT_TRUE(Same("left", "rest"));
    EXPECT_TRUE(Same("back", "hover"));
    EXPECT_TRUE(Same("released", "hover"));
    EXPECT_TRUE(Same("end", "rest"));
    // The caption: #767676 at rest, white under the pointer.
    EXPECT_GT(CountColor(Run.Picture("rest"), 0x767676, 531, 558, 130, 21), 50u);
    EXPECT_EQ(CountColor(Run.Picture("hover"), 0x767676, 531, 558, 130, 21), 0u);
    EXPECT_GT(CountColor(Run.Picture("hover"), 0xFFFFFF, 531, 558, 130, 21), 50u);
}

// Left edges of the command buttons that a turn painted.
std::vector<UINT64> ButtonsPainted(const RUN& Run, UINT64 Turn)
{
    std::vector<UINT64> Lefts;
    for (const CALL_LINE& Line : Run.NamedInTurn("Blt", Turn)) {
        if (Line.Number("y") == 558 && Line.Number("width") == 138 && Line.Number("height") == 26) {
            Lefts.push_back(Line.Number("x"));
        }
    }
    return Lefts;
}

TEST(Pointer, GoingStraightToAnotherButtonTellsBothInOneStep)
{
    using LEFTS = std::vector<UINT64>;
    const RUN Run = SCENE().Move(gFullSpeedX, gButtonY).Turns().Move(gDefaultX, gButtonY).Turns(4).Play();
    EXPECT_EQ(ButtonsPainted(Run, 2), LEFTS{531});
    EXPECT_EQ(ButtonsPainted(Run, 3), LEFTS{});
    EXPECT_EQ(ButtonsPainted(Run, 4), (LEFTS{531, 678}));
    EXPECT_EQ(ButtonsPainted(Run, 5), LEFTS{678}) << "the entry is announced once more";
    EXPECT_EQ(ButtonsPainted(Run, 6), LEFTS{});

    // Gone again by the time of that step: the first is told that it was left, once, and the second nothing.
    const RUN Gone = SCENE().Move(gFullSpeedX, gButtonY).Turns().Move(gDefaultX, gButtonY).Move(600, 20).Turns(3).Play();
    EXPECT_EQ(ButtonsPainted(Gone, 4), LEFTS{531});
    EXPECT_EQ(ButtonsPainted(Gone, 5), LEFTS{});
    EXPECT_EQ(ButtonsPainted(Gone, 6), LEFTS{});
}

TEST(Pointer, NothingOutsideAPressOfTheLeftButtonChangesTheBoard)
{
    // Across everything, slowly, without a button; then held from nothing, over tabs, boxes and buttons.
    SCENE Scene;
    for (int Round = 0; Round < 2; Round++) {
        for (const auto& [X, Y] : std::vector<std::pair<int, int>>{
                 {300, 150}, {420, 150}, {290, 240}, {60, 310}, {60, 350}, {600, 570}, {745, 570}, {890, 570}, {800, 95}}) {
            Scene.Move(X, Y).Turns();
        }
        Scene.Move(600, 20).Turns();
    }
    Scene.Move(700, 20).Press().Advance(300000).Move(600, 570).Turns().Move(745, 570).Turns().Release().Turns(2);
    const RUN Run = Scene.Play();
    EXPECT_TRUE(Run.AllSettings().empty());
    EXPECT_EQ(FullSpeeds(Run) + Defaults(Run) + Run.Named("RestoreFanSettings").size(), 0u);
    EXPECT_TRUE(Run.Named("CreateMessageBox").empty());
}

} // namespace
