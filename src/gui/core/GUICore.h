// The one record of the GUI, its component registry, and the two enumerations that the whole GUI speaks in.
//
// GUI_CORE takes the place of a window system: screen surfaces, pointer state, mouse state, registry, and the mailbox
// between a control's notify function and its polled step. Everything reads and writes it directly through gGuiCore;
// there are no accessors. A control keeps its own larger record and registers one or more GUI_COMPONENT rectangles that
// point back to it.
#pragma once

#include "gui/core/Rectangle.h"
#include "shell/contract/Screen.h"
#include "uefi/GraphicsOutput.h"
#include "uefi/SystemTable.h"

// What a component is. TargetKind of GUI_CORE uses the same numbers. Where a kind has a control's name, the control's
// record is reached through the alias that its own header gives.
enum COMPONENT_KIND : UINT8 {
    _GUI_CORE_EVENTINDEX = 0,
    FOCUS_BUTTON = 1,
    GROUP_BUTTONS = 2,
    SUB_BTN_IN_SLIDER = 3,
    _BLT_BUF = 4, // a passive picture area: a gauge, a slider's frame, a drag-and-drop frame
    TEMPERATURE_SLIDER = 5,
    _DRAGDROP_COMPONENT = 6, // a node of a drag-and-drop frame
    _SLIDER_COMPONENT = 7,   // a slider's thumb
    _BTN_COMPONENT = 8,
    _RADIO_BTN_COMPONENT = 9,   // a button that is a member of a page bar
    _RADIO_CBOX_COMPONENT = 10, // a check box that is a member of a page bar
    _CHECK_BOX_COMPONENT = 11,
    FocusEventDestroy = 12, // the root entry; as a TargetKind: no target is pending
};

// The engine moves between L_HOLD, L_HOLD_TO_RELEASE, L_CLICK and NOEVENT; the others are declared and never entered.
enum MOUSE_STATE : UINT32 {
    L_HOLD = 0, // the left button went down
    L_OUTSIDEHOLD,
    L_HOLD_TO_NOEVENT,
    L_HOLD_TO_OUTSIDEHOLD,
    L_HOLD_TO_RELEASE = 4, // the left button came up after a long press
    L_CLICK = 5,           // the left button came up after a short press
    L_PRE_DCLICK,
    L_DCLICK,
    L_PRE_HOLD,
    R_HOLD,
    R_CLICK,
    R_DCLICK,
    C_HOLD,
    C_CLICK,
    C_DCLICK,
    NOEVENT = 15, // rest
};

// Values of HoverPhase.
enum HOVER_PHASE : UINT32 {
    HOVER_NONE = 0,
    HOVER_ENTERED = 1, // while a component is told that the pointer entered it
    HOVER_LEFT = 2,    // while a component is told that the pointer left it
};

// What the pointer engine calls for a hover change, with a null event and the owner's record. It is the same function
// that the component's PrimaryEvent runs.
using HOVER_HANDLER = EFI_STATUS (*)(EFI_EVENT Event, VOID* Context);

struct GUI_COMPONENT {
    GUI_RECT Rect; // its own copy; a control that moves writes here too
    LIST_ENTRY Link;
    UINT32 Id;                // the registry's Count at registration: order of registration, and rank in the hit scan
    UINT8 Kind;               // COMPONENT_KIND
    UINT8 Enabled;            // 1 at registration; 0 takes it out of the reaction of the hit scan
    UINT8 Active;             // 1 when it belongs to the page on show and the page's condition holds
    EFI_EVENT PrimaryEvent;   // not owned; null if none
    const CHAR16* Name;       // not owned; null if none
    EFI_EVENT SecondaryEvent; // not owned; null if none
    VOID* Owner;              // the control's record; for BASE the GUI_CORE; for a page-bar member the PAGE_BAR
};

// New entries go to the tail and nothing leaves before teardown, so ids and positions agree.
struct GUI_COMPONENT_LIST {
    LIST_ENTRY Head;
    UINT16 Count;
};

