#include "platform/host/FirmwareProtocols.h"

#include "platform/board/TextService.h"
#include "platform/host/CurrentBoot.h"

namespace {

constexpr UINT64 gFemtosecondsPerNanosecond = 1000000;

EFI_STATUS Blt(EFI_GRAPHICS_OUTPUT_PROTOCOL*, EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer,
               EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX, UINTN SourceY, UINTN DestinationX,
               UINTN DestinationY, UINTN Width, UINTN Height, UINTN Delta)
{
    return gCurrentBoot->Display.Blt(Buffer, Operation, SourceX, SourceY, DestinationX, DestinationY, Width, Height,
                                     Delta);
}

EFI_STATUS GetTimerValue(EFI_CPU_ARCH_PROTOCOL*, UINT32 Index, UINT64* Value, UINT64* Period)
{
    if (Index != 0 || Value == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    const BOOT_OPTIONS& Options = gCurrentBoot->Options();
    const auto Femtoseconds =
        static_cast<unsigned __int128>(gCurrentBoot->Clock.Nanoseconds()) * gFemtosecondsPerNanosecond;
    *Value = Options.TimerAtStart + static_cast<UINT64>(Femtoseconds / Options.TimerPeriod);
    if (Period != nullptr) {
        *Period = Options.TimerPeriod;
    }
    return EFI_SUCCESS;
}

VOID* AllocateForText(UINTN Size)
{
    VOID* Block = nullptr;
    (void)gCurrentBoot->Pool.AllocateZeroed(Size, __builtin_return_address(0), &Block);
    return Block;
}

VOID FreeForText(VOID* Block) { (void)gCurrentBoot->Pool.Free(Block, __builtin_return_address(0)); }

EFI_STATUS StringToImage(const EFI_HII_FONT_PROTOCOL*, EFI_HII_OUT_FLAGS Flags, const CHAR16* String,
                         const EFI_FONT_DISPLAY_INFO* Information, EFI_IMAGE_OUTPUT** Image, UINTN, UINTN,
                         EFI_HII_ROW_INFO** Rows, UINTN* RowCount, UINTN*)
{
    return RenderText(
        {.Allocate = AllocateForText, .Free = FreeForText, .Roomy = gCurrentBoot->Options().RoomyTextPictures}, Flags,
        String, Information, Image, Rows, RowCount);
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
    // The display has its one mode, and nobody asks for another.
    GraphicsOutput.QueryMode = [](auto...) -> EFI_STATUS { return EFI_UNSUPPORTED; };
    GraphicsOutput.SetMode = [](auto...) -> EFI_STATUS { return EFI_UNSUPPORTED; };
    GraphicsOutput.Blt = Blt;
    GraphicsOutput.Mode = DisplayMode;
    Shown = &GraphicsOutput;
    Processor.GetTimerValue = GetTimerValue;
    Processor.NumberOfTimers = 1;
    Processor.DmaBufferAlignment = 4;
    Font.StringToImage = StringToImage;
}

VOID FIRMWARE_PROTOCOLS::Install(HANDLES& Handles)
{
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
