// The labels of the grids on which fans are set: null-ended tables, as CountStringTable counts them. Their lengths set
// the number of columns and rows of a grid.
#pragma once

#include "uefi/Base.h"

// The columns, from the left: 40 to 100 degrees in steps of 5. U+00F8 stands for the degree sign, as everywhere.
extern const CHAR16* const gTemperatureLabels[14];

// The 8 rows of a frame, bottom first: 12.5% to 100%.
extern const CHAR16* const gDutyLabels8[9];

// The 6 rows of a frame or of a slider, bottom first: 50% to 100%.
extern const CHAR16* const gDutyLabels6[7];
