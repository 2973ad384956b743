#include "platform/host/FirmwareProtocols.h"

#include <algorithm>

#include "platform/host/Cross.h"
#include "platform/host/TextImage.h"

namespace {

constexpr UINT64 gFemtosecondsPerTick = 1000000; // a tick a nanosecond

// --- As they are ---

EFI_STATUS QueryMode(EFI_GRAPHICS_OUTPUT_PROTOCOL*, UINT32 Mode, UINTN* Size,
                     EFI_GRAPHICS_OUTPUT_MODE_INFORMATION** Information)
{
    if (Mode != 0 || Size == nullptr || Information == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    VOID* Copy;
    const EFI_STATUS Status = gBoot->Pool.Allocate(sizeof(**Information), __builtin_return_address(0), &Copy);
    if (!EfiError(Status)) {
        *Information = static_cast<EFI_GRAPHICS_OUTPUT_MODE_INFORMATION*>(Copy);
        **Information = gBoot->Display.Information;
        *Size = sizeof(**Information);
    }
    return Status;
}

EFI_STATUS SetMode(EFI_GRAPHICS_OUTPUT_PROTOCOL*, UINT32 Mode)
{
    if (Mode != 0) {
        return EFI_UNSUPPORTED;
    }
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL Black = {};
    const DISPLAY& Display = gBoot->Display;
    return gBoot->Display.Blt(&Black, EfiBltVideoFill, 0, 0, 0, 0, Display.Width(), Display.Height(), 0);
}

EFI_STATUS Blt(EFI_GRAPHICS_OUTPUT_PROTOCOL*, EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer,
               EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX, UINTN SourceY, UINTN DestinationX,
               UINTN DestinationY, UINTN Width, UINTN Height, UINTN Delta)
{
    return gBoot->Display.Blt(Buffer, Operation, SourceX, SourceY, DestinationX, DestinationY, Width, Height, Delta);
}

EFI_STATUS GetTimerValue(EFI_CPU_ARCH_PROTOCOL*, UINT32 Index, UINT64* Value, UINT64* Period)
{
    if (Index != 0 || Value == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    *Value = gBoot->Options().TimerAtStart + gBoot->Clock.Nanoseconds();
    if (Period != nullptr) {
        *Period = gFemtosecondsPerTick;
    }
    return EFI_SUCCESS;
}

EFI_STATUS StringToImage(const EFI_HII_FONT_PROTOCOL*, EFI_HII_OUT_FLAGS Flags, const CHAR16* String,
                         const EFI_FONT_DISPLAY_INFO* Information, EFI_IMAGE_OUTPUT** Image, UINTN, UINTN,
                         EFI_HII_ROW_INFO** Rows, UINTN* RowCount, UINTN*)
{
    return RenderString(*gBoot, Flags, String, Information, Image, Rows, RowCount);
}

// --- As the console gets them ---

EFI_STATUS ConsoleBlt(EFI_GRAPHICS_OUTPUT_PROTOCOL*, EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer,
                      EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX, UINTN SourceY, UINTN DestinationX,
                      UINTN DestinationY, UINTN Width, UINTN Height, UINTN Delta)
{
    const EFI_STATUS Status = Cross(CALL_BLT, [&] {
        EFI_GRAPHICS_OUTPUT_PROTOCOL* Shown = gBoot->Protocols.Shown;
        return Shown->Blt(Shown, Buffer, Operation, SourceX, SourceY, DestinationX, DestinationY, Width, Height, Delta);
    });
    static constexpr const char* Names[] = {"fill", "to-buffer", "from-buffer", "video", "unknown"};
    const bool Reads = Operation == EfiBltVideoToBltBuffer;
    TraceCall(CALL_BLT)
        .Status(Status)
        .Text("operation", std::string_view(Names[std::min(Operation, EfiGraphicsOutputBltOperationMax)]))
        .Number("x", Reads ? SourceX : DestinationX)
        .Number("y", Reads ? SourceY : DestinationY)
        .Number("width", Width)
        .Number("height", Height)
        .Number("delta", Delta);
    return Status;
}

EFI_STATUS ConsoleGetTimerValue(EFI_CPU_ARCH_PROTOCOL* This, UINT32 Index, UINT64* Value, UINT64* Period)
{
    return Cross(CALL_GET_TIMER_VALUE, [&] { return GetTimerValue(This, Index, Value, Period); }, Value, Period);
}

EFI_STATUS ConsoleStringToImage(const EFI_HII_FONT_PROTOCOL* This, EFI_HII_OUT_FLAGS Flags, const CHAR16* String,
                                const EFI_FONT_DISPLAY_INFO* Information, EFI_IMAGE_OUTPUT** Image, UINTN X, UINTN Y,
                                EFI_HII_ROW_INFO** Rows, UINTN* RowCount, UINTN* Columns)
{
    const EFI_STATUS Status = Cross(CALL_STRING_TO_IMAGE, [&] {
        return StringToImage(This, Flags, String, Information, Image, X, Y, Rows, RowCount, Columns);
    }, Image, Rows, RowCount);
    TraceCall(CALL_STRING_TO_IMAGE).Status(Status).Text("text", String);
    return Status;
}

// Members of the font protocol's family: present on every board, and nobody here calls them.
constexpr const EFI_GUID* gPresentOnly[] = {
    &gEfiHiiStringProtocolGuid,
    &gEfiHiiDatabaseProtocolGuid,
    &gEfiHiiConfigRoutingProtocolGuid,
    &gEfiHiiImageProtocolGuid,
};

} // namespace

VOID FIRMWARE_PROTOCOLS::Fill(EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE* DisplayMode)
{
    GraphicsOutput = {.QueryMode = QueryMode, .SetMode = SetMode, .Blt = Blt, .Mode = DisplayMode};
    Shown = &GraphicsOutput;
    Processor.GetTimerValue = GetTimerValue;
    Processor.NumberOfTimers = 1;
    Processor.DmaBufferAlignment = 4;
    ConsoleProcessor = Processor;
    ConsoleProcessor.GetTimerValue = ConsoleGetTimerValue;
    Font.StringToImage = StringToImage;
    ConsoleFont = Font;
    ConsoleFont.StringToImage = ConsoleStringToImage;
}

VOID FIRMWARE_PROTOCOLS::Install(HANDLES& Handles)
{
    ConsoleGraphicsOutput = *Shown;
    ConsoleGraphicsOutput.Blt = ConsoleBlt;
    EFI_HANDLE Display = nullptr;
    EFI_HANDLE Chip = nullptr;
    EFI_HANDLE Hii = nullptr;
    (void)Handles.Install(&Display, &gEfiGraphicsOutputProtocolGuid, Shown);
    (void)Handles.Install(&Chip, &gEfiCpuArchProtocolGuid, &Processor);
    (void)Handles.Install(&Hii, &gEfiHiiFontProtocolGuid, &Font);
    for (const EFI_GUID* Guid : gPresentOnly) {
        (void)Handles.Install(&Hii, Guid, nullptr);
    }
}

VOID* FIRMWARE_PROTOCOLS::Cover(VOID* Interface)
{
    if (Interface == Shown) {
        return &ConsoleGraphicsOutput;
    }
    if (Interface == &Processor) {
        return &ConsoleProcessor;
    }
    return Interface == &Font ? static_cast<VOID*>(&ConsoleFont) : Interface;
}
