#include "platform/host/Calls.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "platform/board/BoardServices.h"
#include "platform/host/CrossedCall.h"
#include "platform/host/HostText.h"

namespace {

constexpr UINT8 gNoFanKind = 2;      // as a board answers that gives the fan no page
constexpr UINTN gGarbageText = 1000; // characters of a string that nobody wrote

template <typename TABLE> TABLE* True(const CROSSED_CALL& Call) { return Call.Boot.Console.Of<TABLE>().True; }

// --- Covers ---

// The cover of nearly every operation: the service behind it, or a failure in its place.
template <CALL Call, auto Slot> struct COVER;

template <CALL Call, typename TABLE, typename... ARGUMENTS, EFI_STATUS (*TABLE::*Slot)(ARGUMENTS...)>
struct COVER<Call, Slot> {
    static EFI_STATUS Cross(ARGUMENTS... Arguments)
    {
        CROSSED_CALL Crossed(Call, Arguments...);
        if (!Crossed.Fails()) {
            Crossed.Status = (True<TABLE>(Crossed)->*Slot)(BehindCover(Crossed, Arguments)...);
        }
        return Crossed.Finish();
    }

private:
    // The console's This is the cover; the service has to get its own.
    template <typename T> static T BehindCover([[maybe_unused]] const CROSSED_CALL& Crossed, T Argument)
    {
        if constexpr (std::is_same_v<T, TABLE*> || std::is_same_v<T, const TABLE*>) {
            return True<TABLE>(Crossed);
        } else {
            return Argument;
        }
    }
};

// The covers of those that have more to them.

EFI_STATUS AllocatePool(EFI_MEMORY_TYPE, UINTN Size, VOID** Buffer)
{
    VOID* const Caller = __builtin_return_address(0);
    CROSSED_CALL Call(CALL_ALLOCATE_POOL, Size, Buffer);
    if (!Call.Fails()) {
        Call.Status = Call.Boot.Pool.Allocate(Size, Caller, Buffer);
    }
    return Call.Finish();
}

EFI_STATUS FreePool(VOID* Buffer)
{
    VOID* const Caller = __builtin_return_address(0);
    CROSSED_CALL Call(CALL_FREE_POOL);
    if (const POOL_BLOCK* Block = Call.Boot.Pool.Find(Buffer)) {
        Call.Arguments[0] = DescribeArgument(Block->Size);
        Call.Arguments[1] = DescribeArgument(Block->Number);
    }
    if (!Call.Fails()) {
        Call.Status = Call.Boot.Pool.Free(Buffer, Caller);
    }
    return Call.Finish();
}

// The line stands before those of the notify functions that the signal runs. What the signal will answer is known
// beforehand: only an event that isn't open is refused.
EFI_STATUS SignalEvent(EFI_EVENT Event)
{
    CROSSED_CALL Call(CALL_SIGNAL_EVENT, Event);
    const bool Fails = Call.Fails();
    if (!Fails) {
        Call.Status = Call.Boot.Events.IsOpen(Event) ? EFI_SUCCESS : EFI_INVALID_PARAMETER;
    }
    (void)Call.Finish();
    return Fails ? Call.Status : Call.Boot.Events.Signal(Event);
}

// The attributes are traced whether the console asks for them or not.
EFI_STATUS GetVariable(const CHAR16* Name, const EFI_GUID* Vendor, UINT32* Attributes, UINTN* Size, VOID* Data)
{
    UINT32 Stored = 0;
    const UINTN Asked = Size == nullptr ? 0 : *Size;
    CROSSED_CALL Call(CALL_GET_VARIABLE, Name, Vendor, &Stored, Asked, Size, Data);
    if (!Call.Fails()) {
        Call.Status = Call.Boot.Variables.Get(Name, Vendor, &Stored, Size, Data);
        const bool Found = Call.Status == EFI_SUCCESS || Call.Status == EFI_BUFFER_TOO_SMALL;
        Stored = Found ? Stored : 0;
        if (Found && Attributes != nullptr) {
            *Attributes = Stored;
        }
    }
    return Call.Finish();
}

EFI_STATUS OutputString(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This, const CHAR16* Text)
{
    CROSSED_CALL Call(CALL_OUTPUT_STRING, This, Text);
    if (!Call.Fails()) {
        Call.Status = Call.Boot.Consoles.Write(This == Call.Boot.ConsoleTable.StdErr, Text);
    }
    return Call.Finish();
}

UINT8 GetFanKind(HW_SERVICE_PROTOCOL*, UINT8 Item)
{
    CROSSED_CALL Call(CALL_GET_FAN_KIND, Item);
    HW_SERVICE_PROTOCOL* Board = True<HW_SERVICE_PROTOCOL>(Call);
    return Call.FinishWith(!Call.Fails()  ? Board->GetFanKind(Board, Item)
                           : Call.Garbage ? gGarbagePattern
                                          : gNoFanKind);
}

UINT8 GetFirmwareGeneration(IMAGE_DECODER_PROTOCOL*)
{
    CROSSED_CALL Call(CALL_GET_FIRMWARE_GENERATION);
    IMAGE_DECODER_PROTOCOL* Decoder = True<IMAGE_DECODER_PROTOCOL>(Call);
    return Call.FinishWith(!Call.Fails()  ? Decoder->GetFirmwareGeneration(Decoder)
                           : Call.Garbage ? gGarbagePattern
                                          : UINT8{0});
}

// A copy of a script's string for the console, which frees it.
CHAR16* CopyToPool(const CROSSED_CALL& Call, const std::u16string& Text)
{
    const UINTN Size = (Text.size() + 1) * sizeof(CHAR16);
    VOID* Copy;
    if (EfiError(Call.Boot.Pool.Allocate(Size, __builtin_return_address(0), &Copy))) {
        return nullptr;
    }
    std::memcpy(Copy, Text.c_str(), Size);
    return static_cast<CHAR16*>(Copy);
}

CHAR16* GetItemString(HW_SERVICE_PROTOCOL*, UINT8 Item)
{
    CROSSED_CALL Call(CALL_GET_ITEM_STRING, Item);
    HW_SERVICE_PROTOCOL* Board = True<HW_SERVICE_PROTOCOL>(Call);
    const auto& Strings = Call.Boot.Crossing.Overrides.Strings;
    if (Call.Fails()) {
        return Call.FinishWith(Call.Garbage ? CopyToPool(Call, std::u16string(gGarbageText, 0xA5A5)) : nullptr);
    }
    const auto Override = Strings.find(Item);
    if (Override == Strings.end()) {
        return Call.FinishWith(Board->GetItemString(Board, Item));
    }
    return Call.FinishWith(Override->second ? CopyToPool(Call, *Override->second) : nullptr);
}

EFI_STATUS ReadItem(const CROSSED_CALL& Call, UINT8 Item, UINT64* Value, UINT8* Present)
{
    HW_SERVICE_PROTOCOL* Board = True<HW_SERVICE_PROTOCOL>(Call);
    const auto& Readings = Call.Boot.Crossing.Overrides.Readings;
    const auto Override = Readings.find(Item);
    if (Override == Readings.end()) {
        return Board->GetItemValue(Board, Item, Value, Present);
    }
    if (Override->second.Kind == READING_OVERRIDE::ERROR) {
        return EFI_DEVICE_ERROR; // the outputs stay as they were
    }
    const bool IsThere = Override->second.Kind == READING_OVERRIDE::VALUE;
    *Value = IsThere ? Override->second.Value : 0;
    *Present = IsThere ? 1 : 0;
    return EFI_SUCCESS;
}

EFI_STATUS GetItemValue(HW_SERVICE_PROTOCOL*, UINT8 Item, UINT64* Value, UINT8* Present)
{
    CROSSED_CALL Call(CALL_GET_ITEM_VALUE, Item, Value, Present);
    if (!Call.Fails()) {
        Call.Status = ReadItem(Call, Item, Value, Present);
    }
    return Call.Finish();
}

constexpr CALL GetterOf(UINTN Fan) { return static_cast<CALL>(CALL_GET_FAN_4_SETTING + 2 * Fan); }
constexpr CALL SetterOf(UINTN Fan) { return static_cast<CALL>(CALL_SET_FAN_4_SETTING + 2 * Fan); }
static_assert(GetterOf(gFanItemCount - 1) == CALL_GET_FAN_10_SETTING);
static_assert(SetterOf(gFanItemCount - 1) == CALL_SET_FAN_10_SETTING);

template <UINTN Fan> EFI_STATUS GetFanSetting(HW_SERVICE_PROTOCOL*, FAN_SETTING* Setting)
{
    CROSSED_CALL Call(GetterOf(Fan), Setting);
    if (!Call.Fails()) {
        HW_SERVICE_PROTOCOL* Board = True<HW_SERVICE_PROTOCOL>(Call);
        Call.Status = Board->Fan[Fan].Get(Board, Setting);
    }
    return Call.Finish();
}

template <UINTN Fan> EFI_STATUS SetFanSetting(HW_SERVICE_PROTOCOL*, const FAN_SETTING* Setting)
{
    CROSSED_CALL Call(SetterOf(Fan), Setting);
    // What the console sends is legal whatever happens to the call: in every run, whoever looks or doesn't.
    if (const CHAR8* Fault = FaultOfFanSetting(static_cast<UINT8>(gFirstFanItem + Fan), Setting)) {
        Call.Boot.Complaints.Add("%s with %s", Call.Facts.Of.Name, Fault);
    }
    if (!Call.Fails()) {
        HW_SERVICE_PROTOCOL* Board = True<HW_SERVICE_PROTOCOL>(Call);
        Call.Status = Board->Fan[Fan].Set(Board, Setting);
    }
    return Call.Finish();
}

// --- What else happens at some calls ---

VOID NoteWait(const CROSSED_CALL& Call) { Call.Boot.Crossing.NoteWait(Call.Boot.Trace); }
VOID NotePointerRead(const CROSSED_CALL& Call) { Call.Boot.Crossing.NotePointerRead(Call.Boot.Trace); }

VOID TellStall(const CROSSED_CALL& Call)
{
    const TURN_LISTENER& Listener = Call.Boot.Crossing.Listener;
    if (Listener.Stalled != nullptr) {
        Listener.Stalled(Listener.Context, Call.Arguments[0].Word);
    }
}

// The event stands in the last argument.
template <UINTN At> VOID NumberEvent(const CROSSED_CALL& Call)
{
    Call.Boot.Crossing.AddEvent(*Call.Pointer<EFI_EVENT>(At));
}

// The console gets a cover in place of the interface that it asked for by GUID.
template <UINTN Guid> VOID CoverFound(const CROSSED_CALL& Call)
{
    VOID** Interface = Call.Pointer<VOID*>(2);
    if (*Interface != nullptr) {
        *Interface = Call.Boot.Console.CoverInterface(*Call.Pointer<const EFI_GUID>(Guid), *Interface);
    }
}

bool Never(const CROSSED_CALL&) { return false; }
bool WithPool(const CROSSED_CALL& Call) { return Call.Boot.Trace.Pool; }
bool WithBlts(const CROSSED_CALL& Call) { return Call.Boot.Trace.Blts; }
bool OnSuccess(const CROSSED_CALL& Call) { return !EfiError(Call.Status); }
bool OnceInAStart(const CROSSED_CALL& Call) { return Call.Boot.Crossing.IsFirstLimitsCall(); }

// --- The table ---

template <typename TABLE> constexpr char gIdentity = 0;

// The operation in a slot of a table, with the cover that it gets there.
template <typename TABLE, typename FUNCTION> TABLE TableOf(FUNCTION TABLE::*Slot);

template <CALL Call, auto Slot, auto Cover = COVER<Call, Slot>::Cross> constexpr OPERATION Of(const char* Name)
{
    using TABLE = decltype(TableOf(Slot));
    return {Call, Name, &gIdentity<TABLE>, [](VOID* Table) { static_cast<TABLE*>(Table)->*Slot = Cover; }};
}

template <UINTN Fan> constexpr OPERATION Getter(const char* Name)
{
    return {GetterOf(Fan), Name, &gIdentity<HW_SERVICE_PROTOCOL>,
            // cppcheck-suppress nullPointer ; Put is called with a table
            [](VOID* Table) { static_cast<HW_SERVICE_PROTOCOL*>(Table)->Fan[Fan].Get = GetFanSetting<Fan>; }};
}

template <UINTN Fan> constexpr OPERATION Setter(const char* Name)
{
    return {SetterOf(Fan), Name, &gIdentity<HW_SERVICE_PROTOCOL>,
            // cppcheck-suppress nullPointer ; Put is called with a table
            [](VOID* Table) { static_cast<HW_SERVICE_PROTOCOL*>(Table)->Fan[Fan].Set = SetFanSetting<Fan>; }};
}

constexpr UINTN RESULT = CROSSED_CALL::gResult;

// A row an operation, in the order of CALL: its place (with its cover, where that isn't COVER) and name; the errors that
// it may give; the outputs that a failure may leave garbage in; the fields of its line in the trace; whether it is traced,
// and what else happens before it and behind it. Arguments are numbered from 0.
constexpr CALL_FACTS gCalls[] = {
    // clang-format off
    {Of<CALL_GET_MEMORY_MAP, &EFI_BOOT_SERVICES::GetMemoryMap>("GetMemoryMap"),
     {EFI_INVALID_PARAMETER, EFI_BUFFER_TOO_SMALL}, {{1, 0}, {0}, {2}, {3}, {4}}},
    {Of<CALL_ALLOCATE_POOL, &EFI_BOOT_SERVICES::AllocatePool, AllocatePool>("AllocatePool"),
     {EFI_OUT_OF_RESOURCES, EFI_INVALID_PARAMETER}, {{1}}, {{"bytes", 0}, {"block", 1, WriteBlock}}, WithPool},
    {Of<CALL_FREE_POOL, &EFI_BOOT_SERVICES::FreePool, FreePool>("FreePool"),
     {EFI_INVALID_PARAMETER}, {}, {{"bytes", 0}, {"block", 1}}, WithPool},
    {Of<CALL_CREATE_EVENT, &EFI_BOOT_SERVICES::CreateEvent>("CreateEvent"),
     {EFI_OUT_OF_RESOURCES, EFI_INVALID_PARAMETER}, {{4}}, {{"event", 4, WriteNewEvent}, {"type", 0}, {"tpl", 1}},
     nullptr, nullptr, NumberEvent<4>},
    {Of<CALL_CREATE_EVENT_EX, &EFI_BOOT_SERVICES::CreateEventEx>("CreateEventEx"),
     {EFI_OUT_OF_RESOURCES, EFI_INVALID_PARAMETER}, {{5}},
     {{"event", 5, WriteNewEvent}, {"type", 0}, {"tpl", 1}, {"group", 4}}, nullptr, nullptr, NumberEvent<5>},
    {Of<CALL_SET_TIMER, &EFI_BOOT_SERVICES::SetTimer>("SetTimer"),
     {EFI_INVALID_PARAMETER}, {}, {{"event", 0, WriteEvent}, {"timer", 1, WriteTimer}, {"period", 2}}},
    {Of<CALL_WAIT_FOR_EVENT, &EFI_BOOT_SERVICES::WaitForEvent>("WaitForEvent"),
     {EFI_INVALID_PARAMETER, EFI_UNSUPPORTED}, {{2}}, {{"count", 0}, {"index", 2, WritePointed}}, nullptr, NoteWait},
    {Of<CALL_SIGNAL_EVENT, &EFI_BOOT_SERVICES::SignalEvent, SignalEvent>("SignalEvent"),
     {EFI_INVALID_PARAMETER}, {}, {{"event", 0, WriteEvent}}},
    {Of<CALL_CLOSE_EVENT, &EFI_BOOT_SERVICES::CloseEvent>("CloseEvent"),
     {EFI_INVALID_PARAMETER}, {}, {{"event", 0, WriteEvent}}},
    {Of<CALL_HANDLE_PROTOCOL, &EFI_BOOT_SERVICES::HandleProtocol>("HandleProtocol"),
     {EFI_UNSUPPORTED, EFI_INVALID_PARAMETER}, {{2}}, {{"guid", 1}}, nullptr, nullptr, CoverFound<1>},
    {Of<CALL_LOCATE_HANDLE, &EFI_BOOT_SERVICES::LocateHandle>("LocateHandle"),
     {EFI_NOT_FOUND, EFI_BUFFER_TOO_SMALL, EFI_INVALID_PARAMETER}, {{4, 3}, {3}}, {{"guid", 1}}},
    {Of<CALL_OPEN_PROTOCOL, &EFI_BOOT_SERVICES::OpenProtocol>("OpenProtocol"),
     {EFI_UNSUPPORTED, EFI_INVALID_PARAMETER, EFI_ACCESS_DENIED}, {{2}}, {{"guid", 1}, {"attributes", 5}}, nullptr,
     nullptr, CoverFound<1>},
    {Of<CALL_CLOSE_PROTOCOL, &EFI_BOOT_SERVICES::CloseProtocol>("CloseProtocol"),
     {EFI_NOT_FOUND, EFI_INVALID_PARAMETER}, {}, {{"guid", 1}}},
    {Of<CALL_LOCATE_PROTOCOL, &EFI_BOOT_SERVICES::LocateProtocol>("LocateProtocol"),
     {EFI_NOT_FOUND, EFI_INVALID_PARAMETER}, {{2}}, {{"guid", 0}}, nullptr, nullptr, CoverFound<0>},
    {Of<CALL_GET_NEXT_MONOTONIC_COUNT, &EFI_BOOT_SERVICES::GetNextMonotonicCount>("GetNextMonotonicCount"),
     {EFI_DEVICE_ERROR, EFI_INVALID_PARAMETER}, {{0}}},
    {Of<CALL_STALL, &EFI_BOOT_SERVICES::Stall>("Stall"),
     {EFI_DEVICE_ERROR}, {}, {{"asked", 0}}, nullptr, nullptr, TellStall},
    {Of<CALL_GET_TIME, &EFI_RUNTIME_SERVICES::GetTime>("GetTime"), {EFI_DEVICE_ERROR, EFI_UNSUPPORTED}, {{0}, {1}}},
    {Of<CALL_GET_VARIABLE, &EFI_RUNTIME_SERVICES::GetVariable, GetVariable>("GetVariable"),
     {EFI_NOT_FOUND, EFI_BUFFER_TOO_SMALL, EFI_DEVICE_ERROR}, {{5, 3}, {4}},
     {{"name", 0}, {"guid", 1}, {"attributes", 2, WritePointed}, {"size", 3}, {"data", 5, WriteBytes}}},
    {Of<CALL_SET_VARIABLE, &EFI_RUNTIME_SERVICES::SetVariable>("SetVariable"),
     {EFI_OUT_OF_RESOURCES, EFI_WRITE_PROTECTED, EFI_DEVICE_ERROR}, {},
     {{"name", 0}, {"guid", 1}, {"attributes", 2}, {"size", 3}, {"data", 4, WriteBytes}}},
    {Of<CALL_OUTPUT_STRING, &EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL::OutputString, OutputString>("OutputString"),
     {EFI_DEVICE_ERROR, EFI_UNSUPPORTED}, {}, {{"console", 0, WriteConsole}, {"text", 1}}},
    {Of<CALL_CLEAR_SCREEN, &EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL::ClearScreen>("ClearScreen"),
     {EFI_DEVICE_ERROR, EFI_UNSUPPORTED}, {}, {{"console", 0, WriteConsole}}},
    {Of<CALL_READ_KEY_STROKE, &EFI_SIMPLE_TEXT_INPUT_PROTOCOL::ReadKeyStroke>("ReadKeyStroke"),
     {EFI_NOT_READY, EFI_DEVICE_ERROR}, {{1}}, {{"key", 1, WriteKey}}, OnSuccess},
    {Of<CALL_BLT, &EFI_GRAPHICS_OUTPUT_PROTOCOL::Blt>("Blt"),
     {EFI_DEVICE_ERROR, EFI_INVALID_PARAMETER}, {},
     {{"operation", 2, WriteOperation}, {"x", 5, WritePlace}, {"y", 6, WritePlace}, {"width", 7}, {"height", 8},
      {"delta", 9}}, WithBlts},
    {Of<CALL_STRING_TO_IMAGE, &EFI_HII_FONT_PROTOCOL::StringToImage>("StringToImage"),
     {EFI_OUT_OF_RESOURCES, EFI_INVALID_PARAMETER, EFI_NOT_FOUND}, {{4}, {7}, {8}}, {{"text", 2}}},
    {Of<CALL_GET_TIMER_VALUE, &EFI_CPU_ARCH_PROTOCOL::GetTimerValue>("GetTimerValue"),
     {EFI_DEVICE_ERROR, EFI_UNSUPPORTED}, {{2}, {3}}, {}, Never},
    {Of<CALL_INITIALIZE, &HW_SERVICE_PROTOCOL::Initialize>("Initialize"), {EFI_DEVICE_ERROR, EFI_NOT_READY}},
    {Of<CALL_GET_FAN_KIND, &HW_SERVICE_PROTOCOL::GetFanKind, GetFanKind>("GetFanKind"),
     {}, {}, {{"item", 0}, {"kind", RESULT}}},
    {Of<CALL_GET_ITEM_STRING, &HW_SERVICE_PROTOCOL::GetItemString, GetItemString>("GetItemString"),
     {}, {}, {{"item", 0}, {"text", RESULT}}},
    {Of<CALL_GET_ITEM_VALUE, &HW_SERVICE_PROTOCOL::GetItemValue, GetItemValue>("GetItemValue"),
     {EFI_DEVICE_ERROR, EFI_NOT_FOUND}, {{1}, {2}},
     {{"item", 0}, {"value", 1, WriteOutput}, {"present", 2, WriteOutput}}},
    {Getter<0>("GetFan4Setting"), {EFI_OUT_OF_RESOURCES, EFI_DEVICE_ERROR}, {{0}}, {{"record", 0, WriteOutput}}},
    {Setter<0>("SetFan4Setting"), {EFI_DEVICE_ERROR, EFI_INVALID_PARAMETER}, {}, {{"record", 0}}},
    {Getter<1>("GetFan5Setting"), {EFI_OUT_OF_RESOURCES, EFI_DEVICE_ERROR}, {{0}}, {{"record", 0, WriteOutput}}},
    {Setter<1>("SetFan5Setting"), {EFI_DEVICE_ERROR, EFI_INVALID_PARAMETER}, {}, {{"record", 0}}},
    {Getter<2>("GetFan6Setting"), {EFI_OUT_OF_RESOURCES, EFI_DEVICE_ERROR}, {{0}}, {{"record", 0, WriteOutput}}},
    {Setter<2>("SetFan6Setting"), {EFI_DEVICE_ERROR, EFI_INVALID_PARAMETER}, {}, {{"record", 0}}},
    {Getter<3>("GetFan7Setting"), {EFI_OUT_OF_RESOURCES, EFI_DEVICE_ERROR}, {{0}}, {{"record", 0, WriteOutput}}},
    {Setter<3>("SetFan7Setting"), {EFI_DEVICE_ERROR, EFI_INVALID_PARAMETER}, {}, {{"record", 0}}},
    {Getter<4>("GetFan8Setting"), {EFI_OUT_OF_RESOURCES, EFI_DEVICE_ERROR}, {{0}}, {{"record", 0, WriteOutput}}},
    {Setter<4>("SetFan8Setting"), {EFI_DEVICE_ERROR, EFI_INVALID_PARAMETER}, {}, {{"record", 0}}},
    {Getter<5>("GetFan9Setting"), {EFI_OUT_OF_RESOURCES, EFI_DEVICE_ERROR}, {{0}}, {{"record", 0, WriteOutput}}},
    {Setter<5>("SetFan9Setting"), {EFI_DEVICE_ERROR, EFI_INVALID_PARAMETER}, {}, {{"record", 0}}},
    {Getter<6>("GetFan10Setting"), {EFI_OUT_OF_RESOURCES, EFI_DEVICE_ERROR}, {{0}}, {{"record", 0, WriteOutput}}},
    {Setter<6>("SetFan10Setting"), {EFI_DEVICE_ERROR, EFI_INVALID_PARAMETER}, {}, {{"record", 0}}},
    {Of<CALL_LOAD_DEFAULT_FAN_SETTINGS, &HW_SERVICE_PROTOCOL::LoadDefaultFanSettings>("LoadDefaultFanSettings"),
     {EFI_DEVICE_ERROR, EFI_NOT_READY}},
    {Of<CALL_SET_ALL_FANS_FULL_SPEED, &HW_SERVICE_PROTOCOL::SetAllFansFullSpeed>("SetAllFansFullSpeed"),
     {EFI_DEVICE_ERROR, EFI_NOT_READY}},
    {Of<CALL_RESTORE_FAN_SETTINGS, &HW_SERVICE_PROTOCOL::RestoreFanSettings>("RestoreFanSettings"),
     {EFI_DEVICE_ERROR, EFI_NOT_READY}},
    {Of<CALL_GET_CURSOR_STATE, &CURSOR_SERVICE_PROTOCOL::GetCursorState>("GetCursorState"),
     {EFI_NOT_READY, EFI_DEVICE_ERROR}, {{0}, {1}, {2}, {3}, {4}}, {}, Never, NotePointerRead},
    {Of<CALL_SET_CURSOR_LIMITS, &CURSOR_SERVICE_PROTOCOL::SetCursorLimits>("SetCursorLimits"),
     {EFI_DEVICE_ERROR, EFI_UNSUPPORTED}, {}, {{"width", 0}, {"height", 1}}, OnceInAStart},
    {Of<CALL_CLOSE_CURSOR, &CURSOR_SERVICE_PROTOCOL::CloseCursor>("CloseCursor"), {EFI_DEVICE_ERROR}},
    {Of<CALL_FLOAT_TO_STRING, &FLOAT_MATH_PROTOCOL::FloatToString>("FloatToString"),
     {EFI_BUFFER_TOO_SMALL, EFI_INVALID_PARAMETER}, {{1, 2}}, {}, Never},
    {Of<CALL_GET_FILE_SECTION, &IMAGE_LOOKUP_PROTOCOL::GetFileSection>("GetFileSection"),
     {EFI_NOT_FOUND, EFI_OUT_OF_RESOURCES, EFI_DEVICE_ERROR}, {{2}, {3}}, {{"guid", 0}, {"type", 1}}},
    {Of<CALL_GET_ARTWORK_SECTION, &IMAGE_SECTION_PROTOCOL::GetArtworkSection>("GetArtworkSection"),
     {EFI_NOT_FOUND, EFI_OUT_OF_RESOURCES, EFI_DEVICE_ERROR}, {{1}, {2}},
     {{"guid", 3}, {"type", 4, WritePointed}, {"instance", 0}}},
    {Of<CALL_CONFIGURE, &IMAGE_SECTION_PROTOCOL::Configure>("Configure"),
     {EFI_UNSUPPORTED, EFI_DEVICE_ERROR}, {}, {{"a", 0}, {"b", 1}}},
    {Of<CALL_CONVERT_JPEG, &IMAGE_DECODER_PROTOCOL::ConvertJPEGToUgaBltA>("ConvertJPEGToUgaBltA"),
     {EFI_UNSUPPORTED, EFI_OUT_OF_RESOURCES, EFI_INVALID_PARAMETER}, {{3}, {4}, {5}, {6}, {7}}},
    {Of<CALL_CONVERT_BMP, &IMAGE_DECODER_PROTOCOL::ConvertBmpToGopBltA>("ConvertBmpToGopBltA"),
     {EFI_UNSUPPORTED, EFI_OUT_OF_RESOURCES, EFI_INVALID_PARAMETER}, {{3}, {4}, {5}, {6}}},
    {Of<CALL_GET_FIRMWARE_GENERATION, &IMAGE_DECODER_PROTOCOL::GetFirmwareGeneration,
        GetFirmwareGeneration>("GetFirmwareGeneration"),
     {}, {}, {{"generation", RESULT}}},
    {Of<CALL_CREATE_MESSAGE_BOX, &DRAW_PRIMITIVES_PROTOCOL::CreateMessageBox>("CreateMessageBox"),
     {EFI_OUT_OF_RESOURCES, EFI_INVALID_PARAMETER}, {{0}},
     {{"x", 1}, {"y", 2}, {"width", 3}, {"height", 4}, {"lines", 6, WriteTexts}, {"buttons", 8, WriteTexts}}},
    {Of<CALL_UPDATE_MESSAGE_BOX, &DRAW_PRIMITIVES_PROTOCOL::UpdateMessageBox>("UpdateMessageBox"),
     {EFI_INVALID_PARAMETER}, {{0}}, {}, Never},
    {Of<CALL_DRAW_MESSAGE_BOX, &DRAW_PRIMITIVES_PROTOCOL::DrawMessageBox>("DrawMessageBox"),
     {EFI_DEVICE_ERROR, EFI_INVALID_PARAMETER}},
    {Of<CALL_DRAW_LINE, &DRAW_PRIMITIVES_PROTOCOL::DrawLine>("DrawLine"), {EFI_INVALID_PARAMETER}},
    // clang-format on
};

constexpr bool RowsStandInOrder()
{
    for (UINTN Index = 0; Index < std::size(gCalls); Index++) {
        if (gCalls[Index].Of.Call != Index) {
            return false;
        }
    }
    return std::size(gCalls) == CALL_COUNT;
}
static_assert(RowsStandInOrder());

// A copy of the true table with the covers of its operations.
template <typename TABLE> VOID* CoverTable(CONSOLE_TABLES& Console, VOID* Interface)
{
    COVERED<TABLE>& Covered = Console.Of<TABLE>();
    Covered.True = static_cast<TABLE*>(Interface);
    Covered.Cover = *Covered.True;
    for (const CALL_FACTS& Facts : gCalls) {
        if (Facts.Of.Table == &gIdentity<TABLE>) {
            Facts.Of.Put(&Covered.Cover);
        }
    }
    return &Covered.Cover;
}

template <typename TABLE> VOID CoverPlace(CONSOLE_TABLES& Console, TABLE** Place)
{
    *Place = static_cast<TABLE*>(CoverTable<TABLE>(Console, *Place));
}

struct COVERED_PROTOCOL {
    const EFI_GUID* Guid;
    VOID* (*Cover)(CONSOLE_TABLES& Console, VOID* Interface);
};

constexpr COVERED_PROTOCOL gProtocols[] = {
    {&gEfiGraphicsOutputProtocolGuid, CoverTable<EFI_GRAPHICS_OUTPUT_PROTOCOL>},
    {&gEfiCpuArchProtocolGuid, CoverTable<EFI_CPU_ARCH_PROTOCOL>},
    {&gEfiHiiFontProtocolGuid, CoverTable<EFI_HII_FONT_PROTOCOL>},
    {&gHwServiceProtocolGuid, CoverTable<HW_SERVICE_PROTOCOL>},
    {&gCursorServiceProtocolGuid, CoverTable<CURSOR_SERVICE_PROTOCOL>},
    {&gCursorServiceProtocol2Guid, CoverTable<CURSOR_SERVICE_PROTOCOL>},
    {&gFloatMathProtocolGuid, CoverTable<FLOAT_MATH_PROTOCOL>},
    {&gImageLookupProtocolGuid, CoverTable<IMAGE_LOOKUP_PROTOCOL>},
    {&gImageSectionProtocolGuid, CoverTable<IMAGE_SECTION_PROTOCOL>},
    {&gImageDecoderProtocolGuid, CoverTable<IMAGE_DECODER_PROTOCOL>},
    {&gDrawPrimitivesProtocolGuid, CoverTable<DRAW_PRIMITIVES_PROTOCOL>},
};

} // namespace

