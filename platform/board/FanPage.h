// A fan of a real board on one of the console's pages: which page it gets, what its page's levels are as a duty of 0 to
// 255, how a curve that is finer than the page is shown on it, and which records of a page are no wish of the user's.
#pragma once

#include "platform/board/FanContract.h"

// Where a fan goes, best page first. What is left over goes wherever there is room: a curve then has a slider, and a duty
// a box that can't be switched on.
constexpr UINT8 gCurvePages[gFanItemCount] = {4, 5, 6, 7, 8, 9, 10};
constexpr UINT8 gSliderPages[gFanItemCount] = {9, 10, 8, 7, 6, 5, 4};

constexpr INT32 gFullDuty = 255;

// What the numbers of a record are in a chip, and the nearest the other way round. A duty of half a step is rounded up:
// the lowest level stays what it says at the least.
INT32 ChipTemperature(INT32 Column); // thousandths of a degree
INT32 ChipDuty(INT32 Level, FAN_CONTROL Control);
UINT8 NearestColumn(INT64 Temperature);
UINT8 NearestLevel(INT64 Duty, FAN_CONTROL Control);

struct CURVE_POINT {
    INT64 Temperature; // thousandths of a degree
    INT64 Duty;
};
// The curve of the page that comes nearest, always a legal one: points closer than the columns are moved apart.
CURVE NearestCurve(const CURVE_POINT (&Points)[gCurveNodes], FAN_CONTROL Control);

// A page sends what it shows when it comes up, too, and right after Cancel what Cancel took back. None of that is a wish
// of the user's, and the chip's own curve is finer than the page's grid. Neither is what was read last: the chip has it.
struct SHOWN_PAGE {
    // The console has read that record. After Default and Cancel, TakenBack, a page of 6 levels takes over box and slider
    // alone; its nodes stay where the user put them.
    VOID WasRead(FAN_CONTROL Control, const FAN_SETTING& Setting, bool TakenBack);
    VOID WasSent(FAN_CONTROL Control, const FAN_SETTING& Setting);
    bool Shows(FAN_CONTROL Control, const FAN_SETTING& Setting) const;
    VOID ShowFullSpeed(FAN_CONTROL Control);

private:
    FAN_SETTING mPage = {};
    FAN_SETTING mRead = {};
    bool mIsRead = false; // nothing was sent since
};
