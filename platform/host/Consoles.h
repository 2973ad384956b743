// The text consoles: ConOut goes to standard output, StdErr to standard error, ConIn comes from a queue of keys, of which
// some are told to whoever asked for it.
#pragma once

#include <deque>
#include <map>
#include <string>

#include "uefi/TextInputEx.h"

// The left shift key held.
constexpr UINT32 gShiftPressed = EFI_SHIFT_STATE_VALID | EFI_LEFT_SHIFT_PRESSED;

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

    VOID Press(UINT16 ScanCode, CHAR16 Char, UINT32 ShiftState = 0);

    // Of the extended protocol. A handle is a number from 1 on.
    EFI_STATUS Register(const EFI_KEY_DATA* Stroke, EFI_KEY_NOTIFY_FUNCTION Function, VOID** Handle);
    EFI_STATUS Unregister(VOID* Handle);

private:
    struct NOTIFICATION {
        EFI_KEY_DATA Stroke;
        EFI_KEY_NOTIFY_FUNCTION Function;
    };
    std::map<UINTN, NOTIFICATION> mNotifications;
    UINTN mLastNotification = 0;
};
