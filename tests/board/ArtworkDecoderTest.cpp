#include "tests/board/ArtworkBench.h"

namespace {

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
    for (const UINT32 Bits : {24u, 32u}) {
        const std::vector<UINT8> Bytes = MakeBmp(3, 2, Bits);
        DECODED Picture;
        ASSERT_EQ(DecodeBmp(Bytes, &Picture), EFI_SUCCESS);
        ASSERT_EQ(Picture.Width, 3u);
        ASSERT_EQ(Picture.Size, 3u * 2 * 4);
        for (UINT32 At = 0; At < 6; At++) { // the last row stands first
            const PIXEL& Pixel = Picture.At(At % 3, 1 - At / 3);
            const UINT8* Byte = &Bytes[54 + At / 3 * 12 + At % 3 * Bits / 8];
            EXPECT_EQ(ColorOf(Pixel), UINT32{Byte[2]} << 16 | UINT32{Byte[1]} << 8 | Byte[0]) << Bits << ": " << At;
            EXPECT_EQ(Pixel.Reserved, 0);
        }
    }
}

TEST_F(ArtworkDecoder, RefusesTheOtherFormat)
{
    DECODED Picture;
    EXPECT_EQ(DecodeJpeg(Section(26), &Picture), EFI_UNSUPPORTED);
    EXPECT_EQ(DecodeBmp(Section(4), &Picture), EFI_UNSUPPORTED);
}

TEST_F(ArtworkDecoder, TakesAPackedPictureInAJpegsPlace)
{
    const auto Packed = [](std::vector<UINT8> Steps, UINT8 Width = 5, UINT8 Height = 3) {
        Steps.insert(Steps.begin(), {'V', 'T', 'R', 'P', Width, 0, Height, 0});
        return Steps;
    };
    // Rows of 8: one new pixel and seven like it; eight like those above; six of those, and two new ones.
    DECODED Picture;
    ASSERT_EQ(DecodeJpeg(Packed({0, 0, 1, 2, 3, 6, 0x40, 13, 0x80, 1, 0, 4, 5, 6, 7, 8, 9}), &Picture), EFI_SUCCESS);
    EXPECT_EQ(Picture.Width, 5u);
    EXPECT_EQ(Picture.Height, 3u);
    EXPECT_EQ(Picture.Stride, 8u);
    for (UINT32 At = 0; At < 22; At++) {
        EXPECT_EQ(Picture.Color(At % 8, At / 8), 0x030201u) << At;
    }
    EXPECT_EQ(Picture.Color(6, 2), 0x060504u);
    EXPECT_EQ(Picture.Color(7, 2), 0x090807u);

    const std::vector<UINT8> Refused[] = {
        Packed({23, 0x40}),                                // like the last, and there is none
        Packed({0, 0, 1, 2, 3, 22, 0x80}),                 // like those above the first row
        Packed({0, 0, 1, 2, 3, 23, 0x40}),                 // one pixel too many
        Packed({0, 0, 1, 2, 3, 21, 0x40}),                 // one missing
        Packed({0, 0, 1, 2, 3, 22, 0x40, 0}),              // a byte left over
        Packed({0, 0, 1, 2}),                              // ends in a pixel
        Packed({0, 0, 1, 2, 3, 22}),                       // ends in a step
        Packed({0, 0, 1, 2, 3, 22, 0xC0}),                 // no kind of step
        Packed({0, 0, 1, 2, 3, 22, 0x40}, 0),              // no columns
        {'V', 'T', 'R', 'P', 5, 0, 1, 0x10, 0, 0, 1, 2, 3} // 4097 rows
    };
    const UINTN Held = Boot->Pool.Count();
    for (const std::vector<UINT8>& Bytes : Refused) {
        DECODED Nothing;
        EXPECT_TRUE(EfiError(DecodeJpeg(Bytes, &Nothing))) << &Bytes - Refused;
    }
    EXPECT_EQ(Boot->Pool.Count(), Held);
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
