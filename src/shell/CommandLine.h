// The command line of an image that was started from a UEFI shell: "-V" or "-v" alone shows the version.
#pragma once

#include "uefi/Base.h"

// Whether the image was started from a shell that told its arguments. Set by ParseCommandLine.
extern bool gShellConsole;

// Looks at the shell's arguments and says whether the console is to start. False after the version line was printed:
// the application then ends with EFI_SUCCESS. Without a shell there is no command line and the console starts. Needs
// BindShellProtocols to have run.
bool ParseCommandLine();
