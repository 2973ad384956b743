// Tells the time that a piece of the console's running takes apart: so much in each kind of firmware call, the rest in the
// console's own work. The calls are timed by functions put into the tables that the console is given.
#pragma once

#include <array>

#include "platform/host/Boot.h"

enum PLACE : UINT8 {
    PLACE_CONSOLE, // everything that isn't in one of the calls below: painting pixel by pixel, identifiers, the scan
    PLACE_BLT,     // blocks to the display
    PLACE_COPY,    // CopyMem and SetMem
    PLACE_TEXT,    // StringToImage
    PLACE_DECODE,  // looking up and decoding artwork
    PLACE_POOL,    // AllocatePool and FreePool
    PLACE_LOOP,    // WaitForEvent, the pointer and the key
    PLACE_BOARD,   // readings and settings
    PLACE_OTHER,   // events, protocols, handles, variables, the calendar
    PLACE_COUNT,
};
constexpr const char* gPlaceNames[PLACE_COUNT] = {"console", "display", "copies", "text",    "artwork",
                                                  "pool",    "loop",    "board",  "services"};

using SPLIT = std::array<double, PLACE_COUNT>; // nanoseconds

// Puts the timing functions into the tables of a boot whose board is installed, or takes them out again. Between the two
// no other boot may be timed.
VOID PutTimers(BOOT& Boot);
VOID RemoveTimers();

// From now on. Called inside a firmware call, the time goes on in that call's place.
VOID RestartSplit();
// Since RestartSplit, without the time of what the timing itself takes within the calls' own places.
const SPLIT& ReadSplit();
