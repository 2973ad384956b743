#include "platform/board/ReportText.h"

namespace {

VOID AddByte(REPORT_TEXT* Report, UINTN Byte)
{
    if (Report->Length < Report->Size) {
        Report->Text[Report->Length++] = static_cast<CHAR8>(Byte);
    }
}

} // namespace

VOID AddText(REPORT_TEXT* Report, const CHAR8* Text)
{
    for (; *Text != 0; Text++) {
        AddByte(Report, static_cast<UINT8>(*Text));
    }
}

VOID AddText(REPORT_TEXT* Report, const CHAR16* Text)
{
    for (; Text != nullptr && *Text != 0; Text++) {
        const UINTN Char = *Text;
        if (Char < 0x80) {
            AddByte(Report, Char);
            continue;
        }
        if (Char < 0x800) {
            AddByte(Report, 0xC0 | Char >> 6);
        } else {
            AddByte(Report, 0xE0 | Char >> 12);
            AddByte(Report, 0x80 | (Char >> 6 & 0x3F));
        }
        AddByte(Report, 0x80 | (Char & 0x3F));
    }
}

VOID AddNumber(REPORT_TEXT* Report, UINT64 Number)
{
    CHAR8 Digits[21];
    UINTN At = sizeof(Digits) - 1;
    Digits[At] = 0;
    do {
        Digits[--At] = static_cast<CHAR8>('0' + Number % 10);
        Number /= 10;
    } while (Number != 0);
    AddText(Report, Digits + At);
}

VOID AddHexByte(REPORT_TEXT* Report, UINT8 Byte)
{
    constexpr const CHAR8* Digits = "0123456789abcdef";
    AddByte(Report, static_cast<UINT8>(Digits[Byte >> 4]));
    AddByte(Report, static_cast<UINT8>(Digits[Byte & 15]));
}
