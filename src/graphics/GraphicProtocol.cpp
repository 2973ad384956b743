#include "graphics/GraphicProtocol.h"

#include "shell/contract/Board.h"
#include "support/Pool.h"

namespace {

// Rows of fewer pixels than this are copied here: a call of the firmware's CopyMem takes longer to begin than they do.
constexpr UINTN gShortRow = 48;

VOID CopyBlock(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows)
{
    if (Columns < gShortRow) {
        CopyPixels(Dst, Src, Columns, Rows);
        return;
    }
    if (Columns == Dst.Stride && Columns == Src.Stride) {
        CopyMem(Dst.Row, Src.Row, Columns * Rows * sizeof(PIXEL));
        return;
    }
    for (; Rows > 0; Rows--, Dst.Row += Dst.Stride, Src.Row += Src.Stride) {
        CopyMem(Dst.Row, Src.Row, Columns * sizeof(PIXEL));
    }
}

VOID SendToVideo(PIXEL* Buffer, UINTN X, UINTN Y, UINTN Width, UINTN Height, UINTN Delta)
{
    if (Width != 0 && Height != 0) {
        (void)gGraphicsOutput->Blt(gGraphicsOutput, Buffer, EfiBltBufferToVideo, 0, 0, X, Y, Width, Height, Delta);
    }
}

// The changed block, cut at the screen's edges.
VOID SendBlock(PIXEL* Buffer, UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    SendToVideo(Buffer, X, Y, VisibleExtent(Width, X, gScreenWidth), VisibleExtent(Height, Y, gScreenHeight),
                Width * sizeof(PIXEL));
}

// Puts the pointer's block into a block whose top left corner is at (X, Y) of the screen, as far as the two overlap: what
// pasting both into one surface and reading the block back would give, without moving the rest of it.
VOID MergePointer(const GUI_CORE* Core, PIXEL* Buffer, UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    const UINTN PointerX = static_cast<UINTN>(Core->PointerX);
    const UINTN PointerY = static_cast<UINTN>(Core->PointerY);
    const UINTN Left = Larger(PointerX, X);
    const UINTN Top = Larger(PointerY, Y);
    const UINTN Right = Smaller(PointerX + Core->CursorWidth, X + VisibleExtent(Width, X, gScreenWidth));
    const UINTN Bottom = Smaller(PointerY + Core->CursorHeight, Y + VisibleExtent(Height, Y, gScreenHeight));
    if (Left < Right && Top < Bottom) {
        CopyBlock({Buffer + (Top - Y) * Width + (Left - X), Width},
                  {Core->CursorBlend + (Top - PointerY) * Core->CursorWidth + (Left - PointerX), Core->CursorWidth},
                  Right - Left, Bottom - Top);
    }
}

// The pointer over the right or bottom edge, touching it included, with the changed block sent before it. Here only
// pure black is transparent, and the block isn't merged.
VOID ComposeAtEdge(GUI_CORE* Core, PIXEL* Buffer, UINTN BlockX, UINTN BlockY, UINTN BlockWidth, UINTN BlockHeight)
{
    const UINTN X = static_cast<UINTN>(Core->PointerX);
    const UINTN Y = static_cast<UINTN>(Core->PointerY);
    const UINTN Width = VisibleExtent(Core->CursorWidth, X, gScreenWidth);
    const UINTN Height = VisibleExtent(Core->CursorHeight, Y, gScreenHeight);
    // Without pool for it the pointer is left out; the next composition repairs it.
    const TEMPORARY<PIXEL> Visible(Width == 0 || Height == 0 ? nullptr : AllocateArray<PIXEL>(Width * Height));
    if (Visible) {
        (void)ExtractBlt(Visible.Data, Width, Height, Core->Screen, gScreenWidth, gScreenHeight, static_cast<INT32>(Y),
                         static_cast<INT32>(X));
        (void)OverlayBlt(Core->CursorImage, static_cast<INT32>(Core->CursorWidth),
                         static_cast<INT32>(Core->CursorHeight), Visible.Data, Width, Height, 0, 0, &gBlackPixel,
                         nullptr, 0);
    }
    if (Buffer != nullptr) {
        SendBlock(Buffer, BlockX, BlockY, BlockWidth, BlockHeight);
    }
    if (Visible) {
        SendToVideo(Visible.Data, X, Y, Width, Height, 0);
    }
}

// The gray of a pixel, by the board's float service.
UINT8 GrayByService(PIXEL From, FLOAT_WORD RedShare, FLOAT_WORD GreenShare, FLOAT_WORD BlueShare)
{
    const FLOAT_WORD Red = gFloatMath->FloatMultiply(gFloatMath->IntToFloat(From.Red), RedShare);
    const FLOAT_WORD Green = gFloatMath->FloatMultiply(gFloatMath->IntToFloat(From.Green), GreenShare);
    const FLOAT_WORD Blue = gFloatMath->FloatMultiply(gFloatMath->IntToFloat(From.Blue), BlueShare);
    return static_cast<UINT8>(gFloatMath->FloatToInt(gFloatMath->FloatAdd(gFloatMath->FloatAdd(Red, Green), Blue)));
}

// Colours whose exact gray is a whole number, and whose gray in single precision is that number or one less, as the
// roundings on the way fall. Each other arithmetic fails on several: numbers rounded another way or not at all, a
// product and a sum rounded as one, another order of the sums, a fraction rounded and not dropped.
constexpr PIXEL gGrayProbes[] = {
    {.Blue = 37, .Green = 53, .Red = 29, .Reserved = 0}, {.Blue = 90, .Green = 10, .Red = 130, .Reserved = 0},
    {.Blue = 37, .Green = 37, .Red = 37, .Reserved = 0}, {.Blue = 245, .Green = 233, .Red = 1, .Reserved = 0},
    {.Blue = 56, .Green = 5, .Red = 19, .Reserved = 0},
};
constexpr UINTN gGrayProbeCount = sizeof(gGrayProbes) / sizeof(gGrayProbes[0]);

bool SameShare(FLOAT_WORD Share, float Value)
{
    return static_cast<UINT32>(Share) == __builtin_bit_cast(UINT32, Value);
}

// Whether the board's float service computes as the processor does, in IEEE single precision. That standard leaves no
// choice in a result, so the processor may then stand in for nine calls of the service a pixel.
bool ServiceCountsAsProcessor(FLOAT_WORD RedShare, FLOAT_WORD GreenShare, FLOAT_WORD BlueShare)
{
    if (!SameShare(RedShare, gRedShare) || !SameShare(GreenShare, gGreenShare) || !SameShare(BlueShare, gBlueShare)) {
        return false;
    }
    PIXEL Grays[gGrayProbeCount] = {};
    GrayPixels({Grays, gGrayProbeCount}, {gGrayProbes, gGrayProbeCount}, gGrayProbeCount, 1, gKeyColor);
    for (UINTN Index = 0; Index < gGrayProbeCount; Index++) {
        if (GrayByService(gGrayProbes[Index], RedShare, GreenShare, BlueShare) != Grays[Index].Blue) {
            return false;
        }
    }
    return true;
}

} // namespace

