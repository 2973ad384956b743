// What the firmware holds and gives away, counted by the test images.
#pragma once

#include "uefi/SystemTable.h"

// Pages that nobody holds.
UINTN CountFreePages(EFI_BOOT_SERVICES* Boot);
// Handles with the protocol; all handles for null.
UINTN CountHandles(EFI_BOOT_SERVICES* Boot, const EFI_GUID* Protocol);
