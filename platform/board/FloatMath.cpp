#include "platform/board/FloatMath.h"

namespace {

static_assert(sizeof(float) == 4 && sizeof(double) == 8);

// Longest text: sign, "0.", 44 zeros of the smallest value and nine digits.
constexpr UINTN gTextCapacity = 64;
constexpr INT32 gMaximumDigits = 9; // that many tell any two single-precision values apart

float ToFloat(FLOAT_WORD Word) { return __builtin_bit_cast(float, static_cast<UINT32>(Word)); }

FLOAT_WORD ToWord(float Value) { return __builtin_bit_cast(UINT32, Value); }

bool IsNumber(float Value) { return Value == Value; }

bool IsInfinite(float Value) { return IsNumber(Value) && !IsNumber(Value - Value); }

// Exact up to 22 and close enough beyond for the nine digits of a single.
double PowerOfTen(INT32 Exponent)
{
    double Power = 1;
    for (; Exponent > 0; Exponent--) {
        Power *= 10;
    }
    return Power;
}

double Scale(double Value, INT32 Exponent)
{
    return Exponent >= 0 ? Value * PowerOfTen(Exponent) : Value / PowerOfTen(-Exponent);
}

// Exponent e with 10^e <= Value < 10^(e+1).
INT32 DecimalExponent(double Value)
{
    INT32 Exponent = 0;
    while (Value >= PowerOfTen(Exponent + 1)) {
        Exponent++;
    }
    while (Value < Scale(1, Exponent)) {
        Exponent--;
    }
    return Exponent;
}

struct DECIMAL {
    UINT64 Digits; // the value is Digits * 10^-Places
    INT32 Places;
};

// The fewest digits that give back the same single.
DECIMAL ShortestDecimal(float Value)
{
    const INT32 Exponent = DecimalExponent(Value);
    DECIMAL Decimal = {};
    for (INT32 Count = 1; Count <= gMaximumDigits; Count++) {
        Decimal.Places = Count - 1 - Exponent;
        Decimal.Digits = static_cast<UINT64>(Scale(Value, Decimal.Places) + 0.5);
        if (static_cast<float>(Scale(static_cast<double>(Decimal.Digits), -Decimal.Places)) == Value) {
            break;
        }
    }
    return Decimal;
}

// Writes from the end of the buffer towards its start.
struct BACKWARD_TEXT {
    CHAR16 Text[gTextCapacity];
    UINTN Start = gTextCapacity;

    VOID Put(CHAR16 Char) { Text[--Start] = Char; }
};

VOID PutDecimal(BACKWARD_TEXT* Out, DECIMAL Decimal)
{
    while (Decimal.Places > 0 && Decimal.Digits % 10 == 0) {
        Decimal.Digits /= 10;
        Decimal.Places--;
    }
    for (; Decimal.Places < 0; Decimal.Places++) {
        Out->Put(u'0');
    }
    for (bool Fraction = Decimal.Places > 0; Decimal.Places > 0; Decimal.Places--) {
        Out->Put(static_cast<CHAR16>(u'0' + Decimal.Digits % 10));
        Decimal.Digits /= 10;
        if (Fraction && Decimal.Places == 1) {
            Out->Put(u'.');
        }
    }
    const bool AfterPoint = Out->Start < gTextCapacity && Out->Text[Out->Start] == u'.';
    if (Decimal.Digits == 0 && AfterPoint) {
        Out->Put(u'0');
    }
    for (; Decimal.Digits != 0; Decimal.Digits /= 10) {
        Out->Put(static_cast<CHAR16>(u'0' + Decimal.Digits % 10));
    }
}

VOID PutName(BACKWARD_TEXT* Out, CHAR16 A, CHAR16 B, CHAR16 C)
{
    Out->Put(C);
    Out->Put(B);
    Out->Put(A);
}

EFI_STATUS FloatToString(FLOAT_WORD Word, CHAR16* Buffer, UINTN Length)
{
    if (Buffer == nullptr || Length == 0) {
        return EFI_INVALID_PARAMETER;
    }
    const float Value = ToFloat(Word);
    const float Size = Value < 0 ? -Value : Value;
    BACKWARD_TEXT Out;
    if (!IsNumber(Value)) {
        PutName(&Out, u'N', u'a', u'N');
    } else if (IsInfinite(Value)) {
        PutName(&Out, u'I', u'n', u'f');
    } else if (Size == 0) {
        Out.Put(u'0');
    } else {
        PutDecimal(&Out, ShortestDecimal(Size));
    }
    if (Value < 0) {
        Out.Put(u'-');
    }
    const UINTN Count = gTextCapacity - Out.Start;
    if (Count >= Length) {
        Buffer[0] = 0;
        return EFI_BUFFER_TOO_SMALL;
    }
    for (UINTN Index = 0; Index < Count; Index++) {
        Buffer[Index] = Out.Text[Out.Start + Index];
    }
    Buffer[Count] = 0;
    return EFI_SUCCESS;
}

FLOAT_WORD FloatAdd(FLOAT_WORD A, FLOAT_WORD B) { return ToWord(ToFloat(A) + ToFloat(B)); }

FLOAT_WORD FloatSubtract(FLOAT_WORD A, FLOAT_WORD B) { return ToWord(ToFloat(A) - ToFloat(B)); }

FLOAT_WORD FloatMultiply(FLOAT_WORD A, FLOAT_WORD B) { return ToWord(ToFloat(A) * ToFloat(B)); }

// Without a detour over a divisor of 0, which the language leaves open although the processor doesn't.
FLOAT_WORD FloatDivide(FLOAT_WORD A, FLOAT_WORD B)
{
    const float Dividend = ToFloat(A);
    const float Divisor = ToFloat(B);
    if (Divisor != 0) {
        return ToWord(Dividend / Divisor);
    }
    constexpr UINT32 Infinity = 0x7F800000;
    constexpr UINT32 NoNumber = 0x7FC00000;
    constexpr UINT32 SignBit = 0x80000000;
    if (Dividend == 0 || !IsNumber(Dividend)) {
        return NoNumber;
    }
    return Infinity | ((static_cast<UINT32>(A) ^ static_cast<UINT32>(B)) & SignBit);
}

INT64 FloatToInt(FLOAT_WORD A)
{
    constexpr float Beyond = 9223372036854775808.0f; // 2^63, the first value that no longer fits
    constexpr INT64 Maximum = 0x7FFFFFFFFFFFFFFFll;
    const float Value = ToFloat(A);
    if (!IsNumber(Value)) {
        return 0;
    }
    if (Value >= Beyond) {
        return Maximum;
    }
    if (Value < -Beyond) {
        return -Maximum - 1;
    }
    return static_cast<INT64>(Value);
}

FLOAT_WORD IntToFloat(INT64 Whole) { return ToWord(static_cast<float>(Whole)); }

} // namespace

FLOAT_MATH_PROTOCOL gBoardFloatMath = {
    .Unused0 = nullptr,
    .FloatToString = FloatToString,
    .Unused2 = nullptr,
    .FloatAdd = FloatAdd,
    .FloatSubtract = FloatSubtract,
    .FloatMultiply = FloatMultiply,
    .FloatDivide = FloatDivide,
    .Unused7 = {},
    .FloatToInt = FloatToInt,
    .Unused12 = {},
    .IntToFloat = IntToFloat,
};
