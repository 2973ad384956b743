// The drag of a slider's thumb or of a frame's node: the beats that both have in common. A press leaves its control in
// GUI_CORE as the target; from the next turn on the drag is under way, until the button is up.
#pragma once

#include "gui/core/GUICore.h"

// What a drag tells the scales beside the grid: where the dragged thing is. Written at every drawing of a drag; the four
// position fields are cleared when it ends, the cell's size stays.
struct DRAG_REPORT {
    UINT16 RelX; // place of the dragged thing inside its control, pixels
    UINT16 RelY;
    UINT16 AbsX; // the same on the screen; 0 means that there is no report
    UINT16 AbsY;
    UINT16 CellWidth; // size of a grid cell of the control, pixels
    UINT16 CellHeight;
};

// What tells the two kinds of drags apart.
struct DRAG_BEATS {
    COMPONENT_KIND Kind; // of the target
    UINT8* UnderWay;     // 1 while a drag of the kind is
    INT64* StartX;       // where the pointer was when it began
    INT64* StartY;
    DRAG_REPORT* Report;
    UINT8* (*Started)(
        VOID* Control);          // the control's own mark that its drag has begun; null when nothing of it is in hand
    VOID (*Hold)(VOID* Control); // in each turn of the held button, before anything else; null: nothing
    VOID (*Move)(VOID* Control); // in each but the first
    VOID (*Drop)(VOID* Control); // the end: the thing falls into its place, and the resting picture comes back
    EFI_STATUS (*Fire)(UINT32 State); // tells the listeners: L_HOLD at the begin, L_HOLD_TO_RELEASE at the end
};

// 1 while a thumb or a node is being dragged; buttons and page-bar members then ignore the held press.
extern UINT8 gDragLock;

// One turn of a drag, if the target is of that kind. Always EFI_NOT_FOUND.
EFI_STATUS StepDrag(const DRAG_BEATS& Beats);
