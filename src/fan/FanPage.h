// The seven fan pages: what a page is made of, how the seven differ, and in which order everything is built.
//
// A fan that the board reports has a page: a tab, a readout backdrop under it, and in the panel a curve frame, a slider
// or both, with a check box and a line chart. The seven are one design; the differences are the four layouts and one
// table of facts. A page's controls are built once and live to the end of the program; what changes during a run is in
// the controls themselves.
//
// A control for which there was no memory is missing from its page: its pointer is null, or its record has no pictures.
// One that only lacks its place in the registry is shown and takes no mouse. Everybody who reaches for a page's control
// asks first.
#pragma once

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/DragDropFrame.h"
#include "controls/LineChart.h"
#include "controls/Slider.h"
#include "graphics/Palette.h"
#include "shell/contract/Services.h"

enum FAN_PAGE_LAYOUT : UINT8 {
    FAN_LAYOUT_NONE = 0,      // the fan has no page
    FAN_LAYOUT_CURVE8,        // a curve on 8 rows; the box switches it on and off
    FAN_LAYOUT_CURVE6,        // a curve on 6 rows; a slider exists but only holds the fixed level
    FAN_LAYOUT_CURVE6_SLIDER, // a curve on 6 rows while the box is checked, a slider while it isn't
    FAN_LAYOUT_SLIDER,        // a slider, no box
};

constexpr bool LayoutHasFrame(FAN_PAGE_LAYOUT Layout)
{
    return Layout == FAN_LAYOUT_CURVE8 || Layout == FAN_LAYOUT_CURVE6 || Layout == FAN_LAYOUT_CURVE6_SLIDER;
}

constexpr bool LayoutHasSlider(FAN_PAGE_LAYOUT Layout)
{
    return Layout == FAN_LAYOUT_CURVE6 || Layout == FAN_LAYOUT_CURVE6_SLIDER || Layout == FAN_LAYOUT_SLIDER;
}

struct FAN_PAGE {
    UINT8 ItemId; // 4 to 10
    FAN_PAGE_LAYOUT Layout;
    BTN_COMPONENT* Tab;            // also the entry's identity in gFanPageBar; null when the page doesn't exist
    CHECK_BOX_COMPONENT* CheckBox; // null on FAN_LAYOUT_SLIDER
    DRAGDROP_COMPONENT Frame;      // not built on FAN_LAYOUT_SLIDER
    SLIDER_COMPONENT Slider;       // not built on FAN_LAYOUT_CURVE8
    LINE_CHART* Chart;
    FAN_SETTING Setting;          // last copy read from the service, as the service gave it
    UINT32 NodeCells[gNodeCount]; // cells of the nodes at creation
    UINT8 LinkByte = 1;           // target of the links that write the hardware; nothing reads it
};

// In tab order, items 4 to 10. Empty until CreateFanPages.
extern FAN_PAGE gFanPage[gFanItemCount];

// One a temperature source, null for a source that isn't present.
extern CHECK_BOX_COMPONENT* gTemperatureRadio[gTemperatureItemCount];

// A readout: its backdrop, the number in it, and the unit right of the number's box.
struct READOUT {
    UINT8 Item;
    UINT32 X; // of the backdrop
    UINT32 Y;
    UINT32 NumberX;
    const CHAR16* Unit;
};
constexpr UINT32 gReadoutTextY = 8; // of number and unit, below the backdrop's edge
constexpr UINT32 gReadoutNumberWidth = 40;

// The temperature sources from the top, then the fans from the left.
inline constexpr READOUT gReadout[gTemperatureItemCount + gFanItemCount] = {
    // item, backdrop, left edge of the number, unit
    {0, 165, 296, 181, u"\u00F8C"}, {1, 165, 333, 181, u"\u00F8C"}, {2, 165, 370, 181, u"\u00F8C"},
    {4, 275, 181, 281, u" RPM"},    {5, 374, 181, 380, u" RPM"},    {6, 473, 181, 479, u" RPM"},
    {7, 572, 181, 578, u" RPM"},    {8, 671, 181, 677, u" RPM"},    {9, 770, 181, 776, u" RPM"},
    {10, 869, 181, 875, u" RPM"},
};
inline constexpr const READOUT* gFanReadout = gReadout + gTemperatureItemCount;

// The pictures under a fan's and under a temperature's readout: at the start, well before the pages are built, and at the
// end.
VOID LoadReadoutBackdrops();
VOID FreeReadoutBackdrops();

// Builds the temperature rows, all pages with their tabs, and both page bars. Called once at start, after the voltage
// gauges and before the clean picture is taken, so that what it pastes into Screen belongs to the clean picture. Checks
// no result of what it calls and never stops half way.
VOID CreateFanPages();

// All of it again, by kind and in a fixed order; the charts store their histories. The tabs have a function of their own,
// since the command buttons go before them.
VOID DestroyFanPages();
VOID DestroyFanTabs();

// True when the frame, or the slider, was built to its end: both take their component's id last, and 0 is no control's.
inline bool PageHasFrame(const FAN_PAGE* Page) { return Page->Frame.Id != 0; }
inline bool PageHasSlider(const FAN_PAGE* Page) { return Page->Slider.FrameId != 0; }
// State of the page's box; a missing box counts as not checked.
inline bool PageBoxIsChecked(const FAN_PAGE* Page) { return Page->CheckBox != nullptr && Page->CheckBox->State != 0; }

// Place of the page in gFanPage and in every other table of the fans.
inline UINTN IndexOfFanPage(const FAN_PAGE* Page) { return static_cast<UINTN>(Page - gFanPage); }
// The page of that item; null for an item that is no fan. The page may still be an empty one.
FAN_PAGE* FindFanPage(UINT8 ItemId);
// The page whose tab is the selected one; null when no page's is.
FAN_PAGE* FanPageOnTop();

// The layout of the page's fan, present or not. Fan 5's is the board's answer, asked for at every call; the others cost
// no service call.
FAN_PAGE_LAYOUT LayoutNow(const FAN_PAGE* Page);

// The service's get and set operation of the page's fan.
EFI_STATUS ReadFanSetting(const FAN_PAGE* Page, FAN_SETTING* Setting);
EFI_STATUS WriteFanSetting(const FAN_PAGE* Page, const FAN_SETTING* Setting);
