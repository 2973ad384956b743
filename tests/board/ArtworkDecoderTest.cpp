#include <gtest/gtest.h>

#include "tests/board/ArtworkBench.h"

namespace {

// A 3 by 2 picture; rows stand bottom up and are filled to four bytes.
std::vector<UINT8> MakeBmp(UINT16 BitsPerPixel, INT32 Width = 3, INT32 Height = 2)
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
    Put(18, static_cast<UINT32>(Width), 4);
    Put(22, static_cast<UINT32>(Height), 4);
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

// Neither outputs nor pool may show that a decoder tried.
void ExpectRefused(ARTWORK_BENCH* Bench, const std::vector<UINT8>& Bytes)
{
    auto* const Untouched = reinterpret_cast<PIXEL*>(UINTN{8});
    PIXEL* Blt = Untouched;
    UINTN Size = 11;
    UINT32 Height = 12;
    UINT32 Width = 13;
    UINT32 Stride = 14;
    EXPECT_TRUE(EfiError(gBoardImageDecoder.ConvertJPEGToUgaBltA(&gBoardImageDecoder, Bytes.data(),
                                                                 static_cast<UINT32>(Bytes.size()), &Blt, &Size,
                                                                 &Height, &Width, &Stride)));
    EXPECT_TRUE(EfiError(gBoardImageDecoder.ConvertBmpToGopBltA(&gBoardImageDecoder, Bytes.data(),
                                                                static_cast<UINT32>(Bytes.size()), &Blt, &Size,
                                                                &Height, &Width)));
    EXPECT_EQ(Blt, Untouched);
    EXPECT_EQ(Size, 11u);
    EXPECT_EQ(Height, 12u);
    EXPECT_EQ(Width, 13u);
    EXPECT_EQ(Stride, 14u);
    EXPECT_EQ(Bench->LiveBlocks, 0);
}

} // namespace

TEST(ArtworkDecoder, GivesJpegRowsInWholeBlocks)
{
    ARTWORK_BENCH Bench;
    const PICTURE Tab = Bench.Jpeg(5);
    EXPECT_EQ(Tab.Width, 97u);
    EXPECT_EQ(Tab.Stride, 104u);
    EXPECT_EQ(Tab.Size, UINTN{104} * Tab.Height * 4);
    EXPECT_EQ(Tab.Color(103, 0), 0u);
    EXPECT_EQ(Bench.LiveBlocks, 0);
}

