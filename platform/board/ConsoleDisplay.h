// The display and the font that the console works with, where one of them isn't the firmware's: installed by whoever puts
// a layer between, so that the board's services draw where the console does and as it does, and a finger on the panel
// points at what is under it.
#pragma once

#include "uefi/Hii.h"

constexpr EFI_GUID gConsoleDisplayGuid = {0x6A1D9F1C, 0x3C5E, 0x4E0B, {0x9B, 0x52, 0x7E, 0x41, 0xD0, 0x8C, 0x26, 0x93}};

struct CONSOLE_DISPLAY {
    EFI_GRAPHICS_OUTPUT_PROTOCOL* Graphics; // 1024 by 768
    const EFI_HII_FONT_PROTOCOL* Font;
    UINT32 PanelWidth; // the display's own pixels
    UINT32 PanelHeight;
    UINT32 X; // where the console's picture stands among them
    UINT32 Y;
    UINT32 Width;
    UINT32 Height;
};