const CALL_FACTS& FactsOf(CALL Call) { return gCalls[Call]; }

const char* NameCall(CALL Call) { return gCalls[Call].Of.Name; }

bool FindCall(std::string_view Name, CALL* Call)
{
    const auto Found = std::find_if(std::begin(gCalls), std::end(gCalls),
                                    [&](const CALL_FACTS& Facts) { return Facts.Of.Name == Name; });
    if (Found == std::end(gCalls)) {
        return false;
    }
    *Call = Found->Of.Call;
    return true;
}

std::span<const EFI_STATUS> StatusesOf(CALL Call)
{
    const auto& Statuses = gCalls[Call].Statuses;
    return {Statuses, std::find(std::begin(Statuses), std::end(Statuses), EFI_SUCCESS)};
}

VOID CONSOLE_TABLES::CoverSystemTable(EFI_SYSTEM_TABLE* Table)
{
    CoverPlace(*this, &Table->BootServices);
    CoverPlace(*this, &Table->RuntimeServices);
    CoverPlace(*this, &Table->ConIn);
    CoverPlace(*this, &Table->ConOut);
    ErrorOutput = *Table->ConOut;
    Table->StdErr = &ErrorOutput;
}

VOID* CONSOLE_TABLES::CoverInterface(const EFI_GUID& Guid, VOID* Interface)
{
    for (const COVERED_PROTOCOL& Protocol : gProtocols) {
        if (SameGuid(*Protocol.Guid, Guid)) {
            return Protocol.Cover(*this, Interface);
        }
    }
    return Interface;
}
