// USB mice and tablets that the firmware has no driver for, as a UEFI driver: the firmware offers each USB interface to
// Supported as it appears, and takes it away with Stop.
#pragma once

#include "platform/firmware/pointer/PointerChange.h"
#include "uefi/SystemTable.h"

// Installs the driver on the image's handle and offers it the devices that are there.
EFI_STATUS OpenUsbPointers(EFI_SYSTEM_TABLE* SystemTable, EFI_HANDLE Image);
// The oldest report that hasn't been seen yet and says something new, with the buttons of all devices. False while there is
// none.
bool PollUsbPointers(UINT64 Now, POINTER_CHANGE* Change);
UINTN CountUsbPointers();
// The next report of each tablet puts the pointer where it is.
VOID ForgetUsbPlaces();
// Gives every device back and takes the driver away.
VOID CloseUsbPointers();
