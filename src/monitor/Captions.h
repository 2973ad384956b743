// The two captions under the chart panel, which name the axes of its two faces. Listeners like the scale painters.
#pragma once

#include "graphics/Palette.h"

// Loaded and freed by the shell. A picture that is missing leaves its place empty.
extern PIXEL* gTempCaptionImage;
extern UINT32 gTempCaptionWidth;
extern UINT32 gTempCaptionHeight;
extern PIXEL* gRpmCaptionImage;
extern UINT32 gRpmCaptionWidth;
extern UINT32 gRpmCaptionHeight;
extern PIXEL* gDutyCaptionImage;
extern UINT32 gDutyCaptionWidth;
extern UINT32 gDutyCaptionHeight;

// The chart face: temperature at the left, speed at the right. For the end of a drag.
VOID PaintCaptionsIdle();
// The editor face: duty at the left, temperature at the right. For the begin of a drag.
VOID PaintCaptionsActive();
