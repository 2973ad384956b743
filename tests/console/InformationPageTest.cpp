// The About and Help pages: what they say, how they are closed, and that everything else stands still meanwhile.
#include "tests/console/ConsoleBench.h"

namespace {

std::vector<std::string> StringsOfTurn(const RUN& Run, TURN Turn)
{
    std::vector<std::string> Items;
    for (const CALL_LINE& Call : Run.NamedInTurn("GetItemString", Turn)) {
        Items.push_back(Call.Text("item"));
    }
    return Items;
}

// The one message box of a run: its place and its lines.
void ExpectBox(const RUN& Run, const AREA& Area, const char* Lines)
{
    ASSERT_EQ(Run.Count("CreateMessageBox"), 1u);
    const CALL_LINE Box = Run.Named("CreateMessageBox")[0];
    EXPECT_EQ(AreaOf(Box), Area);
    EXPECT_EQ(Box.Text("lines"), Lines);
    EXPECT_EQ(Box.Text("buttons"), "[\"OK\"]");
}

// Whether the main loop stood still in a turn.
bool StoodStill(const RUN& Run, TURN Turn)
{
    return Run.NamedInTurn("WaitForEvent", Turn).empty() && Run.Items(Turn).empty();
}

constexpr AREA gAboutPage = {300, 240, 295, 137};
constexpr AREA gHelpPage = {300, 159, 295, 137};

TEST(InformationPage, AboutAsksForItsTextsInTheirOrder)
{
    SCENE Scene;
    const TURN Click = Scene.Button(ABOUT).Mark();
    const RUN Run = Scene.Key("enter").Turns(2).Play();
    EXPECT_EQ(StringsOfTurn(Run, Click), (std::vector<std::string>{"37", "38", "39", "36"}));
    EXPECT_EQ(Run.NamedInTurn("CreateMessageBox", Click).size(), 1u);
    ExpectBox(Run, gAboutPage,
              "[\"Ventara Fan Console by Kestrin\",\"            All rights reserved\","
              "\"            www.kestrin.example\"]");
}

TEST(InformationPage, HelpFallsBackToItsOwnTexts)
{
    SCENE Scene;
    for (int Item = 31; Item <= 36; Item++) {
        Scene.Line("string " + std::to_string(Item) + " null");
    }
    const TURN Click = Scene.Button(HELP).Mark();
    const RUN Run = Scene.Key("enter").Turns(2).Play();
    EXPECT_EQ(StringsOfTurn(Run, Click), (std::vector<std::string>{"31", "32", "33", "34", "35", "36"}));
    ExpectBox(Run, gHelpPage,
              "[\"You can set CPU or System target temperature \\nand set Fan duty cycle.\","
              "\"        \\n          \",\"ESC    : Exit\",\"(F)key : All full speed.\",\"(D)key : All set default.\","
              "\"(C)key : All set cancel.\",\"        \\n          \"]");
}

TEST(InformationPage, AboutFallsBackToTextsThatNameTheMaker)
{
    SCENE Scene;
    for (const int Item : {36, 37, 38, 39}) {
        Scene.Line("string " + std::to_string(Item) + " null");
    }
    const RUN Run = Scene.Button(ABOUT).Key("enter").Turns(2).Play();
    ExpectBox(Run, gAboutPage,
              "[\"Ventara, made by Kestrin\",\"            All rights reserved.\","
              "\"            https://www.kestrin.example\"]");
}

TEST(InformationPage, IsClosedByEnterEscapeTheRightButtonAndOkAndGivesTheScreenBack)
{
    constexpr PLACE Ok = {447, 350}; // in the middle of the page's foot
    for (const std::string Way : {"enter", "esc", "right", "ok"}) {
        SCOPED_TRACE(Way);
        const PLACE About = Button(ABOUT).Center();
        SCENE Scene;
        Scene.Ticks(3).Move(About).Turns(16).Screenshot("before").Press().Turns().Release(50000).Turns(2);
        Scene.Reading(0, 3).Reading(4, 33); // nobody may ask for them now
        const UINT64 Open = Scene.Turns(3).Screenshot("open").TurnsSoFar;
        if (Way == "right") {
            // The next read of the pointer brings nothing, so that the button which closed the page isn't seen to rise.
            Scene.Line("right down").Turns().Line("right up").Line("fail GetCursorState NOT_READY");
        } else if (Way == "ok") {
            Scene.Move(Ok).Press().Line("left up").Point(About);
        } else {
            Scene.Key(Way);
        }
        const UINT64 Closed = Scene.TurnsSoFar;
        Scene.Turns().Reading(0, "live").Reading(4, "live").Screenshot("after").Turns(3);
        // The pointer brings out of the stored screen what it leaves: here, where the page's first line of text was, left
        // of the chart, which goes on.
        const RUN Run = Scene.Move({330, 256}).Turns(3).Move(About).Turns(3).Screenshot("passed").Play();

        EXPECT_TRUE(Run.Differ("before", "open", {330, 256, 16, 24}));
        Run.ExpectSame("before", "after", gPanel);
        Run.ExpectSame("before", "passed", gAboutPage.Part(0, 0, 80, 137));
        for (UINT64 Turn = Open - 3; Turn <= Closed; Turn++) {
            EXPECT_TRUE(StoodStill(Run, Turn)) << Turn;
        }
        ASSERT_EQ(Run.NamedInTurn("Stall", Closed).size(), 1u);
        EXPECT_EQ(Run.NamedInTurn("Stall", Closed)[0].Number("asked"), 300000u);
        // The console goes on: the next turn finishes the one that opened the page, then the loop waits again, and the
        // timer's tick has waited meanwhile.
        const std::vector<CALL_LINE> Waits = Run.NamedInTurn("WaitForEvent", Closed + 2);
        ASSERT_FALSE(Waits.empty());
        EXPECT_EQ(Waits[0].Number("index"), 1u);
    }
}

// Lets one Blt of a run fail and leave nonsense in its buffer.
struct FAILING_BLT {
    UINTN Which;
    UINTN Seen = 0;

