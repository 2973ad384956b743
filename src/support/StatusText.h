// The firmware's status codes in words, for lines that a person reads.
#pragma once

#include "uefi/Base.h"

// The text of a status: success, the warnings 1 to 4 and the errors 1 to 24. Null for any other status, which the
// caller prints as a number.
const CHAR8* StatusText(EFI_STATUS Status);
