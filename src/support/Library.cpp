#include "support/Library.h"

#include "support/Print.h"

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

VOID CopyMem(VOID* Destination, const VOID* Source, UINTN Length)
{
    gBS->CopyMem(Destination, Source, Length);
}

VOID SetMem(VOID* Buffer, UINTN Size, UINT8 Value)
{
    gBS->SetMem(Buffer, Size, Value);
}

VOID MoveBytes(VOID* Destination, const VOID* Source, UINTN Length)
{
    UINT8* To = static_cast<UINT8*>(Destination);
    const UINT8* From = static_cast<const UINT8*>(Source);
    if (Length == 0 || To == From) {
        return;
    }
    if (From > To) {
        for (UINTN I = 0; I < Length; I++) {
            To[I] = From[I];
        }
    } else {
        for (UINTN I = Length; I > 0; I--) {
            To[I - 1] = From[I - 1];
        }
    }
}

UINTN StringLength(const CHAR16* String)
{
    UINTN Length = 0;
    while (String != nullptr && String[Length] != 0) {
        Length++;
    }
    return Length;
}

VOID AppendString(CHAR16* Destination, const CHAR16* Source)
{
    if (Source == nullptr) {
        return;
    }
    MoveBytes(Destination + StringLength(Destination), Source, (StringLength(Source) + 1) * sizeof(CHAR16));
}

CHAR16* CopyString(const CHAR16* String)
{
    if (String == nullptr) {
        String = u"";
    }
    const UINTN Size = (StringLength(String) + 1) * sizeof(CHAR16);
    CHAR16* Copy = static_cast<CHAR16*>(AllocatePool(Size));
    if (Copy != nullptr) {
        CopyMem(Copy, String, Size);
    }
    return Copy;
}

bool SameGuid(const EFI_GUID& A, const EFI_GUID& B)
{
    if (A.Data1 != B.Data1 || A.Data2 != B.Data2 || A.Data3 != B.Data3) {
        return false;
    }
    for (UINTN I = 0; I < sizeof(A.Data4); I++) {
        if (A.Data4[I] != B.Data4[I]) {
            return false;
        }
    }
    return true;
}

VOID InitializeList(LIST_ENTRY* Head)
{
    Head->ForwardLink = Head;
    Head->BackLink = Head;
}

bool ListIsEmpty(const LIST_ENTRY* Head)
{
    return Head->ForwardLink == Head;
}

VOID InsertTail(LIST_ENTRY* Head, LIST_ENTRY* Entry)
{
    Entry->ForwardLink = Head;
    Entry->BackLink = Head->BackLink;
    Head->BackLink->ForwardLink = Entry;
    Head->BackLink = Entry;
}

VOID RemoveEntry(LIST_ENTRY* Entry)
{
    Entry->BackLink->ForwardLink = Entry->ForwardLink;
    Entry->ForwardLink->BackLink = Entry->BackLink;
}

VOID AssertPrint(const CHAR8* FileName, UINTN LineNumber, const CHAR8* Description)
{
    CHAR16 Line[256]; // 512 bytes
    (void)FormatAsciiText(Line, sizeof(Line), "ASSERT %a(%d): %a\n", FileName, static_cast<INT32>(LineNumber),
                          Description);
    if (gST != nullptr && gST->StdErr != nullptr) {
        (void)gST->StdErr->OutputString(gST->StdErr, Line);
    }
}

const CHAR8* FileNameOfPath(const CHAR8* Path)
{
    const CHAR8* Name = nullptr;
    // A backslash in the first place doesn't count: the path then has no directory in front.
    for (UINTN I = 1; Path != nullptr && Path[0] != 0 && Path[I] != 0; I++) {
        if (Path[I] == '\\') {
            Name = Path + I + 1;
        }
    }
    return Name;
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