EFI_STATUS PasteBlt(const PIXEL* Src, UINTN Width, UINTN Height, UINTN X, UINTN Y, PIXEL* Dst)
{
    if (X >= gScreenWidth || Y >= gScreenHeight) {
        return EFI_OUT_OF_RESOURCES;
    }
    CopyBlock({Dst + Y * gScreenWidth + X, gScreenWidth}, {Src, Width}, VisibleExtent(Width, X, gScreenWidth),
              VisibleExtent(Height, Y, gScreenHeight));
    return EFI_SUCCESS;
}

EFI_STATUS ExtractBlt(PIXEL* Dst, UINTN DstWidth, UINTN DstHeight, const PIXEL* Src, UINTN SrcWidth, UINTN SrcHeight,
                      INT32 OffsetY, INT32 OffsetX)
{
    const UINTN Columns = VisibleExtent(DstWidth, static_cast<UINTN>(OffsetX), SrcWidth);
    const UINTN Rows = VisibleExtent(DstHeight, static_cast<UINTN>(OffsetY), SrcHeight);
    if (Columns == 0 || Rows == 0) {
        return EFI_SUCCESS;
    }
    const PIXEL* From = Src + static_cast<UINTN>(OffsetY) * SrcWidth + static_cast<UINTN>(OffsetX);
    CopyBlock({Dst, DstWidth}, {From, SrcWidth}, Columns, Rows);
    return EFI_SUCCESS;
}

