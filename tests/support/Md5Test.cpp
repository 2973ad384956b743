#include <gtest/gtest.h>

#include <openssl/md5.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/Md5.h"

namespace {

std::string Hex(const UINT8* Bytes)
{
    std::string Text;
    for (int Index = 0; Index < 16; ++Index) {
        char Byte[3];
        std::snprintf(Byte, sizeof(Byte), "%02x", Bytes[Index]);
        Text += Byte;
    }
    return Text;
}

std::string DigestOf(const std::string& Message)
{
    MD5_CONTEXT Context;
    UINT8 Digest[16];
    Md5Start(&Context);
    Md5Update(&Context, Message.data(), Message.size());
    Md5Finish(&Context, Digest);
    return Hex(Digest);
}

TEST(Md5, TheVectorsOfRfc1321Hold)
{
    EXPECT_EQ(DigestOf(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(DigestOf("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(DigestOf("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(DigestOf("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(DigestOf("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(DigestOf("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(DigestOf("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(Md5, MessagesOfEveryLengthAgreeWithASecondImplementationHoweverTheyAreCut)
{
    std::vector<UINT8> Message(300);
    for (std::size_t Index = 0; Index < Message.size(); ++Index) {
        Message[Index] = static_cast<UINT8>(Index * 37 + 11);
    }
    for (std::size_t Length = 0; Length <= Message.size(); ++Length) {
        UINT8 Expected[16];
        MD5(Message.data(), Length, Expected);
        MD5_CONTEXT Context;
        UINT8 Digest[16];
        Md5Start(&Context);
        Md5Update(&Context, Message.data(), Length / 3);
        Md5Update(&Context, Message.data() + Length / 3, Length - Length / 3);
        Md5Finish(&Context, Digest);
        ASSERT_EQ(Hex(Digest), Hex(Expected)) << Length;
    }
}

TEST(Md5, TheBitCountCarriesIntoItsHighWord)
{
    // One block before the end of 512 MiB, which are 2^32 bits.
    const UINT8 Block[64] = {};
    MD5_CONTEXT Context;
    Md5Start(&Context);
    Context.BitCount[0] = 0xFFFFFE00;
    Md5Update(&Context, Block, sizeof(Block));
    EXPECT_EQ(Context.BitCount[0], 0u);
    EXPECT_EQ(Context.BitCount[1], 1u);
}

} // namespace
