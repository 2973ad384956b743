// Who wants to be told when a drag begins or ends: a list for sliders and one for drag-and-drop frames.
#pragma once

#include "gui/core/GUICore.h"

using GUI_CALLBACK = VOID (*)();

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
