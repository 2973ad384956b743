#include "platform/host/Consoles.h"

#include <algorithm>
#include <cstdio>

#include "platform/host/HostText.h"

EFI_STATUS CONSOLES::Write(bool IsError, const CHAR16* Text)
{
    if (Text == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    std::string Line = ToUtf8(Text);
    std::erase(Line, '\r');
    (IsError ? ErrorText : OutputText) += Line;
    if (Echo) {
        FILE* Stream = IsError ? stderr : stdout;
        std::fwrite(Line.data(), 1, Line.size(), Stream);
        std::fflush(Stream);
    }
    return EFI_SUCCESS;
}

VOID CONSOLES::Press(UINT16 ScanCode, CHAR16 Char, UINT32 ShiftState)
{
    Keys.push_back({ScanCode, Char});
    for (const auto& [Handle, Wanted] : mNotifications) {
        const UINT32 State = Wanted.Stroke.KeyState.KeyShiftState;
        if (Wanted.Stroke.Key.ScanCode == ScanCode && Wanted.Stroke.Key.UnicodeChar == Char &&
            (State == 0 || State == ShiftState)) {
            EFI_KEY_DATA Stroke = {{ScanCode, Char}, {ShiftState, 0}};
            (void)Wanted.Function(&Stroke);
        }
    }
}

EFI_STATUS CONSOLES::Register(const EFI_KEY_DATA* Stroke, EFI_KEY_NOTIFY_FUNCTION Function, VOID** Handle)
{
    if (Stroke == nullptr || Function == nullptr || Handle == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    mNotifications[++mLastNotification] = {*Stroke, Function};
    *Handle = reinterpret_cast<VOID*>(mLastNotification);
    return EFI_SUCCESS;
}

EFI_STATUS CONSOLES::Unregister(VOID* Handle)
{
    return mNotifications.erase(reinterpret_cast<UINTN>(Handle)) == 1 ? EFI_SUCCESS : EFI_INVALID_PARAMETER;
}

EFI_STATUS CONSOLES::ReadKey(EFI_INPUT_KEY* Key)
{
    if (Key == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    if (Keys.empty()) {
        *Key = {};
        return EFI_NOT_READY;
    }
    *Key = Keys.front();
    Keys.pop_front();
    return EFI_SUCCESS;
}
