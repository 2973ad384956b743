#include "platform/board/chips/ChipWords.h"

namespace {

constexpr UINTN gListIndent = 4;

} // namespace

WORDS& WORDS::Add(const CHAR8* More)
{
    while (*More != 0 && Length < gChipLineLength) {
        Text[Length++] = *More++;
    }
    Text[Length] = 0;
    return *this;
}

WORDS& WORDS::AddNumber(UINT32 Number, UINT32 Base, UINTN Digits)
{
    CHAR8 Reversed[12];
    UINTN Count = 0;
    do {
        Reversed[Count++] = "0123456789ABCDEF"[Number % Base];
        Number /= Base;
    } while (Number != 0 || Count < Digits);
    while (Count > 0) {
        const CHAR8 One[] = {Reversed[--Count], 0};
        Add(One);
    }
    return *this;
}

VOID BeginLine(LINE_WRITER* Writer, UINTN Indent)
{
    CHIP_REPORT* Report = Writer->Report;
    if (Report->Count < gChipLines) {
        Report->Count++;
    }
    CHAR16* Line = Report->Lines[Report->Count - 1];
    for (Writer->Column = 0; Writer->Column < Indent; Writer->Column++) {
        Line[Writer->Column] = u' ';
    }
    Line[Writer->Column] = 0;
}

VOID Put(LINE_WRITER* Writer, const CHAR8* Text)
{
    UINTN Length = 0;
    while (Text[Length] != 0) {
        Length++;
    }
    // There is always room for the comma behind a word.
    if (Writer->Column + Length + 1 > gChipLineLength && Length > 1 && Length + gListIndent < gChipLineLength) {
        BeginLine(Writer, gListIndent);
        while (*Text == ' ') {
            Text++;
        }
    }
    CHAR16* Line = Writer->Report->Lines[Writer->Report->Count - 1];
    for (; *Text != 0 && Writer->Column < gChipLineLength; Text++) {
        Line[Writer->Column++] = static_cast<CHAR16>(*Text);
    }
    Line[Writer->Column] = 0;
}

VOID ReportLine(CHIP_REPORT* Report, const WORDS& Words)
{
    LINE_WRITER Writer = {Report, 0};
    BeginLine(&Writer, 0);
    Put(&Writer, Words.Text);
}

VOID ReportWishFault(CHIP_REPORT* Report, UINT32 Line, const CHAR8* What, const CHAR8* Sensor)
{
    WORDS Words;
    Words.Add("ventara.ini, line ").AddNumber(Line).Add(": ").Add(What);
    if (Sensor != nullptr) {
        Words.Add(" (").Add(Sensor).Add(")");
    }
    ReportLine(Report, Words);
}
