#include "support/Print.h"

#include <stdarg.h>

#include "support/Pool.h"
#include "support/StatusText.h"

namespace {

constexpr UINTN gConsoleCharacters = 320;

// A text of either kind, read as UTF-16.
struct TEXT {
    const CHAR16* Unicode;
    const CHAR8* Ascii;

    CHAR16 At(UINTN Index) const
    {
        return Unicode != nullptr ? Unicode[Index] : static_cast<CHAR16>(static_cast<UINT8>(Ascii[Index]));
    }
    UINTN LengthUpTo(UINTN Maximum) const
    {
        UINTN Length = 0;
        while (Length < Maximum && At(Length) != 0) {
            ++Length;
        }
        return Length;
    }
};

// The part of the buffer in front of the end mark. What no longer fits is dropped here and nowhere else.
struct OUTPUT {
    CHAR16* Buffer;
    UINTN Room;
    UINTN Count;

    VOID Put(CHAR16 Character)
    {
        if (Count < Room) {
            Buffer[Count++] = Character;
        }
    }
    VOID Fill(CHAR16 Character, UINTN Times)
    {
        // A width can be far larger than any buffer.
        for (; Times != 0 && Count < Room; --Times) {
            Put(Character);
        }
    }
};

// The arguments in a record, since a plain va_list can't be handed on by reference on every target.
struct ARGUMENTS {
    va_list List;
};

constexpr UINTN gNoPrecision = ~static_cast<UINTN>(0);
constexpr UINTN gLargestNumberInFormat = 0x7FFFFFFF;

struct ELEMENT {
    bool Left;
    bool Sign;
    bool Blank;
    bool Zero;
    bool Comma;
    bool Long;
    UINTN Width;
    UINTN Precision;
};

// Width or precision at Index of the format, as digits or as *.
INT64 ReadNumber(const TEXT& Format, UINTN& Index, ARGUMENTS& Arguments)
{
    if (Format.At(Index) == u'*') {
        ++Index;
        return va_arg(Arguments.List, INT32);
    }
    UINTN Number = 0;
    for (; Format.At(Index) >= u'0' && Format.At(Index) <= u'9'; ++Index) {
        Number = Number * 10 + (Format.At(Index) - u'0');
        if (Number > gLargestNumberInFormat) {
            Number = gLargestNumberInFormat;
        }
    }
    return static_cast<INT64>(Number);
}

// Reads what stands between the percent sign and the letter; Index is left on the letter.
ELEMENT ReadElement(const TEXT& Format, UINTN& Index, ARGUMENTS& Arguments)
{
    ELEMENT Element = {};
    Element.Precision = gNoPrecision;
    for (;;) {
        const CHAR16 Character = Format.At(Index);
        switch (Character) {
        case u'-':
            Element.Left = true;
            ++Index;
            break;
        case u'+':
            Element.Sign = true;
            ++Index;
            break;
        case u' ':
            Element.Blank = true;
            ++Index;
            break;
        case u'0':
            Element.Zero = true;
            ++Index;
            break;
        case u',':
            Element.Comma = true;
            ++Index;
            break;
        case u'l':
        case u'L':
            Element.Long = true;
            ++Index;
            break;
        case u'.': {
            ++Index;
            const INT64 Precision = ReadNumber(Format, Index, Arguments);
            Element.Precision = Precision < 0 ? gNoPrecision : static_cast<UINTN>(Precision);
            break;
        }
        default: {
            if (Character != u'*' && (Character < u'1' || Character > u'9')) {
                return Element;
            }
            const INT64 Width = ReadNumber(Format, Index, Arguments);
            Element.Left = Element.Left || Width < 0;
            Element.Width = static_cast<UINTN>(Width < 0 ? -Width : Width);
        }
        }
    }
}

VOID PutText(OUTPUT& Output, const ELEMENT& Element, const TEXT& Text)
{
    const UINTN Length = Text.LengthUpTo(Element.Precision);
    const UINTN Blanks = Element.Width > Length ? Element.Width - Length : 0;
    if (!Element.Left) {
        Output.Fill(u' ', Blanks);
    }
    for (UINTN Index = 0; Index < Length; ++Index) {
        Output.Put(Text.At(Index));
    }
    if (Element.Left) {
        Output.Fill(u' ', Blanks);
    }
}

// Prefix is the sign, or 0 for none.
VOID PutNumber(OUTPUT& Output, const ELEMENT& Element, CHAR16 Prefix, UINT64 Value, UINT32 Radix)
{
    CHAR8 Digits[20]; // lowest first; the largest 64-bit value has 20
    UINTN DigitCount = 0;
    do {
        Digits[DigitCount++] = "0123456789ABCDEF"[Value % Radix];
        Value /= Radix;
    } while (Value != 0);

    const UINTN PrefixLength = Prefix != 0 ? 1 : 0;
    const UINTN CommaCount = Element.Comma ? (DigitCount - 1) / 3 : 0;
    UINTN Zeros = 0;
    if (Element.Precision != gNoPrecision) {
        Zeros = Element.Precision > DigitCount ? Element.Precision - DigitCount : 0;
    } else if (Element.Zero && !Element.Left && !Element.Comma && Element.Width > PrefixLength + DigitCount) {
        Zeros = Element.Width - PrefixLength - DigitCount;
    }
    const UINTN Length = PrefixLength + Zeros + DigitCount + CommaCount;
    const UINTN Blanks = Element.Width > Length ? Element.Width - Length : 0;

    if (!Element.Left) {
        Output.Fill(u' ', Blanks);
    }
    Output.Fill(Prefix, PrefixLength);
    Output.Fill(u'0', Zeros);
    while (DigitCount != 0) {
        --DigitCount;
        Output.Put(static_cast<CHAR16>(Digits[DigitCount]));
        if (Element.Comma && DigitCount != 0 && DigitCount % 3 == 0) {
            Output.Put(u',');
        }
    }
    if (Element.Left) {
        Output.Fill(u' ', Blanks);
    }
}

VOID PutDecimal(OUTPUT& Output, const ELEMENT& Element, INT64 Value)
{
    CHAR16 Prefix = 0;
    UINT64 Magnitude = static_cast<UINT64>(Value);
    if (Value < 0) {
        Prefix = u'-';
        Magnitude = 0 - Magnitude;
    } else if (Element.Sign) {
        Prefix = u'+';
    } else if (Element.Blank) {
        Prefix = u' ';
    }
    PutNumber(Output, Element, Prefix, Magnitude, 10);
}

VOID PutHexadecimal(OUTPUT& Output, ELEMENT Element, UINT64 Value)
{
    Element.Comma = false;
    PutNumber(Output, Element, 0, Value, 16);
}

VOID PutString(OUTPUT& Output, const ELEMENT& Element, const CHAR16* String)
{
    if (String == nullptr) {
        PutText(Output, Element, {u"<null string>", nullptr});
    } else {
        PutText(Output, Element, {String, nullptr});
    }
}

VOID PutAsciiString(OUTPUT& Output, const ELEMENT& Element, const CHAR8* String)
{
    if (String == nullptr) {
        PutText(Output, Element, {u"<null string>", nullptr});
    } else {
        PutText(Output, Element, {nullptr, String});
    }
}

VOID PutStatus(OUTPUT& Output, const ELEMENT& Element, EFI_STATUS Status)
{
    CHAR16 Number[9];
    TEXT Text = {nullptr, StatusText(Status)};
    if (Text.Ascii == nullptr) {
        FormatUnicodeText(Number, sizeof(Number), u"%08X", static_cast<UINT32>(Status));
        Text = {Number, nullptr};
    }
    PutText(Output, Element, Text);
}

VOID PutGuid(OUTPUT& Output, const ELEMENT& Element, const EFI_GUID* Guid)
{
    if (Guid == nullptr) {
        PutText(Output, Element, {u"<null guid>", nullptr});
        return;
    }
    CHAR16 Text[37];
    const UINT8* Tail = Guid->Data4;
    FormatUnicodeText(Text, sizeof(Text), u"%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x", Guid->Data1, Guid->Data2,
                      Guid->Data3, Tail[0], Tail[1], Tail[2], Tail[3], Tail[4], Tail[5], Tail[6], Tail[7]);
    PutText(Output, Element, {Text, nullptr});
}

VOID PutTime(OUTPUT& Output, const ELEMENT& Element, const EFI_TIME* Time)
{
    if (Time == nullptr) {
        PutText(Output, Element, {u"<null time>", nullptr});
        return;
    }
    CHAR16 Text[24]; // the longest that the fields' widths allow has 22 characters
    FormatUnicodeText(Text, sizeof(Text), u"%02d/%02d/%04d  %02d:%02d", Time->Month, Time->Day, Time->Year, Time->Hour,
                      Time->Minute);
    PutText(Output, Element, {Text, nullptr});
}

VOID PutElement(OUTPUT& Output, ELEMENT Element, CHAR16 Letter, ARGUMENTS& Arguments)
{
    switch (Letter) {
    case u's':
    case u'S':
        PutString(Output, Element, va_arg(Arguments.List, const CHAR16*));
        break;
    case u'a':
        PutAsciiString(Output, Element, va_arg(Arguments.List, const CHAR8*));
        break;
    case u'c': {
        const CHAR16 Character[2] = {static_cast<CHAR16>(va_arg(Arguments.List, INT32)), 0};
        PutText(Output, Element, {Character, nullptr});
        break;
    }
    case u'd':
        PutDecimal(Output, Element, Element.Long ? va_arg(Arguments.List, INT64) : va_arg(Arguments.List, INT32));
        break;
    case u'X':
        Element.Zero = true;
        [[fallthrough]];
    case u'x':
        PutHexadecimal(Output, Element, Element.Long ? va_arg(Arguments.List, UINT64) : va_arg(Arguments.List, UINT32));
        break;
    case u'p':
        Element.Zero = true;
        PutHexadecimal(Output, Element, reinterpret_cast<UINTN>(va_arg(Arguments.List, VOID*)));
        break;
    case u'r':
        PutStatus(Output, Element, va_arg(Arguments.List, EFI_STATUS));
        break;
    case u'g':
        PutGuid(Output, Element, va_arg(Arguments.List, const EFI_GUID*));
        break;
    case u't':
        PutTime(Output, Element, va_arg(Arguments.List, const EFI_TIME*));
        break;
    default:
        Output.Put(Letter);
    }
}

UINTN FormatText(CHAR16* Buffer, UINTN BufferSize, const TEXT& Format, ARGUMENTS& Arguments)
{
    if (Buffer == nullptr || BufferSize < sizeof(CHAR16)) {
        return 0;
    }
    OUTPUT Output = {.Buffer = Buffer, .Room = BufferSize / sizeof(CHAR16) - 1, .Count = 0};
    if (Format.Unicode != nullptr || Format.Ascii != nullptr) {
        CHAR16 Before = 0;
        for (UINTN Index = 0; Format.At(Index) != 0; ++Index) {
            CHAR16 Character = Format.At(Index);
            if (Character == u'%') {
                ++Index;
                const ELEMENT Element = ReadElement(Format, Index, Arguments);
                Character = Format.At(Index);
                if (Character == 0) {
                    break;
                }
                PutElement(Output, Element, Character, Arguments);
                Before = 0;
                continue;
            }
            if (Character == u'\n' && Before != u'\r') {
                Output.Put(u'\r');
            }
            Output.Put(Character);
            Before = Character;
        }
    }
    Buffer[Output.Count] = 0;
    return Output.Count;
}

} // namespace

