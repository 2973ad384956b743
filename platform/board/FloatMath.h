// Arithmetic on single-precision words, as the firmware offers it to the console.
#pragma once

#include "shell/contract/Services.h"

// FloatToInt drops the fraction; a value out of range gives the nearest end of it, and no number gives 0. FloatToString
// writes the shortest decimal text that reads back as the same value, with no exponent and no zeros at its end: "0",
// "1.05", "-12.251". A text that doesn't fit leaves an empty string and returns EFI_BUFFER_TOO_SMALL.
extern FLOAT_MATH_PROTOCOL gBoardFloatMath;
