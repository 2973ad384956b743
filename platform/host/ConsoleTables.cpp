#include "platform/host/ConsoleTables.h"

#include "platform/host/Cross.h"

namespace {

const EFI_BOOT_SERVICES& Firmware() { return *gBoot->FirmwareTable.BootServices; }
const EFI_RUNTIME_SERVICES& FirmwareRuntime() { return *gBoot->FirmwareTable.RuntimeServices; }

// --- Memory ---

EFI_STATUS GetMemoryMap(UINTN* Size, EFI_MEMORY_DESCRIPTOR* Map, UINTN* Key, UINTN* DescriptorSize,
                        UINT32* DescriptorVersion)
{
    const EFI_STATUS Status = Cross(CALL_GET_MEMORY_MAP, [&] {
        return Firmware().GetMemoryMap(Size, Map, Key, DescriptorSize, DescriptorVersion);
    }, OUTPUT_BYTES{Map, Size == nullptr ? 0 : *Size}, Size, Key, DescriptorSize, DescriptorVersion);
    TraceCall(CALL_GET_MEMORY_MAP).Status(Status);
    return Status;
}

EFI_STATUS AllocatePool(EFI_MEMORY_TYPE, UINTN Size, VOID** Buffer)
{
    VOID* const Caller = __builtin_return_address(0);
    const EFI_STATUS Status =
        Cross(CALL_ALLOCATE_POOL, [&] { return gBoot->Pool.Allocate(Size, Caller, Buffer); }, Buffer);
    if (gBoot->Trace.Pool) {
        const POOL_BLOCK* Block = EfiError(Status) ? nullptr : gBoot->Pool.Find(*Buffer);
        TraceCall(CALL_ALLOCATE_POOL)
            .Status(Status)
            .Number("bytes", Size)
            .Number("block", Block == nullptr ? 0 : Block->Number);
    }
    return Status;
}

EFI_STATUS FreePool(VOID* Buffer)
{
    VOID* const Caller = __builtin_return_address(0);
    const POOL_BLOCK* Found = gBoot->Pool.Find(Buffer);
    const POOL_BLOCK Block = Found == nullptr ? POOL_BLOCK{} : *Found;
    const EFI_STATUS Status = Cross(CALL_FREE_POOL, [&] { return gBoot->Pool.Free(Buffer, Caller); });
    if (gBoot->Trace.Pool) {
        TraceCall(CALL_FREE_POOL).Status(Status).Number("bytes", Block.Size).Number("block", Block.Number);
    }
    return Status;
}

// --- Events ---

EFI_STATUS CreateEvent(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, VOID* Context, EFI_EVENT* Event)
{
    const EFI_STATUS Status = Cross(CALL_CREATE_EVENT, [&] {
        return Firmware().CreateEvent(Type, NotifyTpl, Notify, Context, Event);
    }, Event);
    TraceCall(CALL_CREATE_EVENT)
        .Status(Status)
        .Number("event", EfiError(Status) ? 0 : gBoot->Crossing.AddEvent(*Event))
        .Number("type", Type)
        .Number("tpl", NotifyTpl);
    return Status;
}

EFI_STATUS CreateEventEx(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, const VOID* Context,
                         const EFI_GUID* Group, EFI_EVENT* Event)
{
    const EFI_STATUS Status = Cross(CALL_CREATE_EVENT_EX, [&] {
        return Firmware().CreateEventEx(Type, NotifyTpl, Notify, Context, Group, Event);
    }, Event);
    TraceCall(CALL_CREATE_EVENT_EX)
        .Status(Status)
        .Number("event", EfiError(Status) ? 0 : gBoot->Crossing.AddEvent(*Event))
        .Number("type", Type)
        .Number("tpl", NotifyTpl)
        .Guid("group", Group);
    return Status;
}

EFI_STATUS SetTimer(EFI_EVENT Event, EFI_TIMER_DELAY Type, UINT64 TriggerTime)
{
    const EFI_STATUS Status = Cross(CALL_SET_TIMER, [&] { return Firmware().SetTimer(Event, Type, TriggerTime); });
    static constexpr const char* Names[] = {"cancel", "periodic", "relative"};
    TraceCall(CALL_SET_TIMER)
        .Status(Status)
        .Number("event", gBoot->Crossing.NumberEvent(Event))
        .Text("timer", std::string_view(Type <= TimerRelative ? Names[Type] : "unknown"))
        .Number("period", TriggerTime);
    return Status;
}

EFI_STATUS WaitForEvent(UINTN Count, EFI_EVENT* Events, UINTN* Index)
{
    gBoot->Crossing.NoteWait(gBoot->Trace);
    const EFI_STATUS Status =
        Cross(CALL_WAIT_FOR_EVENT, [&] { return Firmware().WaitForEvent(Count, Events, Index); }, Index);
    TraceCall(CALL_WAIT_FOR_EVENT)
        .Status(Status)
        .Number("count", Count)
        .Number("index", Index == nullptr ? 0 : *Index);
    return Status;
}

EFI_STATUS SignalEvent(EFI_EVENT Event)
{
    EFI_STATUS Failure;
    bool Garbage; // there is nothing to fill
    const bool Fails = gBoot->Crossing.Overrides.TakeFailure(CALL_SIGNAL_EVENT, &Failure, &Garbage);
    // The line stands before those of the notify functions that the signal runs. What the signal will answer is known
    // beforehand: only an event that isn't open is refused.
    const EFI_STATUS Status = Fails ? Failure : gBoot->Events.IsOpen(Event) ? EFI_SUCCESS : EFI_INVALID_PARAMETER;
    TraceCall(CALL_SIGNAL_EVENT).Status(Status).Number("event", gBoot->Crossing.NumberEvent(Event));
    return Fails ? Status : Firmware().SignalEvent(Event);
}

EFI_STATUS CloseEvent(EFI_EVENT Event)
{
    const EFI_STATUS Status = Cross(CALL_CLOSE_EVENT, [&] { return Firmware().CloseEvent(Event); });
    TraceCall(CALL_CLOSE_EVENT).Status(Status).Number("event", gBoot->Crossing.NumberEvent(Event));
    if (!EfiError(Status)) {
        gBoot->Crossing.ForgetEvent(Event);
    }
    return Status;
}

// --- Protocols ---

// What the console gets in place of an interface.
VOID CoverInterface(EFI_STATUS Status, const EFI_GUID* Guid, VOID** Interface)
{
    if (!EfiError(Status) && Interface != nullptr && *Interface != nullptr) {
        *Interface = gBoot->Board.Cover(*Guid, gBoot->Protocols.Cover(*Interface));
    }
}

EFI_STATUS HandleProtocol(EFI_HANDLE Handle, const EFI_GUID* Guid, VOID** Interface)
{
    const EFI_STATUS Status =
        Cross(CALL_HANDLE_PROTOCOL, [&] { return Firmware().HandleProtocol(Handle, Guid, Interface); }, Interface);
    CoverInterface(Status, Guid, Interface);
    TraceCall(CALL_HANDLE_PROTOCOL).Status(Status).Guid("guid", Guid);
    return Status;
}

EFI_STATUS LocateHandle(EFI_LOCATE_SEARCH_TYPE Type, const EFI_GUID* Guid, VOID* Key, UINTN* Size, EFI_HANDLE* Buffer)
{
    const EFI_STATUS Status =
        Cross(CALL_LOCATE_HANDLE, [&] { return Firmware().LocateHandle(Type, Guid, Key, Size, Buffer); },
              OUTPUT_BYTES{Buffer, Size == nullptr ? 0 : *Size}, Size);
    TraceCall(CALL_LOCATE_HANDLE).Status(Status).Guid("guid", Guid);
    return Status;
}

EFI_STATUS OpenProtocol(EFI_HANDLE Handle, const EFI_GUID* Guid, VOID** Interface, EFI_HANDLE Agent,
                        EFI_HANDLE Controller, UINT32 Attributes)
{
    const EFI_STATUS Status = Cross(CALL_OPEN_PROTOCOL, [&] {
        return Firmware().OpenProtocol(Handle, Guid, Interface, Agent, Controller, Attributes);
    }, Interface);
    CoverInterface(Status, Guid, Interface);
    TraceCall(CALL_OPEN_PROTOCOL).Status(Status).Guid("guid", Guid).Number("attributes", Attributes);
    return Status;
}

EFI_STATUS CloseProtocol(EFI_HANDLE Handle, const EFI_GUID* Guid, EFI_HANDLE Agent, EFI_HANDLE Controller)
{
    const EFI_STATUS Status = Cross(CALL_CLOSE_PROTOCOL, [&] {
        return Firmware().CloseProtocol(Handle, Guid, Agent, Controller);
    });
    TraceCall(CALL_CLOSE_PROTOCOL).Status(Status).Guid("guid", Guid);
    return Status;
}

EFI_STATUS LocateProtocol(const EFI_GUID* Guid, VOID* Registration, VOID** Interface)
{
    const EFI_STATUS Status =
        Cross(CALL_LOCATE_PROTOCOL, [&] { return Firmware().LocateProtocol(Guid, Registration, Interface); }, Interface);
    CoverInterface(Status, Guid, Interface);
    TraceCall(CALL_LOCATE_PROTOCOL).Status(Status).Guid("guid", Guid);
    return Status;
}

// --- Time ---

EFI_STATUS GetNextMonotonicCount(UINT64* Count)
{
    const EFI_STATUS Status =
        Cross(CALL_GET_NEXT_MONOTONIC_COUNT, [&] { return Firmware().GetNextMonotonicCount(Count); }, Count);
    TraceCall(CALL_GET_NEXT_MONOTONIC_COUNT).Status(Status);
    return Status;
}

EFI_STATUS Stall(UINTN Microseconds)
{
    const EFI_STATUS Status = Cross(CALL_STALL, [&] {
        const EFI_STATUS Stalled = Firmware().Stall(Microseconds);
        const TURN_LISTENER& Listener = gBoot->Crossing.Listener;
        if (Listener.Stalled != nullptr) {
            Listener.Stalled(Listener.Context, Microseconds);
        }
        return Stalled;
    });
    TraceCall(CALL_STALL).Status(Status).Number("asked", Microseconds);
    return Status;
}

EFI_STATUS GetTime(EFI_TIME* Time, EFI_TIME_CAPABILITIES* Capabilities)
{
    const EFI_STATUS Status =
        Cross(CALL_GET_TIME, [&] { return FirmwareRuntime().GetTime(Time, Capabilities); }, Time, Capabilities);
    TraceCall(CALL_GET_TIME).Status(Status);
    return Status;
}

// --- Variables ---

EFI_STATUS GetVariable(const CHAR16* Name, const EFI_GUID* Vendor, UINT32* Attributes, UINTN* Size, VOID* Data)
{
    const UINTN Asked = Size == nullptr ? 0 : *Size;
    UINT32 Stored = 0;
    const EFI_STATUS Status = Cross(CALL_GET_VARIABLE, [&] {
        return FirmwareRuntime().GetVariable(Name, Vendor, &Stored, Size, Data);
    }, OUTPUT_BYTES{Data, Asked}, Size);
    const bool Found = Status == EFI_SUCCESS || Status == EFI_BUFFER_TOO_SMALL;
    if (Found && Attributes != nullptr) {
        *Attributes = Stored;
    }
    TraceCall(CALL_GET_VARIABLE)
        .Status(Status)
        .Text("name", Name)
        .Guid("guid", Vendor)
        .Number("attributes", Found ? Stored : 0)
        .Number("size", Asked)
        .Hex("data", Data, Status == EFI_SUCCESS && Size != nullptr ? *Size : 0);
    return Status;
}

EFI_STATUS SetVariable(const CHAR16* Name, const EFI_GUID* Vendor, UINT32 Attributes, UINTN Size, const VOID* Data)
{
    const EFI_STATUS Status = Cross(CALL_SET_VARIABLE, [&] {
        return FirmwareRuntime().SetVariable(Name, Vendor, Attributes, Size, Data);
    });
    TraceCall(CALL_SET_VARIABLE)
        .Status(Status)
        .Text("name", Name)
        .Guid("guid", Vendor)
        .Number("attributes", Attributes)
        .Number("size", Size)
        .Hex("data", Data, Size);
    return Status;
}

// --- Consoles ---

EFI_STATUS ReadKeyStroke(EFI_SIMPLE_TEXT_INPUT_PROTOCOL* This, EFI_INPUT_KEY* Key)
{
    const EFI_STATUS Status = Cross(CALL_READ_KEY_STROKE, [&] {
        return gBoot->FirmwareTable.ConIn->ReadKeyStroke(This, Key);
    }, Key);
    if (!EfiError(Status)) {
        TraceCall(CALL_READ_KEY_STROKE)
            .Status(Status)
            .Number("scan", Key->ScanCode)
            .Number("char", Key->UnicodeChar);
    }
    return Status;
}

bool IsErrorConsole(const EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This) { return This == gBoot->ConsoleTable.StdErr; }

EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* FirmwareConsole(const EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This)
{
    return IsErrorConsole(This) ? gBoot->FirmwareTable.StdErr : gBoot->FirmwareTable.ConOut;
}

EFI_STATUS OutputString(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This, const CHAR16* Text)
{
    const EFI_STATUS Status = Cross(CALL_OUTPUT_STRING, [&] {
        EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* Console = FirmwareConsole(This);
        return Console->OutputString(Console, Text);
    });
    TraceCall(CALL_OUTPUT_STRING)
        .Status(Status)
        .Text("console", std::string_view(IsErrorConsole(This) ? "StdErr" : "ConOut"))
        .Text("text", Text);
    return Status;
}

EFI_STATUS ClearScreen(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This)
{
    const EFI_STATUS Status = Cross(CALL_CLEAR_SCREEN, [&] {
        EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* Console = FirmwareConsole(This);
        return Console->ClearScreen(Console);
    });
    TraceCall(CALL_CLEAR_SCREEN)
        .Status(Status)
        .Text("console", std::string_view(IsErrorConsole(This) ? "StdErr" : "ConOut"));
    return Status;
}

} // namespace

