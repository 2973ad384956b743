#include "controls/GridImage.h"

#include "graphics/GraphicProtocol.h"
#include "gui/GUICore.h"
#include "support/Library.h"

constexpr UINT32 gGridLineWidth = 2;
constexpr UINT8 gTintPercent = 20;
constexpr UINT8 gFramePercent = 100;

bool GridFitsScreen(UINT64 Width, UINT64 Height)
{
    return Width > 0 && Height > 0 && Width <= gScreenWidth - gGridX && Height <= gScreenHeight - gGridY;
}

VOID PaintGridImage(PIXEL* Image, UINT32 Width, UINT32 Height, UINT32 CellWidth, UINT32 CellHeight)
{
    for (UINT32 Row = 0; Row < Height; Row++) {
        PIXEL* Line = Image + static_cast<UINTN>(Row) * Width;
        if (Row % CellHeight < gGridLineWidth) {
            FillPixels(Line, Width, gPanelColor);
            continue;
        }
        FillPixels(Line, Width, gCellColor);
        for (UINT32 Column = 0; Column < Width; Column += CellWidth) {
            const UINT32 Left = Width - Column;
            FillPixels(Line + Column, Left < gGridLineWidth ? Left : gGridLineWidth, gPanelColor);
        }
    }
}

bool MarkRectangle(PIXEL* Canvas, UINT32 CanvasWidth, UINT32 CanvasHeight, INT32 X, INT32 Y, UINT32 Width,
                   UINT32 Height, PIXEL Color)
{
    if (X < 0 || Y < 0 || Width == 0 || Height == 0 || Width > gScreenWidth || Height > gScreenHeight) {
        return false;
    }
    const UINTN Count = static_cast<UINTN>(Width) * Height;
    const TEMPORARY<PIXEL> Block(AllocateArray<PIXEL>(Count));
    if (!Block) {
        return false;
    }
    const INT32 BlockWidth = static_cast<INT32>(Width);
    const INT32 BlockHeight = static_cast<INT32>(Height);

    FillPixels(Block.Data, Count, Color);
    (void)OverlayBlt(Block.Data, BlockWidth, BlockHeight, Canvas, CanvasWidth, CanvasHeight, X, Y, nullptr, &Color,
                     gTintPercent);

    // The tinted block comes back with its frame drawn in: only the frame is still of the one colour that is mixed.
    (void)ExtractBlt(Block.Data, Width, Height, Canvas, CanvasWidth, CanvasHeight, Y, X);
    FillPixels(Block.Data, Width, Color);
    FillPixels(Block.Data + Count - Width, Width, Color);
    for (UINT32 Row = 0; Row < Height; Row++) {
        PIXEL* Line = Block.Data + static_cast<UINTN>(Row) * Width;
        Line[0] = Color;
        Line[Width - 1] = Color;
    }
    (void)OverlayBlt(Block.Data, BlockWidth, BlockHeight, Canvas, CanvasWidth, CanvasHeight, X, Y, nullptr, &Color,
                     gFramePercent);
    return true;
}
