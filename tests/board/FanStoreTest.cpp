#include "platform/board/FanStore.h"

#include "platform/board/BoardServices.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

FAN_SETTING Curve(UINT8 Enabled, UINT16 FixedLevel)
{
    FAN_SETTING Setting = {};
    Setting.CurveEnabled = Enabled;
    Setting.Column3 = 4;
    Setting.Column2 = 3;
    Setting.Column1 = 2;
    Setting.Column0 = 1;
    Setting.Level0 = 1;
    Setting.Level1 = 2;
    Setting.Level2 = 3;
    Setting.Level3 = 4;
    Setting.FixedLevel = FixedLevel;
    return Setting;
}

FAN_SETTING Fixed(UINT16 Level)
{
    FAN_SETTING Setting = {};
    Setting.FixedLevel = Level;
    return Setting;
}

bool Same(const FAN_SETTING& A, const FAN_SETTING& B) { return std::memcmp(&A, &B, sizeof(A)) == 0; }

TEST(FanStore, TheDefaultsOfEveryBoardAreWithinTheContract)
{
    for (UINTN Index = 0; Index < gBoardNameCount; Index++) {
        const SIMULATED_BOARD* Board = FindSimulatedBoard(gBoardNames[Index]);
        ResetFanStore(Board);
        for (UINT8 Fan = 4; Fan <= 10; Fan++) {
            if (ControlOfFan(Board, Fan) != CONTROL_NONE) {
                EXPECT_EQ(CheckFanSetting(ControlOfFan(Board, Fan), HeldFanSetting(Fan)), nullptr)
                    << gBoardNames[Index] << " fan " << int{Fan};
            }
        }
    }
}

TEST(FanStore, ARecordAgainstTheContractIsRefusedAndCounted)
{
    struct CASE {
        const char* What;
        UINT8 Fan;
        FAN_SETTING (*Make)();
    };
    const CASE Cases[] = {
        {"column 0", 4, [] { FAN_SETTING S = Curve(1, 0); S.Column0 = 0; return S; }},
        {"column 14", 4, [] { FAN_SETTING S = Curve(1, 0); S.Column3 = 14; return S; }},
        {"equal columns", 4, [] { FAN_SETTING S = Curve(1, 0); S.Column1 = 1; return S; }},
        {"falling columns", 7, [] { FAN_SETTING S = Curve(0, 1); S.Column2 = 6; return S; }},
        {"level 0", 6, [] { FAN_SETTING S = Curve(1, 1); S.Level0 = 0; return S; }},
        {"level 9 of 8", 4, [] { FAN_SETTING S = Curve(1, 1); S.Level3 = 9; return S; }},
        {"level 7 of 6", 8, [] { FAN_SETTING S = Curve(1, 1); S.Level3 = 7; return S; }},
        {"falling levels", 4, [] { FAN_SETTING S = Curve(1, 1); S.Level1 = 4; return S; }},
        {"fixed level 0", 6, [] { return Curve(1, 0); }},
        {"fixed level 7", 7, [] { return Curve(0, 7); }},
        {"fixed level 2 of a fan without one", 4, [] { return Curve(1, 2); }},
        {"fixed level 256", 9, [] { return Fixed(256); }},
        {"curve of a fan without one", 9, [] { return Curve(0, 1); }},
        {"CurveEnabled 2", 4, [] { return Curve(2, 0); }},
        {"reserved byte 9", 4, [] { FAN_SETTING S = Curve(1, 0); S.Reserved9 = 1; return S; }},
        {"last byte", 10, [] { FAN_SETTING S = Fixed(1); S.Reserved12[51] = 1; return S; }},
        {"nothing set", 4, [] { return FAN_SETTING{}; }},
    };
    static UINT8 Told;
    ResetFanStore(FindSimulatedBoard("full"), [](UINT8 Fan, const CHAR8*) { Told = Fan; });
    UINT64 Faults = 0;
    for (const CASE& Case : Cases) {
        Told = 0;
        const FAN_SETTING Before = *HeldFanSetting(Case.Fan);
        const FAN_SETTING Setting = Case.Make();
        EXPECT_EQ(StoreFanSetting(Case.Fan, &Setting), EFI_INVALID_PARAMETER) << Case.What;
        EXPECT_TRUE(Same(*HeldFanSetting(Case.Fan), Before)) << Case.What;
        EXPECT_EQ(BoardContractFaults(), ++Faults) << Case.What;
        EXPECT_NE(LastBoardContractFault(), nullptr);
        EXPECT_EQ(Told, Case.Fan) << Case.What;
        EXPECT_EQ(FaultOfFanSetting(Case.Fan, &Setting), LastBoardContractFault()) << Case.What;
    }
}

