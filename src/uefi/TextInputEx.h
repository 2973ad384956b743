// Key strokes with the keys that were held beside them, and notifications of single ones.
#pragma once

#include "uefi/SystemTable.h"

constexpr EFI_GUID gEfiSimpleTextInputExProtocolGuid = {
    0xDD9E7534, 0x7762, 0x4698, {0x8C, 0x14, 0xF5, 0x85, 0x17, 0xA6, 0x25, 0xAA}};

constexpr UINT32 EFI_SHIFT_STATE_VALID = 0x80000000;
constexpr UINT32 EFI_RIGHT_SHIFT_PRESSED = 0x00000001;
constexpr UINT32 EFI_LEFT_SHIFT_PRESSED = 0x00000002;

struct EFI_KEY_STATE {
    UINT32 KeyShiftState; // means something with EFI_SHIFT_STATE_VALID alone
    UINT8 KeyToggleState;
};

struct EFI_KEY_DATA {
    EFI_INPUT_KEY Key;
    EFI_KEY_STATE KeyState;
};

// Runs between two instructions of whoever is working, at TPL_NOTIFY or below.
using EFI_KEY_NOTIFY_FUNCTION = EFI_STATUS (*)(EFI_KEY_DATA* KeyData);

struct EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL {
    EFI_STATUS (*Reset)(EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL* This, BOOLEAN ExtendedVerification);
    EFI_STATUS (*ReadKeyStrokeEx)(EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL* This, EFI_KEY_DATA* KeyData);
    EFI_EVENT WaitForKeyEx;
    EFI_STATUS (*SetState)(EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL* This, UINT8* KeyToggleState);
    // The stroke is told to the function and reaches the queue of keys all the same. A KeyState of 0 stands for any.
    EFI_STATUS (*RegisterKeyNotify)(EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL* This, EFI_KEY_DATA* KeyData,
                                    EFI_KEY_NOTIFY_FUNCTION Function, VOID** NotifyHandle);
    EFI_STATUS (*UnregisterKeyNotify)(EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL* This, VOID* NotifyHandle);
};
static_assert(sizeof(EFI_KEY_DATA) == 12 && sizeof(EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL) == 6 * 8);
