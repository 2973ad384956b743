// The white labels that pick out the row and the column under a dragged node or thumb.
#pragma once

#include "uefi/Base.h"

// Brings the highlights in line with the drag reports. Called in every turn of the main loop. A change takes two turns:
// in the first the old white label goes and the digit label returns, in the second the new white label comes.
VOID UpdateScaleHighlights();
