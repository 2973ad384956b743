#include "platform/display/DisplayLayer.h"

#include "platform/display/Scale.h"

namespace {

constexpr UINTN gPictureBytes = static_cast<UINTN>(gPictureWidth) * gPictureHeight * sizeof(PIXEL);
constexpr UINT32 gStripRows = 64; // panel rows a Blt of scaled pixels; more than any multiple

// What stands around the picture: the dark tone of the boot screen's edge.
constexpr PIXEL gSurround = {.Blue = 36, .Green = 26, .Red = 20, .Reserved = 0};

// Changes of at most so many pixels are gathered, as long as one rectangle of at most so many holds them.
constexpr UINT32 gFewPixels = 4;
constexpr UINT32 gMostHeld = 16384;

constexpr UINT32 Smaller(UINT32 A, UINT32 B) { return A < B ? A : B; }
constexpr UINT32 Larger(UINT32 A, UINT32 B) { return A > B ? A : B; }
constexpr UINT64 PixelsOf(const PANEL_AREA& Area)
{
    return static_cast<UINT64>(Area.Right - Area.Left) * (Area.Bottom - Area.Top);
}
constexpr PANEL_AREA Around(const PANEL_AREA& A, const PANEL_AREA& B)
{
    return {Smaller(A.Left, B.Left), Smaller(A.Top, B.Top), Larger(A.Right, B.Right), Larger(A.Bottom, B.Bottom)};
}

bool SamePixel(PIXEL A, PIXEL B) { return __builtin_bit_cast(UINT32, A) == __builtin_bit_cast(UINT32, B); }

bool IsInPicture(UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    return X <= gPictureWidth && Width <= gPictureWidth - X && Y <= gPictureHeight && Height <= gPictureHeight - Y;
}

DISPLAY_LAYER* LayerOf(EFI_GRAPHICS_OUTPUT_PROTOCOL* Graphics) { return reinterpret_cast<DISPLAY_LAYER*>(Graphics); }

PIXEL* PictureRow(const DISPLAY_LAYER* Layer, UINTN Row) { return Layer->Picture + Row * gPictureWidth; }

// Sends a part of the picture to the display.
EFI_STATUS Send(const DISPLAY_LAYER* Layer, const PANEL_AREA& Changed)
{
    const PLACEMENT& Place = Layer->Place;
    EFI_GRAPHICS_OUTPUT_PROTOCOL* Firmware = Layer->Firmware;
    if (Place.Multiple == 1) {
        return Firmware->Blt(Firmware, Layer->Picture, EfiBltBufferToVideo, Changed.Left, Changed.Top,
                             Place.X + Changed.Left, Place.Y + Changed.Top, Changed.Right - Changed.Left,
                             Changed.Bottom - Changed.Top, gPictureWidth * sizeof(PIXEL));
    }
    const PANEL_AREA Target = AreaOnPanel(Place, Changed);
    const UINTN Width = Target.Right - Target.Left;
    const UINT32 RowsAtOnce = Place.Multiple == 0 ? gStripRows : gStripRows - gStripRows % Place.Multiple;
    EFI_STATUS Status = EFI_SUCCESS;
    for (UINT32 Top = Target.Top; Top < Target.Bottom && !EfiError(Status);) {
        const UINT32 Bottom = Smaller(Target.Bottom, Top + RowsAtOnce);
        ScaleRows(Layer->Picture, Place, {Target.Left, Top, Target.Right, Bottom}, Layer->Strip);
        Status = Firmware->Blt(Firmware, Layer->Strip, EfiBltBufferToVideo, 0, 0, Target.Left, Top, Width, Bottom - Top,
                               Width * sizeof(PIXEL));
        Top = Bottom;
    }
    return Status;
}

EFI_STATUS SendHeld(DISPLAY_LAYER* Layer)
{
    if (Layer->Held.Right == 0) {
        return EFI_SUCCESS;
    }
    const PANEL_AREA Held = Layer->Held;
    Layer->Held = {};
    return Send(Layer, Held);
}

// Takes note of a changed part of the picture: gathers it with what is held back, or sends both.
EFI_STATUS TakeChange(DISPLAY_LAYER* Layer, const PANEL_AREA& Changed)
{
    if (PixelsOf(Changed) <= gFewPixels) {
        const PANEL_AREA Together = Layer->Held.Right == 0 ? Changed : Around(Layer->Held, Changed);
        if (PixelsOf(Together) <= gMostHeld) {
            Layer->Held = Together;
            return EFI_SUCCESS;
        }
        const EFI_STATUS Status = SendHeld(Layer);
        Layer->Held = Changed;
        return Status;
    }
    const EFI_STATUS Status = SendHeld(Layer);
    const EFI_STATUS Last = Send(Layer, Changed);
    return EfiError(Last) ? Last : Status;
}

// Widens Changed by the part of a row that differs from what is shown, and writes the row.
VOID ChangeRow(DISPLAY_LAYER* Layer, UINTN Row, UINTN Left, const PIXEL* New, UINTN Width, PANEL_AREA* Changed)
{
    PIXEL* Old = PictureRow(Layer, Row) + Left;
    UINTN First = 0;
    while (First < Width && SamePixel(Old[First], New[First])) {
        First++;
    }
    if (First == Width) {
        return;
    }
    UINTN Behind = Width;
    while (SamePixel(Old[Behind - 1], New[Behind - 1])) {
        Behind--;
    }
    __builtin_memmove(Old + First, New + First, (Behind - First) * sizeof(PIXEL));
    const PANEL_AREA Part = {static_cast<UINT32>(Left + First), static_cast<UINT32>(Row),
                             static_cast<UINT32>(Left + Behind), static_cast<UINT32>(Row + 1)};
    *Changed = Changed->Right == 0 ? Part : Around(*Changed, Part);
}

VOID Fill(DISPLAY_LAYER* Layer, PIXEL Color, UINTN X, UINTN Y, UINTN Width, UINTN Height, PANEL_AREA* Changed)
{
    PIXEL Row[gPictureWidth];
    for (UINTN At = 0; At < Width; At++) {
        Row[At] = Color;
    }
    for (UINTN At = 0; At < Height; At++) {
        ChangeRow(Layer, Y + At, X, Row, Width, Changed);
    }
}

EFI_STATUS LayerBlt(EFI_GRAPHICS_OUTPUT_PROTOCOL* This, PIXEL* Buffer, EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation,
                    UINTN SourceX, UINTN SourceY, UINTN DestinationX, UINTN DestinationY, UINTN Width, UINTN Height,
                    UINTN Delta)
{
    DISPLAY_LAYER* Layer = LayerOf(This);
    if (Operation >= EfiGraphicsOutputBltOperationMax || Width == 0 || Height == 0 ||
        (Buffer == nullptr && Operation != EfiBltVideoToVideo)) {
        return EFI_INVALID_PARAMETER;
    }
    const bool ReadsDisplay = Operation == EfiBltVideoToBltBuffer || Operation == EfiBltVideoToVideo;
    if ((ReadsDisplay && !IsInPicture(SourceX, SourceY, Width, Height)) ||
        (Operation != EfiBltVideoToBltBuffer && !IsInPicture(DestinationX, DestinationY, Width, Height))) {
        return EFI_INVALID_PARAMETER;
    }
    const UINTN Pitch = Delta == 0 ? Width * sizeof(PIXEL) : Delta;
    const auto BufferRow = [&](UINTN X, UINTN Y) {
        return reinterpret_cast<PIXEL*>(reinterpret_cast<UINT8*>(Buffer) + Y * Pitch) + X;
    };

    Layer->Busy = true;
    PANEL_AREA Changed = {};
    switch (Operation) {
    case EfiBltVideoFill:
        Fill(Layer, *Buffer, DestinationX, DestinationY, Width, Height, &Changed);
        break;
    case EfiBltVideoToBltBuffer:
        for (UINTN At = 0; At < Height; At++) {
            __builtin_memcpy(BufferRow(DestinationX, DestinationY + At), PictureRow(Layer, SourceY + At) + SourceX,
                             Width * sizeof(PIXEL));
        }
        break;
    case EfiBltBufferToVideo:
        for (UINTN At = 0; At < Height; At++) {
            ChangeRow(Layer, DestinationY + At, DestinationX, BufferRow(SourceX, SourceY + At), Width, &Changed);
        }
        break;
    case EfiBltVideoToVideo:
        for (UINTN At = 0; At < Height; At++) {
            // A move downwards starts at the last row, so that an overlap isn't read after it was written.
            const UINTN Row = DestinationY > SourceY ? Height - 1 - At : At;
            ChangeRow(Layer, DestinationY + Row, DestinationX, PictureRow(Layer, SourceY + Row) + SourceX, Width,
                      &Changed);
        }
        break;
    case EfiGraphicsOutputBltOperationMax:
        break;
    }
    const EFI_STATUS Status = Changed.Right == 0 ? EFI_SUCCESS : TakeChange(Layer, Changed);
    Layer->Busy = false;
    return Status;
}

EFI_STATUS LayerQueryMode(EFI_GRAPHICS_OUTPUT_PROTOCOL* This, UINT32 Number, UINTN* Size,
                          EFI_GRAPHICS_OUTPUT_MODE_INFORMATION** Information)
{
    const DISPLAY_LAYER* Layer = LayerOf(This);
    if (Number != 0 || Size == nullptr || Information == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    VOID* Copy = nullptr;
    const EFI_STATUS Status = Layer->Boot->AllocatePool(EfiBootServicesData, sizeof(Layer->Information), &Copy);
    if (!EfiError(Status)) {
        *Information = static_cast<EFI_GRAPHICS_OUTPUT_MODE_INFORMATION*>(Copy);
        **Information = Layer->Information;
        *Size = sizeof(Layer->Information);
    }
    return Status;
}

EFI_STATUS LayerSetMode(EFI_GRAPHICS_OUTPUT_PROTOCOL* This, UINT32 Number)
{
    if (Number != 0) {
        return EFI_UNSUPPORTED;
    }
    PIXEL Black = {};
    return LayerBlt(This, &Black, EfiBltVideoFill, 0, 0, 0, 0, gPictureWidth, gPictureHeight, 0);
}

} // namespace

bool NeedsDisplayLayer(const EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE* Mode)
{
    const EFI_GRAPHICS_OUTPUT_MODE_INFORMATION* Information = Mode->Info;
    return Information->HorizontalResolution != gPictureWidth || Information->VerticalResolution != gPictureHeight ||
           Information->PixelFormat != PixelBlueGreenRedReserved8BitPerColor ||
           Information->PixelsPerScanLine != gPictureWidth || Mode->FrameBufferBase == 0;
}

EFI_STATUS OpenDisplayLayer(EFI_BOOT_SERVICES* Boot, EFI_GRAPHICS_OUTPUT_PROTOCOL* Firmware, DISPLAY_LAYER** Out)
{
    const EFI_GRAPHICS_OUTPUT_MODE_INFORMATION* Panel = Firmware->Mode->Info;
    const PLACEMENT Place = PlacePicture(Panel->HorizontalResolution, Panel->VerticalResolution);
    if (Place.Width == 0) {
        return EFI_UNSUPPORTED;
    }
    VOID* Block = nullptr;
    EFI_STATUS Status = Boot->AllocatePool(EfiBootServicesData, sizeof(DISPLAY_LAYER), &Block);
    if (EfiError(Status)) {
        return Status;
    }
    auto* Layer = static_cast<DISPLAY_LAYER*>(Block);
    *Layer = {};
    Layer->Boot = Boot;
    Layer->Firmware = Firmware;
    Layer->Place = Place;
    Status = Boot->AllocatePool(EfiBootServicesData, gPictureBytes, &Block);
    if (!EfiError(Status)) {
        Layer->Picture = static_cast<PIXEL*>(Block);
        Boot->SetMem(Layer->Picture, gPictureBytes, 0);
    }
    if (!EfiError(Status) && Place.Multiple != 1) {
        Status = Boot->AllocatePool(EfiBootServicesData, static_cast<UINTN>(Place.Width) * gStripRows * sizeof(PIXEL),
                                    &Block);
        Layer->Strip = EfiError(Status) ? nullptr : static_cast<PIXEL*>(Block);
    }
    if (EfiError(Status)) {
        CloseDisplayLayer(Layer);
        return Status;
    }
    Layer->Information = {.Version = 0,
                          .HorizontalResolution = gPictureWidth,
                          .VerticalResolution = gPictureHeight,
                          .PixelFormat = PixelBlueGreenRedReserved8BitPerColor,
                          .PixelInformation = {},
                          .PixelsPerScanLine = gPictureWidth};
    Layer->Mode = {.MaxMode = 1,
                   .Mode = 0,
                   .Info = &Layer->Information,
                   .SizeOfInfo = sizeof(Layer->Information),
                   .FrameBufferBase = reinterpret_cast<UINT64>(Layer->Picture),
                   .FrameBufferSize = gPictureBytes};
    Layer->Graphics = {.QueryMode = LayerQueryMode, .SetMode = LayerSetMode, .Blt = LayerBlt, .Mode = &Layer->Mode};
    RefreshDisplayLayer(Layer);
    *Out = Layer;
    return EFI_SUCCESS;
}

VOID FlushDisplayLayer(DISPLAY_LAYER* Layer)
{
    if (!Layer->Busy) {
        (void)SendHeld(Layer);
    }
}

VOID RefreshDisplayLayer(DISPLAY_LAYER* Layer)
{
    const PLACEMENT& Place = Layer->Place;
    PIXEL Color = gSurround;
    if (Place.Width != Place.PanelWidth || Place.Height != Place.PanelHeight) {
        (void)Layer->Firmware->Blt(Layer->Firmware, &Color, EfiBltVideoFill, 0, 0, 0, 0, Place.PanelWidth,
                                   Place.PanelHeight, 0);
    }
    Layer->Held = {};
    (void)Send(Layer, {0, 0, gPictureWidth, gPictureHeight});
}

VOID CloseDisplayLayer(DISPLAY_LAYER* Layer)
{
    if (Layer == nullptr) {
        return;
    }
    EFI_BOOT_SERVICES* Boot = Layer->Boot;
    if (Layer->Strip != nullptr) {
        (void)Boot->FreePool(Layer->Strip);
    }
    if (Layer->Picture != nullptr) {
        (void)Boot->FreePool(Layer->Picture);
    }
    (void)Boot->FreePool(Layer);
}
