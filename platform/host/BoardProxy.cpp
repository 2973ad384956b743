#include "platform/host/BoardProxy.h"

#include <cstring>
#include <utility>

#include "platform/board/BoardServices.h"
#include "platform/host/Cross.h"
#include "platform/host/HostText.h"

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

constexpr UINT8 gNoFanKind = 2; // as a board answers that gives the fan no page
constexpr UINTN gGarbageText = 1000; // characters of a string that nobody wrote

BOARD_PROXY& Board() { return gBoot->Board; }

// An operation with nothing to tell but its name and its status.
template <typename SERVICE, typename... OUTPUT> EFI_STATUS Pass(CALL Call, SERVICE&& Service, OUTPUT... Outputs)
{
    const EFI_STATUS Status = Cross(Call, Service, Outputs...);
    TraceCall(Call).Status(Status);
    return Status;
}

// --- HW_SERVICE_PROTOCOL ---

EFI_STATUS Initialize(HW_SERVICE_PROTOCOL*)
{
    return Pass(CALL_INITIALIZE, [] { return Board().Hardware->Initialize(Board().Hardware); });
}

// An operation without a status fails, where a test wants it, with an answer that means nothing.
bool TakeFailure(CALL Call, bool* Garbage)
{
    EFI_STATUS Status;
    return gBoot->Crossing.Overrides.TakeFailure(Call, &Status, Garbage);
}

UINT8 GetFanKind(HW_SERVICE_PROTOCOL*, UINT8 Item)
{
    bool Garbage;
    const UINT8 Kind = TakeFailure(CALL_GET_FAN_KIND, &Garbage) ? (Garbage ? gGarbagePattern : gNoFanKind)
                                                                : Board().Hardware->GetFanKind(Board().Hardware, Item);
    TraceCall(CALL_GET_FAN_KIND).Number("item", Item).Number("kind", Kind);
    return Kind;
}

// A copy of a script's string for the console, which frees it.
CHAR16* CopyToPool(const std::u16string& Text)
{
    const UINTN Size = (Text.size() + 1) * sizeof(CHAR16);
    VOID* Copy;
    if (EfiError(gBoot->Pool.Allocate(Size, __builtin_return_address(0), &Copy))) {
        return nullptr;
    }
    std::memcpy(Copy, Text.c_str(), Size);
    return static_cast<CHAR16*>(Copy);
}

CHAR16* GetItemString(HW_SERVICE_PROTOCOL*, UINT8 Item)
{
    const auto& Strings = gBoot->Crossing.Overrides.Strings;
    const auto Override = Strings.find(Item);
    CHAR16* String;
    bool Garbage;
    if (TakeFailure(CALL_GET_ITEM_STRING, &Garbage)) {
        String = Garbage ? CopyToPool(std::u16string(gGarbageText, 0xA5A5)) : nullptr;
    } else if (Override == Strings.end()) {
        String = Board().Hardware->GetItemString(Board().Hardware, Item);
    } else {
        String = Override->second ? CopyToPool(*Override->second) : nullptr;
    }
    TraceCall(CALL_GET_ITEM_STRING).Number("item", Item).Text("text", String);
    return String;
}

EFI_STATUS ReadItem(UINT8 Item, UINT64* Value, UINT8* Present)
{
    const auto& Readings = gBoot->Crossing.Overrides.Readings;
    const auto Override = Readings.find(Item);
    if (Override == Readings.end()) {
        return Board().Hardware->GetItemValue(Board().Hardware, Item, Value, Present);
    }
    switch (Override->second.Kind) {
    case READING_OVERRIDE::VALUE:
        *Value = Override->second.Value;
        *Present = 1;
        return EFI_SUCCESS;
    case READING_OVERRIDE::ABSENT:
        *Value = 0;
        *Present = 0;
        return EFI_SUCCESS;
    case READING_OVERRIDE::ERROR:
        break; // the outputs stay as they were
    }
    return EFI_DEVICE_ERROR;
}

EFI_STATUS GetItemValue(HW_SERVICE_PROTOCOL*, UINT8 Item, UINT64* Value, UINT8* Present)
{
    const EFI_STATUS Status = Cross(CALL_GET_ITEM_VALUE, [&] { return ReadItem(Item, Value, Present); }, Value, Present);
    TRACE_LINE Line(gBoot->Trace.IsOn() ? &gBoot->Trace : nullptr, CALL_GET_ITEM_VALUE);
    Line.Status(Status).Number("item", Item);
    if (EfiError(Status)) {
        // What stands in the outputs then is the caller's own.
        Line.Null("value").Null("present");
    } else {
        Line.Number("value", *Value).Number("present", *Present);
    }
    return Status;
}

