// A button: a picture that shows one of four frames, with an optional caption drawn into each frame once, at creation.
//
// It has no pressed look and doesn't know what it is for. A click reaches the world through callback slot 2 and through
// the listeners of type 2. A button that joins a page bar hands its component over: it then gets its frames from the
// bar, and the events below stop being signalled for it.
//
// Create it, join a callback with SetButtonCallback, and paint frame 0 when the screen is built: creation paints
// nothing.
#pragma once

#include "graphics/Palette.h"
#include "gui/core/GUICore.h"

constexpr UINT32 gButtonFrameCount = 4;
constexpr UINT32 gButtonEventCount = 5;

// Frames of the picture, from its top.
enum BUTTON_FRAME : INT32 {
    BUTTON_FRAME_REST = 0,
    BUTTON_FRAME_HOVER = 1,
    BUTTON_FRAME_SELECTED = 2, // the selected tab of a page bar
};

// Slots of Events. Slots 0 and 3 can be filled and are never signalled.
enum BUTTON_SLOT : UINT32 {
    BUTTON_SLOT_ENTERED = 1,
    BUTTON_SLOT_CLICKED = 2,
    BUTTON_SLOT_PRIMARY = 4, // the component's PrimaryEvent; made at creation
};

// Types of a listener, 0 to 3. The click is the only one that is ever signalled.
constexpr UINT32 BUTTON_LISTENER_CLICK = 2;

struct BUTTON_LISTENER {
    LIST_ENTRY Link;
    UINT16 Index; // position in the list, from 0
    EFI_EVENT Event;
    UINT32 Type;
};

struct _BTN_COMPONENT {
    GUI_RECT Rect;
    // The picture: four frames, stacked from the top, cut at the screen's edge. Owned; null once CaptionStrip is there.
    PIXEL* Strip;
    INT32 StripWidth; // as loaded
    INT32 StripHeight;
    PIXEL* CaptionStrip; // copy of Strip with the caption drawn into each frame; null if there was no pool. Owned
    PIXEL* Frames[gButtonFrameCount];
    PIXEL* TextPicture; // while a caption is drawn, else null
    UINT16 TextWidth;
    UINT16 TextHeight;
    LIST_ENTRY Listeners;
    UINT16 ListenerCount;
    EFI_GUID ListenerGroups[4]; // event group of each listener type
    CHAR16* Title;              // own copy of the caption, or null; the component's name. Owned
    UINT32 Id;
    EFI_GUID PrimaryGroup; // event group of slot 4
    EFI_EVENT Events[gButtonEventCount];
    HOVER_HANDLER HoverHandler;
    EFI_EVENT SecondaryEvent;
};
using BTN_COMPONENT = struct _BTN_COMPONENT;

// Makes a button from the JPEG section ImageId of the file and registers its component. Title may be null and is
// copied. (X, Y) is its place on the screen, (TextX, TextY) the caption's offset inside a frame. The status is that of
// creating the second event. Of a picture that hangs over the screen's edge the visible part is the button. Without pool
// for the record, or without a picture of which anything shows at that place, ButtonOut becomes null and the status is an
// error; without pool for the captions the button shows the bare picture.
EFI_STATUS CreateButton(BTN_COMPONENT** ButtonOut, const EFI_GUID* FileGuid, UINT32 ImageId, const CHAR16* Title,
                        UINT32 X, UINT32 Y, UINT16 TextX, UINT16 TextY);

// Frees everything, the record included. The component stays in the registry. A null button does nothing.
VOID DestroyButton(BTN_COMPONENT* Button);

// Shows a frame. Nothing for a null button or a frame that isn't there.
VOID PaintButton(INT32 Frame, BTN_COMPONENT* Button);

// Joins a notify function to slot 0 to 3, in place of what was there; its context is the button. Gives the status of
// creating the event; a null button or another slot does nothing and gives EFI_INVALID_PARAMETER.
EFI_STATUS SetButtonCallback(BTN_COMPONENT* Button, EFI_EVENT_NOTIFY Notify, UINT32 Slot);

// Adds a listener, which runs Notify with the button as context. One signal reaches all listeners of a type, so they
// all run at a click. A Type above 3 gets a place in the list and no event. EFI_OUT_OF_RESOURCES for a null button or
// without pool, else the status of creating the event.
EFI_STATUS AddButtonListener(BTN_COMPONENT* Button, UINT32 Type, EFI_EVENT_NOTIFY Notify);

// Notify function of slot 4 and the button's hover handler; Context is the button. EFI_NOT_FOUND, with nothing changed,
// for a button that is neither HitId nor LastHitId.
EFI_STATUS OnButtonEvent(EFI_EVENT Event, VOID* Context);

// Notify function of SecondaryEvent: asks for the picture at rest.
EFI_STATUS OnButtonReset(EFI_EVENT Event, VOID* Context);

// The button's logic on the target fields of the GUI; called by the two functions above. Always EFI_NOT_FOUND.
EFI_STATUS ButtonDispatch();

// What press and click do to a button, of a page bar's too: a held press is taken, a click signals the first event, a
// member's click both.
SCAN_RESULT ScanButton(const GUI_COMPONENT* Component);
extern const COMPONENT_CLASS gButtonClass;
