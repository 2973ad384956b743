// Message boxes: a dark panel with lines of text and one button, drawn straight onto the display.
//
// Everything that a box needs between the calls is in its 72-byte record, so a copy of the record serves as well as
// the first, and a box that is no longer wanted is simply forgotten. The table of lines and all strings are the
// caller's and stay where they are until DrawMessageBox has returned; after it no string is looked at any more.
#pragma once

#include "shell/contract/Services.h"
#include "uefi/SystemTable.h"

// Where the display, the font and pool are looked for; null ends their use.
VOID UseMessageBoxServices(EFI_BOOT_SERVICES* BootServices);

// Settles the size: as asked, or as large as the lines and the button need, but never over the right or bottom edge of
// the screen. A line may hold line feeds; a null line is an empty one. Of several buttons the first is shown, none is
// allowed. EFI_INVALID_PARAMETER without a record or a table that the count asks for, and for a place off the screen.
EFI_STATUS CreateMessageBox(MESSAGE_BOX* Box, UINTN X, UINTN Y, UINTN Width, UINTN Height, UINT16 LineCount,
                            CHAR16** Lines, UINT16 ButtonCount, CHAR16** Buttons);

// Paints the box with its button at rest: the pointer's place isn't known yet, and what the caller keeps of the display
// then shows the look that the button has nearly all of the time. Text that doesn't fit is cut at the box's inner edge.
// The status is that of the search for the display; without a font the box comes without text.
EFI_STATUS DrawMessageBox(MESSAGE_BOX* Box);

// Sets ButtonFocus to 1 while the pointer is on the button, right and bottom edge outside, and to 0 elsewhere. Repaints
// the button's outline when that changes. While the pointer moves on the button the outline is renewed as well, because
// whoever moves the pointer's picture puts back what he kept, which is the button at rest.
EFI_STATUS UpdateMessageBox(MESSAGE_BOX* Box, UINTN X, UINTN Y);
