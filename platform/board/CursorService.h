// The pointer as the console asks for it, over whatever source of movement the world has.
#pragma once

#include "platform/board/BoardServices.h"

extern CURSOR_SERVICE_PROTOCOL gBoardCursor;

// What the service reads from now on, and the clock by which the hand works (Hand.h); without a source the pointer rests
// at (0, 0) with its buttons up. The limits go back to the whole screen.
VOID UsePointerSource(POINTER_SOURCE* Source, UINT64 (*Microseconds)());
