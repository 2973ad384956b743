// The machine's time as microseconds, from any start, never backwards.
#pragma once

#include "uefi/SystemTable.h"

// Finds how fast the processor's timer runs: asks the firmware, and measures if it doesn't say.
VOID StartClock(EFI_BOOT_SERVICES* Boot);
UINT64 ReadMicroseconds();
