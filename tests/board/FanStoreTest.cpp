// The records of fans as the service takes, refuses and gives them back, over the simulated board.
#include "platform/board/BoardServices.h"
#include "platform/board/FanContract.h"
#include "platform/board/HardwareService.h"
#include "platform/board/SimulatedBoard.h"
#include "platform/board/Thermal.h"
#include "platform/board/hooks/FanHooks.h"

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

UINT8 gTold; // the fan of the last record refused

const BOARD_SOURCE& Open(const CHAR8* Name)
{
    BOARD_SOURCE* Board = OpenSimulatedBoard(Name, 1, 0);
    UseHardware(
        Board, [] { return UINT64{0}; }, [](UINT8 Fan, const CHAR8*) { gTold = Fan; }, nullptr);
    return *Board;
}

EFI_STATUS Store(UINT8 Fan, const FAN_SETTING& Setting)
{
    return gBoardHardware.Fan[Fan - gFirstFanItem].Set(&gBoardHardware, &Setting);
}

FAN_SETTING Held(UINT8 Fan)
{
    FAN_SETTING Setting = {};
    EXPECT_EQ(gBoardHardware.Fan[Fan - gFirstFanItem].Get(&gBoardHardware, &Setting), EFI_SUCCESS);
    return Setting;
}

bool Same(const FAN_SETTING& A, const FAN_SETTING& B) { return std::memcmp(&A, &B, sizeof(A)) == 0; }

TEST(FanStore, TheDefaultsOfEveryBoardAreWithinTheContract)
{
    for (UINTN Index = 0; Index < gBoardNameCount; Index++) {
        const BOARD_SOURCE& Board = Open(gBoardNames[Index]);
        for (UINT8 Fan = 4; Fan <= 10; Fan++) {
            const FAN_CONTROL Control = ControlOfFan(Board.FanKind, Fan);
            if (Control != CONTROL_NONE) {
                const FAN_SETTING Setting = Held(Fan);
                EXPECT_EQ(CheckFanSetting(Control, &Setting), nullptr) << gBoardNames[Index] << " fan " << int{Fan};
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
        // clang-format off
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
        // clang-format on
    };
    Open("full");
    UINT64 Faults = 0;
    for (const CASE& Case : Cases) {
        gTold = 0;
        const FAN_SETTING Before = Held(Case.Fan);
        const FAN_SETTING Setting = Case.Make();
        EXPECT_EQ(Store(Case.Fan, Setting), EFI_INVALID_PARAMETER) << Case.What;
        EXPECT_TRUE(Same(Held(Case.Fan), Before)) << Case.What;
        EXPECT_EQ(BoardContractFaults(), ++Faults) << Case.What;
        EXPECT_NE(LastBoardContractFault(), nullptr);
        EXPECT_EQ(gTold, Case.Fan) << Case.What;
        EXPECT_EQ(FaultOfFanSetting(Case.Fan, &Setting), LastBoardContractFault()) << Case.What;
    }
}

TEST(FanStore, ASecondFanIsCheckedByItsKindAndAnAbsentFanTakesNothing)
{
    const FAN_SETTING Eight = Curve(1, 0);
    const FAN_SETTING Six = Curve(1, 1);
    Open("kind0");
    EXPECT_EQ(Store(5, Eight), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Store(5, Six), EFI_SUCCESS);
    Open("kind2");
    EXPECT_EQ(Store(5, Six), EFI_INVALID_PARAMETER);
    Open("small");
    EXPECT_EQ(Store(7, Six), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Store(6, Six), EFI_SUCCESS);
}

TEST(FanStore, CancelGoesBackToTheMarkAndDefaultToTheDefaults)
{
    Open("full");
    const FAN_SETTING Default = Held(9);
    const FAN_SETTING First = Fixed(1);
    const FAN_SETTING Second = Fixed(6);
    ASSERT_EQ(Store(9, First), EFI_SUCCESS);
    (void)gBoardHardware.Initialize(&gBoardHardware);
    ASSERT_EQ(Store(9, Second), EFI_SUCCESS);
    (void)gBoardHardware.RestoreFanSettings(&gBoardHardware);
    EXPECT_TRUE(Same(Held(9), First));
    (void)gBoardHardware.LoadDefaultFanSettings(&gBoardHardware);
    EXPECT_TRUE(Same(Held(9), Default));
    (void)gBoardHardware.RestoreFanSettings(&gBoardHardware);
    EXPECT_TRUE(Same(Held(9), First));
}

TEST(FanStore, ARecordOfAScriptIsTakenAsItIsAndNoCancelTakesItBack)
{
    Open("full");
    const FAN_SETTING Odd = Fixed(9);
    EXPECT_EQ(PutBoardSetting(9, &Odd), EFI_SUCCESS);
    EXPECT_EQ(PutBoardDefault(10, &Odd), EFI_SUCCESS);
    FAN_SETTING Now = {};
    (void)gBoardHardware.RestoreFanSettings(&gBoardHardware);
    EXPECT_EQ(ReadBoardSetting(9, &Now), EFI_SUCCESS);
    EXPECT_TRUE(Same(Now, Odd));
    (void)gBoardHardware.LoadDefaultFanSettings(&gBoardHardware);
    EXPECT_EQ(ReadBoardSetting(10, &Now), EFI_SUCCESS);
    EXPECT_TRUE(Same(Now, Odd));
    EXPECT_EQ(PutBoardSetting(11, &Odd), EFI_INVALID_PARAMETER);
    EXPECT_EQ(PutBoardDefault(3, &Odd), EFI_INVALID_PARAMETER);
    EXPECT_EQ(BoardContractFaults(), 0u);
}

TEST(FanStore, FullSpeedOfAFanEndsWithItsNextRecordAndOfAllWithDefaultOrCancel)
{
    constexpr INT32 FullDuty = 1000;
    Open("full");
    (void)gBoardHardware.SetAllFansFullSpeed(&gBoardHardware);
    ASSERT_EQ(Store(9, Fixed(1)), EFI_SUCCESS);
    EXPECT_EQ(DutyOfFan(9), 500);
    EXPECT_EQ(DutyOfFan(10), FullDuty);
    (void)gBoardHardware.LoadDefaultFanSettings(&gBoardHardware);
    EXPECT_EQ(DutyOfFan(10), 900);
    (void)gBoardHardware.SetAllFansFullSpeed(&gBoardHardware);
    (void)gBoardHardware.RestoreFanSettings(&gBoardHardware);
    EXPECT_EQ(DutyOfFan(10), 900);
}

} // namespace
