// The legend: the small box at the right of the fan panel that reads out the curve of the page on top, a row a node, in
// the nodes' colours while the curve is on and in gray while it is off. With it the panel's title is repainted.
//
// The legend is only drawn; it takes no pointer. It shows what the frame holds at the moment of the call, so it doesn't
// follow a node during a drag. Pages without a curve have no legend: what the page before showed stays.
#pragma once

#include "controls/DragDropFrame.h"
#include "graphics/Palette.h"

constexpr UINT32 gLegendWidth = 120;
constexpr UINT32 gLegendHeight = 130;

// The box with its icons, coloured and gray: gLegendWidth x gLegendHeight pixels each. Made once by CreateFanLegend.
extern PIXEL* gLegendActive;
extern PIXEL* gLegendInactive;

// Draws the panel's title, and keeps a picture of it for each refresh.
VOID PaintPanelTitle();
VOID FreePanelTitle();

// Makes the two pictures and refreshes the legend. Called once after the pages are built. A second call gives
// EFI_NOT_FOUND, makes nothing and still refreshes. Without memory the pictures aren't made, and the rest goes on.
EFI_STATUS CreateFanLegend();
VOID FreeFanLegend();

// Makes SelectedFanItem follow the selected tab, and draws the legend of that fan. Called whenever something may have
// changed the curve or the page on top: as a listener and plainly in the first form, as a notify function in the
// second, which uses neither argument and returns EFI_SUCCESS.
VOID RefreshFanLegend();
EFI_STATUS RefreshFanLegend(EFI_EVENT Event, VOID* Context);

// Draws title, box and the four rows of the frame's nodes. Scale 1 takes the duty labels of 8 rows, 0 those of 6.
// Active is the state of the page's box. A node off the labels leaves its text out.
VOID DrawFanLegend(UINT8 Scale, UINT8 Active, const DRAGDROP_COMPONENT* Frame);
