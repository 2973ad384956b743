// What a slider and a drag-and-drop frame have in common: their place on the screen, the picture of their grid, and the
// way in which both mark the limits of a drag.
#pragma once

#include "graphics/Palette.h"

// The one place of all grids, and the pitch of their columns, in pixels.
constexpr UINT32 gGridX = 382;
constexpr UINT32 gGridY = 262;
constexpr UINT16 gGridCellWidth = 30;

// Whether a control of that size, placed as all grids are, lies on the screen and has any pixel.
bool GridFitsScreen(UINT64 Width, UINT64 Height);

// Fills a Width x Height picture with cells of gCellColor behind lines of gPanelColor: two pixels at the top and left
// of every cell, and what of the next line the picture has room for at its right and bottom.
VOID PaintGridImage(PIXEL* Image, UINT32 Width, UINT32 Height, UINT32 CellWidth, UINT32 CellHeight);

// Marks a rectangle of a picture: mixes 20% of Color over it and frames it with a line of Color, one pixel wide. What
// lies beyond the picture's right or bottom edge is dropped. False, with the picture as it was, for a rectangle without
// any pixel or larger than the screen.
bool MarkRectangle(PIXEL* Canvas, UINT32 CanvasWidth, UINT32 CanvasHeight, INT32 X, INT32 Y, UINT32 Width,
                   UINT32 Height, PIXEL Color);
