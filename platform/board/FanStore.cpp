#include "platform/board/FanStore.h"

#include "platform/board/BoardServices.h"

namespace {

constexpr UINT8 gColumns = 13;
constexpr UINT16 gFixedLevels = 6;

struct CURVE_NODE {
    UINT8 Column;
    UINT8 Level;
};

constexpr FAN_SETTING MakeCurve(UINT8 Enabled, const CURVE_NODE (&Nodes)[4], UINT16 FixedLevel)
{
    FAN_SETTING Setting = {};
    Setting.CurveEnabled = Enabled;
    Setting.Column0 = Nodes[0].Column;
    Setting.Column1 = Nodes[1].Column;
    Setting.Column2 = Nodes[2].Column;
    Setting.Column3 = Nodes[3].Column;
    Setting.Level0 = Nodes[0].Level;
    Setting.Level1 = Nodes[1].Level;
    Setting.Level2 = Nodes[2].Level;
    Setting.Level3 = Nodes[3].Level;
    Setting.FixedLevel = FixedLevel;
    return Setting;
}

constexpr FAN_SETTING MakeFixedLevel(UINT16 FixedLevel)
{
    FAN_SETTING Setting = {};
    Setting.FixedLevel = FixedLevel;
    return Setting;
}

// A processor gets hot, and its fan may stand nearly still while it isn't: 40, 55, 70 and 85 degrees.
constexpr FAN_SETTING gCurve8Default = MakeCurve(1, {{1, 2}, {4, 4}, {7, 6}, {10, 8}}, 0);
// The case stays cooler, so the same rise is spread over fewer degrees: 40, 50, 60 and 70.
constexpr CURVE_NODE gCaseCurve[4] = {{1, 1}, {3, 2}, {5, 4}, {7, 6}};
constexpr FAN_SETTING gCurve6Default = MakeCurve(1, gCaseCurve, 3);
// Item 8 comes with its curve off, so that a board shows both faces of such a fan.
constexpr FAN_SETTING gCurve6OffDefault = MakeCurve(0, gCaseCurve, 3);
constexpr FAN_SETTING gFixedDefault = MakeFixedLevel(3);
constexpr FAN_SETTING gPumpDefault = MakeFixedLevel(5);

const SIMULATED_BOARD* gBoard;
FAN_SETTING gHeld[gFanItemCount];
FAN_SETTING gDefault[gFanItemCount];
FAN_SETTING gMark[gFanItemCount];
bool gFullSpeed[gFanItemCount];
UINT64 gFaults;
const CHAR8* gLastFault;
REFUSED_LISTENER gRefused;

const FAN_SETTING& BuiltInDefault(UINT8 FanItem)
{
    if (FanItem == 8) {
        return gCurve6OffDefault;
    }
    if (FanItem == 10) {
        return gPumpDefault;
    }
    switch (ControlOfFan(gBoard, FanItem)) {
    case CONTROL_CURVE8:
        return gCurve8Default;
    case CONTROL_FIXED_LEVEL:
        return gFixedDefault;
    default:
        return gCurve6Default;
    }
}

VOID HoldAll(const FAN_SETTING* Settings)
{
    for (UINT8 Index = 0; Index < gFanItemCount; Index++) {
        gHeld[Index] = Settings[Index];
        gFullSpeed[Index] = false;
    }
}

const CHAR8* CheckCurve(const FAN_SETTING* Setting, UINT8 Rows)
{
    const UINT8 Columns[4] = {Setting->Column0, Setting->Column1, Setting->Column2, Setting->Column3};
    const UINT8 Levels[4] = {Setting->Level0, Setting->Level1, Setting->Level2, Setting->Level3};
    for (UINTN Node = 0; Node < 4; Node++) {
        if (Columns[Node] < 1 || Columns[Node] > gColumns) {
            return "a column outside 1 to 13";
        }
        if (Levels[Node] < 1 || Levels[Node] > Rows) {
            return "a level outside the rows of the fan's grid";
        }
        if (Node > 0 && Columns[Node] <= Columns[Node - 1]) {
            return "columns that don't rise from node to node";
        }
        if (Node > 0 && Levels[Node] < Levels[Node - 1]) {
            return "a level that falls from node to node";
        }
    }
    return nullptr;
}

bool HasCurve(const FAN_SETTING* Setting)
{
    return (Setting->CurveEnabled | Setting->Column3 | Setting->Column2 | Setting->Column1 | Setting->Column0 |
            Setting->Level0 | Setting->Level1 | Setting->Level2 | Setting->Level3) != 0;
}

} // namespace

