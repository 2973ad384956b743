// An image for the loader's tests: it returns an error when its globals aren't as at load.
#include "uefi/SystemTable.h"

namespace {

UINTN gStarts = 0;

} // namespace

extern "C" __attribute__((visibility("default"))) EFI_STATUS _ModuleEntryPoint(EFI_HANDLE,
                                                                               EFI_SYSTEM_TABLE* SystemTable)
{
    gStarts++;
    if (gStarts != 1) {
        return EFI_ALREADY_STARTED;
    }
    // Forgotten on purpose.
    VOID* Block;
    return SystemTable->BootServices->AllocatePool(EfiBootServicesData, 5, &Block);
}
