// Which of a display's modes the console is shown in.
#pragma once

#include "uefi/GraphicsOutput.h"

struct MODE_OFFER {
    UINT32 Number; // the firmware's
    UINT32 Width;
    UINT32 Height;
    bool AsIs; // pixels as the console reads them: four bytes, blue first, rows back to back
};

// What the display can show, as far as it is known; zero where it isn't.
struct PANEL_SIZE {
    UINT32 Width;
    UINT32 Height;
};

// Takes a mode into the list when the console can be shown in it: from 640 by 480 on.
bool OfferMode(UINT32 Number, const EFI_GRAPHICS_OUTPUT_MODE_INFORMATION* Mode, MODE_OFFER* Offer);

// The index of the best offer, Count for none. A panel of twice the console's size or more is driven at its own size, with
// larger letters, if those may be Enlarged. Otherwise it is 1024 by 768, where that is offered; else the panel's own size; else the smallest mode
// with room for the console, and last the largest of those that are too small.
UINTN ChooseMode(const MODE_OFFER* Offers, UINTN Count, PANEL_SIZE Native, bool Enlarged);

// The panel's own size as its identification data (EDID) tell it: the first detailed timing. Zero where there is none.
PANEL_SIZE ReadNativeSize(const UINT8* Edid, UINTN Size);
