#include "tests/console/ConsoleBench.h"

namespace {

constexpr PLACE gFullSpeed = Button(FULL_SPEED).Center();
constexpr PLACE gDefault = Button(DEFAULT).Center();

UINTN FullSpeeds(const RUN& Run) { return Run.Count("SetAllFansFullSpeed"); }
UINTN Defaults(const RUN& Run) { return Run.Count("LoadDefaultFanSettings"); }

// A press on Full speed, and what follows it.
SCENE Pressed() { return SCENE().Move(gFullSpeed).Press().Turns(2); }

TEST(Pointer, APressIsAClickBelow185Milliseconds)
{
    const struct {
        UINT64 TimerAtStart;
        UINT64 Held;
        UINTN Clicks;
    } Cases[] = {
        {0, 0, 1},
        {0, 184999, 1},
        {0, 185000, 0},
        {0, 5000000, 0},
        // The femtoseconds of a press count in 64 bits: after 18446.744 s they begin anew, 99.3 ms before this release.
        {0, 18446744173000, 1},
        // The timer counts nanoseconds; it goes over its end after 100 ms, in the middle of the press.
        {0 - 100000000ull, 184999, 1},
        {0 - 100000000ull, 185000, 0},
    };
    for (const auto& Case : Cases) {
        SCENE Scene;
        Scene.Options.TimerAtStart = Case.TimerAtStart;
        Scene.Move(gFullSpeed).Press().Turns(3).Release(Case.Held).Turns(3);
        EXPECT_EQ(FullSpeeds(Scene.Play()), Case.Clicks) << Case.Held << " from " << Case.TimerAtStart;
    }
}

TEST(Pointer, AClickGoesToWhatIsUnderThePointerAtTheRelease)
{
    // Slid from one button to another; off the button; from nothing onto a button.
    const RUN Slid = Pressed().Point(gDefault).Release(50000).Turns(2).Play();
    EXPECT_EQ(FullSpeeds(Slid), 0u);
    EXPECT_EQ(Defaults(Slid), 1u);
    const RUN Off = Pressed().Point(gAway).Release(50000).Turns(2).Play();
    EXPECT_EQ(FullSpeeds(Off) + Defaults(Off), 0u);
    const RUN On = SCENE().Move(gAway).Press().Turns(2).Point(gFullSpeed).Release(50000).Turns(2).Play();
    EXPECT_EQ(FullSpeeds(On), 1u);
    // The scan after the release works on the position that the release came with.
    const RUN Late = Pressed().Release(50000).Move(gDefault).Turns(2).Play();
    EXPECT_EQ(FullSpeeds(Late), 1u);
    EXPECT_EQ(Defaults(Late), 0u);
}

TEST(Pointer, AButtonThatComesDownBeforeTheClickIsOverRepeatsIt)
{
    // Down again in the turn after the release: each scan until it comes up clicks once more, and the press itself
    // isn't seen.
    const RUN Run = Pressed().Release(50000).Line("left down").Turns(3).Line("left up").Turns(5).Play();
    EXPECT_EQ(FullSpeeds(Run), 4u);
    EXPECT_EQ(FullSpeeds(SCENE().Button(FULL_SPEED).Button(FULL_SPEED).Play()), 2u) << "two quick clicks are two";
}

TEST(Pointer, AButtonShowsThePointerOverItEvenDuringAPress)
{
    SCENE Scene;
    const PLACE Corner = Button(FULL_SPEED).Corner();
    Scene.Move(gAway).Turns().Screenshot("rest").Hover(Corner).Screenshot("hover").Press().Turns(2).Screenshot(
        "pressed");
    Scene.Away().Screenshot("left").Hover(Corner).Screenshot("back").Release(400000).Turns().Screenshot("released");
    const RUN Run = Scene.Away().Screenshot("end").Play();
    EXPECT_EQ(FullSpeeds(Run), 0u);
    const AREA Seen = Button(FULL_SPEED).BesideCorner();
    EXPECT_TRUE(Run.Differ("rest", "hover", Seen));
    for (const char* Name : {"pressed", "back", "released"}) {
        Run.ExpectSame(Name, "hover", Seen);
    }
    Run.ExpectSame("left", "rest", Seen);
    Run.ExpectSame("end", "rest", Seen);
    // The caption: #767676 at rest, white under the pointer.
    EXPECT_GT(CountColor(Run.Picture("rest"), 0x767676, Seen), 50u);
    EXPECT_EQ(CountColor(Run.Picture("hover"), 0x767676, Seen), 0u);
    EXPECT_GT(CountColor(Run.Picture("hover"), 0xFFFFFF, Seen), 50u);
}

// The command buttons that a turn painted.
std::vector<BUTTON> Painted(const RUN& Run, TURN Turn)
{
    std::vector<BUTTON> Found;
    for (const BUTTON Which : {FULL_SPEED, DEFAULT, CANCEL}) {
        Found.insert(Found.end(), Run.Painted(Turn, Button(Which)), Which);
    }
    return Found;
}

TEST(Pointer, GoingStraightToAnotherButtonTellsBothInOneStep)
{
    using BUTTONS = std::vector<BUTTON>;
    const RUN Run = SCENE().Hover(gFullSpeed).Move(gDefault).Turns(4).Play();
    EXPECT_EQ(Painted(Run, 2), BUTTONS{FULL_SPEED});
    EXPECT_EQ(Painted(Run, 3), BUTTONS{});
    EXPECT_EQ(Painted(Run, 4), (BUTTONS{FULL_SPEED, DEFAULT}));
    EXPECT_EQ(Painted(Run, 5), BUTTONS{DEFAULT}) << "the entry is announced once more";
    EXPECT_EQ(Painted(Run, 6), BUTTONS{});

    // Gone again by the time of that step: the first is told that it was left, once, and the second nothing.
    const RUN Gone = SCENE().Hover(gFullSpeed).Move(gDefault).Move(gAway).Turns(3).Play();
    EXPECT_EQ(Painted(Gone, 4), BUTTONS{FULL_SPEED});
    EXPECT_EQ(Painted(Gone, 5), BUTTONS{});
    EXPECT_EQ(Painted(Gone, 6), BUTTONS{});
}

TEST(Pointer, NothingOutsideAPressOfTheLeftButtonChangesTheBoard)
{
    // Across everything, slowly, without a button; then held from nothing, over two buttons.
    SCENE Scene;
    for (const PLACE Place : gPlacesOfUse) {
        Scene.Hover(Place);
    }
    Scene.Away().Press().Advance(300000).Hover(gFullSpeed).Hover(gDefault).Release().Turns(2);
    const RUN Run = Scene.Play();
    EXPECT_EQ(Run.Writes(), WRITES{});
    EXPECT_EQ(FullSpeeds(Run) + Defaults(Run) + Run.Count("RestoreFanSettings") + Run.Count("CreateMessageBox"), 0u);
}

} // namespace
