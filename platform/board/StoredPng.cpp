#include "platform/board/StoredPng.h"

namespace {

constexpr UINT8 gSignature[] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
constexpr UINT8 gZlibHead[] = {0x78, 0x01}; // deflate, no compression
constexpr UINTN gHeaderSize = 13;           // of the image: its sides and its format
constexpr UINTN gChunkFrame = 12;           // length, kind and check sum
constexpr UINTN gBlockHead = 5;             // last or not, length, its complement
constexpr UINTN gAdlerSize = 4;
constexpr UINT8 gBitsPerChannel = 8;
constexpr UINT8 gTrueColor = 2;

// Each row is a stored block: a filter byte of 0, and the pixels.
constexpr UINTN RowSize(UINT32 Width) { return 1 + UINTN{3} * Width; }
constexpr UINTN DataSize(UINT32 Width, UINT32 Height)
{
    return sizeof(gZlibHead) + Height * (gBlockHead + RowSize(Width)) + gAdlerSize;
}

UINT8* PutBytes(UINT8* At, const UINT8* Bytes, UINTN Count)
{
    for (UINTN Index = 0; Index < Count; Index++) {
        *At++ = Bytes[Index];
    }
    return At;
}

UINT8* PutBig(UINT8* At, UINT32 Number)
{
    for (UINTN Shift = 32; Shift != 0; Shift -= 8) {
        *At++ = static_cast<UINT8>(Number >> (Shift - 8));
    }
    return At;
}

UINT8* PutLittle(UINT8* At, UINTN Number)
{
    *At++ = static_cast<UINT8>(Number);
    *At++ = static_cast<UINT8>(Number >> 8);
    return At;
}

// The polynomial of the format, bit by bit reversed, taken four bits at a time.
UINT32 CheckSum(const UINT8* Begin, const UINT8* End)
{
    UINT32 Table[16];
    for (UINT32 Entry = 0; Entry < 16; Entry++) {
        Table[Entry] = Entry;
        for (int Bit = 0; Bit < 4; Bit++) {
            Table[Entry] = Table[Entry] >> 1 ^ ((Table[Entry] & 1) != 0 ? 0xEDB88320 : 0);
        }
    }
    UINT32 Sum = 0xFFFFFFFF;
    for (; Begin != End; Begin++) {
        Sum ^= *Begin;
        Sum = Sum >> 4 ^ Table[Sum & 15];
        Sum = Sum >> 4 ^ Table[Sum & 15];
    }
    return ~Sum;
}

// Length and kind of a chunk; gives the place for what is in it.
UINT8* BeginChunk(UINT8* At, UINTN Length, const char* Kind)
{
    At = PutBig(At, static_cast<UINT32>(Length));
    return PutBytes(At, reinterpret_cast<const UINT8*>(Kind), 4);
}

// Its check sum is over the kind, too.
UINT8* EndChunk(const UINT8* Content, UINT8* At) { return PutBig(At, CheckSum(Content - 4, At)); }

// All rows as blocks, and the sum over what is in them.
UINT8* PutRows(UINT8* At, const EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Pixels, UINT32 Width, UINT32 Height)
{
    constexpr UINT32 Modulus = 65521;
    UINT32 A = 1;
    UINT32 B = 0;
    for (UINT32 Row = 0; Row < Height; Row++) {
        *At++ = Row + 1 == Height ? 1 : 0;
        At = PutLittle(At, RowSize(Width));
        At = PutLittle(At, ~RowSize(Width));
        const UINT8* Begin = At;
        *At++ = 0;
        for (UINT32 Column = 0; Column < Width; Column++, Pixels++) {
            *At++ = Pixels->Red;
            *At++ = Pixels->Green;
            *At++ = Pixels->Blue;
        }
        for (const UINT8* Byte = Begin; Byte != At; Byte++) {
            A = (A + *Byte) % Modulus;
            B = (B + A) % Modulus;
        }
    }
    return PutBig(At, B << 16 | A);
}

} // namespace

UINTN StoredPngSize(UINT32 Width, UINT32 Height)
{
    return sizeof(gSignature) + gChunkFrame + gHeaderSize + gChunkFrame + DataSize(Width, Height) + gChunkFrame;
}

VOID BuildStoredPng(UINT8* Out, const EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Pixels, UINT32 Width, UINT32 Height)
{
    UINT8* At = PutBytes(Out, gSignature, sizeof(gSignature));
    UINT8* Content = BeginChunk(At, gHeaderSize, "IHDR");
    At = PutBig(Content, Width);
    At = PutBig(At, Height);
    constexpr UINT8 Format[] = {gBitsPerChannel, gTrueColor, 0, 0, 0};
    At = EndChunk(Content, PutBytes(At, Format, sizeof(Format)));
    Content = BeginChunk(At, DataSize(Width, Height), "IDAT");
    At = EndChunk(Content, PutRows(PutBytes(Content, gZlibHead, sizeof(gZlibHead)), Pixels, Width, Height));
    Content = BeginChunk(At, 0, "IEND");
    (void)EndChunk(Content, Content);
}
