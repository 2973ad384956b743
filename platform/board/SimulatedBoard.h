// The boards that the simulation knows, as sources of readings: which items exist on each, what they are called, and how
// their fans are tied to their temperatures.
//
// What changes with time is in Thermal.h, what the user sets in FanStore.h. There is one simulation at a time.
#pragma once

#include "platform/board/BoardSource.h"

// Number of boards and their names, for a command line's help and its check.
extern const CHAR8* const gBoardNames[];
extern const UINTN gBoardNameCount;

// Starts the simulation of the board of that name, or of "full" for a null name, as one that has been on for a while at
// that time of the clock (microseconds); null for a name that no board has. The seed settles all that is by chance.
BOARD_SOURCE* OpenSimulatedBoard(const CHAR8* Name, UINT64 Seed, UINT64 Now);

// What a fan is by its make, in the order of the fans from item 4 on.
struct SIMULATED_FAN {
    UINT8 Source;   // the temperature source that it cools and follows
    INT32 LowSpeed; // revolutions a minute that it keeps at the least
    INT32 TopSpeed; // revolutions a minute at full duty
};
extern const SIMULATED_FAN gSimulatedFans[gFanItemCount];

constexpr UINT8 gNoSource = 0xFF;

// The source that the fan follows on this board: its own, or the first that exists, or gNoSource.
UINT8 SourceOfFan(const BOARD_SOURCE& Board, UINT8 FanItem);