UINTN FormatUnicodeText(CHAR16* Buffer, UINTN BufferSize, const CHAR16* Format, ...)
{
    ARGUMENTS Arguments;
    va_start(Arguments.List, Format);
    const UINTN Count = FormatText(Buffer, BufferSize, {Format, nullptr}, Arguments);
    va_end(Arguments.List);
    return Count;
}

UINTN FormatAsciiText(CHAR16* Buffer, UINTN BufferSize, const CHAR8* Format, ...)
{
    ARGUMENTS Arguments;
    va_start(Arguments.List, Format);
    const UINTN Count = FormatText(Buffer, BufferSize, {nullptr, Format}, Arguments);
    va_end(Arguments.List);
    return Count;
}

UINTN PrintToConsole(const CHAR16* Format, ...)
{
    if (gST == nullptr || gST->ConOut == nullptr) {
        return 0;
    }
    const UINTN Size = (gConsoleCharacters + 1) * sizeof(CHAR16);
    TEMPORARY<CHAR16> Text(static_cast<CHAR16*>(AllocatePool(Size)));
    if (!Text) {
        return 0;
    }
    ARGUMENTS Arguments;
    va_start(Arguments.List, Format);
    const UINTN Count = FormatText(Text.Data, Size, {Format, nullptr}, Arguments);
    va_end(Arguments.List);
    if (Count == 0 || EfiError(gST->ConOut->OutputString(gST->ConOut, Text.Data))) {
        return 0;
    }
    return Count;
}
