// The board's main service: names, readings and settings out of a board's source.
//
// A record that the console sends is checked before it is passed on: no board ever sees one against the contract, and
// such a record is counted (BoardContractFaults), so that tests can ask for the count to be 0.
#pragma once

#include "platform/board/BoardSource.h"
#include "uefi/SystemTable.h"

extern HW_SERVICE_PROTOCOL gBoardHardware;

// What the service answers from: the board, the clock that is passed to it (microseconds), and the pool that strings are
// given from. Refused, which may be null, is told of each record that is refused from now on, and why.
VOID UseHardware(BOARD_SOURCE* Board, UINT64 (*Microseconds)(), VOID (*Refused)(UINT8 FanItem, const CHAR8* Fault),
                 EFI_BOOT_SERVICES* BootServices);
