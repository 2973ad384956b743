#include "platform/board/ArtworkPool.h"

namespace {

EFI_BOOT_SERVICES* gArtworkBootServices = nullptr;

} // namespace

VOID UseArtworkPool(EFI_BOOT_SERVICES* BootServices) { gArtworkBootServices = BootServices; }

VOID* AllocateArtworkPool(UINTN Size)
{
    VOID* Block = nullptr;
    if (EfiError(gArtworkBootServices->AllocatePool(EfiBootServicesData, Size, &Block))) {
        return nullptr;
    }
    return Block;
}

VOID FreeArtworkPool(VOID* Block)
{
    if (Block != nullptr) {
        (void)gArtworkBootServices->FreePool(Block);
    }
}