VOID ResetFanStore(const SIMULATED_BOARD* Board, REFUSED_LISTENER Refused)
{
    gBoard = Board;
    gRefused = Refused;
    for (UINT8 Index = 0; Index < gFanItemCount; Index++) {
        gDefault[Index] = BuiltInDefault(static_cast<UINT8>(gFirstFanItem + Index));
        gMark[Index] = gDefault[Index];
    }
    HoldAll(gDefault);
    gFaults = 0;
    gLastFault = nullptr;
}

VOID MarkFanStore()
{
    for (UINT8 Index = 0; Index < gFanItemCount; Index++) {
        gMark[Index] = gHeld[Index];
    }
}

const FAN_SETTING* HeldFanSetting(UINT8 FanItem) { return &gHeld[FanItem - gFirstFanItem]; }

EFI_STATUS StoreFanSetting(UINT8 FanItem, const FAN_SETTING* Setting)
{
    if (const CHAR8* Fault = FaultOfFanSetting(FanItem, Setting)) {
        gFaults++;
        gLastFault = Fault;
        if (gRefused != nullptr) {
            gRefused(FanItem, Fault);
        }
        return EFI_INVALID_PARAMETER;
    }
    gHeld[FanItem - gFirstFanItem] = *Setting;
    gFullSpeed[FanItem - gFirstFanItem] = false;
    return EFI_SUCCESS;
}

VOID LoadFanDefaults() { HoldAll(gDefault); }

VOID RestoreFanStore() { HoldAll(gMark); }

VOID HoldFullSpeed()
{
    for (bool& Full : gFullSpeed) {
        Full = true;
    }
}

bool RunsFullSpeed(UINT8 FanItem) { return gFullSpeed[FanItem - gFirstFanItem]; }

const FAN_SETTING* AutomaticFanSetting() { return &gCurve8Default; }

const CHAR8* CheckFanSetting(FAN_CONTROL Control, const FAN_SETTING* Setting)
{
    if (Setting->CurveEnabled > 1) {
        return "CurveEnabled is neither 0 nor 1";
    }
    UINT8 Reserved = Setting->Reserved9;
    for (UINT8 Byte : Setting->Reserved12) {
        Reserved = static_cast<UINT8>(Reserved | Byte);
    }
    if (Reserved != 0) {
        return "a reserved byte that isn't 0";
    }
    switch (Control) {
    case CONTROL_CURVE8:
        return Setting->FixedLevel > 1 ? "a fixed level for a fan without one" : CheckCurve(Setting, 8);
    case CONTROL_CURVE6:
        if (Setting->FixedLevel < 1 || Setting->FixedLevel > gFixedLevels) {
            return "a fixed level outside 1 to 6";
        }
        return CheckCurve(Setting, 6);
    case CONTROL_FIXED_LEVEL:
        if (Setting->FixedLevel < 1 || Setting->FixedLevel > gFixedLevels) {
            return "a fixed level outside 1 to 6";
        }
        return HasCurve(Setting) ? "a curve for a fan without one" : nullptr;
    default:
        return "a record for a fan that can't be set";
    }
}

const CHAR8* FaultOfFanSetting(UINT8 FanItem, const FAN_SETTING* Setting)
{
    if (Setting == nullptr) {
        return "no record";
    }
    if (!IsFanItem(FanItem) || !HasItem(gBoard, FanItem)) {
        return "a fan that isn't on this board";
    }
    return CheckFanSetting(ControlOfFan(gBoard, FanItem), Setting);
}

UINT64 BoardContractFaults() { return gFaults; }

const CHAR8* LastBoardContractFault() { return gLastFault; }

EFI_STATUS PutBoardSetting(UINT8 FanItem, const FAN_SETTING* Setting)
{
    if (!IsFanItem(FanItem) || Setting == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    // No change of the console's, so Cancel doesn't take it back.
    gHeld[FanItem - gFirstFanItem] = *Setting;
    gMark[FanItem - gFirstFanItem] = *Setting;
    gFullSpeed[FanItem - gFirstFanItem] = false;
    return EFI_SUCCESS;
}

EFI_STATUS PutBoardDefault(UINT8 FanItem, const FAN_SETTING* Setting)
{
    if (!IsFanItem(FanItem) || Setting == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    gDefault[FanItem - gFirstFanItem] = *Setting;
    return EFI_SUCCESS;
}

EFI_STATUS ReadBoardSetting(UINT8 FanItem, FAN_SETTING* Setting)
{
    if (!IsFanItem(FanItem) || Setting == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    *Setting = gHeld[FanItem - gFirstFanItem];
    return EFI_SUCCESS;
}
