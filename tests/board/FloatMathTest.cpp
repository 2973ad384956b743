#include "platform/board/FloatMath.h"

#include <bit>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

FLOAT_WORD Word(float Value) { return std::bit_cast<std::uint32_t>(Value); }

float Value(FLOAT_WORD Word) { return std::bit_cast<float>(static_cast<std::uint32_t>(Word)); }

std::string Text(float Number)
{
    CHAR16 Buffer[127];
    EXPECT_EQ(gBoardFloatMath.FloatToString(Word(Number), Buffer, 127), EFI_SUCCESS);
    std::string Narrow;
    for (const CHAR16* Char = Buffer; *Char != 0; Char++) {
        Narrow += static_cast<char>(*Char);
    }
    return Narrow;
}

TEST(FloatText, EveryMillivoltOfAGaugePrintsExactly)
{
    for (int MilliVolts = 0; MilliVolts <= 13000; MilliVolts++) {
        char Digits[16];
        std::snprintf(Digits, sizeof(Digits), "%d.%03d", MilliVolts / 1000, MilliVolts % 1000);
        std::string Expected = Digits;
        Expected.erase(Expected.find_last_not_of('0') + 1);
        if (Expected.back() == '.') {
            Expected.pop_back();
        }
        const FLOAT_WORD Volts =
            gBoardFloatMath.FloatDivide(gBoardFloatMath.IntToFloat(MilliVolts), gBoardFloatMath.IntToFloat(1000));
        ASSERT_EQ(Text(Value(Volts)), Expected);
    }
}

TEST(FloatText, HasNoExponentAndNoNeedlessDigits)
{
    EXPECT_EQ(Text(0.0f), "0");
    EXPECT_EQ(Text(-0.0f), "0");
    EXPECT_EQ(Text(1.05f), "1.05");
    EXPECT_EQ(Text(-12.251f), "-12.251");
    EXPECT_EQ(Text(0.1f), "0.1");
    EXPECT_EQ(Text(0.001f), "0.001");
    EXPECT_EQ(Text(9.9999f), "9.9999");
    EXPECT_EQ(Text(100.0f), "100");
    EXPECT_EQ(Text(16777216.0f), "16777216");
    EXPECT_EQ(Text(1e20f), "100000000000000000000");
    EXPECT_EQ(Text(std::numeric_limits<float>::quiet_NaN()), "NaN");
    EXPECT_EQ(Text(-std::numeric_limits<float>::infinity()), "-Inf");
}

TEST(FloatText, StaysInsideItsBuffer)
{
    CHAR16 Buffer[6] = {u'x', u'x', u'x', u'x', u'x', u'x'};
    EXPECT_EQ(gBoardFloatMath.FloatToString(Word(1.05f), Buffer, 5), EFI_SUCCESS);
    EXPECT_EQ(std::u16string(Buffer), u"1.05");
    EXPECT_EQ(Buffer[5], u'x');
    Buffer[4] = u'x';
    EXPECT_EQ(gBoardFloatMath.FloatToString(Word(1.05f), Buffer, 4), EFI_BUFFER_TOO_SMALL);
    EXPECT_EQ(Buffer[0], u'\0');
    EXPECT_EQ(Buffer[4], u'x');
    EXPECT_EQ(gBoardFloatMath.FloatToString(Word(1.05f), Buffer, 0), EFI_INVALID_PARAMETER);
}

TEST(FloatWords, WholeNumbersDropTheFractionAndStopAtTheEndsOfTheirRange)
{
    struct CASE {
        float Number;
        INT64 Whole;
    };
    const CASE Cases[] = {
        {1.99f, 1},
        {-1.99f, -1},
        {254.9999f, 254},
        {1e30f, std::numeric_limits<INT64>::max()},
        {-1e30f, std::numeric_limits<INT64>::min()},
        {9223372036854775808.0f, std::numeric_limits<INT64>::max()},
        {-9223372036854775808.0f, std::numeric_limits<INT64>::min()},
        {std::numeric_limits<float>::infinity(), std::numeric_limits<INT64>::max()},
        {std::numeric_limits<float>::quiet_NaN(), 0},
    };
    for (const CASE& Case : Cases) {
        EXPECT_EQ(gBoardFloatMath.FloatToInt(Word(Case.Number)), Case.Whole) << Case.Number;
    }
}

TEST(FloatWords, OnlyTheLowHalfOfAWordCounts)
{
    const FLOAT_WORD Noise = 0xDEADBEEF00000000ull;
    EXPECT_EQ(gBoardFloatMath.FloatAdd(Noise | Word(1.5f), Noise | Word(2.0f)), Word(3.5f));
    EXPECT_EQ(gBoardFloatMath.FloatSubtract(Noise | Word(1.5f), Word(2.0f)), Word(-0.5f));
    EXPECT_EQ(gBoardFloatMath.FloatMultiply(Word(1.5f), Noise | Word(2.0f)), Word(3.0f));
    EXPECT_EQ(gBoardFloatMath.FloatDivide(Noise | Word(3.0f), Noise | Word(2.0f)), Word(1.5f));
    EXPECT_EQ(gBoardFloatMath.FloatToInt(Noise | Word(7.5f)), 7);
    EXPECT_EQ(gBoardFloatMath.IntToFloat(-3), Word(-3.0f));
}

} // namespace
