#include "platform/firmware/starter/Lookups.h"

#include "platform/firmware/starter/FineTime.h"
#include "src/uefi/LoadedImage.h"

namespace {

struct LOOKUP {
    const EFI_GUID* Guid; // null: the row is free
    VOID* Interface;
};

LOOKUP gLookups[4];
EFI_SYSTEM_TABLE gImageTable;
EFI_BOOT_SERVICES gImageServices;
EFI_RUNTIME_SERVICES gImageRuntime;
decltype(EFI_BOOT_SERVICES::LocateProtocol) gFirmwareLocate;
const UINT8* gImageBase;
UINTN gImageSize;

LOOKUP* FindLookup(const EFI_GUID* Guid)
{
    for (LOOKUP& Lookup : gLookups) {
        if (Lookup.Guid != nullptr && Guid != nullptr && SameGuid(*Lookup.Guid, *Guid)) {
            return &Lookup;
        }
    }
    return nullptr;
}

EFI_STATUS LocateReplaced(const EFI_GUID* Guid, VOID* Registration, VOID** Interface)
{
    const LOOKUP* Lookup = Registration == nullptr && Interface != nullptr ? FindLookup(Guid) : nullptr;
    if (Lookup == nullptr) {
        return gFirmwareLocate(Guid, Registration, Interface);
    }
    *Interface = Lookup->Interface;
    return EFI_SUCCESS;
}

EFI_STATUS LocateForImage(const EFI_GUID* Guid, VOID* Registration, VOID** Interface)
{
    const auto* Caller = static_cast<const UINT8*>(__builtin_return_address(0));
    const bool Inside = Caller >= gImageBase && Caller < gImageBase + gImageSize;
    return Inside ? LocateReplaced(Guid, Registration, Interface) : gFirmwareLocate(Guid, Registration, Interface);
}

VOID Seal(EFI_BOOT_SERVICES* Boot, EFI_TABLE_HEADER* Header)
{
    Header->CRC32 = 0;
    UINT32 Sum = 0;
    (void)Boot->CalculateCrc32(Header, Header->HeaderSize, &Sum);
    Header->CRC32 = Sum;
}

} // namespace

VOID ReplaceLookup(const EFI_GUID* Guid, VOID* Interface)
{
    LOOKUP* Row = FindLookup(Guid);
    for (LOOKUP& Lookup : gLookups) {
        if (Row == nullptr && Lookup.Guid == nullptr) {
            Row = &Lookup;
        }
    }
    if (Row != nullptr) {
        *Row = {.Guid = Interface == nullptr ? nullptr : Guid, .Interface = Interface};
    }
}

EFI_STATUS StartWithLookups(EFI_SYSTEM_TABLE* SystemTable, EFI_HANDLE Image)
{
    EFI_BOOT_SERVICES* Boot = SystemTable->BootServices;
    gImageRuntime = *SystemTable->RuntimeServices;
    bool Any = RefineTime(Boot, &gImageRuntime);
    for (const LOOKUP& Lookup : gLookups) {
        Any = Any || Lookup.Guid != nullptr;
    }
    if (!Any) {
        return Boot->StartImage(Image, nullptr, nullptr);
    }
    VOID* Interface = nullptr;
    const EFI_STATUS Found = Boot->HandleProtocol(Image, &gEfiLoadedImageProtocolGuid, &Interface);
    if (EfiError(Found)) {
        (void)Boot->UnloadImage(Image); // it would take what the firmware has for what it expects
        return Found;
    }
    auto* Loaded = static_cast<EFI_LOADED_IMAGE_PROTOCOL*>(Interface);
    gImageBase = static_cast<const UINT8*>(Loaded->ImageBase);
    gImageSize = Loaded->ImageSize;
    gFirmwareLocate = Boot->LocateProtocol;

    gImageServices = *Boot;
    gImageServices.LocateProtocol = LocateReplaced;
    gImageServices.Hdr.HeaderSize = sizeof(gImageServices); // a newer firmware's table may be longer than is known here
    Seal(Boot, &gImageServices.Hdr);
    gImageRuntime.Hdr.HeaderSize = sizeof(gImageRuntime);
    Seal(Boot, &gImageRuntime.Hdr);
    gImageTable = *SystemTable;
    gImageTable.BootServices = &gImageServices;
    gImageTable.RuntimeServices = &gImageRuntime;
    gImageTable.Hdr.HeaderSize = sizeof(gImageTable);
    Seal(Boot, &gImageTable.Hdr);
    Loaded->SystemTable = &gImageTable;

    const UINT32 Sum = Boot->Hdr.CRC32;
    Boot->LocateProtocol = LocateForImage;
    Seal(Boot, &Boot->Hdr);
    const EFI_STATUS Status = Boot->StartImage(Image, nullptr, nullptr);
    Boot->LocateProtocol = gFirmwareLocate;
    Boot->Hdr.CRC32 = Sum;
    return Status;
}