struct GUI_CORE {
    GUI_RECT BaseRect; // all zero: the rectangle of BASE, which no pointer can be in
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL* CursorImage;
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL* CursorSaveUnder; // what Screen holds where the cursor was last drawn
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Screen;          // the full picture without the cursor
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Background;      // the clean picture from which things are erased
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Overlay;         // as large as Screen; what grids share lies there
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL* CursorBlend;     // screen and cursor laid together, the block that goes to the video
    UINT64 CursorClipHeight;                        // cursor height after clipping at row 768
    UINT64 CursorClipWidth;                         // cursor width after clipping at column 1024
    UINT64 CursorWidth;
    UINT64 CursorHeight;
    UINT64 CursorImageSize; // bytes, as the decoder gives them
    GUI_COMPONENT_LIST* Components;
    UINT8 LeftButton;
    UINT8 RightButton;
    INT64 PointerX; // as last read; a pointer with x or y 0 is in no component
    INT64 PointerY;
    INT64 PointerZ;
    UINT64 CursorX; // where the cursor was last drawn; (1024, 768) before the first drawing
    UINT64 CursorY;
    UINT32 HitId;     // as the last hit scan left it; 0 means none
    UINT32 LastHitId; // the component last announced to the hover logic; all ones at start
    UINT8 CursorSettled;
    UINT32 MouseState; // MOUSE_STATE
    UINT32 HoverPhase; // HOVER_PHASE
    EFI_INPUT_KEY Key;
    UINT16 TargetId; // the mailbox: whose step is pending
    UINT8 TargetKind;
    VOID* Target;
    UINT8 TargetReset; // 1 when the pending step is a request to go back to the normal picture
    UINT64 StartTicks;
    UINT64 LastTicks;
    UINT64 TimerPeriod;   // femtoseconds a tick of the CPU timer
    UINT64 PressDuration; // microseconds
    UINT8 ExitRequested;
};

// Null until CreateGuiCore has built everything.
extern GUI_CORE* gGuiCore;

// Builds the record, the three surfaces, the registry with its BASE entry, and the pointer's buffers, and publishes
// gGuiCore as its last act. Called once, before any control exists. On a failure nothing is published, everything is
// given back, and the status says why: that of an allocation, EFI_NO_MEDIA without a pointer picture, or the decoder's.
EFI_STATUS CreateGuiCore();

// Frees everything, listeners of the pointer engine first, and closes the pointer service. Called once, after all
// controls are destroyed. EFI_NOT_FOUND when there is no core.
EFI_STATUS DestroyGuiCore();

// Adds a rectangle to the registry and writes its id to IdOut. The name and the events stay the caller's. Without pool
// the caller receives an id all the same and no entry exists for it. Always EFI_SUCCESS.
EFI_STATUS RegisterComponent(GUI_COMPONENT_LIST* List, VOID* Owner, const GUI_RECT* Rect, UINT32 Kind, UINT32* IdOut,
                             EFI_EVENT PrimaryEvent, EFI_EVENT SecondaryEvent, const CHAR16* Name);

// The id of a control that got no entry: no component ever has it.
constexpr UINT32 gUnregisteredId = 0xFFFF;

// Registers a rectangle of a control with gGuiCore and writes the control's id to IdOut, for good. Without pool that is
// gUnregisteredId, not the id that the next one gets: two controls that shared one would be taken for each other, and a
// fan be given what was meant for its neighbour. A control that isn't registered is painted and can't be hit.
VOID RegisterControl(VOID* Owner, const GUI_RECT* Rect, COMPONENT_KIND Kind, UINT32* IdOut, EFI_EVENT PrimaryEvent,
                     EFI_EVENT SecondaryEvent, const CHAR16* Name);

// The entry with that id; EFI_NOT_FOUND and a null when there is none.
EFI_STATUS FindComponent(GUI_COMPONENT_LIST* List, UINT16 Id, GUI_COMPONENT** ComponentOut);

// The same of gGuiCore's registry; null when there is none.
GUI_COMPONENT* ComponentOf(UINT32 Id);

// No target is pending any more.
VOID ClearTarget();

// --- What a kind of component does ---

enum SCAN_RESULT : UINT8 {
    SCAN_STOP, // the component has taken the pointer
    SCAN_NEXT, // what lies under it may have it, too
};

// One row for each kind: the pointer engine walks these and knows no control.
struct COMPONENT_CLASS {
    COMPONENT_KIND Kind;
    SCAN_RESULT (*Scan)(const GUI_COMPONENT* Component); // press and click, with the pointer inside; null: SCAN_NEXT
    HOVER_HANDLER (*HoverOf)(const VOID* Owner);         // who is told that the pointer enters or leaves; null: nobody
};

// Signals both events of a component, those that there are.
VOID SignalComponent(const GUI_COMPONENT* Component);

// For a part that answers to the held button alone, a node or a thumb, while its control is on the page: SCAN_STOP when it
// was signalled.
SCAN_RESULT ScanHeldPart(const GUI_COMPONENT* Component, UINT32 ControlId);
