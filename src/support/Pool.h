// The firmware's tables as every unit reaches them, and the small operations on pool, memory and events that stand on them
// alone.
#pragma once

#include "uefi/SystemTable.h"

extern EFI_HANDLE gImageHandle;
extern EFI_SYSTEM_TABLE* gST;
extern EFI_BOOT_SERVICES* gBS;
extern EFI_RUNTIME_SERVICES* gRT;

// Size bytes of EfiBootServicesData pool, or null when there is none. Freed with FreePool.
VOID* AllocatePool(UINTN Size);
// The same, filled with zero.
VOID* AllocateZeroPool(UINTN Size);
// Gives a block back. A null pointer is passed over.
VOID FreePool(VOID* Buffer);
// Frees what a pointer field owns and empties the field.
template <typename T> VOID ReleasePool(T*& Buffer)
{
    FreePool(Buffer);
    Buffer = nullptr;
}
// One record, or Count records, of type T from pool; null when there is none.
template <typename T> T* AllocateRecord() { return static_cast<T*>(AllocatePool(sizeof(T))); }
template <typename T> T* AllocateZeroRecord() { return static_cast<T*>(AllocateZeroPool(sizeof(T))); }
template <typename T> T* AllocateArray(UINTN Count) { return static_cast<T*>(AllocatePool(Count * sizeof(T))); }
template <typename T> T* AllocateZeroArray(UINTN Count) { return static_cast<T*>(AllocateZeroPool(Count * sizeof(T))); }

// Owner of a temporary pool block: gives it back when the scope ends, so that no early return leaks.
template <typename T> struct TEMPORARY {
    T* Data = nullptr;
    TEMPORARY() = default;
    explicit TEMPORARY(T* Block) : Data(Block) {}
    TEMPORARY(const TEMPORARY&) = delete;
    TEMPORARY& operator=(const TEMPORARY&) = delete;
    ~TEMPORARY() { FreePool(Data); }
    explicit operator bool() const { return Data != nullptr; }
};

// Copies Length bytes through the firmware. The ranges may overlap.
VOID CopyMem(VOID* Destination, const VOID* Source, UINTN Length);
// Fills Size bytes with Value through the firmware.
VOID SetMem(VOID* Buffer, UINTN Size, UINT8 Value);
// Copies Length bytes, safe for overlapping ranges: upwards when the source lies above the destination, downwards when
// below; nothing for a zero length or equal addresses.
VOID MoveBytes(VOID* Destination, const VOID* Source, UINTN Length);

// The firmware's services of these names, the second for an event of a group, but that *Event is null after a failure,
// whatever the firmware left there.
EFI_STATUS CreateEvent(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, VOID* Context, EFI_EVENT* Event);
EFI_STATUS CreateGroupEvent(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, const VOID* Context,
                            const EFI_GUID* Group, EFI_EVENT* Event);

// SetTimer with TimerCancel, then CloseEvent; nothing for a null event. Gives the status of the cancel.
EFI_STATUS CancelAndCloseEvent(EFI_EVENT Event);
// SignalEvent and CloseEvent, skipped for a null event.
VOID SignalIfAny(EFI_EVENT Event);
VOID CloseIfAny(EFI_EVENT Event);
