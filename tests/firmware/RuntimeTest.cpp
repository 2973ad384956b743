// The compiler's runtime of the firmware images, under other names than the C library's.
#define RUNTIME_NAME(Name) Firmware_##Name
#include "platform/firmware/Runtime.cpp"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace {

std::vector<unsigned char> MakeBytes(size_t Count)
{
    std::vector<unsigned char> Bytes(Count);
    std::iota(Bytes.begin(), Bytes.end(), static_cast<unsigned char>(1));
    return Bytes;
}

TEST(Runtime, CopyAndFillTouchTheirRangeAndNothingElse)
{
    for (size_t Length : {0u, 1u, 7u, 8u, 9u, 64u, 200u}) {
        std::vector<unsigned char> Source = MakeBytes(256);
        std::vector<unsigned char> Copied(258, 0xEE);
        EXPECT_EQ(Firmware_memcpy(&Copied[1], Source.data(), Length), &Copied[1]);
        std::vector<unsigned char> Filled(258, 0xEE);
        EXPECT_EQ(Firmware_memset(&Filled[1], 0x1AB, Length), &Filled[1]);
        EXPECT_EQ(Copied[0], 0xEE);
        EXPECT_EQ(Filled[0], 0xEE);
        for (size_t Index = 0; Index < 256; Index++) {
            EXPECT_EQ(Copied[1 + Index], Index < Length ? Source[Index] : 0xEE);
            EXPECT_EQ(Filled[1 + Index], Index < Length ? 0xAB : 0xEE);
        }
    }
}

TEST(Runtime, AMoveKeepsTheBytesOfOverlappingRanges)
{
    for (size_t To : {0u, 1u, 10u, 11u, 19u, 30u}) {
        for (size_t Length : {0u, 1u, 10u, 20u}) {
            std::vector<unsigned char> Bytes = MakeBytes(64);
            std::vector<unsigned char> Wanted = Bytes;
            std::vector<unsigned char> Part(Bytes.begin() + 10, Bytes.begin() + 10 + static_cast<long>(Length));
            std::copy(Part.begin(), Part.end(), Wanted.begin() + static_cast<long>(To));
            EXPECT_EQ(Firmware_memmove(&Bytes[To], &Bytes[10], Length), &Bytes[To]);
            EXPECT_EQ(Bytes, Wanted) << Length << " bytes from 10 to " << To;
        }
    }
}

TEST(Runtime, ComparisonIsOfUnsignedBytesInOrder)
{
    EXPECT_EQ(Firmware_memcmp("abc", "abd", 2), 0);
    EXPECT_LT(Firmware_memcmp("abc", "abd", 3), 0);
    EXPECT_GT(Firmware_memcmp("\x80", "\x7F", 1), 0);
    EXPECT_GT(Firmware_memcmp("ba", "ab", 2), 0);
    EXPECT_EQ(Firmware_memcmp("x", "y", 0), 0);
}

}
