// The About and Help pages: what they say, how they are closed, and that everything else stands still meanwhile.
#include "tests/console/ConsoleBench.h"

namespace {

constexpr int gAboutX = 790;
constexpr int gHelpX = 871;
constexpr int gButtonY = 95;

// Opens a page. It is open from turn TurnsSoFar - 1 on: in that turn of the main loop, and in the turns of its own loop.
SCENE Opened(int ButtonX)
{
    SCENE Scene;
    Scene.Click(ButtonX, gButtonY);
    return Scene;
}

std::vector<std::string> StringsOfTurn(const RUN& Run, UINT64 Turn)
{
    std::vector<std::string> Items;
    for (const CALL_LINE& Call : Run.NamedInTurn("GetItemString", Turn)) {
        Items.push_back(Call.Text("item"));
    }
    return Items;
}

// Whether the main loop stood still in a turn.
bool StoodStill(const RUN& Run, UINT64 Turn)
{
    return Run.NamedInTurn("WaitForEvent", Turn).empty() && Run.NamedInTurn("GetItemValue", Turn).empty();
}

TEST(InformationPage, AboutAsksForItsTextsInTheirOrder)
{
    SCENE Scene = Opened(gAboutX);
    const UINT64 Turn = Scene.TurnsSoFar - 1;
    const RUN Run = Scene.Key("enter").Turns(2).Play();
    EXPECT_EQ(StringsOfTurn(Run, Turn), (std::vector<std::string>{"37", "38", "39", "36"}));
    ASSERT_EQ(Run.Named("CreateMessageBox").size(), 1u);
    const CALL_LINE Box = Run.Named("CreateMessageBox")[0];
    EXPECT_EQ(Box.Turn, Turn);
    EXPECT_EQ(Box.Text("x") + " " + Box.Text("y") + " " + Box.Text("width") + " " + Box.Text("height"),
              "300 240 295 137");
    EXPECT_EQ(Box.Text("lines"), "[\"Ventara Fan Console by Kestrin\",\"            All rights reserved\","
                                 "\"            www.kestrin.example\"]");
    EXPECT_EQ(Box.Text("buttons"), "[\"OK\"]");
}

TEST(InformationPage, HelpFallsBackToItsOwnTexts)
{
    SCENE Scene;
    for (int Item = 31; Item <= 36; Item++) {
        Scene.Line("string " + std::to_string(Item) + " null");
    }
    Scene.Click(gHelpX, gButtonY);
    const UINT64 Turn = Scene.TurnsSoFar - 1;
    const RUN Run = Scene.Key("enter").Turns(2).Play();
    EXPECT_EQ(StringsOfTurn(Run, Turn), (std::vector<std::string>{"31", "32", "33", "34", "35", "36"}));
    ASSERT_EQ(Run.Named("CreateMessageBox").size(), 1u);
    const CALL_LINE Box = Run.Named("CreateMessageBox")[0];
    EXPECT_EQ(Box.Text("x") + " " + Box.Text("y") + " " + Box.Text("width") + " " + Box.Text("height"),
              "300 159 295 137");
    EXPECT_EQ(Box.Text("lines"),
              "[\"You can set CPU or System target temperature \\nand set Fan duty cycle.\","
              "\"        \\n          \",\"ESC    : Exit\",\"(F)key : All full speed.\",\"(D)key : All set default.\","
              "\"(C)key : All set cancel.\",\"        \\n          \"]");
    EXPECT_EQ(Box.Text("buttons"), "[\"OK\"]");
}

TEST(InformationPage, AboutFallsBackToTextsThatNameTheMaker)
{
    SCENE Scene;
    for (int Item : {36, 37, 38, 39}) {
        Scene.Line("string " + std::to_string(Item) + " null");
    }
    const RUN Run = Scene.Click(gAboutX, gButtonY).Key("enter").Turns(2).Play();
    ASSERT_EQ(Run.Named("CreateMessageBox").size(), 1u);
    const std::string Lines = Run.Named("CreateMessageBox")[0].Text("lines");
    EXPECT_NE(Lines.find("Kestrin"), std::string::npos);
    EXPECT_NE(Lines.find("\",\"            All rights reserved"), std::string::npos);
    EXPECT_NE(Lines.find("\",\"            http"), std::string::npos);
}

TEST(InformationPage, IsClosedByEnterEscapeTheRightButtonAndOkAndGivesTheScreenBack)
{
    // The About page is 295 by 137 at (300, 240); its OK stands in the middle of its foot.
    for (const std::string Way : {"enter", "esc", "right", "ok"}) {
        SCOPED_TRACE(Way);
        SCENE Scene;
        Scene.Ticks(3).Move(gAboutX, gButtonY).Turns(16).Screenshot("before");
        Scene.Press().Turns().Release(50000).Turns(2);
        Scene.Line("reading 0 3").Line("reading 4 33"); // nobody may ask for them now
        Scene.Turns(3).Screenshot("open");
        const UINT64 Open = Scene.TurnsSoFar;
        if (Way == "right") {
            // The next read of the pointer brings nothing, so that the button which closed the page isn't seen to rise.
            Scene.Line("right down").Turns().Line("right up").Line("fail GetCursorState NOT_READY");
        } else if (Way == "ok") {
            Scene.Move(447, 350).Press().Line("left up").Line("pointer 790 95");
        } else {
            Scene.Key(Way);
        }
        const UINT64 Closed = Way == "ok" ? Open + 2 : Open + 1;
        Scene.Turns(1).Line("reading 0 live").Line("reading 4 live").Screenshot("after").Turns(3);
        // The pointer brings out of the stored screen what it leaves: here, where the page's first line of text was, left
        // of the chart, which goes on.
        Scene.Move(330, 256).Turns(3).Move(gAboutX, gButtonY).Turns(3).Screenshot("passed").Turns();
        const RUN Run = Scene.Play();

        EXPECT_FALSE(SameRectangle(Run.Picture("before"), Run.Picture("open"), 330, 256, 16, 24));
        EXPECT_TRUE(SameRectangle(Run.Picture("before"), Run.Picture("after"), 274, 220, 690, 328));
        EXPECT_TRUE(SameRectangle(Run.Picture("before"), Run.Picture("passed"), 300, 240, 80, 137));
        for (UINT64 Turn = Open - 3; Turn <= Closed; Turn++) {
            EXPECT_TRUE(StoodStill(Run, Turn)) << Turn;
        }
        ASSERT_EQ(Run.NamedInTurn("Stall", Closed).size(), 1u);
        EXPECT_EQ(Run.NamedInTurn("Stall", Closed)[0].Number("asked"), 300000u);
        // The console goes on: the next turn finishes the one that opened the page, then the loop waits again.
        EXPECT_FALSE(Run.NamedInTurn("WaitForEvent", Closed + 2).empty());
        // The timer's tick has waited meanwhile.
        EXPECT_EQ(Run.NamedInTurn("WaitForEvent", Closed + 2)[0].Number("index"), 1u);
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
    SCENE Scene = Opened(gAboutX);
    Scene.Turns(3).Key("enter").Turns(2).Screenshot("after");
    Scene.Move(330, 256).Turns(3).Move(gAboutX, gButtonY).Turns(3).Screenshot("passed").Turns();
    const RUN Whole = Scene.Play();
    std::vector<UINTN> Reads;
    const std::vector<CALL_LINE> Blts = Whole.Named("Blt");
    for (UINTN At = 0; At < Blts.size(); At++) {
        if (Blts[At].Text("operation") == "to-buffer") {
            Reads.push_back(At);
        }
    }
    ASSERT_EQ(Reads.size(), 2u) << "what is under the box, and the box";
    for (const UINTN Read : Reads) {
        FAILING_BLT Failing = {Read};
        Scene.Options.Failures = {.Call = FAILING_BLT::Decide, .Allocation = nullptr, .Context = &Failing};
        const RUN Run = Scene.Play();
        EXPECT_TRUE(Run.Picture("after") == Whole.Picture("after")) << Read;
        EXPECT_TRUE(Run.Picture("passed") == Whole.Picture("passed")) << Read;
    }
}

TEST(InformationPage, StaysOpenForEverythingElse)
{
    SCENE Scene = Opened(gHelpX);
    for (const char* Letter : {"f", "F", "d", "D", "c", "C", "x"}) {
        Scene.Key(Letter);
    }
    Scene.Move(310, 170).Press().Turns().Line("left up").Turns();    // in the box, beside OK
    Scene.Move(296, 242).Press().Line("left up").Turns(2);           // on the check box of the page beneath
    Scene.Move(560, 575).Press().Turns().Line("left up").Turns(2);   // on a button
    const UINT64 Last = Scene.TurnsSoFar;
    const RUN Run = Scene.Key("enter").Turns(4).Play();
    for (UINT64 Turn = 6; Turn <= Last; Turn++) {
        EXPECT_TRUE(StoodStill(Run, Turn)) << Turn;
    }
    for (const char* Call : {"SetAllFansFullSpeed", "LoadDefaultFanSettings", "RestoreFanSettings"}) {
        EXPECT_TRUE(Run.Named(Call).empty()) << Call;
    }
    EXPECT_TRUE(Run.AllSettings().empty());
}

TEST(InformationPage, ARightButtonStillHeldAfterwardsEndsTheConsole)
{
    SCENE Scene = Opened(gAboutX);
    Scene.Line("right down").Turns(2);
    const RUN Run = Scene.Play();
    // Nobody had to press Escape.
    EXPECT_TRUE(Run.Named("ReadKeyStroke").empty());
    EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
}

} // namespace
