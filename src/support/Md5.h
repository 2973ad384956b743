// MD5 by RFC 1321. Used to fold a machine's traits into a few bytes, not to guard anything.
//
//     MD5_CONTEXT Context;
//     Md5Start(&Context);
//     Md5Update(&Context, Bytes, Length);    any number of times
//     Md5Finish(&Context, Digest);
#pragma once

#include "uefi/Base.h"

struct MD5_CONTEXT {
    UINT32 BitCount[2]; // low word first
    UINT32 State[4];
    UINT8 Buffer[64]; // bytes of a block that isn't full yet
};

VOID Md5Start(MD5_CONTEXT* Context);
// Takes Length more bytes of the message.
VOID Md5Update(MD5_CONTEXT* Context, const VOID* Bytes, UINTN Length);
// Pads, adds the bit count and gives the digest: 16 bytes, the four state words with their low byte first. The context
// is used up.
VOID Md5Finish(MD5_CONTEXT* Context, UINT8* Digest);
// Stirs one block of 16 words into the four words of the state.
VOID Md5Transform(UINT32* State, const UINT32* Words);
