#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/Md5.h"

namespace {

std::string DigestOf(const std::string& Message)
{
    MD5_CONTEXT Context;
    UINT8 Digest[16];
    Md5Start(&Context);
    Md5Update(&Context, Message.data(), Message.size());
    Md5Finish(&Context, Digest);
    std::string Text;
    for (const UINT8 Byte : Digest) {
        char Hex[3];
        std::snprintf(Hex, sizeof(Hex), "%02x", Byte);
        Text += Hex;
    }
    return Text;
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

} // namespace
