// The display of the hosted firmware: a panel's pixels in memory, and the graphics output protocol in front of them.
//
// The pixels are a block of exactly their size, so that a sanitizer sees whoever reads or writes beyond them. The display
// has one mode. Ordinarily that is 1024 by 768, blue first, and its frame buffer is that block; a panel of another format
// has a frame buffer of its own in that format, or none.
#pragma once

#include <utility>
#include <vector>

#include "uefi/GraphicsOutput.h"

constexpr UINT32 gDisplayWidth = 1024;
constexpr UINT32 gDisplayHeight = 768;
constexpr UINTN gDisplayBytes = UINTN{gDisplayWidth} * gDisplayHeight * sizeof(EFI_GRAPHICS_OUTPUT_BLT_PIXEL);

using PICTURE = std::vector<UINT32>; // of the display: rows of its width in words, blue in the lowest byte

enum PANEL_FORMAT : UINT8 {
    PANEL_BLUE_FIRST,
    PANEL_RED_FIRST,   // and rows that are longer than what is shown of them
    PANEL_THREE_BYTES, // a pixel, told by masks
    PANEL_BLT_ONLY,    // no frame buffer
};

struct PANEL {
    UINT32 Width = gDisplayWidth;
    UINT32 Height = gDisplayHeight;
    PANEL_FORMAT Format = PANEL_BLUE_FIRST;
};

struct DISPLAY {
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Pixels;
    EFI_GRAPHICS_OUTPUT_MODE_INFORMATION Information;
    EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE Mode;

    // An ordinary display shows the boot screen, any other one is black.
    explicit DISPLAY(const PANEL& Panel = {});
    DISPLAY(const DISPLAY&) = delete;
    DISPLAY& operator=(const DISPLAY&) = delete;

    // The protocol's operation of that name, but for moves on the display, which nobody here makes. EFI_INVALID_PARAMETER,
    // with nothing done, for any other operation, an empty rectangle, one that isn't wholly on the display, or a missing
    // buffer. Delta 0 stands for rows of Width pixels.
    EFI_STATUS Blt(EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer, EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX,
                   UINTN SourceY, UINTN DestinationX, UINTN DestinationY, UINTN Width, UINTN Height, UINTN Delta);

    // The pixels as words, blue in the lowest byte.
    const UINT32* Words() const { return mWords.data(); }
    // The same for good: the display is of no use from then on.
    PICTURE TakeWords() { return std::move(mWords); }
    UINT32 Width() const { return mPanel.Width; }
    UINT32 Height() const { return mPanel.Height; }

private:
    bool Covers(UINTN X, UINTN Y, UINTN Width, UINTN Height) const;
    VOID WriteFrameBuffer(UINTN X, UINTN Y, UINTN Width);

    PANEL mPanel;
    PICTURE mWords;
    std::vector<UINT8> mFrameBuffer; // empty where the pixels are it, or where there is none
};
