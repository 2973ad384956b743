// The commands on all fans, by key and by button: what the service is asked, in which order, and what the pages show.
#include "tests/console/ConsoleBench.h"

namespace {

constexpr char gFullSpeed[] = "SetAllFansFullSpeed";
constexpr char gDefault[] = "LoadDefaultFanSettings";
constexpr char gCancel[] = "RestoreFanSettings";

using CALLS = std::vector<std::string>;

// Calls that concern fans' settings in a turn.
CALLS FanCalls(const RUN& Run, TURN Turn)
{
    CALLS Of = {gFullSpeed, gDefault, gCancel};
    for (int Fan = gFirstFan; Fan <= gLastFan; Fan++) {
        Of.push_back("GetFan" + std::to_string(Fan) + "Setting");
        Of.push_back("SetFan" + std::to_string(Fan) + "Setting");
    }
    return Run.OrderInTurn(Turn, Of);
}

CALLS ReadBack(const char* Command, const std::vector<int>& Fans)
{
    CALLS Calls = {Command};
    for (const int Fan : Fans) {
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
        const TURN Default = Scene.Turns().Key("d").Mark();
        const TURN Cancel = Scene.Key("c").Mark();
        const TURN FullSpeed = Scene.Key("f").Mark();
        const RUN Run = Scene.Play();
        EXPECT_EQ(FanCalls(Run, Default), ReadBack(gDefault, Fans));
        EXPECT_EQ(FanCalls(Run, Cancel), ReadBack(gCancel, Fans));
        EXPECT_EQ(FanCalls(Run, FullSpeed), CALLS{gFullSpeed});
        for (const TURN Turn : {Default, Cancel, FullSpeed}) {
            EXPECT_EQ(Run.NamedInTurn("GetFanKind", Turn)[0].Number("item"), 5u);
        }
    }
}

TEST(AllFans, AButtonWritesThePageOnTopOnceMoreWhereItHasACurveAndALevel)
{
    const std::pair<const char*, WRITES> Pages[] = {
        {"full", {SettingOf(4)}}, {"full", {SettingOf(5)}}, {"kind0", {SettingOf(5, SIX_ROWS)}},
        {"full", {SettingOf(6)}}, {"full", {SettingOf(7)}}, {"full", {SettingOf(8)}},
        {"full", {SettingOf(9)}}, {"full", {SettingOf(10)}}};
    for (const auto& [Board, Settings] : Pages) {
        const WRITE Setting = Settings[0];
        SCOPED_TRACE(Setting);
        SCENE Scene(Board);
        const TURN FullSpeed = Scene.Tab(Setting.Fan).Button(FULL_SPEED).Mark();
        const TURN Default = Scene.Button(DEFAULT).Mark();
        const TURN Cancel = Scene.Button(CANCEL).Mark();
        const RUN Run = Scene.Play();
        const bool Writes = Setting.Fan < 9 && Setting.Setting.FixedLevel != 0;
        const std::string Write = "SetFan" + std::to_string(Setting.Fan) + "Setting";
        // Full speed itself comes last, or the write would end it.
        EXPECT_EQ(FanCalls(Run, FullSpeed), Writes ? (CALLS{Write, gFullSpeed}) : CALLS{gFullSpeed});
        EXPECT_EQ(Run.WritesInTurn(FullSpeed), Writes ? WRITES{Setting.Off().Level(6)} : WRITES{});
        for (const auto& [Turn, Command] : {std::pair{Default, gDefault}, std::pair{Cancel, gCancel}}) {
            CALLS Expected = ReadBack(Command, {4, 5, 6, 7, 8, 9, 10});
            Expected.insert(Expected.end(), Writes ? 1 : 0, Write);
            EXPECT_EQ(FanCalls(Run, Turn), Expected);
            EXPECT_EQ(Run.WritesInTurn(Turn), Writes ? WRITES{Setting} : WRITES{});
        }
    }
}

TEST(AllFans, EitherCaseOfALetterGivesTheCommandAndOneRefreshOfTheLegend)
{
    SCENE Scene;
    std::vector<TURN> Turns;
    Scene.Turns();
    for (const char* Letter : {"f", "F", "d", "D", "c", "C", "x"}) {
        Turns.push_back(Scene.Key(Letter).Mark());
    }
    const RUN Run = Scene.Play();
    const char* const Expected[] = {gFullSpeed, gFullSpeed, gDefault, gDefault, gCancel, gCancel};
    for (size_t Index = 0; Index < 6; Index++) {
        EXPECT_EQ(Run.OrderInTurn(Turns[Index], {gFullSpeed, gDefault, gCancel}), CALLS{Expected[Index]});
        EXPECT_EQ(Run.Painted(Turns[Index], gLegend), 1u);
    }
    EXPECT_EQ(FanCalls(Run, Turns[6]), CALLS{});
    EXPECT_EQ(Run.Painted(Turns[6], gLegend), 0u);
}

TEST(AllFans, DefaultMovesTheNodesOfFansWithoutALevelAlone)
{
    // Fan 4's node 1 and fan 6's node 1 are moved; Default brings back fan 4's, and fan 6 keeps its own.
    SCENE Scene;
    Scene.Node(1, {1, 0}).Key("d").Box().Tab(6).Node(1, {1, 0}).Key("d").Box();
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{SettingOf(4).Node(1, {1, 0}).Level(1), SettingOf(4).Off(), SettingOf(6),
                                             SettingOf(6).Node(1, {1, 0}), SettingOf(6).Node(1, {1, 0}).Off()}));
}

