// The pointer engine turns what the pointer service reports into what the controls react to.
//
// The main loop calls ScanPointerTargets and then UpdatePointer in every turn; the scan so works on the position that
// the turn before has read. A click is decided by time alone: the left button went down and came up in less than
// 185 ms. Where it lands is decided by the first scan after the release. Reactions reach a control in three ways: its
// component's events are signalled, its HoverHandler is called when the pointer enters or leaves, and a target left in
// GUI_CORE is picked up by the polled steps of slider and drag-and-drop frame.
#pragma once

#include "gui/core/GUICore.h"

// One hit scan over the registry in the order of ids. Always EFI_SUCCESS.
EFI_STATUS ScanPointerTargets();

// One read of the pointer service, one step of the hover logic, one of press timing.
VOID UpdatePointer();
