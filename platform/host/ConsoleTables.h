// The functions behind the console's tables: they stand in front of the firmware's, count and trace each call, and let a
// script make it fail. Services that belong to loading and to drivers are the firmware's own, untraced.
#pragma once

#include "uefi/SystemTable.h"

// Over services that FillBootServices and FillRuntimeServices have filled.
VOID CoverBootServices(EFI_BOOT_SERVICES* Services);
VOID CoverRuntimeServices(EFI_RUNTIME_SERVICES* Services);
VOID CoverTextInput(EFI_SIMPLE_TEXT_INPUT_PROTOCOL* Input);
VOID CoverTextOutput(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* Output);