TEST(FanStore, ASecondFanIsCheckedByItsKindAndAnAbsentFanTakesNothing)
{
    const FAN_SETTING Eight = Curve(1, 0);
    const FAN_SETTING Six = Curve(1, 1);
    ResetFanStore(FindSimulatedBoard("kind0"));
    EXPECT_EQ(StoreFanSetting(5, &Eight), EFI_INVALID_PARAMETER);
    EXPECT_EQ(StoreFanSetting(5, &Six), EFI_SUCCESS);
    ResetFanStore(FindSimulatedBoard("kind2"));
    EXPECT_EQ(StoreFanSetting(5, &Six), EFI_INVALID_PARAMETER);
    ResetFanStore(FindSimulatedBoard("small"));
    EXPECT_EQ(StoreFanSetting(7, &Six), EFI_INVALID_PARAMETER);
    EXPECT_EQ(StoreFanSetting(6, &Six), EFI_SUCCESS);
}

TEST(FanStore, CancelGoesBackToTheMarkAndDefaultToTheDefaults)
{
    ResetFanStore(FindSimulatedBoard("full"));
    const FAN_SETTING Default = *HeldFanSetting(9);
    const FAN_SETTING First = Fixed(1);
    const FAN_SETTING Second = Fixed(6);
    ASSERT_EQ(StoreFanSetting(9, &First), EFI_SUCCESS);
    MarkFanStore();
    ASSERT_EQ(StoreFanSetting(9, &Second), EFI_SUCCESS);
    RestoreFanStore();
    EXPECT_TRUE(Same(*HeldFanSetting(9), First));
    LoadFanDefaults();
    EXPECT_TRUE(Same(*HeldFanSetting(9), Default));
    RestoreFanStore();
    EXPECT_TRUE(Same(*HeldFanSetting(9), First));
}

TEST(FanStore, ARecordOfAScriptIsTakenAsItIsAndNoCancelTakesItBack)
{
    ResetFanStore(FindSimulatedBoard("full"));
    const FAN_SETTING Odd = Fixed(9);
    EXPECT_EQ(PutBoardSetting(9, &Odd), EFI_SUCCESS);
    EXPECT_EQ(PutBoardDefault(10, &Odd), EFI_SUCCESS);
    FAN_SETTING Held = {};
    RestoreFanStore();
    EXPECT_EQ(ReadBoardSetting(9, &Held), EFI_SUCCESS);
    EXPECT_TRUE(Same(Held, Odd));
    LoadFanDefaults();
    EXPECT_EQ(ReadBoardSetting(10, &Held), EFI_SUCCESS);
    EXPECT_TRUE(Same(Held, Odd));
    EXPECT_EQ(PutBoardSetting(11, &Odd), EFI_INVALID_PARAMETER);
    EXPECT_EQ(PutBoardDefault(3, &Odd), EFI_INVALID_PARAMETER);
    EXPECT_EQ(BoardContractFaults(), 0u);
}

TEST(FanStore, FullSpeedOfAFanEndsWithItsNextRecordAndOfAllWithDefaultOrCancel)
{
    ResetFanStore(FindSimulatedBoard("full"));
    const FAN_SETTING Setting = Fixed(1);
    HoldFullSpeed();
    ASSERT_EQ(StoreFanSetting(9, &Setting), EFI_SUCCESS);
    EXPECT_FALSE(RunsFullSpeed(9));
    EXPECT_TRUE(RunsFullSpeed(10));
    LoadFanDefaults();
    EXPECT_FALSE(RunsFullSpeed(10));
    HoldFullSpeed();
    RestoreFanStore();
    EXPECT_FALSE(RunsFullSpeed(4));
}

} // namespace
