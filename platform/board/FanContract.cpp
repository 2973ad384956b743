#include "platform/board/FanContract.h"

namespace {

const CHAR8* CheckCurve(const FAN_SETTING* Setting, UINT8 Rows)
{
    const CURVE Curve = CurveOf(*Setting);
    for (UINTN Node = 0; Node < gCurveNodes; Node++) {
        const CURVE_NODE& Here = Curve.Nodes[Node];
        if (Here.Column < 1 || Here.Column > gCurveColumns) {
            return "a column outside 1 to 13";
        }
        if (Here.Level < 1 || Here.Level > Rows) {
            return "a level outside the rows of the fan's grid";
        }
        if (Node > 0 && Here.Column <= Curve.Nodes[Node - 1].Column) {
            return "columns that don't rise from node to node";
        }
        if (Node > 0 && Here.Level < Curve.Nodes[Node - 1].Level) {
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

FAN_CONTROL ControlOfFan(UINT8 FanKind, UINT8 FanItem)
{
    switch (FanItem) {
    case 4:
        return CONTROL_CURVE8;
    case 5:
        return FanKind == 1 ? CONTROL_CURVE8 : FanKind == 0 ? CONTROL_CURVE6 : CONTROL_NONE;
    case 6:
    case 7:
    case 8:
        return CONTROL_CURVE6;
    default:
        return CONTROL_FIXED_LEVEL;
    }
}

INT32 DegreesOfColumn(INT32 Column) { return 40 + 5 * (Limit<INT32>(Column, 1, gCurveColumns) - 1); }

INT32 DutyOfLevel(INT32 Level, FAN_CONTROL Control)
{
    return Control == CONTROL_CURVE8 ? Limit<INT32>(Level, 1, 8) * 125
                                     : 400 + Limit<INT32>(Level, 1, gFixedLevels) * 100;
}

CURVE CurveOf(const FAN_SETTING& Setting)
{
    return {{{Setting.Column0, Setting.Level0},
             {Setting.Column1, Setting.Level1},
             {Setting.Column2, Setting.Level2},
             {Setting.Column3, Setting.Level3}}};
}

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
