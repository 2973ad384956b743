// The commands on all fans, by key and by button: what the service is asked, in which order, and what the pages show.
#include "tests/console/ConsoleBench.h"

namespace {

constexpr int gTabCenter[] = {323, 422, 521, 620, 720, 818, 917}; // of fans 4 to 10

struct COMMAND {
    const char* Key;
    int ButtonX;
    const char* Call;
};

constexpr COMMAND gFullSpeed = {"f", 560, "SetAllFansFullSpeed"};
constexpr COMMAND gDefault = {"d", 710, "LoadDefaultFanSettings"};
constexpr COMMAND gCancel = {"c", 857, "RestoreFanSettings"};

bool IsFanCall(const std::string& Call)
{
    return Call == "SetAllFansFullSpeed" || Call == "LoadDefaultFanSettings" || Call == "RestoreFanSettings" ||
           ((Call.starts_with("GetFan") || Call.starts_with("SetFan")) && Call.ends_with("Setting"));
}

// Calls that concern fans' settings in a turn; a write with its record.
std::vector<std::string> FanCalls(const RUN& Run, UINT64 Turn)
{
    std::vector<std::string> Found;
    for (const CALL_LINE& Call : Run.InTurn(Turn)) {
        if (IsFanCall(Call.Call)) {
            Found.push_back(Call.Call.starts_with("SetFan") ? Call.Call + " " + Call.Text("record") : Call.Call);
        }
    }
    return Found;
}

// Gives the command and says in which turn it runs.
UINT64 ByKey(SCENE& Scene, const COMMAND& Command)
{
    Scene.Key(Command.Key);
    return Scene.TurnsSoFar;
}

UINT64 ByButton(SCENE& Scene, const COMMAND& Command)
{
    Scene.Click(Command.ButtonX, 575);
    return Scene.TurnsSoFar - 1;
}

std::vector<std::string> ReadBack(const char* Command, const std::vector<int>& Fans)
{
    std::vector<std::string> Calls = {Command};
    for (int Fan : Fans) {
        Calls.push_back("GetFan" + std::to_string(Fan) + "Setting");
    }
    return Calls;
}

TEST(AllFans, ReadBackTheFansThatTheBoardMayHave)
{
    // Fans 4 to 8 are read whether they are there or not, 9 and 10 if they are, fan 5 if its kind has a page.
    const std::map<std::string, std::vector<int>> Read = {{"full", {4, 5, 6, 7, 8, 9, 10}},
                                                          {"kind0", {4, 5, 6, 7, 8, 9, 10}},
                                                          {"kind2", {4, 6, 7, 8, 9, 10}},
                                                          {"small", {4, 5, 6, 7, 8, 9}},
                                                          {"bare", {4, 5, 6, 7, 8}}};
    for (const auto& [Board, Fans] : Read) {
        SCOPED_TRACE(Board);
        SCENE Scene(Board);
        Scene.Turns();
        const UINT64 Default = ByKey(Scene, gDefault);
        const UINT64 Cancel = ByKey(Scene, gCancel);
        const UINT64 FullSpeed = ByKey(Scene, gFullSpeed);
        const RUN Run = Scene.Play();
        EXPECT_EQ(FanCalls(Run, Default), ReadBack(gDefault.Call, Fans));
        EXPECT_EQ(FanCalls(Run, Cancel), ReadBack(gCancel.Call, Fans));
        EXPECT_EQ(FanCalls(Run, FullSpeed), std::vector<std::string>{gFullSpeed.Call});
        for (const UINT64 Turn : {Default, Cancel, FullSpeed}) {
            EXPECT_EQ(Run.NamedInTurn("GetFanKind", Turn)[0].Number("item"), 5u);
        }
    }
}

TEST(AllFans, AButtonWritesThePageOnTopOnceMoreWhereItHasACurveAndALevel)
{
    const std::string Curve6 = "07 05 03 01 01 02 04 06 00 ";
    const auto Write = [](int Fan, const std::string& Bytes) {
        return "SetFan" + std::to_string(Fan) + "Setting " + Record(Bytes);
    };
    struct {
        const char* Board;
        int Fan;
        bool Writes;
        const char* HeldBox;
    } const Pages[] = {{"full", 4, false, ""},  {"full", 5, false, ""},  {"kind0", 5, true, "01 "},
                       {"full", 6, true, "01 "}, {"full", 7, true, "01 "}, {"full", 8, true, "00 "},
                       {"full", 9, false, ""},  {"full", 10, false, ""}};
    for (const auto& Page : Pages) {
        SCOPED_TRACE(Page.Fan);
        SCENE Scene(Page.Board);
        Scene.Click(gTabCenter[Page.Fan - 4], 150);
        const UINT64 FullSpeed = ByButton(Scene, gFullSpeed);
        const UINT64 Default = ByButton(Scene, gDefault);
        const UINT64 Cancel = ByButton(Scene, gCancel);
        const RUN Run = Scene.Play();
        const std::vector<int> All = {4, 5, 6, 7, 8, 9, 10};

        std::vector<std::string> Expected;
        if (Page.Writes) {
            Expected.push_back(Write(Page.Fan, "00 " + Curve6 + "06"));
        }
        Expected.push_back(gFullSpeed.Call); // last, or the write would end it
        EXPECT_EQ(FanCalls(Run, FullSpeed), Expected);

        for (const auto& [Turn, Call] : {std::pair{Default, gDefault.Call}, std::pair{Cancel, gCancel.Call}}) {
            Expected = ReadBack(Call, All);
            if (Page.Writes) {
                Expected.push_back(Write(Page.Fan, Page.HeldBox + Curve6 + "03"));
            }
            EXPECT_EQ(FanCalls(Run, Turn), Expected);
        }
    }
}

TEST(AllFans, EitherCaseOfALetterGivesTheCommandAndOneRefreshOfTheLegend)
{
    SCENE Scene;
    Scene.Turns();
    for (const char* Letter : {"f", "F", "d", "D", "c", "C", "x"}) {
        Scene.Key(Letter);
    }
    const RUN Run = Scene.Play();
    const std::string Expected[] = {gFullSpeed.Call, gFullSpeed.Call, gDefault.Call, gDefault.Call, gCancel.Call,
                                    gCancel.Call, ""};
    for (UINT64 Index = 0; Index < 7; Index++) {
        const std::vector<std::string> Calls = FanCalls(Run, 2 + Index);
        UINTN Slashes = 0;
        for (const CALL_LINE& Call : Run.NamedInTurn("StringToImage", 2 + Index)) {
            Slashes += Call.Text("text") == "/";
        }
        if (Index == 6) {
            EXPECT_TRUE(Calls.empty());
            EXPECT_EQ(Slashes, 0u);
        } else {
            ASSERT_FALSE(Calls.empty());
            EXPECT_EQ(Calls[0], Expected[Index]);
            EXPECT_EQ(Slashes, 8u); // four rows, each on the display and in the stored screen
        }
    }
}

TEST(AllFans, DefaultMovesTheNodesOfFansWithoutALevelAlone)
{
    // Fan 4's node 1 and fan 6's node 1 are moved; Default brings back fan 4's, and fan 6 keeps its own.
    SCENE Scene;
    Scene.Drag(487, 397, {{517, 397}}).Key("d").Click(296, 242);
    Scene.Click(gTabCenter[2], 150).Drag(457, 442, {{487, 442}}).Key("d").Click(296, 242);
    const RUN Run = Scene.Play();
    EXPECT_EQ(Run.Settings(4), (std::vector<std::string>{Record("01 0a 07 05 01 02 04 06 08 00 01"),
                                                         Record("00 0a 07 04 01 02 04 06 08")}));
    EXPECT_EQ(Run.LastSetting(6), Record("00 07 05 04 01 01 02 04 06 00 03"));
}

TEST(AllFans, FollowTheServicesDefaultOnEveryPageWhetherOnTopOrNot)
{
    SCENE Scene;
    Scene.Line("default 4 00040302010102030400");
    Scene.Line("default 7 00" + std::string("0d0c0b0a010101010005"));
    Scene.Line("default 9 " + Record("00 00 00 00 00 00 00 00 00 00 02"));
    Scene.Turns().Key("d");
    Scene.Click(gTabCenter[5], 150).Drag(397, 442, {{397, 402}}); // fan 9's thumb stands on level 2, takes level 3
    Scene.Click(gTabCenter[3], 150);                              // fan 7: off, level 5, its own nodes
    Scene.Click(gTabCenter[0], 150).Click(296, 242);              // fan 4: was off
    EXPECT_EQ(Scene.Play().AllSettings(),
              (std::vector<std::string>{"9:" + Record("00 00 00 00 00 00 00 00 00 00 03"),
                                        "7:" + Record("00 07 05 03 01 01 02 04 06 00 05"),
                                        "4:" + Record("01 04 03 02 01 01 02 03 04")}));
}

TEST(AllFans, FullSpeedUnchecksTheBoxesAndRaisesTheThumbs)
{
    SCENE Scene;
    Scene.Turns().Key("f");
    Scene.Click(gTabCenter[3], 150).Turns(2).Screenshot("fan 7");
    Scene.Key("f").Turns(2).Screenshot("again").Turns();
    Scene.Click(gTabCenter[5], 150).Turns(2).Screenshot("fan 9").Turns();
    Scene.Drag(397, 282, {{397, 322}}); // the thumb is really there
    const RUN Run = Scene.Play();
    EXPECT_EQ(PixelAt(Run.Picture("fan 7"), 387, 282), 0xE8EAEBu); // the thumb's bright line
    EXPECT_EQ(PixelAt(Run.Picture("fan 9"), 387, 282), 0xE8EAEBu);
    EXPECT_TRUE(SameRectangle(Run.Picture("fan 7"), Run.Picture("again"), 274, 220, 690, 328));
    EXPECT_EQ(Run.Named("SetAllFansFullSpeed").size(), 2u);
    EXPECT_EQ(Run.AllSettings(), (std::vector<std::string>{"7:" + Record("00 07 05 03 01 01 02 04 06 00 06"),
                                                           "9:" + Record("00 00 00 00 00 00 00 00 00 00 05")}));
}

TEST(AllFans, DefaultRepaintsASliderEvenOverAFrameAndCancelDoesNot)
{
    // Fan 7 comes up checked, with its frame on top; its hidden thumb stands on level 2, the bright line at y 402.
    SCENE Scene;
    Scene.Click(gTabCenter[3], 150).Turns(2).Screenshot("before");
    Scene.Key("c").Turns(2).Screenshot("cancelled");
    Scene.Key("d").Turns(2).Screenshot("default");
    Scene.Line("reading 7 0").Ticks().Screenshot("tick").Turns();
    const RUN Run = Scene.Play();
    EXPECT_TRUE(SameRectangle(Run.Picture("before"), Run.Picture("cancelled"), 382, 262, 391, 241));
    EXPECT_EQ(PixelAt(Run.Picture("cancelled"), 387, 402), 0x242424u);
    EXPECT_EQ(PixelAt(Run.Picture("default"), 387, 402), 0xE8EAEBu);
    // The next tick brings the frame back: the middle of node 3, at frame (180, 0) to (209, 39), shows again.
    EXPECT_EQ(PixelAt(Run.Picture("tick"), 387, 402), 0x242424u);
    EXPECT_TRUE(SameRectangle(Run.Picture("before"), Run.Picture("tick"), 382 + 190, 262 + 12, 10, 10));
}

TEST(AllFans, ALetterDuringADragActsAtOnceAndTheDropIsStillWritten)
{
    SCENE Scene;
    Scene.Move(487, 397).Press().Turns(2).Move(517, 397).Key("f");
    const UINT64 Command = Scene.TurnsSoFar;
    Scene.Turns().Release(300000).Turns(2);
    const RUN Run = Scene.Play();
    EXPECT_EQ(FanCalls(Run, Command), std::vector<std::string>{gFullSpeed.Call});
    EXPECT_EQ(Run.OrderInTurn(Command, {"Blt", "SetAllFansFullSpeed"})[0], "Blt"); // the drag's step comes first
    EXPECT_EQ(Run.Settings(4), std::vector<std::string>{Record("01 0a 07 05 01 02 04 06 08 00 01")});
}

} // namespace
