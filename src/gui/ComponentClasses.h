// What each kind of component does about the pointer, in one table. A new control adds its row here, and the pointer engine
// stays as it is.
#pragma once

#include "gui/core/GUICore.h"

// The row of a kind; null for one that nobody registers.
const COMPONENT_CLASS* FindComponentClass(UINT32 Kind);
