// Images on the volume that the starter was read from.
#pragma once

#include "platform/firmware/VolumeFile.h"

// Loads the image of that name, a path from the volume's root with backslashes. Image is written on LOAD_DONE alone;
// Status receives the firmware's own word in every case.
LOAD_RESULT LoadVolumeImage(EFI_SYSTEM_TABLE* SystemTable, EFI_HANDLE Starter, const CHAR16* Path, EFI_HANDLE* Image,
                            EFI_STATUS* Status);
