#include "platform/firmware/starter/Volume.h"

#include "src/uefi/FileSystem.h"
#include "src/uefi/LoadedImage.h"

namespace {

// The largest path of a file that the starter asks for.
constexpr UINTN gPathRoom = 64;

// The file's bytes in a pool block.
struct FILE_BYTES {
    VOID* Data;
    UINTN Size;
};

LOAD_RESULT ReadOpenFile(EFI_BOOT_SERVICES* Boot, EFI_FILE_PROTOCOL* File, FILE_BYTES* Bytes, EFI_STATUS* Status)
{
    // The record's fixed part and a file name behind it.
    alignas(EFI_FILE_INFO) UINT8 InfoBlock[sizeof(EFI_FILE_INFO) + 512];
    UINTN InfoSize = sizeof(InfoBlock);
    *Status = File->GetInfo(File, &gEfiFileInfoGuid, &InfoSize, InfoBlock);
    if (EfiError(*Status)) {
        return LOAD_UNREADABLE;
    }
    Bytes->Size = reinterpret_cast<const EFI_FILE_INFO*>(InfoBlock)->FileSize;
    if (Bytes->Size == 0) {
        *Status = EFI_LOAD_ERROR;
        return LOAD_DAMAGED;
    }
    *Status = Boot->AllocatePool(EfiBootServicesData, Bytes->Size, &Bytes->Data);
    if (EfiError(*Status)) {
        return LOAD_NO_MEMORY;
    }
    UINTN Read = Bytes->Size;
    *Status = File->Read(File, &Read, Bytes->Data);
    if (EfiError(*Status) || Read != Bytes->Size) {
        (void)Boot->FreePool(Bytes->Data);
        Bytes->Data = nullptr;
        return LOAD_UNREADABLE;
    }
    return LOAD_DONE;
}

LOAD_RESULT ReadFile(EFI_BOOT_SERVICES* Boot, EFI_HANDLE Volume, const CHAR16* Path, FILE_BYTES* Bytes,
                     EFI_STATUS* Status)
{
    VOID* Interface = nullptr;
    *Status = Boot->HandleProtocol(Volume, &gEfiSimpleFileSystemProtocolGuid, &Interface);
    if (EfiError(*Status)) {
        return LOAD_NO_VOLUME;
    }
    auto* FileSystem = static_cast<EFI_SIMPLE_FILE_SYSTEM_PROTOCOL*>(Interface);
    EFI_FILE_PROTOCOL* Root = nullptr;
    *Status = FileSystem->OpenVolume(FileSystem, &Root);
    if (EfiError(*Status)) {
        return LOAD_NO_VOLUME;
    }
    EFI_FILE_PROTOCOL* File = nullptr;
    *Status = Root->Open(Root, &File, Path, EFI_FILE_MODE_READ, 0);
    LOAD_RESULT Result = *Status == EFI_NOT_FOUND ? LOAD_MISSING : LOAD_UNREADABLE;
    if (!EfiError(*Status)) {
        Result = ReadOpenFile(Boot, File, Bytes, Status);
        (void)File->Close(File);
    }
    (void)Root->Close(Root);
    return Result;
}

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
    const auto* VolumePath = static_cast<const UINT8*>(Interface);
    UINTN Nodes = 0;
    for (;;) {
        const auto* Node = reinterpret_cast<const EFI_DEVICE_PATH_PROTOCOL*>(VolumePath + Nodes);
        if (Node->Type == END_DEVICE_PATH_TYPE || NodeLength(Node) < sizeof(EFI_DEVICE_PATH_PROTOCOL)) {
            break;
        }
        Nodes += NodeLength(Node);
    }
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
    Boot->CopyMem(At, VolumePath, Nodes);
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
    LOAD_RESULT Result = ReadFile(Boot, Volume, Path, &Bytes, Status);
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
