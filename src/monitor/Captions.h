// The two captions under the chart panel, which name the axes of its two faces. Listeners like the scale painters.
#pragma once

#include "uefi/Base.h"

// At the start and at the end. A picture that is missing leaves its place empty.
VOID LoadCaptions();
VOID FreeCaptions();

// The chart face: temperature at the left, speed at the right. For the end of a drag.
VOID PaintCaptionsIdle();
// The editor face: duty at the left, temperature at the right. For the begin of a drag.
VOID PaintCaptionsActive();
