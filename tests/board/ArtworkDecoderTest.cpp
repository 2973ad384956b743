#include "tests/board/ArtworkBench.h"

namespace {

// A 3 by 2 picture; rows stand bottom up and are filled to four bytes.
std::vector<UINT8> MakeBmp(UINT16 BitsPerPixel)
{
    std::vector<UINT8> Bytes(54);
    const auto Put = [&Bytes](size_t Offset, UINT32 Value, size_t Count) {
        for (size_t Index = 0; Index < Count; Index++) {
            Bytes[Offset + Index] = static_cast<UINT8>(Value >> (8 * Index));
        }
    };
    Bytes[0] = 'B';
    Bytes[1] = 'M';
    Put(10, 54, 4);
    Put(14, 40, 4);
    Put(18, 3, 4);
    Put(22, 2, 4);
    Put(26, 1, 2);
    Put(28, BitsPerPixel, 2);
    const size_t RowSize = (3 * size_t{BitsPerPixel} + 31) / 32 * 4;
    Bytes.resize(54 + 2 * RowSize);
    for (size_t Row = 0; Row < 2; Row++) {
        for (size_t Byte = 0; Byte < 3 * size_t{BitsPerPixel} / 8; Byte++) {
            Bytes[54 + Row * RowSize + Byte] = static_cast<UINT8>(100 * Row + Byte + 1);
        }
    }
    return Bytes;
}

using ArtworkDecoder = ARTWORK_BENCH;

TEST_F(ArtworkDecoder, GivesJpegRowsInWholeBlocks)
{
    const DECODED Tab = Jpeg(5);
    EXPECT_EQ(Tab.Width, 97u);
    EXPECT_EQ(Tab.Stride, 104u);
    EXPECT_EQ(Tab.Size, UINTN{104} * Tab.Height * 4);
    EXPECT_EQ(Tab.Color(103, 0), 0u);
}

TEST_F(ArtworkDecoder, KeepsTheBytesOfABmpAndDropsItsAlpha)
{
    for (const UINT16 Bits : {UINT16{24}, UINT16{32}}) {
        DECODED Picture;
        ASSERT_EQ(DecodeBmp(MakeBmp(Bits), &Picture), EFI_SUCCESS);
        ASSERT_EQ(Picture.Width, 3u);
        ASSERT_EQ(Picture.Height, 2u);
        EXPECT_EQ(Picture.Size, 3u * 2 * 4);
        const UINT8 Step = static_cast<UINT8>(Bits / 8);
        for (UINT8 Column = 0; Column < 3; Column++) {
            const auto First = static_cast<UINT8>(1 + Column * Step);
            const PIXEL& Bottom = Picture.At(Column, 1);
            const PIXEL& Top = Picture.At(Column, 0);
            EXPECT_EQ(Bottom.Blue, First);
            EXPECT_EQ(Bottom.Green, First + 1);
            EXPECT_EQ(Bottom.Red, First + 2);
            EXPECT_EQ(Top.Blue, First + 100);
            EXPECT_EQ(Bottom.Reserved, 0);
            EXPECT_EQ(Top.Reserved, 0);
        }
    }
}

TEST_F(ArtworkDecoder, RefusesTheOtherFormat)
{
    DECODED Picture;
    EXPECT_EQ(DecodeJpeg(Section(26), &Picture), EFI_UNSUPPORTED);
    EXPECT_EQ(DecodeBmp(Section(4), &Picture), EFI_UNSUPPORTED);
}

TEST_F(ArtworkDecoder, RefusesAHuffmanTableWithMoreSymbolsThanThereAre)
{
    // 17 codes of 16 different lengths make 272 symbols, 16 more than a byte can name. The table is whole otherwise.
    std::vector<UINT8> Table = {0xFF, 0xC4, 0, 0, 0x00};
    Table.insert(Table.end(), 16, 17);
    Table.insert(Table.end(), 16 * 17, 1);
    const size_t Length = Table.size() - 2;
    Table[2] = static_cast<UINT8>(Length >> 8);
    Table[3] = static_cast<UINT8>(Length);
    std::vector<UINT8> Bytes = Section(24);
    Bytes.insert(Bytes.begin() + 2, Table.begin(), Table.end());
    DECODED Picture;
    EXPECT_TRUE(EfiError(DecodeJpeg(Bytes, &Picture)));
}

} // namespace
