// Loaded image protocol: where an image came from, and the place for its unload function.
#pragma once

#include "uefi/Devices.h"
#include "uefi/SystemTable.h"

constexpr EFI_GUID gEfiLoadedImageProtocolGuid = {
    0x5B1B31A1, 0x9562, 0x11D2, {0x8E, 0x3F, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};

struct EFI_LOADED_IMAGE_PROTOCOL {
    UINT32 Revision;
    EFI_HANDLE ParentHandle;
    EFI_SYSTEM_TABLE* SystemTable;
    EFI_HANDLE DeviceHandle; // the volume that the image was read from
    EFI_DEVICE_PATH_PROTOCOL* FilePath;
    VOID* Reserved;
    UINT32 LoadOptionsSize;
    VOID* LoadOptions;
    VOID* ImageBase;
    UINT64 ImageSize;
    EFI_MEMORY_TYPE ImageCodeType;
    EFI_MEMORY_TYPE ImageDataType;
    EFI_STATUS (*Unload)(EFI_HANDLE ImageHandle);
};
static_assert(offsetof(EFI_LOADED_IMAGE_PROTOCOL, DeviceHandle) == 24);
static_assert(offsetof(EFI_LOADED_IMAGE_PROTOCOL, Unload) == 88);
