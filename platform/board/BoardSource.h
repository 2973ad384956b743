// A board behind the services: which items it has, what they are called, what they read, and how its fans are set.
//
// The hardware service answers the console out of one such record and looks after everything that is the same on all
// boards: texts of the console, copies from pool, and the check that a record sent is one that the contract allows. A
// board of one's own is one pair of files that gives out this record; SimulatedBoard.h is one.
//
// Calls come from the console's one thread and answer within what docs/board-services.md allows. Item is one that the
// board has, and FanItem 4 to 10, whether the board has that fan or not: Default and Cancel read some that aren't there.
#pragma once

#include "shell/contract/Services.h"

struct BOARD_SOURCE {
    UINT32 Present; // bit n: item n exists; fixed from the moment when the services are installed
    UINT8 FanKind;  // of item 5: 1, a curve of 8 levels; 0, a curve of 6 levels; 2, never set

    // What an item or a text is called; null for a text that the board leaves to the service. Stays the board's, and
    // stays as it is until the next call.
    const CHAR16* (*NameOf)(BOARD_SOURCE* This, UINT8 Item);
    // The reading in the unit of the item. After a failure the console goes by Value as it was.
    EFI_STATUS (*Read)(BOARD_SOURCE* This, UINT8 Item, UINT64* Value);

    // The record that is in force, and a new one, which keeps to the contract (FanContract.h) and takes effect at once.
    EFI_STATUS (*GetFan)(BOARD_SOURCE* This, UINT8 FanItem, FAN_SETTING* Setting);
    EFI_STATUS (*SetFan)(BOARD_SOURCE* This, UINT8 FanItem, const FAN_SETTING* Setting);
    // All fans: to the board's defaults; to full speed until the next record or one of the two others; back to what they
    // held at the last Begin.
    EFI_STATUS (*LoadDefaults)(BOARD_SOURCE* This);
    EFI_STATUS (*SetFullSpeed)(BOARD_SOURCE* This);
    EFI_STATUS (*Restore)(BOARD_SOURCE* This);

    // A console starts. May be null.
    VOID (*Begin)(BOARD_SOURCE* This);
    // Before each reading and each change of a fan: the time in microseconds, from any start. May be null.
    VOID (*Advance)(BOARD_SOURCE* This, UINT64 Microseconds);
};

constexpr bool HasItem(const BOARD_SOURCE& Source, UINT8 Item)
{
    return Item < gItemCount && (Source.Present >> Item & 1) != 0;
}

constexpr bool IsFanItem(UINT8 Item) { return Item >= gFirstFanItem && Item < gFirstFanItem + gFanItemCount; }
