// What a pointing device reports, whatever its kind.
#pragma once

#include "uefi/Base.h"

// Absolute positions travel as a share of the screen: 0 at the left or top edge, this at the right or bottom one.
constexpr INT64 gFullScale = 65535;

struct POINTER_CHANGE {
    bool Absolute; // X and Y are a place in gFullScale, not a way in pixels
    INT64 X;
    INT64 Y;
    UINT8 Left; // the buttons as they now are, 1 while pressed
    UINT8 Right;
};
