// What an image that the starter runs finds in the place of a protocol of the firmware, and of a clock of whole seconds.
//
// The image gets a system table of its own by its loaded-image record, whose LocateProtocol answers with the starter's
// interfaces, and whose GetTime tells microseconds (FineTime.h). Nobody else sees that table. The UEFI specification names the table in the record and doesn't promise that
// StartImage hands over that one, so while the image runs the firmware's own LocateProtocol gives the same answers to
// calls that come from inside the image; its clock then is the firmware's. After the run everything is as it was.
#pragma once

#include "uefi/SystemTable.h"

// Has lookups of that protocol answered with Interface; with the firmware's own again for null. At most four.
VOID ReplaceLookup(const EFI_GUID* Guid, VOID* Interface);

// Starts a loaded image with the replaced lookups and returns its status. Without any, and with
// a finer clock than of whole seconds, it is just StartImage. Where the
// image's record can't be had, the image is unloaded, and the status is that of asking for it.
EFI_STATUS StartWithLookups(EFI_SYSTEM_TABLE* SystemTable, EFI_HANDLE Image);