    static bool Decide(VOID* Context, CALL Call, EFI_STATUS* Status, bool* Garbage)
    {
        FAILING_BLT& This = *static_cast<FAILING_BLT*>(Context);
        if (Call != CALL_BLT || This.Seen++ != This.Which) {
            return false;
        }
        *Status = EFI_DEVICE_ERROR;
        *Garbage = true;
        return true;
    }
};

TEST(InformationPage, GivesTheScreenBackWhereTheDisplayCanNotBeRead)
{
    const PLACE About = Button(ABOUT).Center();
    SCENE Scene;
    Scene.Button(ABOUT).Turns(3).Key("enter").Turns(2).Screenshot("after");
    Scene.Move({330, 256}).Turns(3).Move(About).Turns(3).Screenshot("passed");
    const RUN Whole = Scene.Play();
    std::vector<UINTN> Reads;
    const std::vector<CALL_LINE> Blts = Whole.Named("Blt");
    for (UINTN At = 0; At < Blts.size(); At++) {
        Reads.insert(Reads.end(), Blts[At].Text("operation") == "to-buffer" ? 1 : 0, At);
    }
    ASSERT_EQ(Reads.size(), 2u) << "what is under the box, and the box";
    for (const UINTN Read : Reads) {
        FAILING_BLT Failing = {Read};
        Scene.Options.Failures = {.Call = FAILING_BLT::Decide, .Allocation = nullptr, .Context = &Failing};
        const RUN Run = Scene.Play();
        for (const char* Name : {"after", "passed"}) {
            ExpectSamePicture(Run.Picture(Name), Whole.Picture(Name));
        }
    }
}

TEST(InformationPage, StaysOpenForEverythingElse)
{
    SCENE Scene;
    const TURN Opened = Scene.Button(HELP).Mark() + 1;
    for (const char* Letter : {"f", "F", "d", "D", "c", "C", "x"}) {
        Scene.Key(Letter);
    }
    for (const PLACE Place : {gHelpPage.Part(10, 11, 0, 0).Center(), gBox.Center(), Button(FULL_SPEED).Center()}) {
        Scene.Move(Place).Press().Turns().Line("left up").Turns(2); // in the page beside OK, and on what is beneath
    }
    const UINT64 Last = Scene.TurnsSoFar;
    const RUN Run = Scene.Key("enter").Turns(4).Play();
    for (UINT64 Turn = Opened.Number; Turn <= Last; Turn++) {
        EXPECT_TRUE(StoodStill(Run, Turn)) << Turn;
    }
    EXPECT_EQ(Run.Count("SetAllFansFullSpeed") + Run.Count("LoadDefaultFanSettings") + Run.Count("RestoreFanSettings"),
              0u);
    EXPECT_EQ(Run.Writes(), WRITES{});
}

TEST(InformationPage, ARightButtonStillHeldAfterwardsEndsTheConsole)
{
    const RUN Run = SCENE().Button(ABOUT).Line("right down").Turns(2).Play();
    // Nobody had to press Escape.
    EXPECT_EQ(Run.Count("ReadKeyStroke"), 0u);
    EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
}

} // namespace