VOID CoverBootServices(EFI_BOOT_SERVICES* Services)
{
    Services->GetMemoryMap = GetMemoryMap;
    Services->AllocatePool = AllocatePool;
    Services->FreePool = FreePool;
    Services->CreateEvent = CreateEvent;
    Services->CreateEventEx = CreateEventEx;
    Services->SetTimer = SetTimer;
    Services->WaitForEvent = WaitForEvent;
    Services->SignalEvent = SignalEvent;
    Services->CloseEvent = CloseEvent;
    Services->HandleProtocol = HandleProtocol;
    Services->LocateHandle = LocateHandle;
    Services->OpenProtocol = OpenProtocol;
    Services->CloseProtocol = CloseProtocol;
    Services->LocateProtocol = LocateProtocol;
    Services->GetNextMonotonicCount = GetNextMonotonicCount;
    Services->Stall = Stall;
}

VOID CoverRuntimeServices(EFI_RUNTIME_SERVICES* Services)
{
    Services->GetTime = GetTime;
    Services->GetVariable = GetVariable;
    Services->SetVariable = SetVariable;
}

VOID CoverTextInput(EFI_SIMPLE_TEXT_INPUT_PROTOCOL* Input) { Input->ReadKeyStroke = ReadKeyStroke; }

VOID CoverTextOutput(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* Output)
{
    Output->OutputString = OutputString;
    Output->ClearScreen = ClearScreen;
}
