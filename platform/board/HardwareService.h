// The board's main service: names, readings and settings out of the simulated board.
#pragma once

#include "platform/board/SimulatedBoard.h"
#include "uefi/SystemTable.h"

extern HW_SERVICE_PROTOCOL gBoardHardware;

// What the service answers from: the board, whose store and model are ready, the clock that moves the model
// (microseconds), and the pool that strings are given from.
VOID UseHardware(const SIMULATED_BOARD* Board, UINT64 (*Microseconds)(), EFI_BOOT_SERVICES* BootServices);
