// The machine around the board: its memory map, its disks and what stands on their device paths.
//
// Enough of a machine for a program that looks around: a fixed disk with one partition, a memory stick, and on request a
// network card, whose path carries a hardware address.
#pragma once

#include <vector>

#include "uefi/Devices.h"
#include "uefi/SystemTable.h"

struct HANDLES;

struct MACHINE {
    MACHINE() = default;
    MACHINE(const MACHINE&) = delete;
    MACHINE& operator=(const MACHINE&) = delete;

    // Installs the devices. They belong to the machine, which outlives the handles.
    VOID InstallDevices(HANDLES& Handles, bool WithNetwork);
    // The service of that name. A descriptor takes 48 bytes, as the specification lets it grow beyond its record.
    EFI_STATUS GetMemoryMap(UINTN* Size, EFI_MEMORY_DESCRIPTOR* Map, UINTN* Key, UINTN* DescriptorSize,
                            UINT32* DescriptorVersion) const;

private:
    EFI_BLOCK_IO_MEDIA mMedia[3] = {};
    EFI_BLOCK_IO_PROTOCOL mBlockIo[3] = {};
    std::vector<UINT8> mPaths[5];
};
