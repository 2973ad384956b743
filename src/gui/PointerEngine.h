// The pointer engine turns what the pointer service reports into what the controls react to.
//
// The main loop calls ScanPointerTargets and then UpdatePointer in every turn; the scan so works on the position that
// the turn before has read. A click is decided by time alone: the left button went down and came up in less than
// 185 ms. Where it lands is decided by the first scan after the release. Reactions reach a control in three ways: its
// component's events are signalled, its HoverHandler is called when the pointer enters or leaves, and a target left in
// GUI_CORE is picked up by the polled steps of slider and drag-and-drop frame.
#pragma once

#include "gui/GUICore.h"

using GUI_CALLBACK = VOID (*)();

// 1 while a thumb or a node is being dragged; buttons and page-bar members then ignore the held press.
extern UINT8 gDragLock;

// One hit scan over the registry in the order of ids. Always EFI_SUCCESS.
EFI_STATUS ScanPointerTargets();

// One read of the pointer service, one step of the hover logic, one of press timing.
VOID UpdatePointer();

// True when (X, Y) lies inside the component: left and top edge included, right and bottom edge not. A coordinate of 0
// is in no component, and so is anything for a null component.
bool PointerInComponent(const GUI_COMPONENT* Component, INT64 X, INT64 Y);

// Append a function that FireSliderListeners or FireDragDropListeners calls for State: L_HOLD when a drag begins,
// L_HOLD_TO_RELEASE when it ends. Without pool nothing is added.
VOID AddSliderListener(GUI_CALLBACK Callback, UINT32 State);
VOID AddDragDropListener(GUI_CALLBACK Callback, UINT32 State);
// Picks the list by component kind; a null Callback and any other kind are ignored.
VOID AddListenerByKind(GUI_CALLBACK Callback, UINT8 Kind, UINT32 State);

// Calls, in the order of adding, every function that was added for State. A function may add further ones.
EFI_STATUS FireSliderListeners(UINT32 State);
EFI_STATUS FireDragDropListeners(UINT32 State);

// Frees both lists, the drag-and-drop frames' first.
VOID FreeListeners();
