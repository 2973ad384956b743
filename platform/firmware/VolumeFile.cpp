#include "platform/firmware/VolumeFile.h"

#include "src/uefi/FileSystem.h"

namespace {

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

} // namespace

LOAD_RESULT ReadVolumeFile(EFI_BOOT_SERVICES* Boot, EFI_HANDLE Volume, const CHAR16* Path, FILE_BYTES* Bytes,
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
