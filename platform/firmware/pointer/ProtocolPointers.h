// Pointing devices that the firmware has a driver for: its simple and absolute pointer protocols.
//
// Firmware also publishes protocols that stand for all devices together, and does so when there is no device at all; a
// handle with a device path is a device. Handles without one are asked only while no handle has one.
#pragma once

#include "platform/firmware/pointer/PointerChange.h"
#include "uefi/SystemTable.h"

VOID OpenProtocolPointers(EFI_SYSTEM_TABLE* SystemTable);
// Looks for devices anew, at most once a second; they may appear late. Then asks the next device in turn. True when one
// reported.
bool PollProtocolPointers(UINT64 Now, POINTER_CHANGE* Change);
// True when the firmware itself drives a mouse at the keyboard controller, so that nobody else may read there.
bool FirmwareDrivesPs2Mouse();
// Devices found at the last look.
UINTN CountProtocolPointers();
// Forgets the devices and their places; the next poll looks for them.
VOID CloseProtocolPointers();
