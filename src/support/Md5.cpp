#include "support/Md5.h"

namespace {

constexpr UINTN gBlockSize = 64;
// Where the bit count stands in the last block.
constexpr UINTN gBitCountOffset = 56;

// floor(2^32 * |sin(i + 1)|), one for each of the 64 steps.
constexpr UINT32 gSines[64] = {
    0xD76AA478, 0xE8C7B756, 0x242070DB, 0xC1BDCEEE, 0xF57C0FAF, 0x4787C62A, 0xA8304613, 0xFD469501,
    0x698098D8, 0x8B44F7AF, 0xFFFF5BB1, 0x895CD7BE, 0x6B901122, 0xFD987193, 0xA679438E, 0x49B40821,
    0xF61E2562, 0xC040B340, 0x265E5A51, 0xE9B6C7AA, 0xD62F105D, 0x02441453, 0xD8A1E681, 0xE7D3FBC8,
    0x21E1CDE6, 0xC33707D6, 0xF4D50D87, 0x455A14ED, 0xA9E3E905, 0xFCEFA3F8, 0x676F02D9, 0x8D2A4C8A,
    0xFFFA3942, 0x8771F681, 0x6D9D6122, 0xFDE5380C, 0xA4BEEA44, 0x4BDECFA9, 0xF6BB4B60, 0xBEBFBC70,
    0x289B7EC6, 0xEAA127FA, 0xD4EF3085, 0x04881D05, 0xD9D4D039, 0xE6DB99E5, 0x1FA27CF8, 0xC4AC5665,
    0xF4292244, 0x432AFF97, 0xAB9423A7, 0xFC93A039, 0x655B59C3, 0x8F0CCC92, 0xFFEFF47D, 0x85845DD1,
    0x6FA87E4F, 0xFE2CE6E0, 0xA3014314, 0x4E0811A1, 0xF7537E82, 0xBD3AF235, 0x2AD7D2BB, 0xEB86D391,
};

// Of each round of 16 steps: the rotations that its steps take in turn, and the message word that step i takes,
// (First + i * Stride) modulo 16.
struct MD5_ROUND {
    UINT8 Rotations[4];
    UINT8 First;
    UINT8 Stride;
};
constexpr MD5_ROUND gRounds[4] = {
    {{7, 12, 17, 22}, 0, 1},
    {{5, 9, 14, 20}, 1, 5},
    {{4, 11, 16, 23}, 5, 3},
    {{6, 10, 15, 21}, 0, 7},
};

constexpr UINT32 Mix(UINTN Round, UINT32 B, UINT32 C, UINT32 D)
{
    switch (Round) {
    case 0:
        return (B & C) | (~B & D);
    case 1:
        return (B & D) | (C & ~D);
    case 2:
        return B ^ C ^ D;
    default:
        return C ^ (B | ~D);
    }
}

constexpr UINT32 RotateLeft(UINT32 Value, UINTN Count) { return (Value << Count) | (Value >> (32 - Count)); }

VOID TransformBlock(UINT32* State, const UINT8* Block)
{
    UINT32 Words[16];
    for (UINTN Index = 0; Index < 16; ++Index) {
        const UINT8* Word = Block + Index * 4;
        Words[Index] = static_cast<UINT32>(Word[0]) | static_cast<UINT32>(Word[1]) << 8 |
                       static_cast<UINT32>(Word[2]) << 16 | static_cast<UINT32>(Word[3]) << 24;
    }
    Md5Transform(State, Words);
}

VOID StoreWord(UINT8* Bytes, UINT32 Word)
{
    for (UINTN Index = 0; Index < 4; ++Index) {
        Bytes[Index] = static_cast<UINT8>(Word >> (Index * 8));
    }
}

} // namespace

VOID Md5Transform(UINT32* State, const UINT32* Words)
{
    UINT32 A = State[0];
    UINT32 B = State[1];
    UINT32 C = State[2];
    UINT32 D = State[3];
    for (UINTN Step = 0; Step < 64; ++Step) {
        const UINTN Round = Step / 16;
        const MD5_ROUND& Rule = gRounds[Round];
        const UINT32 Word = Words[(Rule.First + Step * Rule.Stride) % 16];
        const UINT32 Sum = A + Mix(Round, B, C, D) + Word + gSines[Step];
        A = D;
        D = C;
        C = B;
        B += RotateLeft(Sum, Rule.Rotations[Step % 4]);
    }
    State[0] += A;
    State[1] += B;
    State[2] += C;
    State[3] += D;
}

VOID Md5Start(MD5_CONTEXT* Context)
{
    Context->BitCount[0] = 0;
    Context->BitCount[1] = 0;
    Context->State[0] = 0x67452301;
    Context->State[1] = 0xEFCDAB89;
    Context->State[2] = 0x98BADCFE;
    Context->State[3] = 0x10325476;
}

VOID Md5Update(MD5_CONTEXT* Context, const VOID* Bytes, UINTN Length)
{
    UINTN Filled = (Context->BitCount[0] / 8) % gBlockSize;
    const UINT64 BitCount =
        (static_cast<UINT64>(Context->BitCount[1]) << 32 | Context->BitCount[0]) + static_cast<UINT64>(Length) * 8;
    Context->BitCount[0] = static_cast<UINT32>(BitCount);
    Context->BitCount[1] = static_cast<UINT32>(BitCount >> 32);

    const UINT8* Next = static_cast<const UINT8*>(Bytes);
    for (; Length != 0; --Length) {
        Context->Buffer[Filled++] = *Next++;
        if (Filled == gBlockSize) {
            TransformBlock(Context->State, Context->Buffer);
            Filled = 0;
        }
    }
}

VOID Md5Finish(MD5_CONTEXT* Context, UINT8* Digest)
{
    UINT8 BitCount[8];
    StoreWord(BitCount, Context->BitCount[0]);
    StoreWord(BitCount + 4, Context->BitCount[1]);

    UINT8 Pad = 0x80;
    do {
        Md5Update(Context, &Pad, 1);
        Pad = 0;
    } while ((Context->BitCount[0] / 8) % gBlockSize != gBitCountOffset);
    Md5Update(Context, BitCount, sizeof(BitCount));

    for (UINTN Index = 0; Index < 4; ++Index) {
        StoreWord(Digest + Index * 4, Context->State[Index]);
    }
}
