// The starter's display: the mode that the console is shown in, with a layer between where the console can't work on it as
// it is, the calm boot screen, and pages of text over that.
//
// The text is drawn with the firmware's own font into the picture and not through the text console: that console keeps
// a mode of its own and may switch the display back to it when it is written to.
#pragma once

#include "platform/firmware/starter/Page.h"
#include "uefi/SystemTable.h"

enum DISPLAY_RESULT : UINT8 {
    DISPLAY_READY,
    DISPLAY_NO_GRAPHICS, // the firmware has no graphics output
    DISPLAY_NO_MODE,     // no mode of 640 by 480 or more, or the firmware can't set it
    DISPLAY_NO_MEMORY,
};

// Sets the mode that suits the display best of those that can be set, or the one that NextDisplayMode went to, and paints the
// boot screen. Images
// that are started with replaced lookups find the display of 1024 by 768. May be called again.
DISPLAY_RESULT OpenDisplay(EFI_SYSTEM_TABLE* SystemTable);
// Goes on to the next mode that the display offers, in the firmware's order, for now and for each OpenDisplay until
// CloseDisplay.
DISPLAY_RESULT NextDisplayMode();
// The mode's size, as "1920 by 1080"; empty before OpenDisplay.
const CHAR16* DescribeDisplayMode();
// Paints the boot screen again, without text, where the display is open.
VOID ShowBootScreen();
// Shows the page over the boot screen; on the text console if the display isn't open.
VOID ShowPage(const PAGE* Page);
// Gives the picture's memory back and leaves the display cleared, in the mode and with the text cursor that the first
// OpenDisplay found.
VOID CloseDisplay();
