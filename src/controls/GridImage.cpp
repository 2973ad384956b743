#include "controls/GridImage.h"

#include "graphics/GraphicProtocol.h"
#include "gui/core/GUICore.h"

namespace {

constexpr UINT32 gGridLineWidth = 2;
constexpr UINT8 gTintPercent = 20;
constexpr UINT8 gFramePercent = 99; // the most that an overlay takes

UINT32 Smaller(UINT32 A, UINT32 B) { return A < B ? A : B; }

} // namespace

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
    const UINT32 Left = static_cast<UINT32>(X);
    const UINT32 Top = static_cast<UINT32>(Y);
    if (Left >= CanvasWidth || Top >= CanvasHeight) {
        return true;
    }
    const UINT32 Columns = Smaller(Width, CanvasWidth - Left);
    const UINT32 Rows = Smaller(Height, CanvasHeight - Top);
    PIXEL* Corner = Canvas + static_cast<UINTN>(Top) * CanvasWidth + Left;
    TintPixels({Corner, CanvasWidth}, Columns, Rows, Color, gTintPercent);

    // The frame, over the tint. Its four sides meet without a pixel that is mixed twice.
    TintPixels({Corner, CanvasWidth}, Columns, 1, Color, gFramePercent);
    const bool BottomShows = Rows == Height && Height > 1;
    if (BottomShows) {
        TintPixels({Corner + static_cast<UINTN>(Rows - 1) * CanvasWidth, CanvasWidth}, Columns, 1, Color,
                   gFramePercent);
    }
    const UINT32 SideRows = Rows - (BottomShows ? 2u : 1u);
    TintPixels({Corner + CanvasWidth, CanvasWidth}, 1, SideRows, Color, gFramePercent);
    if (Columns == Width && Width > 1) {
        TintPixels({Corner + CanvasWidth + Columns - 1, CanvasWidth}, 1, SideRows, Color, gFramePercent);
    }
    return true;
}
