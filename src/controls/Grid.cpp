#include "controls/Grid.h"

#include "controls/Labels.h"
#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "gui/core/GUICore.h"
#include "support/Pool.h"

namespace {

constexpr UINT32 gGridLineWidth = 2;
constexpr UINT8 gTintPercent = 20;
constexpr UINT8 gFramePercent = 99; // the most that an overlay takes
constexpr UINT8 gPanelByte = 0x24;  // every byte of gPanelColor

// The pixels follow the record.
struct SHARED_PICTURE {
    SHARED_PICTURE* Next;
    UINTN Users;
    UINT32 Width;
    UINT32 Height;
    UINT32 CellHeight;
    LINE_CHART_EXTENT Extent; // of a layer
    SHARED_PICTURE_KIND Kind;
    bool InPool; // and not in Overlay
};

SHARED_PICTURE* gSharedPictures = nullptr;

PIXEL* PixelsOf(SHARED_PICTURE* Shared) { return reinterpret_cast<PIXEL*>(Shared + 1); }

// Of a record and its pixels.
UINTN SizeOf(UINT32 Width, UINT32 Height)
{
    const UINTN Size = sizeof(SHARED_PICTURE) + static_cast<UINTN>(Width) * Height * sizeof(PIXEL);
    return (Size + alignof(SHARED_PICTURE) - 1) / alignof(SHARED_PICTURE) * alignof(SHARED_PICTURE);
}

// The first room of that size in Overlay which meets no other picture; null if there is none.
VOID* FindRoom(UINTN Size)
{
    if (gGuiCore == nullptr || gGuiCore->Overlay == nullptr) {
        return nullptr;
    }
    UINT8* Room = reinterpret_cast<UINT8*>(gGuiCore->Overlay);
    const UINT8* End = Room + static_cast<UINTN>(gScreenWidth) * gScreenHeight * sizeof(PIXEL);
    for (SHARED_PICTURE* Shared = gSharedPictures; Shared != nullptr;) {
        UINT8* First = reinterpret_cast<UINT8*>(Shared);
        UINT8* Behind = First + SizeOf(Shared->Width, Shared->Height);
        const bool Meet = Room < Behind && First < Room + Size;
        Room = Meet ? Behind : Room;
        Shared = Meet ? gSharedPictures : Shared->Next;
    }
    return Room + Size <= End ? Room : nullptr;
}

} // namespace

VOID CountCells(GRID_CONTROL* Grid, const CHAR16* const* DutyLabels)
{
    Grid->Columns = CountStringTable(gTemperatureLabels);
    Grid->Rows = CountStringTable(DutyLabels);
}

bool GridFitsScreen(UINT64 Width, UINT64 Height) { return RectOnScreen(gGridX, gGridY, Width, Height); }

VOID PlaceGrid(GRID_CONTROL* Grid, UINT32 ColumnWidth, UINT32 CellHeight)
{
    Grid->CellWidth = gGridCellWidth;
    Grid->CellHeight = static_cast<UINT16>(CellHeight);
    Grid->Rect = PictureRect(gGridX, gGridY, Grid->Columns * ColumnWidth + 1, Grid->Rows * CellHeight + 1);
}

PIXEL* TakeSharedPicture(SHARED_PICTURE_KIND Kind, const GUI_RECT& Rect, UINT32 CellHeight)
{
    for (SHARED_PICTURE* Shared = gSharedPictures; Shared != nullptr; Shared = Shared->Next) {
        if (Shared->Kind == Kind && Shared->Width == Rect.Width && Shared->Height == Rect.Height &&
            Shared->CellHeight == CellHeight) {
            Shared->Users++;
            return PixelsOf(Shared);
        }
    }
    const UINTN Size = SizeOf(Rect.Width, Rect.Height);
    VOID* Room = FindRoom(Size);
    auto* New = static_cast<SHARED_PICTURE*>(Room != nullptr ? Room : AllocatePool(Size));
    if (New == nullptr) {
        return nullptr;
    }
    *New = {
        .Next = gSharedPictures,
        .Users = 1,
        .Width = Rect.Width,
        .Height = Rect.Height,
        .CellHeight = CellHeight,
        .Extent = {1, static_cast<INT32>(Rect.Height)},
        .Kind = Kind,
        .InPool = Room == nullptr,
    };
    gSharedPictures = New;
    if (Kind == SHARED_GRID) {
        PaintGridImage(PixelsOf(New), Rect.Width, Rect.Height, gGridCellWidth, CellHeight);
    } else if (Kind == SHARED_PANEL || Kind == SHARED_CHART) {
        FillPixels(PixelsOf(New), Rect.BufferSize / sizeof(PIXEL), gPanelColor);
    }
    return PixelsOf(New);
}

