#include "tests/firmware/Inventory.h"

UINTN CountFreePages(EFI_BOOT_SERVICES* Boot)
{
    UINTN Size = 0;
    UINTN Key = 0;
    UINTN DescriptorSize = 0;
    UINT32 Version = 0;
    (void)Boot->GetMemoryMap(&Size, nullptr, &Key, &DescriptorSize, &Version);
    // The block for the map may split a piece of memory, so that the map grows once more.
    Size += 16 * DescriptorSize;
    VOID* Block = nullptr;
    if (EfiError(Boot->AllocatePool(EfiBootServicesData, Size, &Block))) {
        return 0;
    }
    auto* Map = static_cast<UINT8*>(Block);
    UINTN Pages = 0;
    if (!EfiError(Boot->GetMemoryMap(&Size, reinterpret_cast<EFI_MEMORY_DESCRIPTOR*>(Map), &Key, &DescriptorSize,
                                     &Version))) {
        for (UINTN At = 0; At + DescriptorSize <= Size; At += DescriptorSize) {
            const auto* Descriptor = reinterpret_cast<const EFI_MEMORY_DESCRIPTOR*>(Map + At);
            if (Descriptor->Type == EfiConventionalMemory) {
                Pages += Descriptor->NumberOfPages;
            }
        }
    }
    (void)Boot->FreePool(Block);
    return Pages;
}

UINTN CountHandles(EFI_BOOT_SERVICES* Boot, const EFI_GUID* Protocol)
{
    UINTN Count = 0;
    EFI_HANDLE* Handles = nullptr;
    if (EfiError(Boot->LocateHandleBuffer(Protocol != nullptr ? ByProtocol : AllHandles, Protocol, nullptr, &Count,
                                          &Handles))) {
        return 0;
    }
    (void)Boot->FreePool(Handles);
    return Count;
}
