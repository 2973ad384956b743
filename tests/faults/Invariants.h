// What holds at the beginning of every turn of the main loop, whatever was done before.
#pragma once

#include <string>

#include "uefi/Base.h"

struct TURN_WATCH {
    UINTN PoolBlocks = 0; // in use at the first turn looked at
    bool Begun = false;
};

// Looks at the console that is linked into this program. Empty when all is well, else what isn't.
std::string CheckTurn(TURN_WATCH* Watch);