EFI_STATUS OverlayBlt(const PIXEL* Src, INT32 SrcWidth, INT32 SrcHeight, PIXEL* Dst, UINTN DstWidth, UINTN DstHeight,
                      INT32 X, INT32 Y, const PIXEL* KeyColor, const PIXEL* BlendColor, UINT8 Percent)
{
    if (X < 0 || Y < 0) {
        const INT64 CutX = X < 0 ? -static_cast<INT64>(X) : 0;
        const INT64 CutY = Y < 0 ? -static_cast<INT64>(Y) : 0;
        const INT64 Width = SrcWidth - CutX;
        const INT64 Height = SrcHeight - CutY;
        if (Width <= 0 || Height <= 0) {
            return EFI_SUCCESS; // wholly above or left of the destination
        }
        const TEMPORARY<PIXEL> Visible(AllocateArray<PIXEL>(static_cast<UINTN>(Width * Height)));
        if (!Visible) {
            return EFI_SUCCESS;
        }
        (void)ExtractBlt(Visible.Data, static_cast<UINTN>(Width), static_cast<UINTN>(Height), Src,
                         static_cast<UINTN>(SrcWidth), static_cast<UINTN>(SrcHeight), static_cast<INT32>(CutY),
                         static_cast<INT32>(CutX));
        (void)OverlayBlt(Visible.Data, static_cast<INT32>(Width), static_cast<INT32>(Height), Dst, DstWidth, DstHeight,
                         X < 0 ? 0 : X, Y < 0 ? 0 : Y, KeyColor, BlendColor, Percent);
        return EFI_SUCCESS;
    }
    if (SrcWidth <= 0 || SrcHeight <= 0) {
        return EFI_SUCCESS;
    }

    const UINTN Columns = VisibleExtent(static_cast<UINTN>(SrcWidth), static_cast<UINTN>(X), DstWidth);
    const UINTN Rows = VisibleExtent(static_cast<UINTN>(SrcHeight), static_cast<UINTN>(Y), DstHeight);
    if (Columns == 0 || Rows == 0) {
        return EFI_SUCCESS;
    }
    const UINT32 Share = Percent < 1 ? 1 : Percent > 99 ? 99 : Percent;
    const PIXEL_BLOCK To = {Dst + static_cast<UINTN>(Y) * DstWidth + static_cast<UINTN>(X), DstWidth};
    const CONST_PIXEL_BLOCK From = {Src, static_cast<UINTN>(SrcWidth)};
    if (KeyColor == nullptr && BlendColor == nullptr) {
        CopyBlock(To, From, Columns, Rows);
    } else {
        OverlayPixels(To, From, Columns, Rows, KeyColor, BlendColor, Share);
    }
    return EFI_SUCCESS;
}

EFI_STATUS GrayBlt(PIXEL* Dst, UINTN DstWidth, UINTN DstHeight, const PIXEL* Src, UINTN SrcWidth, UINTN SrcHeight)
{
    const FLOAT_WORD Thousand = gFloatMath->IntToFloat(1000);
    const FLOAT_WORD RedShare = gFloatMath->FloatDivide(gFloatMath->IntToFloat(299), Thousand);
    const FLOAT_WORD GreenShare = gFloatMath->FloatDivide(gFloatMath->IntToFloat(587), Thousand);
    const FLOAT_WORD BlueShare = gFloatMath->FloatDivide(gFloatMath->IntToFloat(114), Thousand);

    const UINTN Columns = Smaller(DstWidth, SrcWidth);
    const UINTN Rows = Smaller(DstHeight, SrcHeight);
    if (ServiceCountsAsProcessor(RedShare, GreenShare, BlueShare)) {
        GrayPixels({Dst, DstWidth}, {Src, SrcWidth}, Columns, Rows, gKeyColor);
        return EFI_SUCCESS;
    }
    for (UINTN Row = 0; Row < Rows; Row++) {
        for (UINTN Col = 0; Col < Columns; Col++) {
            PIXEL& To = Dst[Row * DstWidth + Col];
            if (!SameColor(To, gKeyColor)) {
                const UINT8 Gray = GrayByService(Src[Row * SrcWidth + Col], RedShare, GreenShare, BlueShare);
                To = {Gray, Gray, Gray, To.Reserved};
            }
        }
    }
    return EFI_SUCCESS;
}

