#include "platform/board/FanStore.h"

#include "platform/board/FanContract.h"

FAN_STORE gFanStore;

namespace {

constexpr FAN_SETTING MakeCurve(UINT8 Enabled, const CURVE& Curve, UINT16 FixedLevel)
{
    FAN_SETTING Setting = {};
    Setting.CurveEnabled = Enabled;
    PutCurve(&Setting, Curve);
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
constexpr FAN_SETTING gCurve8Default = MakeCurve(1, {{{1, 2}, {4, 4}, {7, 6}, {10, 8}}}, 0);
// The case stays cooler, so the same rise is spread over fewer degrees: 40, 50, 60 and 70.
constexpr CURVE gCaseCurve = {{{1, 1}, {3, 2}, {5, 4}, {7, 6}}};
constexpr FAN_SETTING gCurve6Default = MakeCurve(1, gCaseCurve, 3);
// Item 8 comes with its curve off, so that a board shows both faces of such a fan.
constexpr FAN_SETTING gCurve6OffDefault = MakeCurve(0, gCaseCurve, 3);
constexpr FAN_SETTING gFixedDefault = MakeFixedLevel(3);
constexpr FAN_SETTING gPumpDefault = MakeFixedLevel(5);

const FAN_SETTING& BuiltInDefault(UINT8 FanKind, UINT8 FanItem)
{
    if (FanItem == 8) {
        return gCurve6OffDefault;
    }
    if (FanItem == 10) {
        return gPumpDefault;
    }
    switch (ControlOfFan(FanKind, FanItem)) {
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
    for (UINT8 Fan = 0; Fan < gFanItemCount; Fan++) {
        gFanStore.Held[Fan] = Settings[Fan];
        gFanStore.FullSpeed[Fan] = false;
    }
}

} // namespace

VOID ResetFanStore(const BOARD_SOURCE& Board)
{
    for (UINT8 Fan = 0; Fan < gFanItemCount; Fan++) {
        gFanStore.Default[Fan] = BuiltInDefault(Board.FanKind, static_cast<UINT8>(gFirstFanItem + Fan));
    }
    HoldAll(gFanStore.Default);
    MarkFanStore();
}

VOID MarkFanStore()
{
    for (UINT8 Fan = 0; Fan < gFanItemCount; Fan++) {
        gFanStore.Mark[Fan] = gFanStore.Held[Fan];
    }
}

VOID StoreFanSetting(UINT8 FanItem, const FAN_SETTING* Setting)
{
    gFanStore.Held[FanItem - gFirstFanItem] = *Setting;
    gFanStore.FullSpeed[FanItem - gFirstFanItem] = false;
}

VOID LoadFanDefaults() { HoldAll(gFanStore.Default); }

VOID RestoreFanStore() { HoldAll(gFanStore.Mark); }

VOID HoldFullSpeed()
{
    for (bool& Full : gFanStore.FullSpeed) {
        Full = true;
    }
}

const FAN_SETTING* AutomaticFanSetting() { return &gCurve8Default; }
