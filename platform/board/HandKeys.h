// Hears the keys that take the mouse's place (Hand.h), wherever the firmware has an extended text input protocol. The
// strokes reach whoever reads keys all the same; the console drops those that it has no use for.
#pragma once

#include "uefi/SystemTable.h"

// Without the protocol there is nothing to hear, and the mouse is alone. For StrokeClock see BOARD_OPTIONS.
VOID OpenHandKeys(EFI_SYSTEM_TABLE* SystemTable, UINT64 (*StrokeClock)());
VOID CloseHandKeys();
// Some of the keys are heard.
bool HearsHandKeys();
