#include "platform/host/FirmwareTables.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <iterator>
#include <vector>

#include "platform/host/CurrentBoot.h"

namespace {

// Fine enough that nobody waits for the next tick of the calendar.
constexpr UINT32 gCalendarTicksPerSecond = 1000000;
constexpr UINT32 gCalendarAccuracy = 50000000;

// Stands in every slot that nobody calls, whatever its arguments.
EFI_STATUS Refuse() { return EFI_UNSUPPORTED; }

template <typename TABLE> VOID RefuseEverything(TABLE* Table, UINTN FirstSlot)
{
    EFI_STATUS (*Slots[sizeof(TABLE) / sizeof(VOID*)])();
    std::fill(std::begin(Slots), std::end(Slots), Refuse);
    std::memcpy(reinterpret_cast<UINT8*>(Table) + FirstSlot, Slots, sizeof(TABLE) - FirstSlot);
}

// --- Memory ---

EFI_STATUS AllocatePool(EFI_MEMORY_TYPE, UINTN Size, VOID** Buffer)
{
    return gCurrentBoot->Pool.Allocate(Size, __builtin_return_address(0), Buffer);
}

EFI_STATUS FreePool(VOID* Buffer) { return gCurrentBoot->Pool.Free(Buffer, __builtin_return_address(0)); }

// Sanitizers move byte by byte, and a copy between buffers that don't overlap, as nearly all are, they don't.
VOID CopyMem(VOID* Destination, const VOID* Source, UINTN Length)
{
    const UINTN To = reinterpret_cast<UINTN>(Destination);
    const UINTN From = reinterpret_cast<UINTN>(Source);
    if (Length == 0) {
        return;
    }
    if (To - From >= Length && From - To >= Length) {
        std::memcpy(Destination, Source, Length);
    } else {
        std::memmove(Destination, Source, Length);
    }
}

VOID SetMem(VOID* Buffer, UINTN Size, UINT8 Value)
{
    if (Size != 0) {
        std::memset(Buffer, Value, Size);
    }
}

// --- Protocols ---

EFI_STATUS InstallProtocolInterface(EFI_HANDLE* Handle, const EFI_GUID* Guid, EFI_INTERFACE_TYPE Type, VOID* Interface)
{
    return Type == EFI_NATIVE_INTERFACE ? gCurrentBoot->Handles.Install(Handle, Guid, Interface)
                                        : EFI_INVALID_PARAMETER;
}

struct PROTOCOL_PAIR {
    const EFI_GUID* Guid;
    VOID* Interface;
};

std::vector<PROTOCOL_PAIR> ReadPairs(va_list Arguments)
{
    std::vector<PROTOCOL_PAIR> Pairs;
    while (const EFI_GUID* Guid = va_arg(Arguments, const EFI_GUID*)) {
        Pairs.push_back({Guid, va_arg(Arguments, VOID*)});
    }
    return Pairs;
}

EFI_STATUS InstallMultipleProtocolInterfaces(EFI_HANDLE* Handle, ...)
{
    if (Handle == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    va_list Arguments;
    va_start(Arguments, Handle);
    const std::vector<PROTOCOL_PAIR> Pairs = ReadPairs(Arguments);
    va_end(Arguments);
    const EFI_HANDLE Before = *Handle;
    for (size_t Index = 0; Index < Pairs.size(); Index++) {
        const EFI_STATUS Status = gCurrentBoot->Handles.Install(Handle, Pairs[Index].Guid, Pairs[Index].Interface);
        if (EfiError(Status)) {
            // All or none.
            while (Index-- > 0) {
                (void)gCurrentBoot->Handles.Uninstall(*Handle, Pairs[Index].Guid, Pairs[Index].Interface);
            }
            *Handle = Before;
            return Status;
        }
    }
    return EFI_SUCCESS;
}

EFI_STATUS UninstallMultipleProtocolInterfaces(EFI_HANDLE Handle, ...)
{
    va_list Arguments;
    va_start(Arguments, Handle);
    const std::vector<PROTOCOL_PAIR> Pairs = ReadPairs(Arguments);
    va_end(Arguments);
    for (size_t Index = 0; Index < Pairs.size(); Index++) {
        if (EfiError(gCurrentBoot->Handles.Uninstall(Handle, Pairs[Index].Guid, Pairs[Index].Interface))) {
            while (Index-- > 0) {
                EFI_HANDLE Same = Handle;
                (void)gCurrentBoot->Handles.Install(&Same, Pairs[Index].Guid, Pairs[Index].Interface);
            }
            return EFI_INVALID_PARAMETER;
        }
    }
    return EFI_SUCCESS;
}

EFI_STATUS FindHandles(EFI_LOCATE_SEARCH_TYPE Type, const EFI_GUID* Guid, std::vector<EFI_HANDLE>* Found)
{
    if (Type > ByProtocol || (Type == ByProtocol && Guid == nullptr)) {
        return EFI_INVALID_PARAMETER;
    }
    if (Type == ByRegisterNotify) {
        return EFI_NOT_FOUND; // nobody can have registered
    }
    *Found = gCurrentBoot->Handles.Find(Type == AllHandles ? nullptr : Guid);
    return Found->empty() ? EFI_NOT_FOUND : EFI_SUCCESS;
}

EFI_STATUS LocateHandle(EFI_LOCATE_SEARCH_TYPE Type, const EFI_GUID* Guid, VOID*, UINTN* Size, EFI_HANDLE* Buffer)
{
    std::vector<EFI_HANDLE> Found;
    const EFI_STATUS Status = Size == nullptr ? EFI_INVALID_PARAMETER : FindHandles(Type, Guid, &Found);
    if (EfiError(Status)) {
        return Status;
    }
    const UINTN Room = *Size;
    *Size = Found.size() * sizeof(EFI_HANDLE);
    if (Room < *Size) {
        return EFI_BUFFER_TOO_SMALL;
    }
    if (Buffer == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    std::copy(Found.begin(), Found.end(), Buffer);
    return EFI_SUCCESS;
}

EFI_STATUS LocateHandleBuffer(EFI_LOCATE_SEARCH_TYPE Type, const EFI_GUID* Guid, VOID*, UINTN* Count,
                              EFI_HANDLE** Buffer)
{
    std::vector<EFI_HANDLE> Found;
    EFI_STATUS Status = Count == nullptr || Buffer == nullptr ? EFI_INVALID_PARAMETER : FindHandles(Type, Guid, &Found);
    VOID* Block = nullptr;
    if (!EfiError(Status)) {
        Status = gCurrentBoot->Pool.Allocate(Found.size() * sizeof(EFI_HANDLE), __builtin_return_address(0), &Block);
    }
    if (!EfiError(Status)) {
        *Buffer = static_cast<EFI_HANDLE*>(Block);
        *Count = Found.size();
        std::copy(Found.begin(), Found.end(), *Buffer);
    }
    return Status;
}

// --- Time ---

EFI_STATUS GetNextMonotonicCount(UINT64* Count)
{
    if (Count == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    *Count = ++gCurrentBoot->MonotonicCount;
    return EFI_SUCCESS;
}

EFI_STATUS Stall(UINTN Microseconds)
{
    gCurrentBoot->Clock.Stall(Microseconds);
    return EFI_SUCCESS;
}

EFI_STATUS GetTime(EFI_TIME* Time, EFI_TIME_CAPABILITIES* Capabilities)
{
    if (Time == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    gCurrentBoot->Clock.ReadCalendar(Time);
    if (Capabilities != nullptr) {
        *Capabilities = {.Resolution = gCalendarTicksPerSecond, .Accuracy = gCalendarAccuracy, .SetsToZero = 0};
    }
    return EFI_SUCCESS;
}

} // namespace

VOID FillBootServices(EFI_BOOT_SERVICES* Services)
{
    Services->Hdr = {};
    RefuseEverything(Services, sizeof(Services->Hdr));
    Services->AllocatePool = AllocatePool;
    Services->FreePool = FreePool;
    Services->CopyMem = CopyMem;
    Services->SetMem = SetMem;
    Services->GetMemoryMap = [](auto... Rest) { return gCurrentBoot->Machine.GetMemoryMap(Rest...); };
    Services->RaiseTPL = [](EFI_TPL NewTpl) { return gCurrentBoot->Events.RaiseTpl(NewTpl); };
    Services->RestoreTPL = [](EFI_TPL OldTpl) { gCurrentBoot->Events.RestoreTpl(OldTpl); };
    Services->CreateEvent = [](UINT32 Type, EFI_TPL Tpl, EFI_EVENT_NOTIFY Notify, VOID* Context, EFI_EVENT* Event) {
        return gCurrentBoot->Events.Create(Type, Tpl, Notify, Context, nullptr, Event);
    };
    Services->CreateEventEx = [](UINT32 Type, EFI_TPL Tpl, EFI_EVENT_NOTIFY Notify, const VOID* Context,
                                 const EFI_GUID* Group, EFI_EVENT* Event) {
        return gCurrentBoot->Events.Create(Type, Tpl, Notify, const_cast<VOID*>(Context), Group, Event);
    };
    Services->SetTimer = [](auto... Rest) { return gCurrentBoot->Events.SetTimer(Rest...); };
    Services->WaitForEvent = [](auto... Rest) { return gCurrentBoot->Events.Wait(Rest...); };
    Services->SignalEvent = [](EFI_EVENT Event) { return gCurrentBoot->Events.Signal(Event); };
    Services->CloseEvent = [](EFI_EVENT Event) { return gCurrentBoot->Events.Close(Event); };
    Services->InstallProtocolInterface = InstallProtocolInterface;
    Services->UninstallProtocolInterface = [](auto... Rest) { return gCurrentBoot->Handles.Uninstall(Rest...); };
    Services->InstallMultipleProtocolInterfaces = InstallMultipleProtocolInterfaces;
    Services->UninstallMultipleProtocolInterfaces = UninstallMultipleProtocolInterfaces;
    Services->HandleProtocol = [](EFI_HANDLE Handle, const EFI_GUID* Guid, VOID** Interface) {
        return gCurrentBoot->Handles.Open(Handle, Guid, Interface, nullptr, nullptr);
    };
    Services->OpenProtocol = [](EFI_HANDLE Handle, const EFI_GUID* Guid, VOID** Interface, EFI_HANDLE Agent,
                                EFI_HANDLE Controller, UINT32) {
        return gCurrentBoot->Handles.Open(Handle, Guid, Interface, Agent, Controller);
    };
    Services->CloseProtocol = [](auto... Rest) { return gCurrentBoot->Handles.Close(Rest...); };
    Services->LocateHandle = LocateHandle;
    Services->LocateHandleBuffer = LocateHandleBuffer;
    Services->LocateProtocol = [](const EFI_GUID* Guid, VOID*, VOID** Interface) {
        return gCurrentBoot->Handles.Locate(Guid, Interface);
    };
    Services->GetNextMonotonicCount = GetNextMonotonicCount;
    Services->Stall = Stall;
}

VOID FillRuntimeServices(EFI_RUNTIME_SERVICES* Services)
{
    Services->Hdr = {};
    RefuseEverything(Services, sizeof(Services->Hdr));
    Services->GetTime = GetTime;
    Services->GetVariable = [](auto... Rest) { return gCurrentBoot->Variables.Get(Rest...); };
    Services->SetVariable = [](auto... Rest) { return gCurrentBoot->Variables.Set(Rest...); };
}

VOID FillTextInput(EFI_SIMPLE_TEXT_INPUT_PROTOCOL* Input)
{
    RefuseEverything(Input, 0);
    Input->ReadKeyStroke = [](EFI_SIMPLE_TEXT_INPUT_PROTOCOL*, EFI_INPUT_KEY* Key) {
        return gCurrentBoot->Consoles.ReadKey(Key);
    };
    Input->WaitForKey = nullptr; // keys are asked for in every turn, and nobody waits for one
}

VOID FillTextInputEx(EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL* Input)
{
    RefuseEverything(Input, 0);
    Input->WaitForKeyEx = nullptr;
    Input->RegisterKeyNotify = [](auto*, auto... Rest) { return gCurrentBoot->Consoles.Register(Rest...); };
    Input->UnregisterKeyNotify = [](auto*, VOID* Handle) { return gCurrentBoot->Consoles.Unregister(Handle); };
}

// The consoles are logs: there is no screen of text behind them to be cleared.
VOID FillTextOutput(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* Output, bool IsError)
{
    using OUTPUT = EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL;
    RefuseEverything(Output, 0);
    Output->OutputString = IsError
                               ? +[](OUTPUT*, const CHAR16* Text) { return gCurrentBoot->Consoles.Write(true, Text); }
                               : +[](OUTPUT*, const CHAR16* Text) { return gCurrentBoot->Consoles.Write(false, Text); };
    Output->ClearScreen = [](OUTPUT*) -> EFI_STATUS { return EFI_SUCCESS; };
    Output->Mode = &gCurrentBoot->Consoles.Mode;
}