constexpr CALL GetterOf(UINTN Fan) { return static_cast<CALL>(CALL_GET_FAN_4_SETTING + 2 * Fan); }
constexpr CALL SetterOf(UINTN Fan) { return static_cast<CALL>(CALL_SET_FAN_4_SETTING + 2 * Fan); }
static_assert(GetterOf(gFanItemCount - 1) == CALL_GET_FAN_10_SETTING);
static_assert(SetterOf(gFanItemCount - 1) == CALL_SET_FAN_10_SETTING);

template <UINTN Fan> EFI_STATUS GetFanSetting(HW_SERVICE_PROTOCOL*, FAN_SETTING* Setting)
{
    const EFI_STATUS Status =
        Cross(GetterOf(Fan), [&] { return Board().Hardware->Fan[Fan].Get(Board().Hardware, Setting); }, Setting);
    // After a failure the record may never have been written.
    TraceCall(GetterOf(Fan)).Status(Status).Hex("record", EfiError(Status) ? nullptr : Setting, sizeof(*Setting));
    return Status;
}

// What the console sends is legal whatever happens to the call: in every run, whoever looks or doesn't.
VOID CheckRecord(CALL Call, UINT8 Item, const FAN_SETTING* Setting)
{
    if (const CHAR8* Fault = FaultOfFanSetting(Item, Setting)) {
        gBoot->Complaints.Add("%s with %s", NameCall(Call), Fault);
    }
}

template <UINTN Fan> EFI_STATUS SetFanSetting(HW_SERVICE_PROTOCOL*, const FAN_SETTING* Setting)
{
    CheckRecord(SetterOf(Fan), static_cast<UINT8>(gFirstFanItem + Fan), Setting);
    const EFI_STATUS Status =
        Cross(SetterOf(Fan), [&] { return Board().Hardware->Fan[Fan].Set(Board().Hardware, Setting); });
    TraceCall(SetterOf(Fan)).Status(Status).Hex("record", Setting, sizeof(*Setting));
    return Status;
}

template <size_t... Fans> VOID CoverFans(HW_SERVICE_PROTOCOL& Table, std::index_sequence<Fans...>)
{
    ((Table.Fan[Fans] = {GetFanSetting<Fans>, SetFanSetting<Fans>}), ...);
}

EFI_STATUS LoadDefaultFanSettings(HW_SERVICE_PROTOCOL*)
{
    return Pass(CALL_LOAD_DEFAULT_FAN_SETTINGS,
                [] { return Board().Hardware->LoadDefaultFanSettings(Board().Hardware); });
}

EFI_STATUS SetAllFansFullSpeed(HW_SERVICE_PROTOCOL*)
{
    return Pass(CALL_SET_ALL_FANS_FULL_SPEED,
                [] { return Board().Hardware->SetAllFansFullSpeed(Board().Hardware); });
}

EFI_STATUS RestoreFanSettings(HW_SERVICE_PROTOCOL*)
{
    return Pass(CALL_RESTORE_FAN_SETTINGS, [] { return Board().Hardware->RestoreFanSettings(Board().Hardware); });
}

// --- CURSOR_SERVICE_PROTOCOL ---

EFI_STATUS GetCursorState(INT64* X, INT64* Y, INT64* Z, UINT8* Left, UINT8* Right)
{
    gBoot->Crossing.NotePointerRead(gBoot->Trace);
    return Cross(CALL_GET_CURSOR_STATE, [&] { return Board().Cursor->GetCursorState(X, Y, Z, Left, Right); },
                 X, Y, Z, Left, Right);
}

EFI_STATUS SetCursorLimits(UINTN Width, UINTN Height)
{
    const EFI_STATUS Status =
        Cross(CALL_SET_CURSOR_LIMITS, [&] { return Board().Cursor->SetCursorLimits(Width, Height); });
    if (gBoot->Crossing.IsFirstLimitsCall()) {
        TraceCall(CALL_SET_CURSOR_LIMITS).Status(Status).Number("width", Width).Number("height", Height);
    }
    return Status;
}

