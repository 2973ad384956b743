// The scales around the chart panel. At rest the panel shows running lines: degrees at the left, RPM at the right.
// While a node or a thumb is dragged the same rectangle is an editor: duty at the left, degrees along the foot.
//
// The painters are listeners: the idle ones for the end of a drag, the active ones for its begin. They paint only
// around the panel's controls, on Screen and display, and erase from Background.
#pragma once

#include "uefi/Base.h"

// The digit strips, at the start and at the end. Without one its labels aren't drawn.
VOID CreateScaleFonts();
VOID DestroyScaleFonts();

constexpr UINT8 gScaleColumns = 13;
constexpr UINT8 gScaleRows8 = 8;
constexpr UINT8 gScaleRows6 = 6;

// Labels of the columns from the left, and blanks as wide as each; duty labels of the rows from the top.
extern const CHAR16* const gScaleTemperatures[gScaleColumns];
extern const CHAR16* const gScaleBlanks[gScaleColumns];
extern const CHAR16* const gScaleDuty8[gScaleRows8];
extern const CHAR16* const gScaleDuty6[gScaleRows6];

VOID PaintScalesIdle();
VOID PaintScalesActive();

// Which duty scale the drag under way needs.
enum ACTIVE_SCALE : UINT8 {
    ACTIVE_SCALE_NONE = 0,
    ACTIVE_SCALE_8 = 1, // a node of an 8-row frame is in hand
    ACTIVE_SCALE_6 = 2, // a node of a 6-row frame, or a thumb
};

// Top becomes the upper edge of the dragged control minus 1; it stays while nothing is dragged.
ACTIVE_SCALE GetActiveScale(UINT32* Top);

// The duty or the temperature scale of the editor face: whole when All is 1, else label Index alone, if there is one.
// Nothing unless a node or a thumb is the target of a held press.
VOID DrawDutyScale(UINT8 All, UINT8 Index);
VOID DrawTemperatureScale(UINT8 All, UINT8 Index);
