// The functions behind the firmware's own tables: each takes the current boot and does what its name in the UEFI
// specification says. What no program of this house calls answers EFI_UNSUPPORTED.
#pragma once

#include "uefi/SystemTable.h"

VOID FillBootServices(EFI_BOOT_SERVICES* Services);
VOID FillRuntimeServices(EFI_RUNTIME_SERVICES* Services);
VOID FillTextInput(EFI_SIMPLE_TEXT_INPUT_PROTOCOL* Input);
VOID FillTextOutput(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* Output, bool IsError);
