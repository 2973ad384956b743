// Progress lines for whoever watches a machine from outside: written on the debug console of a virtual machine (port
// 0x402), and nowhere when there is none. A test waits for these lines, a person reads them in a log.
#pragma once

#include "uefi/Base.h"

// The text as it is; a line ends with "\n".
VOID Report(const CHAR8* Text);
// "0x" and the number in hex, without leading zeros.
VOID ReportHex(UINT64 Number);
VOID ReportDecimal(UINT64 Number);
// The text, the status' name or its number, and the line's end.
VOID ReportStatus(const CHAR8* Text, EFI_STATUS Status);

// "Success", "Not Found" and so on; null for a status that isn't named here.
const CHAR8* NameStatus(EFI_STATUS Status);
