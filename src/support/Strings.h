// Strings of the console: UTF-16, ended by a zero character.
#pragma once

#include "uefi/Base.h"

// Characters before the end mark. Null counts as empty.
UINTN StringLength(const CHAR16* String);
// Adds Source to the end of Destination, which must have the room.
VOID AppendString(CHAR16* Destination, const CHAR16* Source);
// A pool copy of the string, end mark included; null when there is no pool.
CHAR16* CopyString(const CHAR16* String);