TEST(ArtworkDecoder, KeepsTheBytesOfABmpAndDropsItsAlpha)
{
    ARTWORK_BENCH Bench;
    for (const UINT16 Bits : {UINT16{24}, UINT16{32}}) {
        PICTURE Picture;
        ASSERT_EQ(Bench.DecodeBmp(MakeBmp(Bits), &Picture), EFI_SUCCESS);
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

TEST(ArtworkDecoder, RefusesTheOtherFormatAndWhatIsNoPicture)
{
    ARTWORK_BENCH Bench;
    PICTURE Picture;
    EXPECT_EQ(Bench.DecodeJpeg(Bench.Section(26), &Picture), EFI_UNSUPPORTED);
    EXPECT_EQ(Bench.DecodeBmp(Bench.Section(4), &Picture), EFI_UNSUPPORTED);
    for (const std::vector<UINT8>& Bytes : std::vector<std::vector<UINT8>>{
             {}, {0}, {0xFF, 0xD8}, {'B', 'M'}, {0xFF, 0xD8, 0xFF, 0xD9}, std::vector<UINT8>(100, 0)}) {
        ExpectRefused(&Bench, Bytes);
    }
}

TEST(ArtworkDecoder, RefusesPicturesThatEndTooEarly)
{
    ARTWORK_BENCH Bench;
    const std::vector<UINT8> Jpeg = Bench.Section(20);
    for (size_t Size = 0; Size < Jpeg.size(); Size += 7) {
        ExpectRefused(&Bench, {Jpeg.begin(), Jpeg.begin() + static_cast<std::ptrdiff_t>(Size)});
    }
    const std::vector<UINT8> Bmp = MakeBmp(24);
    for (size_t Size = 0; Size < Bmp.size(); Size++) {
        ExpectRefused(&Bench, {Bmp.begin(), Bmp.begin() + static_cast<std::ptrdiff_t>(Size)});
    }
}

TEST(ArtworkDecoder, RefusesSidesThatNoScreenHas)
{
    ARTWORK_BENCH Bench;
    for (const INT32 Side : {0, 4097, 0x10000, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        ExpectRefused(&Bench, MakeBmp(24, Side, 2));
        ExpectRefused(&Bench, MakeBmp(24, 3, Side));
    }
    // The frame header of a JPEG: height and width follow the marker's length and the depth.
    const std::vector<UINT8> Good = Bench.Section(24);
    size_t Frame = 0;
    while (Good[Frame] != 0xFF || Good[Frame + 1] != 0xC0) {
        Frame++;
    }
    for (const size_t Side : {Frame + 5, Frame + 7}) {
        std::vector<UINT8> Bytes = Good;
        Bytes[Side] = 0xFF;
        Bytes[Side + 1] = 0xFF;
        ExpectRefused(&Bench, Bytes);
        Bytes[Side] = 0;
        Bytes[Side + 1] = 0;
        ExpectRefused(&Bench, Bytes);
    }
}

TEST(ArtworkDecoder, RefusesAHuffmanTableWithMoreSymbolsThanThereAre)
{
    ARTWORK_BENCH Bench;
    // 17 codes of 16 different lengths make 272 symbols, 16 more than a byte can name. The table is whole otherwise.
    std::vector<UINT8> Table = {0xFF, 0xC4, 0, 0, 0x00};
    Table.insert(Table.end(), 16, 17);
    Table.insert(Table.end(), 16 * 17, 1);
    const size_t Length = Table.size() - 2;
    Table[2] = static_cast<UINT8>(Length >> 8);
    Table[3] = static_cast<UINT8>(Length);
    std::vector<UINT8> Bytes = Bench.Section(24);
    Bytes.insert(Bytes.begin() + 2, Table.begin(), Table.end());
    ExpectRefused(&Bench, Bytes);
}

// What a damaged picture shows isn't settled; that it ends in an answer, inside its buffers and without a leak, is.
TEST(ArtworkDecoder, SurvivesEveryFlippedByte)
{
    ARTWORK_BENCH Bench;
    const struct {
        UINT32 Instance;
        bool IsJpeg;
    } Pictures[] = {{24, true}, {19, false}};
    for (const auto& Source : Pictures) {
        const std::vector<UINT8> Good = Bench.Section(Source.Instance);
        for (size_t Place = 0; Place < Good.size(); Place++) {
            for (const UINT8 Change : {UINT8{0xFF}, UINT8{0x80}, UINT8{0x01}}) {
                std::vector<UINT8> Bytes = Good;
                Bytes[Place] ^= Change;
                PICTURE Picture;
                const EFI_STATUS Status =
                    Source.IsJpeg ? Bench.DecodeJpeg(Bytes, &Picture) : Bench.DecodeBmp(Bytes, &Picture);
                if (!EfiError(Status)) {
                    ASSERT_EQ(Picture.Size, UINTN{Picture.Stride} * Picture.Height * 4);
                    ASSERT_GE(Picture.Stride, Picture.Width);
                }
                ASSERT_EQ(Bench.LiveBlocks, 0) << Place;
            }
        }
    }
}

TEST(ArtworkDecoder, SaysThatThePoolRanOutAndLeaksNothing)
{
    ARTWORK_BENCH Bench;
    const std::vector<UINT8> Jpeg = Bench.Section(24);
    const std::vector<UINT8> Bmp = Bench.Section(26);
    for (const bool IsJpeg : {true, false}) {
        int Allowed = 0;
        for (;; Allowed++) {
            Bench.AllocationsLeft = Allowed;
            PICTURE Picture;
            const EFI_STATUS Status = IsJpeg ? Bench.DecodeJpeg(Jpeg, &Picture) : Bench.DecodeBmp(Bmp, &Picture);
            ASSERT_EQ(Bench.LiveBlocks, 0) << Allowed;
            if (Status == EFI_SUCCESS) {
                break;
            }
            ASSERT_EQ(Status, EFI_OUT_OF_RESOURCES) << Allowed;
        }
        EXPECT_GE(Allowed, 2);
    }
}

TEST(ArtworkDecoder, AnswersTheGenerationThatItWasGiven)
{
    ARTWORK_BENCH Bench;
    SetDecoderGeneration(4);
    EXPECT_EQ(gBoardImageDecoder.GetFirmwareGeneration(&gBoardImageDecoder), 4);
}
