// The About and Help pages: a message box of the firmware's with a few lines and one button. A page is modal: it runs
// its own loop in the middle of a turn, the rest of the application stands still, and when it closes the screen under it
// comes back as it was.
//
// The buttons' actions run at TPL_NOTIFY, and so do the firmware's drivers for USB keyboards and mice: a page that ran
// inside an action would wait for ever for a key that no driver may fetch. So an action only says which page is wanted,
// and the turn runs the page as soon as the signal of the click has returned, before anything else.
//
// A click on the page's button, Escape, Enter and the right mouse button close a page; nothing else does anything. A
// page for which there is no memory, or no box from the service, isn't opened.
#pragma once

#include "uefi/SystemTable.h"

// Actions of the two buttons; neither argument is read. The page opens with RunWantedPage.
EFI_STATUS ShowAboutPage(EFI_EVENT Event, VOID* Context);
EFI_STATUS ShowHelpPage(EFI_EVENT Event, VOID* Context);

// Opens the page that was asked for, if one was, and returns when it has been closed. At the application's task priority.
VOID RunWantedPage();
