// The functions behind the firmware's own tables: each takes the current boot and does what its name in the UEFI
// specification says. Boot services that nothing calls in this world answer EFI_UNSUPPORTED, such runtime services are
// null, and what a text console has nothing to do for gives EFI_SUCCESS.
#pragma once

#include "uefi/TextInputEx.h"

VOID FillBootServices(EFI_BOOT_SERVICES* Services);
VOID FillRuntimeServices(EFI_RUNTIME_SERVICES* Services);
VOID FillTextInput(EFI_SIMPLE_TEXT_INPUT_PROTOCOL* Input);
VOID FillTextInputEx(EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL* Input);
VOID FillTextOutput(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* Output, bool IsError);
