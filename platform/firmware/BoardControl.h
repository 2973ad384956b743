// What the board driver tells whoever started it, beside the board's services: what it found, the word that the fans may
// be set, and what F12 has come to.
#pragma once

#include "platform/board/chips/ChipBoard.h"

constexpr EFI_GUID gBoardControlGuid = {0x3F0B7D62, 0x81C4, 0x4D9A, {0xA6, 0x1E, 0x5B, 0xC2, 0x90, 0x47, 0xD3, 0x1F}};

struct BOARD_CONTROL {
    const CHIP_REPORT* Report;
    BOOLEAN Simulated;                  // there was nothing to read: the numbers are invented, and no fan is anybody's
    VOID (*AllowFans)(BOOLEAN Allowed); // see AllowChipFans; nobody's are allowed at the start
    BOOLEAN HearsKeys;                  // that take the mouse's place: the firmware tells of single keys
    const CHAR16* TakenHome;            // of the last F12 since the driver was loaded, in a sentence; empty before it
};
