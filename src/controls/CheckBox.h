// A check box: a two-state control from a strip of four pictures, with an optional caption, and with links.
//
// A link names a byte that mirrors the box's state, a component that the box switches on and off, and a function that
// runs when a click changes the box. A fan page swaps its frame for its slider and writes its setting through links.
// A radio button is the same record joined to the temperature page bar, which then owns state and painting.
//
// A new box is checked. To set it from outside write State, then call ShowCheckBoxState.
#pragma once

#include "graphics/Palette.h"
#include "gui/core/GUICore.h"

// Frames of the picture, from its top.
enum CHECK_BOX_FRAME : INT32 {
    CHECK_BOX_CHECKED = 0,
    CHECK_BOX_UNCHECKED = 1,
    CHECK_BOX_CHECKED_HOVER = 2,
    CHECK_BOX_UNCHECKED_HOVER = 3,
};

// Format argument of CreateCheckBox.
enum CHECK_BOX_FORMAT : UINT8 {
    CHECK_BOX_JPEG = 0,
    CHECK_BOX_BMP = 1,
};

// When a link's function runs, and what becomes of its component.
enum CHECK_BOX_LINK_KIND : UINT8 {
    CHECK_BOX_LINK_INSIDE = 0,    // a click ended inside the box; no effect on the component
    CHECK_BOX_LINK_CHECKED = 1,   // a click left the box checked; component active while checked
    CHECK_BOX_LINK_UNCHECKED = 2, // a click left the box unchecked; component active while unchecked
    CHECK_BOX_LINK_OUTSIDE = 3,   // a click ended elsewhere, or inside with no link of kind 0; no effect
};
constexpr UINT32 gCheckBoxLinkKindCount = 4;

struct CHECK_BOX_LINK {
    LIST_ENTRY Link;
    UINT32 Index; // place in the list, from 0
    UINT8 Kind;
    UINT8* Target; // mirrors State; not owned; null if none
    EFI_EVENT Event;
    UINT16 ComponentId; // 0 for none
};

struct _CHECK_BOX_COMPONENT {
    GUI_RECT Rect;
    PIXEL* Images;   // the whole strip. Owned
    PIXEL* Frame[4]; // inside Images; null without a picture
    LIST_ENTRY Links;
    UINT16 LinkCount;
    UINT8 State; // 1 = checked
    UINT8 HasCaption;
    CHAR16* Name; // the caption, or the generated name. Owned
    UINT32 Id;
    UINT16 CaptionX; // the caption's offset inside the picture
    UINT16 CaptionY;
    EFI_GUID LinkGroup[gCheckBoxLinkKindCount]; // event group of the links of each kind
    EFI_GUID EventGroup;
    EFI_EVENT PrimaryEvent;
    HOVER_HANDLER HoverHandler;
    EFI_EVENT SecondaryEvent;
};
using CHECK_BOX_COMPONENT = struct _CHECK_BOX_COMPONENT;

// Boxes created so far, with or without a caption. Generated names carry it.
extern UINT32 gCheckBoxCount;

// Makes a box at (X, Y) from a section of the file, JPEG or BMP by Format, and registers its component. Caption may be
// null and is copied; (CaptionX, CaptionY) is its offset inside the picture. EFI_OUT_OF_RESOURCES for another Format
// or without pool for the record: Box is unchanged then. Without a usable picture the box is a plain one. A picture
// that hangs over the screen's edge is cut there.
EFI_STATUS CreateCheckBox(CHECK_BOX_COMPONENT** Box, const CHAR16* Caption, UINT32 X, UINT32 Y, UINT32 Instance,
                          const EFI_GUID* FileGuid, UINT8 Format, UINT16 CaptionX, UINT16 CaptionY);

// Frees everything, the record included. EFI_NOT_FOUND for a null box. The events of the links stay open, and each with
// its link in pool, until CloseLeftLinkEvents.
EFI_STATUS DestroyCheckBox(CHECK_BOX_COMPONENT* Box);

// Closes the link events of all boxes destroyed since it ran last. For the application's end, when nothing can signal
// them any more.
VOID CloseLeftLinkEvents();

// Adds a link. Notify and Target may be null, ComponentId 0. One signal runs the functions of all links of a kind; a
// Kind above 3 gets no event. EFI_LOAD_ERROR for a null box. Without pool the link is left out, with EFI_SUCCESS.
EFI_STATUS AddCheckBoxLink(CHECK_BOX_COMPONENT* Box, VOID* Context, EFI_EVENT_NOTIFY Notify, UINT8 Kind, UINT8* Target,
                           UINT16 ComponentId);

// Carries the present State to the bytes and components of the links and to the screen. No link's function runs, and the
// pending target stays: a box may be set while something else is in hand.
VOID ShowCheckBoxState(CHECK_BOX_COMPONENT* Box);

// The same as a reaction of the box, which becomes the target; while MouseState is L_CLICK the functions of its links
// run. Notify function of SecondaryEvent and of a page's target; Context is the box.
EFI_STATUS SetCheckBoxState(EFI_EVENT Event, VOID* Context);

// Notify function of PrimaryEvent and hover handler; Context is the box. EFI_NOT_FOUND, with nothing changed, for a box
// that is neither HitId nor LastHitId.
EFI_STATUS OnCheckBoxEvent(EFI_EVENT Event, VOID* Context);

// Acts on a pending target: flips the box at a click, shows where the pointer is else. Called by OnCheckBoxEvent.
VOID CheckBoxStep();

// Paints one frame, 0 to 3, with the caption over it. Nothing for a null box or a frame that isn't there.
VOID DrawCheckBox(INT32 Frame, CHECK_BOX_COMPONENT* Box);

extern const COMPONENT_CLASS gCheckBoxClass;
// What press and click do to a box that is a page bar's member: it acts on the press, with the click state set only for the
// length of the signalling.
SCAN_RESULT ScanRadio(const GUI_COMPONENT* Component);
