// The simulation behind the readings: loads that come and go, the heat they make, fans with inertia that carry it off,
// and voltages that sag and ripple.
//
// The model moves in steps of 50 milliseconds of the board's clock, all in whole numbers, so that one seed and one
// clock always give the same readings. A query brings the model up to date first; after a long silence it makes up for
// the last ten seconds only, so that no query takes long.
#pragma once

#include "platform/board/FanContract.h"
#include "platform/board/SimulatedBoard.h"

// Starts the model at that time of the clock (microseconds), as a board that has been on for a while. FanStore has to
// be ready: the fans begin where their records hold them.
VOID ResetThermal(const BOARD_SOURCE* Board, UINT64 Seed, UINT64 Now);

// Brings the model up to that time. A clock that has gone back changes nothing.
VOID AdvanceThermal(UINT64 Now);

// The reading of item 0 to 2 (degrees), 4 to 10 (revolutions a minute) or 11 to 17 (millivolts); 0 for other ids. The
// presence of the item isn't looked at.
UINT64 ReadModel(UINT8 Item);

// Duty of a curve at a temperature, both in thousandths: straight between two nodes, level beyond the outer ones. A
// record against the contract gives a duty as well, within the grid.
INT32 DutyOfCurve(const FAN_SETTING* Setting, FAN_CONTROL Control, INT32 MilliDegrees);

// The duty that the fan's record asks for at the model's present temperatures, in thousandths.
INT32 DutyOfFan(UINT8 FanItem);
