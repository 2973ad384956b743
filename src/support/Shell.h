// The UEFI shell, new or old, as far as the console has to do with it: whether the image was started from one, and with
// which arguments. A missing shell has no effect. The shell's files aren't bound, since nothing here reads a file.
#pragma once

#include "uefi/Base.h"

// Opens the shell's protocols for this image: the new shell's pair, else the old shell's. EFI_NOT_FOUND when neither
// pair is complete. Needs gImageHandle and gBS.
EFI_STATUS BindShellProtocols();
// Closes the old shell's interface on the image's handle, opened or not, and forgets it: the first part of taking down
// what is the shell's, when the last picture stands.
VOID CloseShellInterface();
// Closes what BindShellProtocols opened and forgets the interfaces.
VOID ReleaseShellProtocols();

// True when the image was started from a shell that told its arguments: Argc of them at Argv, the program's own name
// first. They belong to the shell and hold until CloseShellInterface. Without a shell the outputs are left alone.
bool ShellArguments(CHAR16*** Argv, UINTN* Argc);
