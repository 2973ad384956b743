// What a fan page's controls mean to the hardware: how the places of the nodes and the slider's level are coded in a
// FAN_SETTING and back, and when a change is written.
//
// The four nodes run from the low end of the curve to the high end. Temperature rises strictly from node to node and
// duty never falls; the frame keeps a dragged node within the limits that give this. Every change goes to the service
// in the turn in which the user finishes it, as a record that starts as zeros and is filled from the controls alone.
// Nothing here reads a temperature: the service does the regulation.
#pragma once

#include "fan/FanPage.h"

// The curve of a setting, node 0 first. Columns count from 1 (40 degrees), levels from 1 (the bottom row).
struct FAN_CURVE {
    UINT8 Column[gNodeCount];
    UINT8 Level[gNodeCount];
};

FAN_CURVE CurveOfSetting(const FAN_SETTING& Setting);

// The nearest curve that obeys the rules on a grid of that size, worked out from node 0 up: every column is held
// between its neighbour below plus 1 and the last column that leaves room for the nodes above; every level between its
// neighbour's and Rows. A curve that obeys them comes back as it is. Needs at least gNodeCount columns and one row.
//
// A service owes us a legal curve, but one that breaks this must neither put a node off the grid nor see its own error
// written back.
FAN_CURVE LegalizeCurve(const FAN_CURVE& Curve, UINT8 Columns, UINT8 Rows);

// The fixed level that a slider of Rows rows can show: the low byte of FixedLevel held to 1..Rows.
UINT8 LegalFixedLevel(UINT16 FixedLevel, UINT8 Rows);

// Reads the page's setting and fills the four cell indices that CreateDragDropFrame takes. EFI_OUT_OF_RESOURCES from
// the service means the default curve: 40, 45, 50 and 55 degrees at the four lowest duties. On any other result the
// record is used as the service left it.
VOID LoadNodeCells(const FAN_PAGE* Page, const CHAR16* const* DutyTable, UINT32* Cells);

// Fills the record from the page's nodes and slider, as far as its layout has them; all else is 0. EFI_NOT_READY when
// the page lacks one of them: then there is nothing to write.
EFI_STATUS BuildFanSetting(const FAN_PAGE* Page, UINT8 CurveOn, FAN_SETTING* Record);

// Puts the controls back to the page's Setting: the nodes of FAN_LAYOUT_CURVE8; on the others the slider, their nodes
// keeping the places that the user gave them. Paints nothing.
VOID RestoreFanNodes(FAN_PAGE* Page);

// Notify functions of the box's links, with the page as context: they write its setting.
EFI_STATUS OnCurveChecked(EFI_EVENT Event, VOID* Context);
EFI_STATUS OnCurveUnchecked(EFI_EVENT Event, VOID* Context);

// One page's listeners for the end of a drag. They are told of every page's drops, and write the setting only while their
// page is on top.
struct FAN_PAGE_LISTENERS {
    VOID (*OnFrameDrop)();
    VOID (*OnSliderDrop)();
};

// In the order of gFanPage.
extern const FAN_PAGE_LISTENERS gFanPageListeners[gFanItemCount];
