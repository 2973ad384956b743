// The repaint pattern for a picture that is kept and shown again later: a caption, a title, a legend box.
#pragma once

#include "graphics/Palette.h"

struct KEPT_PICTURE {
    PIXEL* Pixels; // null when there is none
    UINT32 Width;
    UINT32 Height;
};

// Loads a JPEG section of the artwork file, or leaves the picture empty; frees it again.
VOID LoadPicture(UINT32 Instance, KEPT_PICTURE* Picture);
VOID FreePicture(KEPT_PICTURE* Picture);

// Pastes the picture into Screen at (X, Y) and brings the rectangle to the display, cut at the screen's edges. What is
// composed is a temporary block and not the picture itself: while the left button is held, composing writes the pointer
// into its block, and a kept picture would show that trace for ever after. Without pool for the block the display
// follows with the next composition of the place. A null picture, or one of no size, does nothing.
VOID ShowPicture(const PIXEL* Picture, UINTN Width, UINTN Height, UINTN X, UINTN Y);
VOID ShowPicture(const KEPT_PICTURE& Picture, UINTN X, UINTN Y);
