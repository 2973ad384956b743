// Tells the time that a piece of the console's running takes apart: so much in each kind of firmware call, the rest in the
// console's own work. The calls are timed and counted by functions put into the tables that the console is given, on the
// hosted firmware and on real firmware alike.
#pragma once

#include "uefi/Hii.h"
#include "uefi/SystemTable.h"

enum PLACE : UINT8 {
    PLACE_CONSOLE,    // everything that isn't in one of the calls below: painting pixel by pixel, the scan
    PLACE_BLT,        // blocks to the display
    PLACE_COPY,       // CopyMem and SetMem
    PLACE_TEXT,       // StringToImage
    PLACE_DECODE,     // looking up and decoding artwork
    PLACE_POOL,       // AllocatePool and FreePool
    PLACE_WAIT,       // WaitForEvent
    PLACE_POINTER,    // the pointer
    PLACE_KEY,        // and the key
    PLACE_BOARD,      // readings and settings
    PLACE_IDENTIFIER, // what identifiers are made of: the calendar, memory maps, the count
    PLACE_OTHER,      // events, protocols, handles, variables
    PLACE_ADAPTER,    // what a display layer sends to the firmware's display
    PLACE_COUNT,
};
constexpr const char* gPlaceNames[PLACE_COUNT] = {"console",  "display",  "copies",  "text", "artwork",
                                                  "pool",     "wait",     "pointer", "key",  "board",
                                                  "identity", "services", "adapter"};

struct SPLIT {
    UINT64 Time[PLACE_COUNT]; // as ReadBenchTime tells it
    UINT64 Calls[PLACE_COUNT];
};

// Whose calls are timed.
struct TIMED_TABLES {
    EFI_SYSTEM_TABLE* Console;                       // what the console is given
    EFI_BOOT_SERVICES* Finder;                       // finds the board's services, which are there already
    EFI_GRAPHICS_OUTPUT_PROTOCOL* Shown;             // what the console finds as display
    EFI_GRAPHICS_OUTPUT_PROTOCOL* Adapter = nullptr; // the firmware's display under a layer
    EFI_HII_FONT_PROTOCOL* Font;
};

// The bench's clock, in units of its own: each world brings one.
UINT64 ReadBenchTime();

// Puts the timing functions into the tables, or takes them out again. Between the two no other tables may be timed.
VOID PutTimers(const TIMED_TABLES& Tables);
VOID RemoveTimers();

// From now on. Called inside a firmware call, the time goes on in that call's place.
VOID RestartSplit();
// Since RestartSplit, without the time of what the timing itself takes within the calls' own places.
const SPLIT& ReadSplit();
