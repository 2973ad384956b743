// Taking something home: a picture of the screen and a report of the machine, as two files in the root of a volume.
//
// They are ventara-001.png and ventara-001.txt, or the next number that neither file has; no file that is there is
// touched, and what can't be written whole is taken away again, or told of where it stays. Nothing else in Ventara writes to
// a volume.
#pragma once

#include "platform/board/BoardServices.h"

// Null: from now on nothing is taken. Told's words stay until the next time.
VOID UseTakeHome(EFI_SYSTEM_TABLE* SystemTable, BOARD_SOURCE* Board, UINT64 (*Microseconds)(), const TAKE_HOME* Home);
// Not from a notification: a volume works at TPL_CALLBACK and below.
VOID TakeHome();