EFI_STATUS CloseCursor()
{
    return Pass(CALL_CLOSE_CURSOR, [] { return Board().Cursor->CloseCursor(); });
}

// --- FLOAT_MATH_PROTOCOL: untraced, and only the text can fail ---

EFI_STATUS FloatToString(FLOAT_WORD Value, CHAR16* Buffer, UINTN Length)
{
    return Cross(CALL_FLOAT_TO_STRING, [&] { return Board().Float->FloatToString(Value, Buffer, Length); },
                 OUTPUT_BYTES{Buffer, Length * sizeof(*Buffer)});
}

// --- Artwork ---

EFI_STATUS GetFileSection(const EFI_GUID* File, UINT8 Type, VOID** Data, UINTN* Size)
{
    const EFI_STATUS Status =
        Cross(CALL_GET_FILE_SECTION, [&] { return Board().Lookup->GetFileSection(File, Type, Data, Size); }, Data, Size);
    TraceCall(CALL_GET_FILE_SECTION).Status(Status).Guid("guid", File).Number("type", Type);
    return Status;
}

EFI_STATUS GetArtworkSection(UINT32 Instance, VOID** Data, UINTN* Size, const EFI_GUID* File, const UINT8* Type)
{
    const EFI_STATUS Status = Cross(CALL_GET_ARTWORK_SECTION, [&] {
        return Board().Sections->GetArtworkSection(Instance, Data, Size, File, Type);
    }, Data, Size);
    TraceCall(CALL_GET_ARTWORK_SECTION)
        .Status(Status)
        .Guid("guid", File)
        .Number("type", Type == nullptr ? 0 : *Type)
        .Number("instance", Instance);
    return Status;
}

EFI_STATUS Configure(UINTN A, UINTN B)
{
    const EFI_STATUS Status = Cross(CALL_CONFIGURE, [&] { return Board().Sections->Configure(A, B); });
    TraceCall(CALL_CONFIGURE).Status(Status).Number("a", A).Number("b", B);
    return Status;
}

EFI_STATUS ConvertJpeg(IMAGE_DECODER_PROTOCOL*, const VOID* Image, UINT32 ImageSize, PIXEL** Blt, UINTN* BltSize,
                       UINT32* Height, UINT32* Width, UINT32* PixelsPerRow)
{
    return Pass(CALL_CONVERT_JPEG, [&] {
        return Board().Decoder->ConvertJPEGToUgaBltA(Board().Decoder, Image, ImageSize, Blt, BltSize, Height, Width,
                                                     PixelsPerRow);
    }, Blt, BltSize, Height, Width, PixelsPerRow);
}

EFI_STATUS ConvertBmp(IMAGE_DECODER_PROTOCOL*, const VOID* Image, UINT32 ImageSize, PIXEL** Blt, UINTN* BltSize,
                      UINT32* Height, UINT32* Width)
{
    return Pass(CALL_CONVERT_BMP, [&] {
        return Board().Decoder->ConvertBmpToGopBltA(Board().Decoder, Image, ImageSize, Blt, BltSize, Height, Width);
    }, Blt, BltSize, Height, Width);
}

UINT8 GetFirmwareGeneration(IMAGE_DECODER_PROTOCOL*)
{
    bool Garbage;
    const UINT8 Generation = TakeFailure(CALL_GET_FIRMWARE_GENERATION, &Garbage)
                                 ? (Garbage ? gGarbagePattern : UINT8{0})
                                 : Board().Decoder->GetFirmwareGeneration(Board().Decoder);
    TraceCall(CALL_GET_FIRMWARE_GENERATION).Number("generation", Generation);
    return Generation;
}

// --- DRAW_PRIMITIVES_PROTOCOL ---

EFI_STATUS CreateMessageBox(MESSAGE_BOX* Box, UINTN X, UINTN Y, UINTN Width, UINTN Height, UINT16 LineCount,
                            CHAR16** Lines, UINT16 ButtonCount, CHAR16** Buttons)
{
    const EFI_STATUS Status = Cross(CALL_CREATE_MESSAGE_BOX, [&] {
        return Board().Draw->CreateMessageBox(Box, X, Y, Width, Height, LineCount, Lines, ButtonCount, Buttons);
    }, Box);
    TraceCall(CALL_CREATE_MESSAGE_BOX)
        .Status(Status)
        .Number("x", X)
        .Number("y", Y)
        .Number("width", Width)
        .Number("height", Height)
        .Texts("lines", Lines, LineCount)
        .Texts("buttons", Buttons, ButtonCount);
    return Status;
}

