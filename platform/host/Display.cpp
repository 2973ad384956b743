#include "platform/host/Display.h"

#include <algorithm>
#include <cstring>

#include "platform/board/BootScreen.h"

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

constexpr UINTN gRowPadding = 32; // pixels behind a row, on a panel that has any

bool IsOrdinary(const PANEL& Panel)
{
    return Panel.Width == gDisplayWidth && Panel.Height == gDisplayHeight && Panel.Format == PANEL_BLUE_FIRST;
}

UINTN BytesPerPixel(PANEL_FORMAT Format) { return Format == PANEL_THREE_BYTES ? 3 : 4; }

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

DISPLAY::DISPLAY(const PANEL& Panel)
    : mPanel(Panel), mWords(IsOrdinary(Panel) ? BootScreen() : PICTURE(UINTN{Panel.Width} * Panel.Height))
{
    Pixels = reinterpret_cast<PIXEL*>(mWords.data());
    Information = {.Version = 0,
                   .HorizontalResolution = Panel.Width,
                   .VerticalResolution = Panel.Height,
                   .PixelFormat = PixelBlueGreenRedReserved8BitPerColor,
                   .PixelInformation = {},
                   .PixelsPerScanLine = Panel.Width};
    Mode = {.MaxMode = 1,
            .Mode = 0,
            .Info = &Information,
            .SizeOfInfo = sizeof(Information),
            .FrameBufferBase = reinterpret_cast<UINT64>(Pixels),
            .FrameBufferSize = mWords.size() * sizeof(PIXEL)};
    if (Panel.Format == PANEL_BLT_ONLY) {
        Information.PixelFormat = PixelBltOnly;
        Mode.FrameBufferBase = 0;
        Mode.FrameBufferSize = 0;
    } else if (Panel.Format != PANEL_BLUE_FIRST) {
        Information.PixelFormat =
            Panel.Format == PANEL_RED_FIRST ? PixelRedGreenBlueReserved8BitPerColor : PixelBitMask;
        if (Panel.Format == PANEL_THREE_BYTES) {
            Information.PixelInformation = {
                .RedMask = 0xFF0000, .GreenMask = 0xFF00, .BlueMask = 0xFF, .ReservedMask = 0};
        }
        Information.PixelsPerScanLine = static_cast<UINT32>(Panel.Width + gRowPadding);
        mFrameBuffer.resize(UINTN{Information.PixelsPerScanLine} * Panel.Height * BytesPerPixel(Panel.Format));
        Mode.FrameBufferBase = reinterpret_cast<UINT64>(mFrameBuffer.data());
        Mode.FrameBufferSize = mFrameBuffer.size();
    }
}

bool DISPLAY::Covers(UINTN X, UINTN Y, UINTN Width, UINTN Height) const
{
    return X <= mPanel.Width && Width <= mPanel.Width - X && Y <= mPanel.Height && Height <= mPanel.Height - Y;
}

VOID DISPLAY::WriteFrameBuffer(UINTN X, UINTN Y, UINTN Width)
{
    const UINTN Bytes = BytesPerPixel(mPanel.Format);
    UINT8* To = mFrameBuffer.data() + (Y * Information.PixelsPerScanLine + X) * Bytes;
    for (const PIXEL* From = Pixels + Y * mPanel.Width + X; Width > 0; Width--, From++, To += Bytes) {
        const bool RedFirst = mPanel.Format == PANEL_RED_FIRST;
        To[0] = RedFirst ? From->Red : From->Blue;
        To[1] = From->Green;
        To[2] = RedFirst ? From->Blue : From->Red;
    }
}

EFI_STATUS DISPLAY::Blt(PIXEL* Buffer, EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX, UINTN SourceY,
                        UINTN DestinationX, UINTN DestinationY, UINTN Width, UINTN Height, UINTN Delta)
{
    const bool Reads = Operation == EfiBltVideoToBltBuffer;
    if (Operation >= EfiBltVideoToVideo || Buffer == nullptr || Width == 0 || Height == 0 ||
        !Covers(Reads ? SourceX : DestinationX, Reads ? SourceY : DestinationY, Width, Height)) {
        return EFI_INVALID_PARAMETER;
    }
    const UINTN Pitch = Delta == 0 ? Width * sizeof(PIXEL) : Delta;
    const auto BufferRow = [&](UINTN X, UINTN Y) {
        return reinterpret_cast<PIXEL*>(reinterpret_cast<UINT8*>(Buffer) + Y * Pitch) + X;
    };
    const auto DisplayRow = [&](UINTN X, UINTN Y) { return Pixels + Y * mPanel.Width + X; };

    for (UINTN Index = 0; Index < Height; Index++) {
        if (Operation == EfiBltVideoFill) {
            std::fill_n(DisplayRow(DestinationX, DestinationY + Index), Width, *Buffer);
        } else if (Reads) {
            std::memcpy(BufferRow(DestinationX, DestinationY + Index), DisplayRow(SourceX, SourceY + Index),
                        Width * sizeof(PIXEL));
        } else {
            std::memcpy(DisplayRow(DestinationX, DestinationY + Index), BufferRow(SourceX, SourceY + Index),
                        Width * sizeof(PIXEL));
        }
    }
    if (!Reads && !mFrameBuffer.empty()) {
        for (UINTN Index = 0; Index < Height; Index++) {
            WriteFrameBuffer(DestinationX, DestinationY + Index, Width);
        }
    }
    return EFI_SUCCESS;
}
