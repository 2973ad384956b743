// Pictures that several controls need alike, held in the pool once for all of them: the grid of a frame or a slider, its
// plain panel, and the two layers that a chart plots on before it composes them. Frames, sliders and charts of the console
// are of one size, and each has pages of its own, so that this is the larger part of what they would hold.
#pragma once

#include "graphics/Palette.h"

enum SHARED_PICTURE_KIND : UINT8 {
    SHARED_GRID,  // PaintGridImage; read only
    SHARED_PANEL, // gPanelColor all over; read only
    // What the last plot left there, whichever chart's it was. A plot writes what it doesn't know to be there already.
    SHARED_RPM_LAYER,
    SHARED_TEMPERATURE_LAYER,
};

// The picture of that kind and size, made if nobody has it yet; null without pool. Cells count for a grid alone.
PIXEL* TakeSharedPicture(SHARED_PICTURE_KIND Kind, UINT32 Width, UINT32 Height, UINT32 CellWidth = 0,
                         UINT32 CellHeight = 0);

// Gives a taken picture back and sets the pointer to null; the last user's goes to the pool. Nothing for a null.
VOID ReleaseSharedPicture(PIXEL*& Picture);
