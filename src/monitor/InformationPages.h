// The About and Help pages: a message box of the firmware's with a few lines and one button. A page is modal: it runs
// its own loop inside the button's action, the rest of the application stands still, and when it closes the screen
// under it comes back as it was.
//
// A click on the page's button, Escape, Enter and the right mouse button close a page; nothing else does anything. A
// page for which there is no memory, or no box from the service, isn't opened.
#pragma once

#include "uefi/SystemTable.h"

// Actions of the two buttons; neither argument is read. They return when the page has been closed.
EFI_STATUS ShowAboutPage(EFI_EVENT Event, VOID* Context);
EFI_STATUS ShowHelpPage(EFI_EVENT Event, VOID* Context);
