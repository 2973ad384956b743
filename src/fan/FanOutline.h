// The outline that joins the tab of the page on top to the panel below it, drawn pixel by pixel, with a gap in the
// panel's top edge where the tab stands and a short bar under it. The other tabs keep a faint outline.
//
// There is no state here: a change of page repaints everything. The outline lies one pixel outside the tab's rectangle
// and so stays intact under the tab's own repaint.
#pragma once

#include "controls/Button.h"
#include "graphics/Palette.h"
#include "shell/contract/Services.h"

// ShowFanPageFrame of each page, in the order of gFanPage: the select action of the page's entry in gFanPageBar. Each
// knows its tab and takes nothing from its arguments. It erases all outlines and draws that of its tab and the panel.
extern const EFI_EVENT_NOTIFY gShowFanPageFrame[gFanItemCount];

// Fills the whole panel in Screen, before the clean picture is taken.
VOID ClearPanel();
// Repaints the panel's top line and the resting outlines of all tabs that exist.
VOID EraseFanOutlines();
// Repaints one tab's outline and the bar under it. A null tab does nothing.
VOID EraseFanTabOutline(const BTN_COMPONENT* Tab, PIXEL Color);
// One pixel, on the display at once and in Screen for later compositions. Nothing for a place off the screen.
VOID PlotOutlinePixel(PIXEL Color, UINT32 X, UINT32 Y);
