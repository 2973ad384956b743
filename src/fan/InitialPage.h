// Which page and which temperature source come up first.
#pragma once

#include "uefi/Base.h"

// Brings both bars into the state of the settings, as if the tab of the stored fan had been clicked. Called once, after
// all pages are made.
VOID SelectInitialPage();
