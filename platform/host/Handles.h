// The handle database: which protocols stand on which handle, and who has them open.
//
// Handles are numbers given in order and never used again, not addresses: two runs of one script see the same ones.
#pragma once

#include <map>
#include <vector>

#include "uefi/SystemTable.h"

struct PROTOCOL_USE {
    EFI_HANDLE Agent;
    EFI_HANDLE Controller;

    bool operator==(const PROTOCOL_USE&) const = default;
};

struct PROTOCOL_ON_HANDLE {
    EFI_GUID Guid;
    VOID* Interface;
    std::vector<PROTOCOL_USE> Uses;
};

struct HANDLES {
    HANDLES() = default;
    HANDLES(const HANDLES&) = delete;
    HANDLES& operator=(const HANDLES&) = delete;

    // A null *Handle asks for a new one. A protocol that the handle has already is refused.
    EFI_STATUS Install(EFI_HANDLE* Handle, const EFI_GUID* Guid, VOID* Interface);
    // Its uses end with the protocol. A handle without protocols is gone.
    EFI_STATUS Uninstall(EFI_HANDLE Handle, const EFI_GUID* Guid, VOID* Interface);

    // Nobody here claims a protocol for himself: all opening is alike, and may be done again and again.
    EFI_STATUS Open(EFI_HANDLE Handle, const EFI_GUID* Guid, VOID** Interface, EFI_HANDLE Agent, EFI_HANDLE Controller);
    // EFI_NOT_FOUND for what isn't open.
    EFI_STATUS Close(EFI_HANDLE Handle, const EFI_GUID* Guid, EFI_HANDLE Agent, EFI_HANDLE Controller);
    // The interface on the first handle that has the protocol.
    EFI_STATUS Locate(const EFI_GUID* Guid, VOID** Interface) const;
    // The handles that have it, in the order of their making; every handle for a null Guid.
    std::vector<EFI_HANDLE> Find(const EFI_GUID* Guid) const;
    // The uses of a protocol, for tests; null if it isn't there.
    const std::vector<PROTOCOL_USE>* Uses(EFI_HANDLE Handle, const EFI_GUID* Guid) const;

    // A protocol of this GUID is as if it weren't there, whoever installs it.
    VOID Hide(const EFI_GUID& Guid) { mHidden.push_back(Guid); }

private:
    const PROTOCOL_ON_HANDLE* FindOn(EFI_HANDLE Handle, const EFI_GUID& Guid) const;
    PROTOCOL_ON_HANDLE* FindOn(EFI_HANDLE Handle, const EFI_GUID& Guid);
    bool IsHidden(const EFI_GUID& Guid) const;

    std::map<EFI_HANDLE, std::vector<PROTOCOL_ON_HANDLE>> mHandles;
    std::vector<EFI_GUID> mHidden;
    UINTN mNextHandle = 0x7F000000;
};
