// The pointer of a real machine: every pointing device that can be reached, merged into one position and two buttons.
//
// There are three kinds: devices that the firmware drives, USB devices that it leaves alone, and a mouse at the keyboard
// controller. A machine may have several at once, and some appear late, so none is chosen: a way moves the pointer, a
// place puts it somewhere, and a button is down while it is down on any of them.
#pragma once

#include "platform/board/BoardServices.h"

// The source is good until CloseMachinePointer. StartClock must have been called.
EFI_STATUS OpenMachinePointer(EFI_SYSTEM_TABLE* SystemTable, EFI_HANDLE Image, POINTER_SOURCE** Source);
VOID CloseMachinePointer();
// The devices that were found so far, as a part of a machine's report.
VOID DescribeMachinePointer(REPORT_TEXT* Text);
