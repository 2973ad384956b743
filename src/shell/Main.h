// The application: entry point and the loop that runs until the user leaves. What a turn does is the other units' business:
// this one calls them in a fixed order, and that order is its contract.
#pragma once

#include "uefi/SystemTable.h"

// What the firmware calls. Gives back what MonitorMain gave. The one symbol that an image shows.
extern "C" __attribute__((visibility("default"))) EFI_STATUS _ModuleEntryPoint(EFI_HANDLE ImageHandle,
                                                                               EFI_SYSTEM_TABLE* SystemTable);

// Keeps the firmware's tables, looks up the HII protocols and binds the shell.
VOID RunLibraryConstructors(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable);
VOID RunLibraryDestructors(EFI_HANDLE ImageHandle);

// EFI_PROTOCOL_ERROR, with nothing drawn and everything given back, when a service is missing or the GUI can't be built;
// EFI_SUCCESS after the user has left.
EFI_STATUS MonitorMain(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable);
