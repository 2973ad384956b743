// Fresh GUIDs for the firmware's event groups, in the layout of a time-based UUID: a stamp, a clock sequence and a
// node. The node is a network card's MAC address if a device path shows one, else a digest of the machine's memory
// map, its fixed disks and the time. The identifiers go to CreateEventEx; nothing else reads them.
#pragma once

#include "uefi/Base.h"

// What lives from one identifier to the next. Every field but SameStampCount is written anew by each GenerateGuid.
struct GUID_CLOCK {
    UINT64 Now;  // the stamp last read, then the stamp of the identifier
    UINT64 Last; // the stamp to compare with
    UINT16 ClockSequence;
    UINT16 SameStampCount; // identifiers that took this stamp beyond the first
    UINT32 MixMultiplier;  // the generator of DrawRandom
    UINT32 MixStepA;
    UINT32 MixStepB;
    UINT32 MixValue;
};
extern GUID_CLOCK gGuidClock;

// Fills the 16 bytes at Guid. It can't fail in a way that the caller sees: where the firmware gives no memory map, a
// line says so on the console and the node is zero. Walks all device paths and disks anew each time.
VOID GenerateGuid(EFI_GUID* Guid);
