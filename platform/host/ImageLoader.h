// The image loader: the console as a shared object that is loaded for each start and unloaded after it, so that its
// globals are as at load every time, as a firmware's loader has it.
#pragma once

#include <string>

#include "uefi/SystemTable.h"

using IMAGE_ENTRY_POINT = EFI_STATUS (*)(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable);

// Where the console's image is: beside the program, or in ../lib/ventara as seen from there. Empty if in neither place.
std::string FindConsoleImage();

// Loads the image at Path and gives its entry point `_ModuleEntryPoint`. Null, with the reason in *Error, when there is no
// such image, or when a copy of it is still loaded from before, whose globals wouldn't be fresh.
VOID* LoadImage(const std::string& Path, IMAGE_ENTRY_POINT* Entry, std::string* Error);

// Addresses in the image mean nothing from then on.
VOID UnloadImage(VOID* Image);
