// The boards that the simulation knows: which items exist on each, what they are called, and how its fans are tied.
//
// All of it is fixed. What changes with time is in Thermal.h, what the user sets in FanStore.h.
#pragma once

#include "shell/Services.h"

struct SIMULATED_BOARD {
    UINT32 Present; // bit n: item n exists
    UINT8 FanKind;  // answer of GetFanKind
};

// How a fan can be set, which follows from its item and, for item 5, from the kind.
enum FAN_CONTROL : UINT8 {
    CONTROL_NONE,         // nothing is ever set
    CONTROL_CURVE8,       // a curve over eight levels of 12.5 percent; no fixed level
    CONTROL_CURVE6,       // a curve over six levels of 10 percent from 50 on, beside it a fixed level
    CONTROL_FIXED_LEVEL,  // a fixed level alone
};

// What a fan is by its make, in the order of the fans from item 4 on.
struct SIMULATED_FAN {
    UINT8 Source;     // the temperature source that it cools and follows
    INT32 LowSpeed;   // revolutions a minute that it keeps at the least
    INT32 TopSpeed;   // revolutions a minute at full duty
};
extern const SIMULATED_FAN gSimulatedFans[gFanItemCount];

constexpr UINT8 gNoSource = 0xFF;

// The board of that name, or "full" for a null name; null for a name that no board has.
const SIMULATED_BOARD* FindSimulatedBoard(const CHAR8* Name);

// False for every item outside the readings.
bool HasItem(const SIMULATED_BOARD* Board, UINT8 Item);

bool IsFanItem(UINT8 Item);

// FanItem is 4 to 10.
FAN_CONTROL ControlOfFan(const SIMULATED_BOARD* Board, UINT8 FanItem);

// The source that the fan follows on this board: its own, or the first that exists, or gNoSource.
UINT8 SourceOfFan(const SIMULATED_BOARD* Board, UINT8 FanItem);

// Name of an item that exists, or text of the strings from 22 on; null for anything else.
const CHAR16* TextOfItem(const SIMULATED_BOARD* Board, UINT8 Item);
