#include "platform/host/Display.h"

#include <algorithm>
#include <cstring>

#include "platform/board/BootScreen.h"

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

bool IsOnDisplay(UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    return X <= gDisplayWidth && Width <= gDisplayWidth - X && Y <= gDisplayHeight && Height <= gDisplayHeight - Y;
}

// Painted once for all machines of a process: it takes longer than a console's start does with a fuzzer's counters.
const PICTURE& BootScreen()
{
    static const PICTURE Screen = [] {
        PICTURE Painted(UINTN{gDisplayWidth} * gDisplayHeight);
        PaintBootScreen(reinterpret_cast<PIXEL*>(Painted.data()));
        return Painted;
    }();
    return Screen;
}

} // namespace

static_assert(BOOT_SCREEN_WIDTH == gDisplayWidth && BOOT_SCREEN_HEIGHT == gDisplayHeight);

DISPLAY::DISPLAY() : mWords(BootScreen())
{
    Pixels = reinterpret_cast<PIXEL*>(mWords.data());
    Information = {.Version = 0,
                   .HorizontalResolution = gDisplayWidth,
                   .VerticalResolution = gDisplayHeight,
                   .PixelFormat = PixelBlueGreenRedReserved8BitPerColor,
                   .PixelInformation = {},
                   .PixelsPerScanLine = gDisplayWidth};
    Mode = {.MaxMode = 1,
            .Mode = 0,
            .Info = &Information,
            .SizeOfInfo = sizeof(Information),
            .FrameBufferBase = reinterpret_cast<UINT64>(Pixels),
            .FrameBufferSize = gDisplayBytes};
}

EFI_STATUS DISPLAY::Blt(PIXEL* Buffer, EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX, UINTN SourceY,
                        UINTN DestinationX, UINTN DestinationY, UINTN Width, UINTN Height, UINTN Delta)
{
    if (Operation >= EfiGraphicsOutputBltOperationMax || Width == 0 || Height == 0 ||
        (Buffer == nullptr && Operation != EfiBltVideoToVideo)) {
        return EFI_INVALID_PARAMETER;
    }
    const bool ReadsDisplay = Operation == EfiBltVideoToBltBuffer || Operation == EfiBltVideoToVideo;
    const bool WritesDisplay = Operation != EfiBltVideoToBltBuffer;
    if ((ReadsDisplay && !IsOnDisplay(SourceX, SourceY, Width, Height)) ||
        (WritesDisplay && !IsOnDisplay(DestinationX, DestinationY, Width, Height))) {
        return EFI_INVALID_PARAMETER;
    }
    const UINTN Pitch = Delta == 0 ? Width * sizeof(PIXEL) : Delta;
    const auto BufferRow = [&](UINTN X, UINTN Y) {
        return reinterpret_cast<PIXEL*>(reinterpret_cast<UINT8*>(Buffer) + Y * Pitch) + X;
    };
    const auto DisplayRow = [&](UINTN X, UINTN Y) { return Pixels + Y * gDisplayWidth + X; };

    for (UINTN At = 0; At < Height; At++) {
        switch (Operation) {
        case EfiBltVideoFill:
            std::fill_n(DisplayRow(DestinationX, DestinationY + At), Width, *Buffer);
            break;
        case EfiBltVideoToBltBuffer:
            std::memcpy(BufferRow(DestinationX, DestinationY + At), DisplayRow(SourceX, SourceY + At),
                        Width * sizeof(PIXEL));
            break;
        case EfiBltBufferToVideo:
            std::memcpy(DisplayRow(DestinationX, DestinationY + At), BufferRow(SourceX, SourceY + At),
                        Width * sizeof(PIXEL));
            break;
        case EfiBltVideoToVideo: {
            // Downwards moves start at the last row, so that an overlap isn't read after it was written.
            const UINTN Row = DestinationY > SourceY ? Height - 1 - At : At;
            std::memmove(DisplayRow(DestinationX, DestinationY + Row), DisplayRow(SourceX, SourceY + Row),
                         Width * sizeof(PIXEL));
            break;
        }
        case EfiGraphicsOutputBltOperationMax:
            break;
        }
    }
    return EFI_SUCCESS;
}
