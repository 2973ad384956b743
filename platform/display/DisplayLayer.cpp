#include "platform/display/DisplayLayer.h"

#include <emmintrin.h>

#include "platform/display/Scale.h"

namespace {

constexpr UINTN gPictureBytes = static_cast<UINTN>(gPictureWidth) * gPictureHeight * sizeof(PIXEL);
constexpr UINT32 gStripRows = 64; // panel rows in a Blt of scaled pixels

// What stands around the picture: the dark tone of the boot screen's edge.
constexpr PIXEL gSurround = {.Blue = 36, .Green = 26, .Red = 20, .Reserved = 0};

// Changes of at most so many pixels are gathered, as long as one rectangle of at most so many holds them.
constexpr UINT32 gFewPixels = 4;
constexpr UINT32 gMostHeld = 16384;

// Unchanged pixels that are sent to save a Blt.
constexpr UINT32 gSparedPixels = 512;

constexpr UINT64 PixelsOf(const PANEL_AREA& Area)
{
    return static_cast<UINT64>(Area.Right - Area.Left) * (Area.Bottom - Area.Top);
}
constexpr PANEL_AREA Around(const PANEL_AREA& A, const PANEL_AREA& B)
{
    return {Smaller(A.Left, B.Left), Smaller(A.Top, B.Top), Larger(A.Right, B.Right), Larger(A.Bottom, B.Bottom)};
}

bool SamePixel(PIXEL A, PIXEL B) { return __builtin_bit_cast(UINT32, A) == __builtin_bit_cast(UINT32, B); }

// Most of what the console sends is shown already, so that the comparison is most of the work.
template <UINTN Count> bool SameBlock(const PIXEL* A, const PIXEL* B)
{
    constexpr UINTN AtOnce = sizeof(__m128i) / sizeof(PIXEL);
    const auto Differ = [&](UINTN At) {
        return _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(A + At)),
                             _mm_loadu_si128(reinterpret_cast<const __m128i*>(B + At)));
    };
    __m128i Even = Differ(0);
    __m128i Odd = Differ(AtOnce);
    for (UINTN Index = 2 * AtOnce; Index < Count; Index += 2 * AtOnce) {
        Even = _mm_or_si128(Even, Differ(Index));
        Odd = _mm_or_si128(Odd, Differ(Index + AtOnce));
    }
    return _mm_movemask_epi8(_mm_cmpeq_epi32(_mm_or_si128(Even, Odd), _mm_setzero_si128())) == 0xFFFF;
}

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
    EFI_STATUS Status = EFI_SUCCESS;
    for (UINT32 Top = Target.Top; Top < Target.Bottom && !EfiError(Status);) {
        const UINT32 Bottom = Smaller(Target.Bottom, Top + gStripRows);
        ScaleRows(Layer->Picture, Place, {Target.Left, Top, Target.Right, Bottom}, Layer->Strip);
        Status = Firmware->Blt(Firmware, Layer->Strip, EfiBltBufferToVideo, 0, 0, Target.Left, Top, Width, Bottom - Top,
                               Width * sizeof(PIXEL));
        Top = Bottom;
    }
    return Status;
}

// Adds to what is held back.
VOID Hold(DISPLAY_LAYER* Layer, const PANEL_AREA& Changed)
{
    Layer->Held = Layer->Held.Right == 0 ? Changed : Around(Layer->Held, Changed);
}

