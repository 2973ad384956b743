#include "support/Pool.h"

EFI_HANDLE gImageHandle = nullptr;
EFI_SYSTEM_TABLE* gST = nullptr;
EFI_BOOT_SERVICES* gBS = nullptr;
EFI_RUNTIME_SERVICES* gRT = nullptr;

VOID* AllocatePool(UINTN Size)
{
    VOID* Buffer = nullptr;
    if (EfiError(gBS->AllocatePool(EfiBootServicesData, Size, &Buffer))) {
        return nullptr;
    }
    return Buffer;
}

VOID* AllocateZeroPool(UINTN Size)
{
    VOID* Buffer = AllocatePool(Size);
    if (Buffer != nullptr) {
        SetMem(Buffer, Size, 0);
    }
    return Buffer;
}

VOID FreePool(VOID* Buffer)
{
    if (Buffer != nullptr) {
        (void)gBS->FreePool(Buffer);
    }
}

VOID CopyMem(VOID* Destination, const VOID* Source, UINTN Length) { gBS->CopyMem(Destination, Source, Length); }

VOID SetMem(VOID* Buffer, UINTN Size, UINT8 Value) { gBS->SetMem(Buffer, Size, Value); }

VOID MoveBytes(VOID* Destination, const VOID* Source, UINTN Length)
{
    UINT8* To = static_cast<UINT8*>(Destination);
    const UINT8* From = static_cast<const UINT8*>(Source);
    if (Length == 0 || To == From) {
        return;
    }
    if (From > To) {
        for (UINTN Index = 0; Index < Length; Index++) {
            To[Index] = From[Index];
        }
    } else {
        for (UINTN Index = Length; Index > 0; Index--) {
            To[Index - 1] = From[Index - 1];
        }
    }
}

EFI_STATUS CreateEvent(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, VOID* Context, EFI_EVENT* Event)
{
    const EFI_STATUS Status = gBS->CreateEvent(Type, NotifyTpl, Notify, Context, Event);
    if (EfiError(Status)) {
        *Event = nullptr;
    }
    return Status;
}

EFI_STATUS CreateGroupEvent(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, const VOID* Context,
                            const EFI_GUID* Group, EFI_EVENT* Event)
{
    const EFI_STATUS Status = gBS->CreateEventEx(Type, NotifyTpl, Notify, Context, Group, Event);
    if (EfiError(Status)) {
        *Event = nullptr;
    }
    return Status;
}

EFI_STATUS CancelAndCloseEvent(EFI_EVENT Event)
{
    if (Event == nullptr) {
        return EFI_SUCCESS;
    }
    const EFI_STATUS Status = gBS->SetTimer(Event, TimerCancel, 0);
    (void)gBS->CloseEvent(Event);
    return Status;
}

VOID SignalIfAny(EFI_EVENT Event)
{
    if (Event != nullptr) {
        (void)gBS->SignalEvent(Event);
    }
}

VOID CloseIfAny(EFI_EVENT Event)
{
    if (Event != nullptr) {
        (void)gBS->CloseEvent(Event);
    }
}