TEST(AllFans, FollowTheServicesDefaultOnEveryPageWhetherOnTopOrNot)
{
    const WRITE Fan4 = SettingFromBytes(4, "00 04 03 02 01 01 02 03 04");
    SCENE Scene;
    Scene.Default(Fan4).Default(SettingFromBytes(7, "00 0d 0c 0b 0a 01 01 01 01 00 05")).Default(SettingOf(9).Level(2));
    Scene.Turns().Key("d");
    Scene.Tab(9).Drag(ThumbPlace(2), {ThumbPlace(3)});
    Scene.Tab(7);       // off, level 5, its own nodes
    Scene.Tab(4).Box(); // was off
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{SettingOf(9).Level(3), SettingOf(7).Off().Level(5), Fan4.On()}));
}

TEST(AllFans, FullSpeedUnchecksTheBoxesAndRaisesTheThumbs)
{
    SCENE Scene;
    Scene.Turns().Key("f").Tab(7).Turns(2).Screenshot("fan 7").Key("f").Turns(2).Screenshot("again");
    Scene.Tab(9).Turns(2).Screenshot("fan 9").Drag(ThumbPlace(6), {ThumbPlace(5)}); // the thumb is really there
    const RUN Run = Scene.Play();
    for (const char* Page : {"fan 7", "fan 9"}) {
        EXPECT_EQ(PixelAt(Run.Picture(Page), ThumbPlace(6).By(-10, 0)), gThumbBright);
    }
    Run.ExpectSame("fan 7", "again", gPanel);
    EXPECT_EQ(Run.Count(gFullSpeed), 2u);
    EXPECT_EQ(Run.Writes(), (WRITES{SettingOf(7).Off().Level(6), SettingOf(9).Level(5)}));
}

TEST(AllFans, DefaultRepaintsASliderEvenOverAFrameAndCancelDoesNot)
{
    // Fan 7 comes up checked, with its frame on top and its thumb hidden beneath.
    SCENE Scene;
    Scene.Tab(7).Turns(2).Screenshot("before").Key("c").Turns(2).Screenshot("cancelled");
    Scene.Key("d").Turns(2).Screenshot("default").Reading(7, 0).Ticks().Screenshot("tick");
    const RUN Run = Scene.Play();
    const PLACE Thumb = ThumbPlace(3).By(-10, 0);
    Run.ExpectSame("before", "cancelled", gFrame);
    EXPECT_EQ(PixelAt(Run.Picture("cancelled"), Thumb), gPanelGray);
    EXPECT_EQ(PixelAt(Run.Picture("default"), Thumb), gThumbBright);
    // The next tick brings the frame back: the middle of node 3 shows again.
    EXPECT_EQ(PixelAt(Run.Picture("tick"), Thumb), gPanelGray);
    Run.ExpectSame("before", "tick", CellArea(SIX_ROWS, NodeCell(SIX_ROWS, 3)).Part(10, 12, 10, 10));
}

} // namespace
