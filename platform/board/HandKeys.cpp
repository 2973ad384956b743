#include "platform/board/HandKeys.h"

#include "platform/board/Hand.h"
#include "uefi/TextInputEx.h"

namespace {

struct HAND_STROKE {
    EFI_INPUT_KEY Key;
    HAND_KEY Plain;
    HAND_KEY Shifted;
};

constexpr HAND_STROKE gHandStrokes[] = {
    {{SCAN_LEFT, 0}, HAND_LEFT, HAND_LEFT_FINE},
    {{SCAN_RIGHT, 0}, HAND_RIGHT, HAND_RIGHT_FINE},
    {{SCAN_UP, 0}, HAND_UP, HAND_UP_FINE},
    {{SCAN_DOWN, 0}, HAND_DOWN, HAND_DOWN_FINE},
    {{SCAN_NULL, CHAR_TAB}, HAND_NEXT, HAND_BACK},
    {{SCAN_NULL, u' '}, HAND_CLICK, HAND_CLICK},
    {{SCAN_NULL, u'g'}, HAND_GRAB, HAND_GRAB},
    {{SCAN_NULL, u'G'}, HAND_GRAB, HAND_GRAB},
    {{SCAN_F12, 0}, HAND_PICTURE, HAND_PICTURE},
    {{SCAN_ESC, 0}, HAND_LEAVE, HAND_LEAVE},
    {{SCAN_NULL, CHAR_CARRIAGE_RETURN}, HAND_LEAVE, HAND_LEAVE},
};
constexpr UINTN gHandStrokeCount = sizeof(gHandStrokes) / sizeof(gHandStrokes[0]);

EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL* gKeyboard;
UINT64 (*gStrokeClock)();
VOID* gNotifications[gHandStrokeCount];

EFI_STATUS OnStroke(EFI_KEY_DATA* Stroke)
{
    const UINT32 State = Stroke->KeyState.KeyShiftState;
    const bool Shifted =
        (State & EFI_SHIFT_STATE_VALID) != 0 && (State & (EFI_LEFT_SHIFT_PRESSED | EFI_RIGHT_SHIFT_PRESSED)) != 0;
    for (const HAND_STROKE& Known : gHandStrokes) {
        if (Known.Key.ScanCode == Stroke->Key.ScanCode && Known.Key.UnicodeChar == Stroke->Key.UnicodeChar) {
            const HAND_KEY Hand = Shifted ? Known.Shifted : Known.Plain;
            gStrokeClock != nullptr ? StrikeHand(Hand, gStrokeClock()) : PressHand(Hand);
        }
    }
    return EFI_SUCCESS;
}

} // namespace

VOID OpenHandKeys(EFI_SYSTEM_TABLE* SystemTable, UINT64 (*StrokeClock)())
{
    gStrokeClock = StrokeClock;
    // The one of the console's own handle stands for all keyboards together, those that come later among them.
    EFI_BOOT_SERVICES* Boot = SystemTable->BootServices;
    VOID* Interface = nullptr;
    gKeyboard = nullptr;
    if (EfiError(Boot->HandleProtocol(SystemTable->ConsoleInHandle, &gEfiSimpleTextInputExProtocolGuid, &Interface)) &&
        EfiError(Boot->LocateProtocol(&gEfiSimpleTextInputExProtocolGuid, nullptr, &Interface))) {
        return;
    }
    gKeyboard = static_cast<EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL*>(Interface);
    for (UINTN Index = 0; Index < gHandStrokeCount; Index++) {
        // Shift and the like are looked at when the stroke comes.
        EFI_KEY_DATA Stroke = {.Key = gHandStrokes[Index].Key, .KeyState = {}};
        if (EfiError(gKeyboard->RegisterKeyNotify(gKeyboard, &Stroke, OnStroke, &gNotifications[Index]))) {
            gNotifications[Index] = nullptr;
        }
    }
}

bool HearsHandKeys()
{
    for (const VOID* Notification : gNotifications) {
        if (Notification != nullptr) {
            return true;
        }
    }
    return false;
}

VOID CloseHandKeys()
{
    for (VOID*& Notification : gNotifications) {
        if (Notification != nullptr) {
            (void)gKeyboard->UnregisterKeyNotify(gKeyboard, Notification);
            Notification = nullptr;
        }
    }
}
