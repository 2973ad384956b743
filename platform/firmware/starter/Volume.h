// Images on the volume that the starter was read from.
#pragma once

#include "uefi/SystemTable.h"

// What became of loading an image, in the terms of what a person can do about it.
enum LOAD_RESULT : UINT8 {
    LOAD_DONE,
    LOAD_NO_VOLUME,  // the volume can't be opened
    LOAD_MISSING,    // no such file
    LOAD_UNREADABLE, // the volume failed while the file was read
    LOAD_DAMAGED,    // no image for this machine
    LOAD_REFUSED,    // Secure Boot
    LOAD_NO_MEMORY,
};

// Loads the image of that name, a path from the volume's root with backslashes. Image is written on LOAD_DONE alone;
// Status receives the firmware's own word in every case.
LOAD_RESULT LoadVolumeImage(EFI_SYSTEM_TABLE* SystemTable, EFI_HANDLE Starter, const CHAR16* Path, EFI_HANDLE* Image,
                            EFI_STATUS* Status);
