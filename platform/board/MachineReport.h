// What a machine is and what its sensors read, as text for somebody who wasn't there.
#pragma once

#include "platform/board/BoardSource.h"
#include "platform/board/ReportText.h"
#include "uefi/SystemTable.h"

// Microseconds is the board's clock. Describe adds what only the machine's own side knows, such as its pointers; may be
// null.
VOID WriteMachineReport(REPORT_TEXT* Report, const EFI_SYSTEM_TABLE* SystemTable, BOARD_SOURCE* Board,
                        UINT64 (*Microseconds)(), VOID (*Describe)(REPORT_TEXT* Report));