VOID ReleaseSharedPicture(PIXEL*& Picture)
{
    for (SHARED_PICTURE** Link = &gSharedPictures; *Link != nullptr; Link = &(*Link)->Next) {
        SHARED_PICTURE* Shared = *Link;
        if (PixelsOf(Shared) == Picture) {
            Shared->Users--;
            if (Shared->Users == 0) {
                *Link = Shared->Next;
                FreePool(Shared->InPool ? Shared : nullptr);
            }
            break;
        }
    }
    Picture = nullptr;
}

LINE_CHART_EXTENT& ExtentOfLayer(PIXEL* Layer) { return (reinterpret_cast<SHARED_PICTURE*>(Layer) - 1)->Extent; }

PIXEL* AllocateWorkPicture(const GUI_RECT& Rect)
{
    PIXEL* Picture = static_cast<PIXEL*>(AllocatePool(Rect.BufferSize));
    if (Picture != nullptr) {
        SetMem(Picture, Rect.BufferSize, gPanelByte);
    }
    return Picture;
}

EFI_STATUS TakeGridPictures(const GRID_CONTROL& Grid, PIXEL** Lines, PIXEL** Work, PIXEL** Panel)
{
    *Lines = TakeSharedPicture(SHARED_GRID, Grid.Rect, Grid.CellHeight);
    if (*Lines == nullptr) {
        return EFI_BUFFER_TOO_SMALL;
    }
    *Work = AllocateWorkPicture(Grid.Rect);
    if (*Work == nullptr) {
        return EFI_BUFFER_TOO_SMALL;
    }
    *Panel = TakeSharedPicture(SHARED_PANEL, Grid.Rect);
    return *Panel == nullptr ? EFI_BUFFER_TOO_SMALL : EFI_SUCCESS;
}

VOID ReleaseGridPictures(PIXEL*& Lines, PIXEL*& Work, PIXEL*& Panel)
{
    ReleaseSharedPicture(Lines);
    ReleaseSharedPicture(Panel);
    ReleasePool(Work);
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

VOID OverlayOnGrid(const GRID_CONTROL& Grid, PIXEL* Work, const PIXEL* Picture, UINT32 Width, UINT32 Height, INT64 X,
                   INT64 Y)
{
    if (Picture != nullptr) {
        (void)OverlayBlt(Picture, static_cast<INT32>(Width), static_cast<INT32>(Height), Work, Grid.Rect.Width,
                         Grid.Rect.Height, static_cast<INT32>(X), static_cast<INT32>(Y), &gKeyColor, &gKeyColor, 1);
    }
}

static_assert(gGridX > 0 && gGridY > 0); // a report of 0 says that there is none

DRAG_REPORT ReportOnGrid(const GRID_CONTROL& Grid, INT64 X, INT64 Y)
{
    return {
        .RelX = static_cast<UINT16>(X < 0 ? -X : X),
        .RelY = static_cast<UINT16>(Y < 0 ? -Y : Y),
        .AbsX = static_cast<UINT16>(Grid.Rect.X + X),
        .AbsY = static_cast<UINT16>(Grid.Rect.Y + Y),
        .CellWidth = Grid.CellWidth,
        .CellHeight = Grid.CellHeight,
    };
}

EFI_STATUS CloseGridEvents(EFI_EVENT& Primary, EFI_EVENT& Secondary)
{
    const EFI_STATUS Status = CancelAndCloseEvent(Primary);
    const bool Both = Secondary != nullptr;
    const EFI_STATUS Last = CancelAndCloseEvent(Secondary);
    Primary = nullptr;
    Secondary = nullptr;
    return Both ? Last : Status;
}
