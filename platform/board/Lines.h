// Straight lines into a buffer of pixels.
#pragma once

#include "shell/contract/Services.h"

// Draws from (X0, Y0) to (X1, Y1), both ends included, into a buffer of BufferWidth by BufferHeight pixels without gaps
// between its rows. What lies outside the buffer is left out; coordinates count as signed, so an end may lie above or
// left of it. A line thicker than 1 grows to both sides, across its longer direction. The same two ends give the same
// pixels in either order. EFI_INVALID_PARAMETER without a buffer and for ends more than 2^30 pixels away.
EFI_STATUS DrawLine(EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer, UINTN BufferWidth, UINTN BufferHeight, UINTN X0, UINTN Y0,
                    UINTN X1, UINTN Y1, UINTN Thickness, UINT32 Color);
