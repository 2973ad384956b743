// How the report on a machine's chips is written: words that are put together, and lines that they are laid into.
#pragma once

#include "platform/board/chips/ChipBoard.h"

// Words that stay together on one line; what is longer than a line is cut.
struct WORDS {
    CHAR8 Text[gChipLineLength + 1] = {};
    UINTN Length = 0;

    WORDS& Add(const CHAR8* More);
    // Base 10 or 16, with zeros in front for fewer than Digits.
    WORDS& AddNumber(UINT32 Number, UINT32 Base = 10, UINTN Digits = 1);
};

// The line that is being written; a word that doesn't fit any more begins the next one.
struct LINE_WRITER {
    CHIP_REPORT* Report;
    UINTN Column;
};

// A new line, the report's last one again when there is room for no more.
VOID BeginLine(LINE_WRITER* Writer, UINTN Indent);
VOID Put(LINE_WRITER* Writer, const CHAR8* Text);

VOID ReportLine(CHIP_REPORT* Report, const WORDS& Words);
