// The time of day in parts of a second, where the firmware's own tells whole ones.
//
// The console waits for the clock to move on twice for each identifier that it makes, and makes about a hundred at its start. A
// machine's clock chip moves once a second and is slow to read: 60,000 readings were two fifths of a start.
#pragma once

#include "uefi/SystemTable.h"

// Whether the firmware's clock ticks once a second.
bool TellsWholeSeconds(const EFI_RUNTIME_SERVICES* Firmware);

// Gives Copy, a copy of the firmware's services that an image is to get, a GetTime that tells microseconds. Date and
// second are the firmware's, asked for once a second at most; the microseconds are the processor's since then, so they
// begin anywhere in that second. Time doesn't go back. Firmware has to last as long as the copy is used.
VOID PutFineTime(EFI_BOOT_SERVICES* Boot, const EFI_RUNTIME_SERVICES* Firmware, EFI_RUNTIME_SERVICES* Copy);
