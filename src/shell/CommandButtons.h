// The six command buttons: About, Help and Exit at the top, Full speed, Default and Cancel under the panel.
#pragma once

#include "uefi/Base.h"

// Creates the buttons with their titles and joins their actions.
VOID CreateCommandButtons();
// Paints them at rest.
VOID PaintCommandButtons();
VOID DestroyCommandButtons();
