// Text in the firmware's own font: a string is rendered into a picture by the firmware, cut to its exact size, and then
// treated like any other blit buffer.
//
// A character cell is 8 by 19 pixels, and the layout of the whole screen counts on it: callers that align to a right
// edge compute 8 pixels a character and don't render first. Nothing is cached between calls.
#pragma once

#include "graphics/Palette.h"
#include "gui/core/GUICore.h"

enum DRAW_STRING_MODE : UINT8 {
    DRAW_STRING_VIDEO = 3,  // straight to the display, opaque, not to Screen
    DRAW_STRING_KEYED = 4,  // Screen and display; the background colour is transparent
    DRAW_STRING_OPAQUE = 5, // Screen only, opaque
    DRAW_STRING_BOX = 6,    // Screen and display, against the right edge of a box of 40 pixels that shows Background
};

// A new tight picture of one line of text, which the caller frees, and its size. Pixels that aren't letters have exactly
// the background colour. A null colour stands for white letters on black. EFI_INVALID_PARAMETER for a string that is too
// long: over 63 characters, or on a firmware of generation 4 over 128 or none. On a failure Out is unchanged.
EFI_STATUS StringToBlt(const PIXEL* Foreground, const PIXEL* Background, PIXEL** Out, UINT16* Width, UINT16* Height,
                       const CHAR16* String);

// Renders the text and sends it straight to the display; it can cover the pointer until the next composition.
EFI_STATUS DrawStringDirect(UINTN X, UINTN Y, const PIXEL* Foreground, const PIXEL* Background, const CHAR16* String);

// Puts a string on the screen in one of four ways; any other Mode draws nothing. Modes 4 and 6 draw nothing without a
// Background. Modes 3 and 5 are used as a pair for text that must appear at once and survive in Screen. A failed
// rendering leaves the screen as it was and gives its status.
EFI_STATUS DrawString(UINTN X, UINTN Y, const CHAR16* String, UINT8 Mode, const PIXEL* Foreground,
                      const PIXEL* Background, GUI_CORE* Core);
