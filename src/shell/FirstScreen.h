// The first painting of everything.
#pragma once

#include "uefi/Base.h"

// Draws everything for the first time, once all controls exist and Background is taken.
VOID PaintFirstScreen();
