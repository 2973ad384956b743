// The scaling of the console's picture to its place on a display.
#pragma once

#include "platform/display/Placement.h"
#include "uefi/GraphicsOutput.h"

// Makes the pixels of Target, an area of the display within the picture's place, from the picture of 1024 by 768 and
// writes them to Pixels, row after row without gaps. In whole multiples each pixel of the picture becomes a square; there
// Target begins and ends at the sides of squares, above and below it may cut them.
// Fitted down, a pixel of the display is the mean of the part of the picture that it covers, by area: strokes get paler
// and none is left out, which keeps small letters legible.
VOID ScaleRows(const EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Picture, const PLACEMENT& Place, const PANEL_AREA& Target,
               EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Pixels);
