// Device paths and block devices.
#pragma once

#include "uefi/Base.h"

constexpr EFI_GUID gEfiDevicePathProtocolGuid = {
    0x09576E91, 0x6D3F, 0x11D2, {0x8E, 0x39, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};
constexpr EFI_GUID gEfiBlockIoProtocolGuid = {
    0x964E5B21, 0x6459, 0x11D2, {0x8E, 0x39, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};

// One node of a device path. Length is little-endian and counts the whole node, this head included.
struct EFI_DEVICE_PATH_PROTOCOL {
    UINT8 Type;
    UINT8 SubType;
    UINT8 Length[2];
};

constexpr UINTN NodeLength(const EFI_DEVICE_PATH_PROTOCOL* Node)
{
    return static_cast<UINTN>(Node->Length[0]) | static_cast<UINTN>(Node->Length[1]) << 8;
}

constexpr UINT8 HARDWARE_DEVICE_PATH = 0x01;
constexpr UINT8 ACPI_DEVICE_PATH = 0x02;
constexpr UINT8 MESSAGING_DEVICE_PATH = 0x03;
constexpr UINT8 MSG_MAC_ADDR_DP = 0x0B;
constexpr UINT8 MEDIA_DEVICE_PATH = 0x04;
constexpr UINT8 MEDIA_FILEPATH_DP = 0x04;
constexpr UINT8 END_DEVICE_PATH_TYPE = 0x7F;
constexpr UINT8 END_INSTANCE_DEVICE_PATH_SUBTYPE = 0x01;
constexpr UINT8 END_ENTIRE_DEVICE_PATH_SUBTYPE = 0xFF;

// Bytes of the nodes before the first end. A node shorter than its own head would never be left, so a path ends there as
// well.
inline UINTN NodesLength(const EFI_DEVICE_PATH_PROTOCOL* Path)
{
    const auto* Bytes = reinterpret_cast<const UINT8*>(Path);
    UINTN Length = 0;
    for (;;) {
        const auto* Node = reinterpret_cast<const EFI_DEVICE_PATH_PROTOCOL*>(Bytes + Length);
        if (Node->Type == END_DEVICE_PATH_TYPE || NodeLength(Node) < sizeof(EFI_DEVICE_PATH_PROTOCOL)) {
            return Length;
        }
        Length += NodeLength(Node);
    }
}

struct EFI_BLOCK_IO_MEDIA {
    UINT32 MediaId;
    BOOLEAN RemovableMedia;
    BOOLEAN MediaPresent;
    BOOLEAN LogicalPartition;
    BOOLEAN ReadOnly;
    BOOLEAN WriteCaching;
    UINT32 BlockSize;
    UINT32 IoAlign;
    UINT64 LastBlock;
};

struct EFI_BLOCK_IO_PROTOCOL {
    UINT64 Revision;
    EFI_BLOCK_IO_MEDIA* Media;
    VOID* Reset;
    VOID* ReadBlocks;
    VOID* WriteBlocks;
    VOID* FlushBlocks;
};
