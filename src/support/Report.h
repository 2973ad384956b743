// What a unit says of a failure: a line on the firmware's error console.
#pragma once

#include "uefi/Base.h"

// Writes the line "ASSERT file(line): description" on StdErr and returns: a report, not a stop. Nothing is written while
// there is no system table or no StdErr.
VOID AssertPrint(const CHAR8* FileName, UINTN LineNumber, const CHAR8* Description);
// The part of a path behind its last backslash; null if there is none behind its first character.
const CHAR8* FileNameOfPath(const CHAR8* Path);

// A unit that reports defines gSourcePath, its own path with backslashes.
#define REPORT(Description) AssertPrint(FileNameOfPath(gSourcePath), __LINE__, Description)
