// What a fan's record may hold, and what its numbers mean: which fans have a curve of how many levels, the degrees of a
// column and the duty of a level.
#pragma once

#include "shell/contract/Services.h"

// How a fan can be set, which follows from its item and, for item 5, from the kind.
enum FAN_CONTROL : UINT8 {
    CONTROL_NONE,        // nothing is ever set
    CONTROL_CURVE8,      // a curve over eight levels of 12.5 percent; no fixed level
    CONTROL_CURVE6,      // a curve over six levels of 10 percent from 50 on, beside it a fixed level
    CONTROL_FIXED_LEVEL, // a fixed level alone
};

constexpr UINT8 gCurveNodes = 4;
constexpr UINT8 gCurveColumns = 13;
constexpr UINT16 gFixedLevels = 6;

// FanItem is 4 to 10; FanKind is that of item 5.
FAN_CONTROL ControlOfFan(UINT8 FanKind, UINT8 FanItem);

// Degrees of a column; one outside the grid counts as the nearest.
INT32 DegreesOfColumn(INT32 Column);
// Duty of a level in thousandths; one outside the grid counts as the nearest. CONTROL_FIXED_LEVEL for a slider.
INT32 DutyOfLevel(INT32 Level, FAN_CONTROL Control);

// A curve's nodes by number, low end first, in place of the record's own order.
struct CURVE_NODE {
    UINT8 Column;
    UINT8 Level;
};
struct CURVE {
    CURVE_NODE Nodes[gCurveNodes];
};
CURVE CurveOf(const FAN_SETTING& Setting);
constexpr VOID PutCurve(FAN_SETTING* Setting, const CURVE& Curve)
{
    Setting->Column0 = Curve.Nodes[0].Column;
    Setting->Column1 = Curve.Nodes[1].Column;
    Setting->Column2 = Curve.Nodes[2].Column;
    Setting->Column3 = Curve.Nodes[3].Column;
    Setting->Level0 = Curve.Nodes[0].Level;
    Setting->Level1 = Curve.Nodes[1].Level;
    Setting->Level2 = Curve.Nodes[2].Level;
    Setting->Level3 = Curve.Nodes[3].Level;
}

// Null for a record within the contract, else a text that names the first rule broken.
const CHAR8* CheckFanSetting(FAN_CONTROL Control, const FAN_SETTING* Setting);
