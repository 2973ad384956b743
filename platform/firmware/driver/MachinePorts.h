// The ways to the sensor chips of the machine that this runs on.
#pragma once

#include "platform/board/chips/Ports.h"
#include "uefi/SystemTable.h"

// One record, which lasts.
PORTS* OpenMachinePorts(EFI_BOOT_SERVICES* BootServices);
