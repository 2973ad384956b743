// Plain text that grows in a fixed room, in UTF-8. What doesn't fit any more is dropped.
#pragma once

#include "uefi/Base.h"

struct REPORT_TEXT {
    CHAR8* Text; // not zero-ended
    UINTN Size;
    UINTN Length;
};

VOID AddText(REPORT_TEXT* Report, const CHAR8* Text);
// UTF-16; nothing for null.
VOID AddText(REPORT_TEXT* Report, const CHAR16* Text);
VOID AddNumber(REPORT_TEXT* Report, UINT64 Number);
VOID AddHexByte(REPORT_TEXT* Report, UINT8 Byte);
