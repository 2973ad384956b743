// What a drag tells the scales beside the grid: where the dragged thing is. Written at every drawing of a drag; the
// four position fields are cleared when it ends, the cell's size stays.
#pragma once

#include "uefi/Base.h"

struct DRAG_REPORT {
    UINT16 RelX; // place of the dragged thing inside its control, pixels
    UINT16 RelY;
    UINT16 AbsX; // the same on the screen; 0 means that there is no report
    UINT16 AbsY;
    UINT16 CellWidth; // size of a grid cell of the control, pixels
    UINT16 CellHeight;
};
