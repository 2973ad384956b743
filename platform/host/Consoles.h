// The text consoles: ConOut goes to standard output, StdErr to standard error, ConIn comes from a queue of keys.
#pragma once

#include <deque>
#include <string>

#include "uefi/SystemTable.h"

struct CONSOLES {
    bool Echo = true; // off: text is only kept
    std::string OutputText;
    std::string ErrorText;
    std::deque<EFI_INPUT_KEY> Keys;
    EFI_SIMPLE_TEXT_OUTPUT_MODE Mode = {1, 0, 7, 0, 0, 0}; // of both outputs

    // UTF-16 to UTF-8, without carriage returns.
    EFI_STATUS Write(bool IsError, const CHAR16* Text);
    // EFI_NOT_READY, with the key zero, when none was pressed.
    EFI_STATUS ReadKey(EFI_INPUT_KEY* Key);

    VOID Press(UINT16 ScanCode, CHAR16 Char) { Keys.push_back({ScanCode, Char}); }
};
