// The board driver with a board whose readings stand still, so that two screens can be compared as a whole.
#include "platform/board/SimulatedBoard.h"

namespace {

BOARD_SOURCE* OpenStillBoard(const CHAR8* Name, UINT64 Seed, UINT64 Now)
{
    BOARD_SOURCE* Board = OpenSimulatedBoard(Name, Seed, Now);
    Board->Advance = [](BOARD_SOURCE*, UINT64) {};
    return Board;
}

} // namespace

#define OpenSimulatedBoard OpenStillBoard
#include "platform/firmware/driver/Driver.cpp"
