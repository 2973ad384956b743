// What a slider and a drag-and-drop frame have in common: a grid of temperature columns and duty rows, its place on the
// screen, its pictures, and the way in which both show a drag. The page's chart lies on the same rectangle.
//
// Grids of the console are of one size, and each has pages of its own. So what they need alike is held once for all of
// them: the lines of the grid, the plain panel, the picture of a chart and the two layers that it plots on before it
// composes them. That is the larger part of what they would hold. As far as it finds room there it lies in the core's
// Overlay, which is 3 MB that nothing else uses, and else in the pool.
#pragma once

#include "graphics/Palette.h"
#include "gui/core/Drag.h"
#include "gui/core/Rectangle.h"

// The one place of all grids, and the pitch of their columns, in pixels.
constexpr UINT32 gGridX = 382;
constexpr UINT32 gGridY = 262;
constexpr UINT16 gGridCellWidth = 30;

// Head of a slider's and of a frame's record.
struct GRID_CONTROL {
    GUI_RECT Rect;
    UINT8 Columns;
    UINT8 Rows;
    UINT16 CellWidth;
    UINT16 CellHeight;
};

// Sets the numbers of columns and rows to those of the labels: of gTemperatureLabels, and of a null-ended table of duties.
VOID CountCells(GRID_CONTROL* Grid, const CHAR16* const* DutyLabels);

// Whether a control of that size, placed as all grids are, lies on the screen and has any pixel.
bool GridFitsScreen(UINT64 Width, UINT64 Height);

// Gives a counted grid its place and its cells' size. Its rectangle has a pixel more than its columns and rows take.
VOID PlaceGrid(GRID_CONTROL* Grid, UINT32 ColumnWidth, UINT32 CellHeight);

// Whether a control with these two switches is live: exactly one of them isn't 0.
constexpr bool IsLive(UINT8 Inverted, UINT8 Linked) { return (Inverted != 0) != (Linked != 0); }

// --- Pictures ---

enum SHARED_PICTURE_KIND : UINT8 {
    SHARED_GRID,  // PaintGridImage; read only
    SHARED_PANEL, // gPanelColor all over; read only
    SHARED_RPM_LAYER,
    SHARED_TEMPERATURE_LAYER,
    SHARED_CHART, // what the last chart left there: each drawing begins with a whole ground
};

// The picture of that kind and of the rectangle's size, made if nobody has it yet; null without pool. CellHeight counts
// for a grid alone.
PIXEL* TakeSharedPicture(SHARED_PICTURE_KIND Kind, const GUI_RECT& Rect, UINT32 CellHeight = 0);

// Gives a taken picture back and sets the pointer to null; the last user's goes to the pool. Nothing for a null.
VOID ReleaseSharedPicture(PIXEL*& Picture);

// What is known of the rows of a chart's layer. Most lie wholly above the curve or wholly under it: those higher than
// Highest and those lower than Lowest, which are heights as a plot counts them, 1 for the bottom row. {1, Height} says
// nothing.
struct LINE_CHART_EXTENT {
    INT32 Lowest;
    INT32 Highest;
};

// Of a taken layer: what the last plot left in it, whichever chart's that was; it says nothing until then.
LINE_CHART_EXTENT& ExtentOfLayer(PIXEL* Layer);

// A picture of the rectangle's size to paint on. Until then it shows the plain panel, since a chart may start from it. Null
// without pool.
PIXEL* AllocateWorkPicture(const GUI_RECT& Rect);

// The three pictures of a control: lines and panel are shared, the one in between is its own. EFI_BUFFER_TOO_SMALL without
// pool for one of them: the panel, which comes last, is then null.
EFI_STATUS TakeGridPictures(const GRID_CONTROL& Grid, PIXEL** Lines, PIXEL** Work, PIXEL** Panel);
VOID ReleaseGridPictures(PIXEL*& Lines, PIXEL*& Work, PIXEL*& Panel);

// Fills a Width x Height picture with cells of gCellColor behind lines of gPanelColor: two pixels at the top and left
// of every cell, and what of the next line the picture has room for at its right and bottom.
VOID PaintGridImage(PIXEL* Image, UINT32 Width, UINT32 Height, UINT32 CellWidth, UINT32 CellHeight);

// --- A drag ---

// Marks a rectangle of a picture: mixes 20% of Color over it and frames it with a line of Color, one pixel wide. What
// lies beyond the picture's right or bottom edge is dropped. False, with the picture as it was, for a rectangle without
// any pixel or larger than the screen.
bool MarkRectangle(PIXEL* Canvas, UINT32 CanvasWidth, UINT32 CanvasHeight, INT32 X, INT32 Y, UINT32 Width,
                   UINT32 Height, PIXEL Color);

// Lays a thumb or a node, which may be null, over a picture of the grid's size. Its key colour stays out.
VOID OverlayOnGrid(const GRID_CONTROL& Grid, PIXEL* Work, const PIXEL* Picture, UINT32 Width, UINT32 Height, INT64 X,
                   INT64 Y);

// The report of a drag whose thing stands at (X, Y) of the grid.
DRAG_REPORT ReportOnGrid(const GRID_CONTROL& Grid, INT64 X, INT64 Y);

// Cancels and closes the events of a control, those that there are. The status of the last cancel, EFI_SUCCESS for none.
EFI_STATUS CloseGridEvents(EFI_EVENT& Primary, EFI_EVENT& Secondary);