EFI_STATUS RepaintBlt(PIXEL* Buffer, const GUI_RECT& Rect)
{
    const EFI_STATUS Status = PasteBlt(Buffer, Rect.Width, Rect.Height, Rect.X, Rect.Y, gGuiCore->Screen);
    (void)ComposeScreen(gGuiCore, Buffer, Rect.X, Rect.Y, Rect.Width, Rect.Height);
    return Status;
}

EFI_STATUS ComposeScreen(GUI_CORE* Core, PIXEL* Buffer, UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    const bool Moved =
        static_cast<UINT64>(Core->PointerX) != Core->CursorX || static_cast<UINT64>(Core->PointerY) != Core->CursorY;

    // The saved pixels are taken anew each time, so that they show what Screen holds now and not what it held when the
    // pointer arrived.
    Core->CursorClipWidth = VisibleExtent(Core->CursorWidth, Core->CursorX, gScreenWidth);
    Core->CursorClipHeight = VisibleExtent(Core->CursorHeight, Core->CursorY, gScreenHeight);
    if (Core->CursorClipWidth != 0 && Core->CursorClipHeight != 0) {
        (void)ExtractBlt(Core->CursorSaveUnder, Core->CursorClipWidth, Core->CursorClipHeight, Core->Screen,
                         gScreenWidth, gScreenHeight, static_cast<INT32>(Core->CursorY),
                         static_cast<INT32>(Core->CursorX));
        if (Moved) {
            SendToVideo(Core->CursorSaveUnder, Core->CursorX, Core->CursorY, Core->CursorClipWidth,
                        Core->CursorClipHeight, 0);
        }
    }

    // A pointer service may name a place off the screen; then there is nothing to lay the pointer on.
    const bool OnScreen = PointOnScreen(Core->PointerX, Core->PointerY);
    if (OnScreen) {
        (void)ExtractBlt(Core->CursorBlend, Core->CursorWidth, Core->CursorHeight, Core->Screen, gScreenWidth,
                         gScreenHeight, static_cast<INT32>(Core->PointerY), static_cast<INT32>(Core->PointerX));
        LayPointerPixels(Core->CursorBlend, Core->CursorImage, Core->CursorWidth * Core->CursorHeight);
    }

    const UINTN PointerX = static_cast<UINTN>(Core->PointerX);
    const UINTN PointerY = static_cast<UINTN>(Core->PointerY);
    if (OnScreen && gScreenWidth - PointerX > Core->CursorWidth && gScreenHeight - PointerY > Core->CursorHeight) {
        if (Buffer != nullptr) {
            if (Core->MouseState == L_HOLD) {
                MergePointer(Core, Buffer, X, Y, Width, Height);
            }
            SendBlock(Buffer, X, Y, Width, Height);
        }
        SendToVideo(Core->CursorBlend, PointerX, PointerY, Core->CursorWidth, Core->CursorHeight, 0);
    } else {
        ComposeAtEdge(Core, Buffer, X, Y, Width, Height);
    }

    Core->CursorSettled = Moved ? 0 : 1;
    Core->CursorX = static_cast<UINT64>(Core->PointerX);
    Core->CursorY = static_cast<UINT64>(Core->PointerY);
    return EFI_SUCCESS;
}

VOID RestoreBackground(UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    const UINTN Columns = VisibleExtent(Width, X, gScreenWidth);
    const UINTN Rows = VisibleExtent(Height, Y, gScreenHeight);
    if (Columns == 0 || Rows == 0) {
        return;
    }
    const TEMPORARY<PIXEL> Block(AllocateArray<PIXEL>(Columns * Rows));
    if (!Block) {
        return;
    }
    (void)ExtractBlt(Block.Data, Columns, Rows, gGuiCore->Background, gScreenWidth, gScreenHeight,
                     static_cast<INT32>(Y), static_cast<INT32>(X));
    (void)PasteBlt(Block.Data, Columns, Rows, X, Y, gGuiCore->Screen);
    (void)ComposeScreen(gGuiCore, Block.Data, X, Y, Columns, Rows);
}
