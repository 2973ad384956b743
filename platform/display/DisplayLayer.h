// A display of 1024 by 768 for the console, on whatever display the firmware drives.
//
// The console expects a graphics output of that size whose frame buffer it can read: four bytes a pixel, blue first, rows
// back to back. This layer is such a graphics output. Its frame buffer is memory of its own; what changes there is scaled
// and sent on through the firmware's own Blt, which the UEFI specification promises in every mode with the same pixels:
// red first, three bytes, padded rows, no frame buffer at all are the firmware's business.
//
// Of a block only the rectangle around the pixels that differ from what is shown already is sent. Single pixels, of which
// the console draws outlines, are gathered for a moment and sent together, since on some displays each Blt is a round trip.
// They are held back, as is what the firmware's Blt failed to take, until the next block or FlushDisplayLayer.
//
//     DISPLAY_LAYER* Layer = nullptr;
//     if (!EfiError(OpenDisplayLayer(Boot, Firmware, &Layer))) { UseInPlaceOf(Firmware, &Layer->Graphics); }
#pragma once

#include "platform/display/Placement.h"
#include "uefi/GraphicsOutput.h"
#include "uefi/SystemTable.h"

struct DISPLAY_LAYER {
    EFI_GRAPHICS_OUTPUT_PROTOCOL Graphics; // first: the address of the one is that of the other
    EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE Mode;
    EFI_GRAPHICS_OUTPUT_MODE_INFORMATION Information;
    PLACEMENT Place;
    EFI_BOOT_SERVICES* Boot;
    EFI_GRAPHICS_OUTPUT_PROTOCOL* Firmware; // what shows the picture, in the mode that it is in
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Picture; // the frame buffer, 1024 by 768
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Strip;   // room for scaled rows; null where nothing is scaled
    PANEL_AREA Held;                        // around the changed pixels that aren't sent yet; empty: Right is 0
    volatile bool Busy;                     // an operation is under way: a timer's flush has to wait
};

// Whether the console can't work on the mode as it is and needs the layer: another size, or pixels that don't lie in
// memory as it reads them.
bool NeedsDisplayLayer(const EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE* Mode);

// Makes a layer over the firmware's display in its present mode and clears the display: the picture black, in a calm
// surround. Without pool the status of its allocation, EFI_UNSUPPORTED for a mode without pixels; nothing is done then. The
// mode must not be changed until the layer is closed.
EFI_STATUS OpenDisplayLayer(EFI_BOOT_SERVICES* Boot, EFI_GRAPHICS_OUTPUT_PROTOCOL* Firmware, DISPLAY_LAYER** Layer);

// Sends what is held back. Nothing happens inside an operation of the layer, so that a timer's function may call it at any
// time.
VOID FlushDisplayLayer(DISPLAY_LAYER* Layer);

// Gives the layer's memory back. The display keeps what it shows. Nothing happens for null.
VOID CloseDisplayLayer(DISPLAY_LAYER* Layer);
