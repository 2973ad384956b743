#include "support/Print.h"

#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"

namespace {

template <typename... ARGUMENT> std::u16string Format(const CHAR16* Format, ARGUMENT... Argument)
{
    CHAR16 Buffer[400];
    const UINTN Count = FormatUnicodeText(Buffer, sizeof(Buffer), Format, Argument...);
    const std::u16string Text = Buffer;
    EXPECT_EQ(Count, Text.size());
    return Text;
}

TEST(Print, TheFormatsOfTheProgramComeOutAsWritten)
{
    EXPECT_EQ(Format(u"%s%s", u"Screen_", u"7"), u"Screen_7");
    EXPECT_EQ(Format(u"%s%d", u"SliderFrame_", 12), u"SliderFrame_12");
    EXPECT_EQ(Format(u"%d", -2147483647 - 1), u"-2147483648");
    EXPECT_EQ(Format(u"AllocatePool Fail (CreateCheckBox) ,Status=%r\n", EFI_OUT_OF_RESOURCES),
              u"AllocatePool Fail (CreateCheckBox) ,Status=Out of Resources\r\n");

    CHAR16 Buffer[64];
    EXPECT_EQ(FormatAsciiText(Buffer, sizeof(Buffer), "ASSERT %a(%d): %a\n", "Slider.c", 41, "x"), 24u);
    EXPECT_EQ(std::u16string(Buffer), u"ASSERT Slider.c(41): x\r\n");
}

TEST(Print, NullPointersAreNamed)
{
    EXPECT_EQ(Format(u"%s|%S|%a", nullptr, nullptr, nullptr), u"<null string>|<null string>|<null string>");
    EXPECT_EQ(Format(u"%g|%t", nullptr, nullptr), u"<null guid>|<null time>");
    EXPECT_EQ(Format(nullptr), u"");
}

TEST(Print, FlagsWidthAndPrecisionShapeNumbers)
{
    EXPECT_EQ(Format(u"[%5d][%-5d][%05d][%-05d]", 42, 42, 42, 42), u"[   42][42   ][00042][42   ]");
    EXPECT_EQ(Format(u"[%+d][% d][%+d][%06d][%6d]", 42, 42, -42, -42, -42), u"[+42][ 42][-42][-00042][   -42]");
    EXPECT_EQ(Format(u"[%,d][%,d][%,d][%,9d]", 999, 1000, -1234567, 12345), u"[999][1,000][-1,234,567][   12,345]");
    EXPECT_EQ(Format(u"[%*d][%*d][%.3d][%6.3d][%.*d]", 4, 7, -4, 7, 7, 7, 2, 7), u"[   7][7   ][007][   007][07]");
    EXPECT_EQ(Format(u"%ld %Ld", static_cast<INT64>(-9223372036854775807 - 1), static_cast<INT64>(4294967296)),
              u"-9223372036854775808 4294967296");
    // Without l only the low 32 bits are meant.
    EXPECT_EQ(Format(u"%d", static_cast<UINT64>(0x100000005)), u"5");
}

TEST(Print, HexadecimalIsUpperCaseAndCapitalXFillsWithZeros)
{
    EXPECT_EQ(Format(u"%x %X %4x %4X", 0xabc, 0xabc, 0xabc, 0xabc), u"ABC ABC  ABC 0ABC");
    EXPECT_EQ(Format(u"%lx", static_cast<UINT64>(0xFEDCBA9876543210)), u"FEDCBA9876543210");
    EXPECT_EQ(Format(u"%p", reinterpret_cast<VOID*>(0x12345678A)), u"12345678A");
}

TEST(Print, TextTakesWidthAndPrecision)
{
    EXPECT_EQ(Format(u"[%5s][%-5s][%.2s][%4.1a][%c][%%][%q]", u"abc", u"abc", u"abc", "xyz", u'k'),
              u"[  abc][abc  ][ab][   x][k][%][q]");
    // Bytes above 0x7F of an ASCII string are characters, not negative numbers.
    EXPECT_EQ(Format(u"40%aC", "\xF8"), u"40\u00F8C");
}

TEST(Print, GuidsAndTimesHaveTheirForms)
{
    const EFI_GUID Guid = {0x01234567, 0x89AB, 0x0CDE, {0xF0, 0x01, 2, 3, 4, 5, 6, 0x70}};
    EXPECT_EQ(Format(u"%g", &Guid), u"01234567-89AB-0CDE-F001-020304050670");
    EFI_TIME Time = {};
    Time.Year = 2009;
    Time.Month = 3;
    Time.Day = 7;
    Time.Hour = 9;
    Time.Minute = 5;
    EXPECT_EQ(Format(u"%t", &Time), u"03/07/2009  09:05");
}

TEST(Print, OnlyALineFeedOfTheFormatGetsACarriageReturn) { EXPECT_EQ(Format(u"\n\r\na%s", u"b\n"), u"\r\n\r\nab\n"); }

TEST(Print, AFormatThatBreaksOffInsideAnElementEndsThere)
{
    EXPECT_EQ(Format(u"a%"), u"a");
    EXPECT_EQ(Format(u"a%-08.3l"), u"a");
}

TEST(Print, EveryBufferSizeIsKeptAndEndedByANull)
{
    const std::u16string Whole = u"ab   -12\r\n<null string>";
    for (UINTN Size = 0; Size <= 60; ++Size) {
        std::vector<CHAR16> Buffer(40, u'#');
        const UINTN Count = FormatUnicodeText(Buffer.data(), Size, u"%s%6d\n%s", u"ab", -12, nullptr);
        const UINTN Room = Size / 2;
        const std::u16string Expected = Room == 0 ? u"" : Whole.substr(0, Room - 1);
        EXPECT_EQ(Count, Expected.size()) << Size;
        UINTN Next = 0;
        if (Room != 0) {
            EXPECT_EQ(std::u16string(Buffer.data()), Expected) << Size;
            Next = Expected.size() + 1;
        }
        for (; Next < Buffer.size(); ++Next) {
            ASSERT_EQ(Buffer[Next], u'#') << Size << " " << Next;
        }
    }
    EXPECT_EQ(FormatUnicodeText(nullptr, 100, u"a"), 0u);
}

TEST(Print, AWidthFarBeyondTheBufferFillsIt)
{
    CHAR16 Buffer[5];
    EXPECT_EQ(FormatUnicodeText(Buffer, sizeof(Buffer), u"%99999999999999999999d", 1), 4u);
    EXPECT_EQ(std::u16string(Buffer), u"    ");
}

TEST(Print, AStatusHasItsTextAndAnUnknownOneItsNumber)
{
    EXPECT_EQ(Format(u"%r|%r|%r", EFI_SUCCESS, EFI_LOAD_ERROR, EFI_PROTOCOL_ERROR),
              u"Success|Load Error|Protocol Error");
    EXPECT_EQ(
        Format(u"%r|%r|%r|%r", UINT64{4}, UINT64{5}, EFI_STATUS{0x8000000000000000}, EFI_STATUS{0x8000000000000019}),
        u"Warning Buffer Too Small|00000005|00000000|00000019");
}

using CONSOLE_PRINT = HOSTED;

TEST_F(CONSOLE_PRINT, TakesAtMost320Characters)
{
    const std::u16string Long(500, u'w');
    EXPECT_EQ(PrintToConsole(u"%s", Long.c_str()), 320u);
    EXPECT_EQ(Boot->Consoles.OutputText, std::string(320, 'w'));
}

TEST_F(CONSOLE_PRINT, GivesNothingWithoutTextOrMemoryOrConsole)
{
    EXPECT_EQ(PrintToConsole(u""), 0u);
    Boot->Pool.FailFrom = 1;
    EXPECT_EQ(PrintToConsole(u"text"), 0u);
    Boot->Pool.FailFrom = 0;
    gST->ConOut = nullptr;
    EXPECT_EQ(PrintToConsole(u"text"), 0u);
    EXPECT_EQ(Boot->Consoles.OutputText, "");
}

} // namespace
