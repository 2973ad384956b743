// The starter's display: the mode that the console needs, the calm boot screen in it, and pages of text over that.
//
// The text is drawn with the firmware's own font into the picture and not through the text console: that console keeps
// a mode of its own and may switch the display back to it when it is written to.
#pragma once

#include "platform/firmware/starter/Page.h"
#include "uefi/SystemTable.h"

enum DISPLAY_RESULT : UINT8 {
    DISPLAY_READY,
    DISPLAY_NO_GRAPHICS,    // the firmware has no graphics output
    DISPLAY_NO_MODE,        // no mode of 1024 by 768, or the firmware can't set it
    DISPLAY_NO_FRAME_BUFFER, // the mode has no picture in memory, row after row with four bytes a pixel
    DISPLAY_NO_MEMORY,
};

// Sets 1024 by 768 and paints the boot screen. May be called again.
DISPLAY_RESULT OpenDisplay(EFI_SYSTEM_TABLE* SystemTable);
// Paints the boot screen again, without text.
VOID ShowBootScreen();
// Shows the page over the boot screen; on the text console if the display isn't open.
VOID ShowPage(const PAGE* Page);
// Gives the picture's memory back and leaves the display cleared, in the mode and with the text cursor that the first
// OpenDisplay found.
VOID CloseDisplay();
