// What is made, painted and destroyed in one start of the console: each stage calls the rooms in a fixed order, and that
// order is its contract. Whoever adds something to the screen adds it here.
#pragma once

#include "uefi/Base.h"

// Everything from the built core to the first turn of the loop. Nothing is made later.
VOID StartConsole();

// Everything behind the last turn, the core included. The screen isn't restored.
VOID StopConsole();