EFI_STATUS UpdateMessageBox(MESSAGE_BOX* Box, UINTN X, UINTN Y)
{
    return Cross(CALL_UPDATE_MESSAGE_BOX, [&] { return Board().Draw->UpdateMessageBox(Box, X, Y); }, Box);
}

EFI_STATUS DrawMessageBox(MESSAGE_BOX* Box)
{
    return Pass(CALL_DRAW_MESSAGE_BOX, [&] { return Board().Draw->DrawMessageBox(Box); });
}

EFI_STATUS DrawLine(PIXEL* Buffer, UINTN BufferWidth, UINTN BufferHeight, UINTN X0, UINTN Y0, UINTN X1, UINTN Y1,
                    UINTN Thickness, UINT32 Color)
{
    return Pass(CALL_DRAW_LINE, [&] {
        return Board().Draw->DrawLine(Buffer, BufferWidth, BufferHeight, X0, Y0, X1, Y1, Thickness, Color);
    });
}

// A copy of the board's table to cover, so that slots without a cover stay the board's.
template <typename TABLE> TABLE& Begin(TABLE*& True, TABLE& Copy, VOID* Interface)
{
    True = static_cast<TABLE*>(Interface);
    Copy = *True;
    return Copy;
}

} // namespace

VOID* BOARD_PROXY::Cover(const EFI_GUID& Guid, VOID* Interface)
{
    if (SameGuids(Guid, gHwServiceProtocolGuid)) {
        HW_SERVICE_PROTOCOL& Table = Begin(Hardware, mHardware, Interface);
        Table.Initialize = ::Initialize;
        Table.GetFanKind = GetFanKind;
        Table.GetItemString = GetItemString;
        Table.GetItemValue = GetItemValue;
        CoverFans(Table, std::make_index_sequence<gFanItemCount>());
        Table.LoadDefaultFanSettings = LoadDefaultFanSettings;
        Table.SetAllFansFullSpeed = SetAllFansFullSpeed;
        Table.RestoreFanSettings = RestoreFanSettings;
        return &Table;
    }
    if (SameGuids(Guid, gCursorServiceProtocolGuid) || SameGuids(Guid, gCursorServiceProtocol2Guid)) {
        CURSOR_SERVICE_PROTOCOL& Table = Begin(Cursor, mCursor, Interface);
        Table = {GetCursorState, SetCursorLimits, CloseCursor};
        return &Table;
    }
    if (SameGuids(Guid, gFloatMathProtocolGuid)) {
        FLOAT_MATH_PROTOCOL& Table = Begin(Float, mFloat, Interface);
        Table.FloatToString = FloatToString;
        return &Table;
    }
    if (SameGuids(Guid, gImageLookupProtocolGuid)) {
        IMAGE_LOOKUP_PROTOCOL& Table = Begin(Lookup, mLookup, Interface);
        Table.GetFileSection = GetFileSection;
        return &Table;
    }
    if (SameGuids(Guid, gImageSectionProtocolGuid)) {
        IMAGE_SECTION_PROTOCOL& Table = Begin(Sections, mSections, Interface);
        Table.GetArtworkSection = GetArtworkSection;
        Table.Configure = Configure;
        return &Table;
    }
    if (SameGuids(Guid, gImageDecoderProtocolGuid)) {
        IMAGE_DECODER_PROTOCOL& Table = Begin(Decoder, mDecoder, Interface);
        Table.ConvertJPEGToUgaBltA = ConvertJpeg;
        Table.ConvertBmpToGopBltA = ConvertBmp;
        Table.GetFirmwareGeneration = GetFirmwareGeneration;
        return &Table;
    }
    if (SameGuids(Guid, gDrawPrimitivesProtocolGuid)) {
        DRAW_PRIMITIVES_PROTOCOL& Table = Begin(Draw, mDraw, Interface);
        Table.CreateMessageBox = CreateMessageBox;
        Table.UpdateMessageBox = UpdateMessageBox;
        Table.DrawMessageBox = DrawMessageBox;
        Table.DrawLine = DrawLine;
        return &Table;
    }
    return Interface;
}
