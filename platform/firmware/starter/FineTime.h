// The time of day in parts of a second, where the firmware's own tells whole ones.
//
// The console waits for the clock to move on twice for each identifier that it makes, and makes about a hundred at its start. A
// machine's clock chip moves once a second and is slow to read: 60,000 readings were two fifths of a start.
#pragma once

#include "uefi/SystemTable.h"

// Where the firmware's clock ticks once a second, gives this copy of its table, which an image is to get, a GetTime that
// tells microseconds, and says so; any other clock stays as it is. Date and second are the firmware's; the microseconds are
// the processor's since the second was told first. Time doesn't go back.
bool RefineTime(EFI_BOOT_SERVICES* Boot, EFI_RUNTIME_SERVICES* Copy);
