// What holds at the beginning of every turn of the main loop, whatever was done before.
#pragma once

#include <string>
#include <vector>

#include "graphics/Palette.h"
#include "shell/contract/Services.h"

struct TURN_WATCH {
    UINTN PoolBlocks = 0; // in use at the first turn looked at
    bool Begun = false;
};

// Looks at the console that is linked into this program. Empty when all is well, else what isn't.
std::string CheckTurn(TURN_WATCH* Watch);

// What holds at the beginning of a turn in which nobody holds anything and a tick has gone by since anything was done:
// nothing is in hand, no face of the editor is left, and board, box, frame, slider, legend and chart of the page on top
// tell the same story. Set says of each fan whether its record came from the console since the last command on all fans.
// RestFace is empty, or what an earlier call left there.
std::string CheckRest(const bool (&Set)[gFanItemCount], std::vector<PIXEL>* RestFace);
