#include "platform/firmware/starter/Volume.h"

#include "src/uefi/LoadedImage.h"

namespace {

// The largest path of a file that the starter asks for.
constexpr UINTN gPathRoom = 64;

VOID WriteNodeHead(UINT8* At, UINT8 Type, UINT8 SubType, UINTN Length)
{
    At[0] = Type;
    At[1] = SubType;
    At[2] = static_cast<UINT8>(Length & 0xFF);
    At[3] = static_cast<UINT8>(Length >> 8);
}

// The file's own device path in a pool block, or null: the volume's nodes, one for the file, and the end. The firmware's
// policy for signed images asks where an image came from.
EFI_DEVICE_PATH_PROTOCOL* MakeFilePath(EFI_BOOT_SERVICES* Boot, EFI_HANDLE Volume, const CHAR16* Path)
{
    VOID* Interface = nullptr;
    if (EfiError(Boot->HandleProtocol(Volume, &gEfiDevicePathProtocolGuid, &Interface))) {
        return nullptr;
    }
    const UINTN Nodes = NodesLength(static_cast<EFI_DEVICE_PATH_PROTOCOL*>(Interface));
    UINTN Characters = 0;
    while (Characters < gPathRoom && Path[Characters] != 0) {
        Characters++;
    }
    UINTN FileNode = sizeof(EFI_DEVICE_PATH_PROTOCOL) + (Characters + 1) * sizeof(CHAR16);
    VOID* Block = nullptr;
    if (EfiError(
            Boot->AllocatePool(EfiBootServicesData, Nodes + FileNode + sizeof(EFI_DEVICE_PATH_PROTOCOL), &Block))) {
        return nullptr;
    }
    auto* At = static_cast<UINT8*>(Block);
    Boot->CopyMem(At, Interface, Nodes);
    At += Nodes;
    WriteNodeHead(At, MEDIA_DEVICE_PATH, MEDIA_FILEPATH_DP, FileNode);
    Boot->CopyMem(At + sizeof(EFI_DEVICE_PATH_PROTOCOL), Path, (Characters + 1) * sizeof(CHAR16));
    At += FileNode;
    WriteNodeHead(At, END_DEVICE_PATH_TYPE, END_ENTIRE_DEVICE_PATH_SUBTYPE, sizeof(EFI_DEVICE_PATH_PROTOCOL));
    return static_cast<EFI_DEVICE_PATH_PROTOCOL*>(Block);
}

}

LOAD_RESULT LoadVolumeImage(EFI_SYSTEM_TABLE* SystemTable, EFI_HANDLE Starter, const CHAR16* Path, EFI_HANDLE* Image,
                            EFI_STATUS* Status)
{
    EFI_BOOT_SERVICES* Boot = SystemTable->BootServices;
    VOID* Interface = nullptr;
    *Status = Boot->HandleProtocol(Starter, &gEfiLoadedImageProtocolGuid, &Interface);
    if (EfiError(*Status)) {
        return LOAD_NO_VOLUME;
    }
    EFI_HANDLE Volume = static_cast<EFI_LOADED_IMAGE_PROTOCOL*>(Interface)->DeviceHandle;
    // Read here and not left to the firmware, so that a missing file, a failing volume and a damaged image are told
    // apart: LoadImage answers the first two alike.
    FILE_BYTES Bytes = {};
    LOAD_RESULT Result = ReadVolumeFile(Boot, Volume, Path, &Bytes, Status);
    if (Result != LOAD_DONE) {
        return Result;
    }
    EFI_DEVICE_PATH_PROTOCOL* FilePath = MakeFilePath(Boot, Volume, Path);
    EFI_HANDLE Loaded = nullptr;
    *Status = Boot->LoadImage(0, Starter, FilePath, Bytes.Data, Bytes.Size, &Loaded);
    (void)Boot->FreePool(Bytes.Data);
    if (FilePath != nullptr) {
        (void)Boot->FreePool(FilePath);
    }
    switch (*Status) {
    case EFI_SUCCESS:
        *Image = Loaded;
        return LOAD_DONE;
    case EFI_SECURITY_VIOLATION:
        // The one failure that leaves an image behind.
        (void)Boot->UnloadImage(Loaded);
        return LOAD_REFUSED;
    case EFI_ACCESS_DENIED:
        return LOAD_REFUSED;
    case EFI_OUT_OF_RESOURCES:
        return LOAD_NO_MEMORY;
    default:
        return LOAD_DAMAGED;
    }
}
