// The simulated board as the console finds it: driven through its services and a clock.
#include <set>

#include "platform/board/Thermal.h"
#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"

namespace {

constexpr UINT64 gSecond = 1000000;

struct Board : HOSTED {
    HW_SERVICE_PROTOCOL* Hardware = nullptr;

    VOID Install(const char* Name, UINT64 Seed = 1)
    {
        Reboot({.Board = Name, .Seed = Seed});
        VOID* Interface = nullptr;
        ASSERT_EQ(gBS->LocateProtocol(&gHwServiceProtocolGuid, nullptr, &Interface), EFI_SUCCESS);
        Hardware = static_cast<HW_SERVICE_PROTOCOL*>(Interface);
        (void)Hardware->Initialize(Hardware);
    }

    INT64 Read(UINT8 Item)
    {
        UINT64 Value = ~UINT64{0};
        UINT8 Present = 0xFF;
        EXPECT_EQ(Hardware->GetItemValue(Hardware, Item, &Value, &Present), EFI_SUCCESS);
        return Present == 1 ? static_cast<INT64>(Value) : -1;
    }

    VOID Set(UINT8 Fan, UINT16 FixedLevel)
    {
        FAN_SETTING Setting = {};
        auto& Access = Hardware->Fan[Fan - gFirstFanItem];
        ASSERT_EQ(Access.Get(Hardware, &Setting), EFI_SUCCESS);
        Setting.CurveEnabled = 0;
        Setting.FixedLevel = FixedLevel;
        ASSERT_EQ(Access.Set(Hardware, &Setting), EFI_SUCCESS);
    }

    VOID Wait(UINT64 Seconds) { Boot->Clock.Advance(Seconds * gSecond); }
};

TEST_F(Board, EachHasItsItemsAndNoOthers)
{
    const std::set<int> All = {0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};
    const struct {
        const char* Name;
        std::set<int> Items;
        int Kind;
    } Cases[] = {
        {"full", All, 1},
        {"kind0", All, 0},
        {"kind2", All, 2},
        {"small", {0, 1, 4, 6, 9, 11, 15}, 1},
        {"second-source", {1, 4}, 1},
        {"bare", {}, 1},
    };
    for (const auto& Case : Cases) {
        Install(Case.Name);
        EXPECT_EQ(Hardware->GetFanKind(Hardware, 5), Case.Kind);
        for (int Item = 0; Item < 256; Item++) {
            EXPECT_EQ(Read(static_cast<UINT8>(Item)) >= 0, Case.Items.contains(Item)) << Case.Name << " " << Item;
        }
    }
}

TEST_F(Board, OneSeedGivesOneHistoryHoweverOftenItIsRead)
{
    const auto Readings = [&](UINT64 Seed, UINT64 Pace) {
        Install("full", Seed);
        for (UINT64 Microseconds = 0; Microseconds < 9 * gSecond; Microseconds += Pace) {
            (void)Read(4);
            Boot->Clock.Advance(Pace);
        }
        std::vector<INT64> Values;
        for (UINT8 Item = 0; Item < 18; Item++) {
            Values.push_back(Read(Item));
        }
        return Values;
    };
    const std::vector<INT64> Slow = Readings(1, 3 * gSecond);
    EXPECT_EQ(Slow, Readings(1, 750));
    EXPECT_NE(Slow, Readings(2, 3 * gSecond));
}

TEST_F(Board, AFanFollowsWhatItHolds)
{
    Install("full");
    const UINT8 Slider[] = {6, 7, 8, 9, 10};
    const INT64 Top[] = {1500, 1400, 1200, 1800, 5000};
    for (UINTN Index = 0; Index < std::size(Slider); Index++) {
        for (const UINT16 Level : {UINT16{1}, UINT16{6}, UINT16{3}}) {
            Set(Slider[Index], Level);
            Wait(3);
            const INT64 Goal = Top[Index] * (40 + 10 * Level) / 100;
            EXPECT_NEAR(static_cast<double>(Read(Slider[Index])), static_cast<double>(Goal), 30.0)
                << "fan " << int{Slider[Index]} << " level " << Level;
        }
    }
    // Inertia: a tenth of a second after a change it is still on its way.
    Set(10, 6);
    Boot->Clock.Advance(gSecond / 10);
    EXPECT_LT(Read(10), 4500);
}

TEST_F(Board, ACurveIsStraightBetweenItsNodesAndLevelBeyondThem)
{
    FAN_SETTING Setting = {};
    Setting.CurveEnabled = 1;
    Setting.Column0 = 1; // 40 degrees
    Setting.Column1 = 3; // 50
    Setting.Column2 = 4; // 55
    Setting.Column3 = 8; // 75
    Setting.Level0 = 1;
    Setting.Level1 = 3;
    Setting.Level2 = 3;
    Setting.Level3 = 6;
    struct CASE {
        INT32 MilliDegrees;
        INT32 OfEight; // thousandths
        INT32 OfSix;
    };
    const CASE Cases[] = {{20000, 125, 500}, {40000, 125, 500}, {45000, 250, 600},  {50000, 375, 700},
                          {54000, 375, 700}, {65000, 562, 850}, {75000, 750, 1000}, {90000, 750, 1000}};
    for (const CASE& Case : Cases) {
        EXPECT_EQ(DutyOfCurve(&Setting, CONTROL_CURVE8, Case.MilliDegrees), Case.OfEight) << Case.MilliDegrees;
        EXPECT_EQ(DutyOfCurve(&Setting, CONTROL_CURVE6, Case.MilliDegrees), Case.OfSix) << Case.MilliDegrees;
    }
}

TEST_F(Board, ThePointerStaysWithinItsLimitsAndItsButtonsAreZeroOrOne)
{
    CURSOR_SERVICE_PROTOCOL* Cursor = nullptr;
    VOID* Interface = nullptr;
    ASSERT_EQ(gBS->LocateProtocol(&gCursorServiceProtocolGuid, nullptr, &Interface), EFI_SUCCESS);
    Cursor = static_cast<CURSOR_SERVICE_PROTOCOL*>(Interface);
    ASSERT_EQ(Cursor->SetCursorLimits(1024, 768), EFI_SUCCESS);
    struct CASE {
        INT64 X, Y, SeenX, SeenY;
    };
    for (const CASE& Case : {CASE{5, 6, 5, 6}, CASE{-4, 2000, 0, 767}, CASE{1024, -1, 1023, 0}}) {
        Boot->Pointer.State = {Case.X, Case.Y, 0x80, 0};
        INT64 X = -1, Y = -1, Z = -1;
        UINT8 Left = 9, Right = 9;
        ASSERT_EQ(Cursor->GetCursorState(&X, &Y, &Z, &Left, &Right), EFI_SUCCESS);
        EXPECT_EQ(X, Case.SeenX);
        EXPECT_EQ(Y, Case.SeenY);
        EXPECT_EQ(Z, 0);
        EXPECT_EQ(Left, 1);
        EXPECT_EQ(Right, 0);
    }
}

} // namespace
