// Where the console's picture of 1024 by 768 stands on a display of any size, and how it is scaled to it.
//
// A display with room for it shows the picture in whole multiples, centred, so that each of its pixels is as large as
// every other. A smaller one shows all of it, fitted down with its proportions kept.
#pragma once

#include "shell/contract/Screen.h"

constexpr UINT32 gPictureWidth = gScreenWidth;
constexpr UINT32 gPictureHeight = gScreenHeight;

struct PLACEMENT {
    UINT32 PanelWidth; // the display, in its own pixels
    UINT32 PanelHeight;
    UINT32 X; // the picture on it
    UINT32 Y;
    UINT32 Width;
    UINT32 Height;
    UINT32 Multiple; // panel pixels a side for each of the picture's; 0: fitted down
};

// A rectangle, right and bottom edge not included.
struct PANEL_AREA {
    UINT32 Left;
    UINT32 Top;
    UINT32 Right;
    UINT32 Bottom;
};

// The place on a display of that size. A display without pixels has none: Width is 0.
PLACEMENT PlacePicture(UINT32 PanelWidth, UINT32 PanelHeight);

// The pixels of the display that show any of that part of the picture.
PANEL_AREA AreaOnPanel(const PLACEMENT& Place, const PANEL_AREA& InPicture);

// The pixel of the picture that stands at a pixel of the display; outside the picture the nearest one. This is how a
// finger or a pen on the display is turned into a place of the pointer.
VOID PictureAt(const PLACEMENT& Place, INT64 PanelX, INT64 PanelY, INT64* X, INT64* Y);