// What can't be sent is held back for the next try: the console never sends again what it has drawn.
EFI_STATUS SendOrHold(DISPLAY_LAYER* Layer, const PANEL_AREA& Changed)
{
    const EFI_STATUS Status = Send(Layer, Changed);
    if (EfiError(Status)) {
        Hold(Layer, Changed);
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
    return SendOrHold(Layer, Held);
}

// Takes note of a changed part of the picture: gathers it with what is held back, or sends both.
EFI_STATUS TakeChange(DISPLAY_LAYER* Layer, const PANEL_AREA& Changed)
{
    const bool IsFew = PixelsOf(Changed) <= gFewPixels;
    if (IsFew && (Layer->Held.Right == 0 || PixelsOf(Around(Layer->Held, Changed)) <= gMostHeld)) {
        Hold(Layer, Changed);
        return EFI_SUCCESS;
    }
    const EFI_STATUS Status = SendHeld(Layer);
    if (IsFew) {
        Hold(Layer, Changed);
        return Status;
    }
    const EFI_STATUS Last = SendOrHold(Layer, Changed);
    return EfiError(Last) ? Last : Status;
}

// What changes in a block: for each stripe of so many columns, the rectangle around its changed pixels; empty: Right is 0.
constexpr UINT32 gStripe = 64;
constexpr UINTN gBlockPixels = 8; // in search of the first and the last
struct CHANGES {
    PANEL_AREA Stripes[gPictureWidth / gStripe];
};

// Writes part of a row and takes note of what differs from what is shown.
VOID ChangeStripe(DISPLAY_LAYER* Layer, UINTN Row, UINTN Left, const PIXEL* New, UINTN Width, PANEL_AREA* Changed)
{
    PIXEL* Old = PictureRow(Layer, Row) + Left;
    if (Width == gStripe && SameBlock<gStripe>(Old, New)) {
        return;
    }
    UINTN First = 0;
    while (First + gBlockPixels <= Width && SameBlock<gBlockPixels>(Old + First, New + First)) {
        First += gBlockPixels;
    }
    while (First < Width && SamePixel(Old[First], New[First])) {
        First++;
    }
    if (First == Width) {
        return;
    }
    UINTN Behind = Width;
    while (Behind >= First + gBlockPixels &&
           SameBlock<gBlockPixels>(Old + Behind - gBlockPixels, New + Behind - gBlockPixels)) {
        Behind -= gBlockPixels;
    }
    while (SamePixel(Old[Behind - 1], New[Behind - 1])) {
        Behind--;
    }
    __builtin_memcpy(Old + First, New + First, (Behind - First) * sizeof(PIXEL));
    const PANEL_AREA Part = {static_cast<UINT32>(Left + First), static_cast<UINT32>(Row),
                             static_cast<UINT32>(Left + Behind), static_cast<UINT32>(Row + 1)};
    *Changed = Changed->Right == 0 ? Part : Around(*Changed, Part);
}

// New must not lie in the picture.
VOID ChangeRow(DISPLAY_LAYER* Layer, UINTN Row, UINTN Left, const PIXEL* New, UINTN Width, CHANGES* Changes)
{
    PANEL_AREA* Stripe = Changes->Stripes;
    for (UINTN Index = 0; Index < Width; Index += gStripe, Stripe++) {
        ChangeStripe(Layer, Row, Left + Index, New + Index, Width - Index < gStripe ? Width - Index : gStripe, Stripe);
    }
}

// Stripes that lie beside each other go together where that sends few pixels more: each Blt costs something by itself.
EFI_STATUS TakeChanges(DISPLAY_LAYER* Layer, const CHANGES& Changes)
{
    PANEL_AREA Together = {};
    EFI_STATUS Status = EFI_SUCCESS;
    for (const PANEL_AREA& Stripe : Changes.Stripes) {
        if (Stripe.Right == 0) {
            continue;
        }
        const PANEL_AREA Both = Together.Right == 0 ? Stripe : Around(Together, Stripe);
        if (Together.Right != 0 && PixelsOf(Both) > PixelsOf(Together) + PixelsOf(Stripe) + gSparedPixels) {
            const EFI_STATUS Last = TakeChange(Layer, Together);
            Status = EfiError(Last) ? Last : Status;
            Together = Stripe;
        } else {
            Together = Both;
        }
    }
    const EFI_STATUS Last = Together.Right == 0 ? EFI_SUCCESS : TakeChange(Layer, Together);
    return EfiError(Last) ? Last : Status;
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
    __atomic_signal_fence(__ATOMIC_SEQ_CST); // a timer's function sees Held as it was before, or as it is behind this
    CHANGES Changes = {};
    PIXEL Row[gPictureWidth];
    switch (Operation) {
    case EfiBltVideoFill:
        for (UINTN Index = 0; Index < Width; Index++) {
            Row[Index] = *Buffer;
        }
        for (UINTN Index = 0; Index < Height; Index++) {
            ChangeRow(Layer, DestinationY + Index, DestinationX, Row, Width, &Changes);
        }
        break;
    case EfiBltVideoToBltBuffer:
        for (UINTN Index = 0; Index < Height; Index++) {
            __builtin_memcpy(BufferRow(DestinationX, DestinationY + Index),
                             PictureRow(Layer, SourceY + Index) + SourceX, Width * sizeof(PIXEL));
        }
        break;
    case EfiBltBufferToVideo:
        for (UINTN Index = 0; Index < Height; Index++) {
            ChangeRow(Layer, DestinationY + Index, DestinationX, BufferRow(SourceX, SourceY + Index), Width, &Changes);
        }
        break;
    case EfiBltVideoToVideo:
        for (UINTN Index = 0; Index < Height; Index++) {
            // A move downwards starts at the last row, so that an overlap isn't read after it was written.
            const UINTN Moved = DestinationY > SourceY ? Height - 1 - Index : Index;
            __builtin_memcpy(Row, PictureRow(Layer, SourceY + Moved) + SourceX, Width * sizeof(PIXEL));
            ChangeRow(Layer, DestinationY + Moved, DestinationX, Row, Width, &Changes);
        }
        break;
    case EfiGraphicsOutputBltOperationMax:
        break;
    }
    const EFI_STATUS Status = TakeChanges(Layer, Changes);
    __atomic_signal_fence(__ATOMIC_SEQ_CST);
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

// Clears the picture and all around it, whatever the display shows.
EFI_STATUS Clear(DISPLAY_LAYER* Layer)
{
    const PLACEMENT& Place = Layer->Place;
    EFI_GRAPHICS_OUTPUT_PROTOCOL* Firmware = Layer->Firmware;
    PIXEL Surround = gSurround;
    PIXEL Black = {};
    EFI_STATUS Status = EFI_SUCCESS;
    Layer->Held = {};
    Layer->Boot->SetMem(Layer->Picture, gPictureBytes, 0);
    if (Place.Width != Place.PanelWidth || Place.Height != Place.PanelHeight) {
        Status =
            Firmware->Blt(Firmware, &Surround, EfiBltVideoFill, 0, 0, 0, 0, Place.PanelWidth, Place.PanelHeight, 0);
    }
    const EFI_STATUS Last =
        Firmware->Blt(Firmware, &Black, EfiBltVideoFill, 0, 0, Place.X, Place.Y, Place.Width, Place.Height, 0);
    if (EfiError(Last)) {
        Hold(Layer, {0, 0, gPictureWidth, gPictureHeight});
    }
    return EfiError(Last) ? Last : Status;
}

EFI_STATUS LayerSetMode(EFI_GRAPHICS_OUTPUT_PROTOCOL* This, UINT32 Number)
{
    return Number == 0 ? Clear(LayerOf(This)) : EFI_UNSUPPORTED;
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
    (void)Clear(Layer); // what fails of it is sent with the first picture, but for the surround
    *Out = Layer;
    return EFI_SUCCESS;
}

VOID FlushDisplayLayer(DISPLAY_LAYER* Layer)
{
    if (!Layer->Busy) {
        (void)SendHeld(Layer);
    }
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
