// The display of the hosted firmware: 1024 by 768 pixels in memory, and the graphics output protocol in front of them.
//
// The pixels are a block of exactly their size, so that a sanitizer sees whoever reads or writes beyond them. The display
// has one mode, and its frame buffer is that block.
#pragma once

#include <utility>
#include <vector>

#include "uefi/GraphicsOutput.h"

constexpr UINT32 gDisplayWidth = 1024;
constexpr UINT32 gDisplayHeight = 768;
constexpr UINTN gDisplayBytes = UINTN{gDisplayWidth} * gDisplayHeight * sizeof(EFI_GRAPHICS_OUTPUT_BLT_PIXEL);

using PICTURE = std::vector<UINT32>; // of the display: rows of gDisplayWidth words, blue in the lowest byte

struct DISPLAY {
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Pixels;
    EFI_GRAPHICS_OUTPUT_MODE_INFORMATION Information;
    EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE Mode;

    // Shows the boot screen.
    DISPLAY();
    DISPLAY(const DISPLAY&) = delete;
    DISPLAY& operator=(const DISPLAY&) = delete;

    // The protocol's operation of that name. EFI_INVALID_PARAMETER, with nothing done, for an unknown operation, an empty
    // rectangle, one that isn't wholly on the display, or a missing buffer. Delta 0 stands for rows of Width pixels.
    EFI_STATUS Blt(EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer, EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX,
                   UINTN SourceY, UINTN DestinationX, UINTN DestinationY, UINTN Width, UINTN Height, UINTN Delta);

    // The pixels as words, blue in the lowest byte.
    const UINT32* Words() const { return mWords.data(); }
    // The same for good: the display is of no use from then on.
    PICTURE TakeWords() { return std::move(mWords); }

private:
    PICTURE mWords;
};
