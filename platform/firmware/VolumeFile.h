// A file of a volume as bytes in memory.
#pragma once

#include "uefi/SystemTable.h"

// What became of loading a file or an image, in the terms of what a person can do about it.
enum LOAD_RESULT : UINT8 {
    LOAD_DONE,
    LOAD_NO_VOLUME,  // the volume can't be opened
    LOAD_MISSING,    // no such file
    LOAD_UNREADABLE, // the volume failed while the file was read
    LOAD_DAMAGED,    // no image for this machine, or an empty file
    LOAD_REFUSED,    // Secure Boot
    LOAD_NO_MEMORY,
};

// The file's bytes in a pool block, which the caller frees.
struct FILE_BYTES {
    VOID* Data;
    UINTN Size;
};

// Reads the file of that name, a path from the volume's root with backslashes. Bytes is written on LOAD_DONE alone; Status
// receives the firmware's own word in every case.
LOAD_RESULT ReadVolumeFile(EFI_BOOT_SERVICES* Boot, EFI_HANDLE Volume, const CHAR16* Path, FILE_BYTES* Bytes,
                           EFI_STATUS* Status);
