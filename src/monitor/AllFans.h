// The commands on all fans at once: Full speed, Default and Cancel, by button or by key.
//
// A command goes to the service at once, and the controls of all pages are brought into line with it. The page on top
// is repainted; the others show the new state when they next come up. RefreshFanLegend follows every command: the
// button's listener calls it after a click, the main loop after a key.
#pragma once

#include "uefi/SystemTable.h"

// Event is that of the button whose action this is, and null for a key: a button writes the setting of a page on top that
// has a box and a slider once more, a key writes no setting, whatever the pointer is doing. Context isn't read. Give the
// status of the service's command.
EFI_STATUS AllFansFullSpeed(EFI_EVENT Event, VOID* Context);
EFI_STATUS AllFansDefault(EFI_EVENT Event, VOID* Context);
EFI_STATUS AllFansCancel(EFI_EVENT Event, VOID* Context);
