// Simple file system and file protocols, as far as reading and writing a whole file needs them.
#pragma once

#include "uefi/Base.h"

constexpr EFI_GUID gEfiSimpleFileSystemProtocolGuid = {
    0x964E5B22, 0x6459, 0x11D2, {0x8E, 0x39, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};
constexpr EFI_GUID gEfiFileInfoGuid = {
    0x09576E92, 0x6D3F, 0x11D2, {0x8E, 0x39, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};

constexpr UINT64 EFI_FILE_MODE_READ = 1;
constexpr UINT64 EFI_FILE_MODE_WRITE = 2;
constexpr UINT64 EFI_FILE_MODE_CREATE = 0x8000000000000000;

// What GetInfo gives under gEfiFileInfoGuid; the name follows the fixed part.
struct EFI_FILE_INFO {
    UINT64 Size;
    UINT64 FileSize;
    UINT64 PhysicalSize;
    EFI_TIME CreateTime;
    EFI_TIME LastAccessTime;
    EFI_TIME ModificationTime;
    UINT64 Attribute;
};
static_assert(sizeof(EFI_FILE_INFO) == 80);

struct EFI_FILE_PROTOCOL {
    UINT64 Revision;
    EFI_STATUS (*Open)(EFI_FILE_PROTOCOL* This, EFI_FILE_PROTOCOL** NewHandle, const CHAR16* FileName, UINT64 OpenMode,
                       UINT64 Attributes);
    EFI_STATUS (*Close)(EFI_FILE_PROTOCOL* This);
    EFI_STATUS (*Delete)(EFI_FILE_PROTOCOL* This); // closes it as well, even where it fails
    EFI_STATUS (*Read)(EFI_FILE_PROTOCOL* This, UINTN* BufferSize, VOID* Buffer);
    EFI_STATUS (*Write)(EFI_FILE_PROTOCOL* This, UINTN* BufferSize, const VOID* Buffer);
    VOID* GetPosition;
    VOID* SetPosition;
    EFI_STATUS (*GetInfo)(EFI_FILE_PROTOCOL* This, const EFI_GUID* InformationType, UINTN* BufferSize, VOID* Buffer);
    VOID* SetInfo;
    EFI_STATUS (*Flush)(EFI_FILE_PROTOCOL* This);
};
static_assert(sizeof(EFI_FILE_PROTOCOL) == 11 * 8 && offsetof(EFI_FILE_PROTOCOL, Read) == 32 && offsetof(EFI_FILE_PROTOCOL, GetInfo) == 64);

struct EFI_SIMPLE_FILE_SYSTEM_PROTOCOL {
    UINT64 Revision;
    EFI_STATUS (*OpenVolume)(EFI_SIMPLE_FILE_SYSTEM_PROTOCOL* This, EFI_FILE_PROTOCOL** Root);
};
