#include "platform/host/FirmwareTables.h"

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/host/Boot.h"

namespace {

constexpr UINTN gPageSize = 4096;
// Fine enough that nobody waits for the next tick of the calendar.
constexpr UINT32 gCalendarTicksPerSecond = 1000000;
constexpr UINT32 gCalendarAccuracy = 50000000;

// Stands for every service of whatever shape that isn't offered.
constexpr auto gUnsupported = [](auto...) -> EFI_STATUS { return EFI_UNSUPPORTED; };

// --- Priorities and memory ---

EFI_TPL RaiseTPL(EFI_TPL NewTpl) { return gBoot->Events.RaiseTpl(NewTpl); }
VOID RestoreTPL(EFI_TPL OldTpl) { gBoot->Events.RestoreTpl(OldTpl); }

EFI_STATUS AllocatePages(EFI_ALLOCATE_TYPE Type, EFI_MEMORY_TYPE, UINTN Pages, UINT64* Memory)
{
    if (Memory == nullptr || Pages == 0) {
        return EFI_INVALID_PARAMETER;
    }
    if (Type != AllocateAnyPages) {
        return EFI_NOT_FOUND; // a program's addresses aren't the machine's
    }
    VOID* Block = std::aligned_alloc(gPageSize, Pages * gPageSize);
    if (Block == nullptr) {
        return EFI_OUT_OF_RESOURCES;
    }
    std::memset(Block, gGivenPattern, Pages * gPageSize);
    *Memory = reinterpret_cast<UINT64>(Block);
    return EFI_SUCCESS;
}

EFI_STATUS FreePages(UINT64 Memory, UINTN)
{
    std::free(reinterpret_cast<VOID*>(Memory));
    return EFI_SUCCESS;
}

EFI_STATUS GetMemoryMap(UINTN* Size, EFI_MEMORY_DESCRIPTOR* Map, UINTN* Key, UINTN* DescriptorSize,
                        UINT32* DescriptorVersion)
{
    return gBoot->Machine.GetMemoryMap(Size, Map, Key, DescriptorSize, DescriptorVersion);
}

EFI_STATUS AllocatePool(EFI_MEMORY_TYPE, UINTN Size, VOID** Buffer)
{
    return gBoot->Pool.Allocate(Size, __builtin_return_address(0), Buffer);
}

EFI_STATUS FreePool(VOID* Buffer) { return gBoot->Pool.Free(Buffer, __builtin_return_address(0)); }

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

// --- Events ---

EFI_STATUS CreateEvent(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, VOID* Context, EFI_EVENT* Event)
{
    return gBoot->Events.Create(Type, NotifyTpl, Notify, Context, nullptr, Event);
}

EFI_STATUS CreateEventEx(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, const VOID* Context,
                         const EFI_GUID* Group, EFI_EVENT* Event)
{
    return gBoot->Events.Create(Type, NotifyTpl, Notify, const_cast<VOID*>(Context), Group, Event);
}

EFI_STATUS SetTimer(EFI_EVENT Event, EFI_TIMER_DELAY Type, UINT64 TriggerTime)
{
    return gBoot->Events.SetTimer(Event, Type, TriggerTime);
}

EFI_STATUS WaitForEvent(UINTN Count, EFI_EVENT* Events, UINTN* Index)
{
    return gBoot->Events.Wait(Count, Events, Index);
}

EFI_STATUS SignalEvent(EFI_EVENT Event) { return gBoot->Events.Signal(Event); }
EFI_STATUS CloseEvent(EFI_EVENT Event) { return gBoot->Events.Close(Event); }
EFI_STATUS CheckEvent(EFI_EVENT Event) { return gBoot->Events.Check(Event); }

// --- Protocols ---

EFI_STATUS InstallProtocolInterface(EFI_HANDLE* Handle, const EFI_GUID* Guid, EFI_INTERFACE_TYPE Type,
                                    VOID* Interface)
{
    return Type == EFI_NATIVE_INTERFACE ? gBoot->Handles.Install(Handle, Guid, Interface) : EFI_INVALID_PARAMETER;
}

EFI_STATUS ReinstallProtocolInterface(EFI_HANDLE Handle, const EFI_GUID* Guid, VOID* OldInterface, VOID* NewInterface)
{
    return gBoot->Handles.Reinstall(Handle, Guid, OldInterface, NewInterface);
}

EFI_STATUS UninstallProtocolInterface(EFI_HANDLE Handle, const EFI_GUID* Guid, VOID* Interface)
{
    return gBoot->Handles.Uninstall(Handle, Guid, Interface);
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
    for (size_t At = 0; At < Pairs.size(); At++) {
        const EFI_STATUS Status = gBoot->Handles.Install(Handle, Pairs[At].Guid, Pairs[At].Interface);
        if (EfiError(Status)) {
            // All or none.
            while (At-- > 0) {
                (void)gBoot->Handles.Uninstall(*Handle, Pairs[At].Guid, Pairs[At].Interface);
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
    for (size_t At = 0; At < Pairs.size(); At++) {
        if (EfiError(gBoot->Handles.Uninstall(Handle, Pairs[At].Guid, Pairs[At].Interface))) {
            while (At-- > 0) {
                EFI_HANDLE Same = Handle;
                (void)gBoot->Handles.Install(&Same, Pairs[At].Guid, Pairs[At].Interface);
            }
            return EFI_INVALID_PARAMETER;
        }
    }
    return EFI_SUCCESS;
}

EFI_STATUS HandleProtocol(EFI_HANDLE Handle, const EFI_GUID* Guid, VOID** Interface)
{
    return gBoot->Handles.Open(Handle, Guid, Interface, nullptr, nullptr, EFI_OPEN_PROTOCOL_BY_HANDLE_PROTOCOL);
}

EFI_STATUS LocateProtocol(const EFI_GUID* Guid, VOID* Registration, VOID** Interface)
{
    return Registration == nullptr ? gBoot->Handles.Locate(Guid, Interface) : EFI_NOT_FOUND;
}

EFI_STATUS FindHandles(EFI_LOCATE_SEARCH_TYPE Type, const EFI_GUID* Guid, std::vector<EFI_HANDLE>* Found)
{
    if (Type > ByProtocol || (Type == ByProtocol && Guid == nullptr)) {
        return EFI_INVALID_PARAMETER;
    }
    if (Type == ByRegisterNotify) {
        return EFI_NOT_FOUND; // nobody can have registered
    }
    *Found = gBoot->Handles.Find(Type == AllHandles ? nullptr : Guid);
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

// A pool copy of a vector's records, for the services that give arrays.
template <typename T> EFI_STATUS GiveArray(const std::vector<T>& Records, UINTN* Count, T** Array)
{
    VOID* Block;
    const UINTN Size = Records.size() * sizeof(T); // NOLINT(bugprone-sizeof-expression): an array of pointers is meant
    const EFI_STATUS Status = gBoot->Pool.Allocate(Size, __builtin_return_address(0), &Block);
    if (EfiError(Status)) {
        return Status;
    }
    *Array = static_cast<T*>(Block);
    std::copy(Records.begin(), Records.end(), *Array);
    *Count = Records.size();
    return EFI_SUCCESS;
}

EFI_STATUS LocateHandleBuffer(EFI_LOCATE_SEARCH_TYPE Type, const EFI_GUID* Guid, VOID*, UINTN* Count,
                              EFI_HANDLE** Buffer)
{
    if (Count == nullptr || Buffer == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    std::vector<EFI_HANDLE> Found;
    const EFI_STATUS Status = FindHandles(Type, Guid, &Found);
    return EfiError(Status) ? Status : GiveArray(Found, Count, Buffer);
}

EFI_STATUS OpenProtocol(EFI_HANDLE Handle, const EFI_GUID* Guid, VOID** Interface, EFI_HANDLE Agent,
                        EFI_HANDLE Controller, UINT32 Attributes)
{
    return gBoot->Handles.Open(Handle, Guid, Interface, Agent, Controller, Attributes);
}

EFI_STATUS CloseProtocol(EFI_HANDLE Handle, const EFI_GUID* Guid, EFI_HANDLE Agent, EFI_HANDLE Controller)
{
    return gBoot->Handles.Close(Handle, Guid, Agent, Controller);
}

EFI_STATUS OpenProtocolInformation(EFI_HANDLE Handle, const EFI_GUID* Guid,
                                   EFI_OPEN_PROTOCOL_INFORMATION_ENTRY** Entries, UINTN* Count)
{
    const std::vector<PROTOCOL_USE>* Uses = gBoot->Handles.Uses(Handle, Guid);
    if (Entries == nullptr || Count == nullptr || Uses == nullptr) {
        return Uses == nullptr ? EFI_NOT_FOUND : EFI_INVALID_PARAMETER;
    }
    std::vector<EFI_OPEN_PROTOCOL_INFORMATION_ENTRY> Records;
    for (const PROTOCOL_USE& Use : *Uses) {
        Records.push_back({Use.Agent, Use.Controller, Use.Attributes, Use.Count});
    }
    return GiveArray(Records, Count, Entries);
}

EFI_STATUS ProtocolsPerHandle(EFI_HANDLE Handle, EFI_GUID*** Guids, UINTN* Count)
{
    std::vector<const EFI_GUID*> Found;
    if (Guids == nullptr || Count == nullptr || EfiError(gBoot->Handles.ListProtocols(Handle, &Found))) {
        return EFI_INVALID_PARAMETER;
    }
    std::vector<EFI_GUID*> Pointers;
    Pointers.reserve(Found.size());
    for (const EFI_GUID* Guid : Found) {
        Pointers.push_back(const_cast<EFI_GUID*>(Guid));
    }
    return GiveArray(Pointers, Count, Guids);
}

// --- The rest of the boot services ---

EFI_STATUS GetNextMonotonicCount(UINT64* Count)
{
    if (Count == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    *Count = ++gBoot->MonotonicCount;
    return EFI_SUCCESS;
}

EFI_STATUS Stall(UINTN Microseconds)
{
    gBoot->Clock.Stall(Microseconds);
    return EFI_SUCCESS;
}

EFI_STATUS SetWatchdogTimer(UINTN, UINT64, UINTN, CHAR16*) { return EFI_SUCCESS; }

EFI_STATUS CalculateCrc32(VOID* Data, UINTN Size, UINT32* Crc)
{
    if (Data == nullptr || Size == 0 || Crc == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    UINT32 Rest = 0xFFFFFFFF;
    for (UINTN At = 0; At < Size; At++) {
        Rest ^= static_cast<const UINT8*>(Data)[At];
        for (int Bit = 0; Bit < 8; Bit++) {
            Rest = (Rest >> 1) ^ ((Rest & 1) != 0 ? 0xEDB88320 : 0);
        }
    }
    *Crc = ~Rest;
    return EFI_SUCCESS;
}

// --- Runtime services ---

EFI_STATUS GetTime(EFI_TIME* Time, EFI_TIME_CAPABILITIES* Capabilities)
{
    if (Time == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    gBoot->Clock.ReadCalendar(Time);
    if (Capabilities != nullptr) {
        *Capabilities = {.Resolution = gCalendarTicksPerSecond, .Accuracy = gCalendarAccuracy, .SetsToZero = 0};
    }
    return EFI_SUCCESS;
}

EFI_STATUS GetVariable(const CHAR16* Name, const EFI_GUID* Vendor, UINT32* Attributes, UINTN* Size, VOID* Data)
{
    return gBoot->Variables.Get(Name, Vendor, Attributes, Size, Data);
}

EFI_STATUS GetNextVariableName(UINTN* Size, CHAR16* Name, EFI_GUID* Vendor)
{
    return gBoot->Variables.GetNext(Size, Name, Vendor);
}

EFI_STATUS SetVariable(const CHAR16* Name, const EFI_GUID* Vendor, UINT32 Attributes, UINTN Size, const VOID* Data)
{
    return gBoot->Variables.Set(Name, Vendor, Attributes, Size, Data);
}

VOID ResetSystem(EFI_RESET_TYPE, EFI_STATUS, UINTN, VOID*)
{
    gBoot->Complaints.Add("ResetSystem was called; there is nobody to switch the machine on again");
}

// --- Consoles ---

EFI_STATUS ResetInput(EFI_SIMPLE_TEXT_INPUT_PROTOCOL*, BOOLEAN)
{
    gBoot->Consoles.Keys.clear();
    return EFI_SUCCESS;
}

EFI_STATUS ReadKeyStroke(EFI_SIMPLE_TEXT_INPUT_PROTOCOL*, EFI_INPUT_KEY* Key) { return gBoot->Consoles.ReadKey(Key); }

EFI_STATUS CheckKeys(EFI_EVENT Event, VOID*)
{
    return gBoot->Consoles.Keys.empty() ? EFI_SUCCESS : gBoot->Events.Signal(Event);
}

EFI_STATUS WriteOutput(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL*, const CHAR16* Text)
{
    return gBoot->Consoles.Write(false, Text);
}

EFI_STATUS WriteError(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL*, const CHAR16* Text)
{
    return gBoot->Consoles.Write(true, Text);
}

EFI_STATUS QueryTextMode(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL*, UINTN Mode, UINTN* Columns, UINTN* Rows)
{
    if (Mode != 0 || Columns == nullptr || Rows == nullptr) {
        return EFI_UNSUPPORTED;
    }
    *Columns = 80;
    *Rows = 25;
    return EFI_SUCCESS;
}

// The consoles are logs: there is no screen of text behind them to be cleared, coloured or walked on.
constexpr auto gNothingToDo = [](auto...) -> EFI_STATUS { return EFI_SUCCESS; };

} // namespace

VOID FillBootServices(EFI_BOOT_SERVICES* Services)
{
    *Services = {};
    Services->RaiseTPL = RaiseTPL;
    Services->RestoreTPL = RestoreTPL;
    Services->AllocatePages = AllocatePages;
    Services->FreePages = FreePages;
    Services->GetMemoryMap = GetMemoryMap;
    Services->AllocatePool = AllocatePool;
    Services->FreePool = FreePool;
    Services->CreateEvent = CreateEvent;
    Services->SetTimer = SetTimer;
    Services->WaitForEvent = WaitForEvent;
    Services->SignalEvent = SignalEvent;
    Services->CloseEvent = CloseEvent;
    Services->CheckEvent = CheckEvent;
    Services->InstallProtocolInterface = InstallProtocolInterface;
    Services->ReinstallProtocolInterface = ReinstallProtocolInterface;
    Services->UninstallProtocolInterface = UninstallProtocolInterface;
    Services->HandleProtocol = HandleProtocol;
    Services->RegisterProtocolNotify = gUnsupported;
    Services->LocateHandle = LocateHandle;
    Services->LocateDevicePath = gUnsupported;
    Services->InstallConfigurationTable = gUnsupported;
    Services->LoadImage = gUnsupported;
    Services->StartImage = gUnsupported;
    Services->Exit = gUnsupported;
    Services->UnloadImage = gUnsupported;
    Services->ExitBootServices = gUnsupported;
    Services->GetNextMonotonicCount = GetNextMonotonicCount;
    Services->Stall = Stall;
    Services->SetWatchdogTimer = SetWatchdogTimer;
    Services->ConnectController = gUnsupported;
    Services->DisconnectController = gUnsupported;
    Services->OpenProtocol = OpenProtocol;
    Services->CloseProtocol = CloseProtocol;
    Services->OpenProtocolInformation = OpenProtocolInformation;
    Services->ProtocolsPerHandle = ProtocolsPerHandle;
    Services->LocateHandleBuffer = LocateHandleBuffer;
    Services->LocateProtocol = LocateProtocol;
    Services->InstallMultipleProtocolInterfaces = InstallMultipleProtocolInterfaces;
    Services->UninstallMultipleProtocolInterfaces = UninstallMultipleProtocolInterfaces;
    Services->CalculateCrc32 = CalculateCrc32;
    Services->CopyMem = CopyMem;
    Services->SetMem = SetMem;
    Services->CreateEventEx = CreateEventEx;
}

VOID FillRuntimeServices(EFI_RUNTIME_SERVICES* Services)
{
    *Services = {};
    Services->GetTime = GetTime;
    Services->GetVariable = GetVariable;
    Services->GetNextVariableName = GetNextVariableName;
    Services->SetVariable = SetVariable;
    Services->ResetSystem = ResetSystem;
}

VOID FillTextInput(EFI_SIMPLE_TEXT_INPUT_PROTOCOL* Input)
{
    Input->Reset = ResetInput;
    Input->ReadKeyStroke = ReadKeyStroke;
    (void)gBoot->Events.Create(EVT_NOTIFY_WAIT, TPL_NOTIFY, CheckKeys, nullptr, nullptr, &Input->WaitForKey);
}

VOID FillTextOutput(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* Output, bool IsError)
{
    Output->Reset = gNothingToDo;
    Output->OutputString = IsError ? WriteError : WriteOutput;
    Output->TestString = gNothingToDo;
    Output->QueryMode = QueryTextMode;
    Output->SetMode = gNothingToDo;
    Output->SetAttribute = gNothingToDo;
    Output->ClearScreen = gNothingToDo;
    Output->SetCursorPosition = gNothingToDo;
    Output->EnableCursor = gNothingToDo;
    Output->Mode = IsError ? &gBoot->Consoles.ErrorMode : &gBoot->Consoles.OutputMode;
}
