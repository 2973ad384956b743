// The board services as one portable package: everything that the console locates beside the firmware's own protocols.
//
// InstallBoardServices puts all of them on one handle; UninstallBoardServices takes them away again and gives all
// memory back. The package is compiled into the hosted program and into the firmware's board driver from the same
// sources; whatever differs between the two worlds comes in through BOARD_OPTIONS.
#pragma once

#include "platform/board/BoardSource.h"
#include "platform/board/ReportText.h"
#include "uefi/SystemTable.h"

// Where the pointer comes from. Read gives the position and the buttons as they are now; the cursor service clamps the
// position to the limits that the console sets.
struct POINTER_SOURCE {
    VOID (*Read)(POINTER_SOURCE* This, INT64* X, INT64* Y, UINT8* Left, UINT8* Right);
    VOID (*SetLimits)(POINTER_SOURCE* This, UINTN Width, UINTN Height); // may be null
    VOID (*Close)(POINTER_SOURCE* This);                                // may be null
    // The keyboard has moved the pointer there, and a mouse goes on from there. May be null: then what Read gives counts
    // again once it changes.
    VOID (*Place)(POINTER_SOURCE* This, INT64 X, INT64 Y);
};

// Where F12 takes a picture and a report to; see TakeHome.h.
struct TAKE_HOME {
    EFI_HANDLE Volume; // has the simple file system protocol; found again by its path; null: nowhere
    VOID (*Describe)(REPORT_TEXT* Report); // adds what only the machine's own side knows; may be null
    VOID (*Told)(const CHAR16* Words);     // in a sentence what was written, or why not
};

struct BOARD_OPTIONS {
    BOARD_SOURCE* Board;      // owned by the caller, outlives the services
    UINT8 Generation;         // what GetFirmwareGeneration answers
    UINT64 (*Microseconds)(); // the clock that is passed to the board, from any start, never backwards
    UINT64 (*StrokeClock)();  // times key strokes, to tell a held key; null where each stroke is a press of its own
    POINTER_SOURCE* Pointer;  // owned by the caller, outlives the services
    const UINT8* ArtworkPack; // the pack made by the build, see ArtworkPack.h; outlives the services
    UINTN ArtworkPackSize;
    // Told of each record that is refused because it breaks the contract, and why; may be null.
    VOID (*Refused)(UINT8 FanItem, const CHAR8* Fault);
    const TAKE_HOME* Home; // null: F12 does nothing; copied
};

// Installs every board service on a new handle. EFI_INVALID_PARAMETER without a board or for a damaged pack.
EFI_STATUS InstallBoardServices(EFI_SYSTEM_TABLE* SystemTable, const BOARD_OPTIONS* Options, EFI_HANDLE* Handle);
// Takes every interface away and gives all memory back; refused with the firmware's status while one is in use.
EFI_STATUS UninstallBoardServices(EFI_HANDLE Handle);

// Null for a record that the contract lets the console send to that fan of the installed board, else in words the first
// rule that it breaks.
const CHAR8* FaultOfFanSetting(UINT8 FanItem, const FAN_SETTING* Setting);

// For tests: how many records the board has refused since it was installed because they break the contract, and in
// words why it refused the last one; null when it refused none.
UINT64 BoardContractFaults();
const CHAR8* LastBoardContractFault();
