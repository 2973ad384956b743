// The firmware's pool for the artwork services and the decoder: what they hand out is freed by the console.
#pragma once

#include "uefi/SystemTable.h"

VOID UseArtworkPool(EFI_BOOT_SERVICES* BootServices);

// Null when the pool is exhausted.
VOID* AllocateArtworkPool(UINTN Size);
// Null does nothing.
VOID FreeArtworkPool(VOID* Block);
