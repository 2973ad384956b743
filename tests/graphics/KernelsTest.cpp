// Random cases for everything that is done pixel by pixel, with each set of fast kernels: against their plain twins, and
// the block operations against references that are written here, pixel by pixel. Every buffer ends, or begins, at memory that
// can't be touched, so that a load or store beyond it stops the program.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "controls/Grid.h"
#include "controls/LineChart.h"
#include "graphics/GraphicProtocol.h"
#include "platform/board/FloatMath.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"
#include "tests/support/GuardedRoom.h"

namespace {

// Random cases an operation.
int CaseCount()
{
    const char* Text = std::getenv("VENTARA_KERNEL_CASES");
    return Text != nullptr ? std::atoi(Text) : 25000;
}

// Room for pixels that touch a page that nobody may touch.
class GUARDED_PIXELS {
public:
    explicit GUARDED_PIXELS(UINTN MostPixels) : Room(MostPixels * sizeof(PIXEL)) {}
    PIXEL* Place(UINTN Count, bool AtEnd) const { return Room.Place<PIXEL>(Count, AtEnd); }

private:
    GUARDED_ROOM Room;
};

constexpr PIXEL gFew[] = {gKeyColor, {0xFF, 0x00, 0xFF, 0x80}, gBlackPixel, gPanelColor, {0x1F, 0x96, 0x04, 7}};

struct KernelsTest : HOSTED, testing::WithParamInterface<std::string> {
    KernelsTest()
    {
        UseKernels(GetParam() == "Sse41" ? &gSse41Kernels : &gSse2Kernels);
        gBS = Boot->FirmwareTable.BootServices; // without the trace
        gFloatMath = &gBoardFloatMath;
    }

    ~KernelsTest() override { UseKernels(nullptr); }

    VOID SetUp() override
    {
        if (GetParam() == "Sse41" && !__builtin_cpu_supports("sse4.1")) {
            GTEST_SKIP() << "this processor has no SSE4.1";
        }
    }

    static constexpr UINTN MostPixels = 64 * 1024;

    UINT32 Random(UINT32 Limit) { return static_cast<UINT32>(Generator()) % Limit; }
    bool Coin() { return Random(2) != 0; }

    // A colour of the few that keys and pictures share, so that they meet often; else any.
    PIXEL RandomColor()
    {
        return Coin() ? gFew[Random(std::size(gFew))] : __builtin_bit_cast(PIXEL, static_cast<UINT32>(Generator()));
    }

    VOID FillRandom(PIXEL* Pixels, UINTN Count)
    {
        // Single pixels and stretches of one colour, which go different ways through the kernels.
        for (UINTN I = 0; I < Count;) {
            const PIXEL Color = RandomColor();
            for (UINTN Stretch = Coin() ? 1 : 1 + Random(24); Stretch > 0 && I < Count; Stretch--) {
                Pixels[I++] = Color;
            }
        }
    }

    // A destination in two copies, in front of the same kind of guard.
    VOID MakeDestination(UINTN Count)
    {
        DstCount = Count;
        const bool AtEnd = Coin();
        Dst = DstRoom.Place(Count, AtEnd);
        Expected = ExpectedRoom.Place(Count, AtEnd);
        FillRandom(Dst, Count);
        std::copy(Dst, Dst + Count, Expected);
    }

    PIXEL* MakeSource(UINTN Count)
    {
        Src = SrcRoom.Place(Count, Coin());
        FillRandom(Src, Count);
        return Src;
    }

    // Two blocks of the same random size in buffers of their own widths.
    struct BLOCKS {
        UINTN Columns, Rows, DstStride, SrcStride;
    };
    BLOCKS MakeBlocks()
    {
        BLOCKS Blocks;
        Blocks.Columns = Random(4) == 0 ? Random(200) : Random(20);
        Blocks.Rows = Random(6);
        Blocks.DstStride = Blocks.Columns + Random(4);
        Blocks.SrcStride = Blocks.Columns + Random(4);
        if (Random(64) == 0) {
            // A surface: there narrow blocks are staged.
            Blocks.Rows = Random(56);
            Blocks.DstStride = 1024;
        }
        MakeDestination(Extent(Blocks.Columns, Blocks.Rows, Blocks.DstStride));
        MakeSource(Extent(Blocks.Columns, Blocks.Rows, Blocks.SrcStride));
        return Blocks;
    }

    static UINTN Extent(UINTN Columns, UINTN Rows, UINTN Stride)
    {
        return Rows == 0 ? 0 : (Rows - 1) * Stride + Columns;
    }

    testing::AssertionResult SameDestination() const
    {
        if (DstCount == 0 || std::memcmp(Dst, Expected, DstCount * sizeof(PIXEL)) == 0) {
            return testing::AssertionSuccess();
        }
        UINTN I = 0;
        while (PixelWord(Dst[I]) == PixelWord(Expected[I])) {
            I++;
        }
        return testing::AssertionFailure() << std::hex << "pixel " << std::dec << I << " of " << DstCount << " is 0x"
                                           << std::hex << PixelWord(Dst[I]) << ", not 0x" << PixelWord(Expected[I]);
    }

    // Runs Case once for every random case and stops at the first that differs.
    template <typename CASE> VOID ForCases(CASE Case)
    {
        for (int I = 0, Count = CaseCount(); I < Count; I++) {
            Generator.seed(static_cast<UINT32>(I + 1));
            Case();
            ASSERT_TRUE(SameDestination()) << "case " << I;
        }
    }

    std::mt19937 Generator;
    GUARDED_PIXELS DstRoom{MostPixels};
    GUARDED_PIXELS ExpectedRoom{MostPixels};
    GUARDED_PIXELS SrcRoom{MostPixels};
    GUARDED_PIXELS MoreRoom{MostPixels};
    PIXEL* Dst = nullptr;
    PIXEL* Expected = nullptr;
    PIXEL* Src = nullptr;
    UINTN DstCount = 0;
};

// --- References ---

UINT8 MixedByte(UINT32 Destination, UINT32 Source, UINT32 Percent)
{
    return static_cast<UINT8>(((100 - Percent) * Destination + Percent * Source) / 100);
}

// Where each pixel of Src goes, and what it does there.
VOID ReferenceOverlay(const PIXEL* Src, INT32 SrcWidth, INT32 SrcHeight, PIXEL* Dst, INT32 DstWidth, INT32 DstHeight,
                      INT32 X, INT32 Y, const PIXEL* Key, const PIXEL* Blend, UINT32 Percent)
{
    const UINT32 Share = std::clamp<UINT32>(Percent, 1, 99);
    for (INT32 Row = 0; Row < SrcHeight; Row++) {
        for (INT32 Col = 0; Col < SrcWidth; Col++) {
            if (X + Col < 0 || X + Col >= DstWidth || Y + Row < 0 || Y + Row >= DstHeight) {
                continue;
            }
            const PIXEL From = Src[Row * SrcWidth + Col];
            PIXEL& To = Dst[(Y + Row) * DstWidth + X + Col];
            if (Key != nullptr && From.Blue == Key->Blue && From.Green == Key->Green && From.Red == Key->Red) {
                continue;
            }
            if (Blend != nullptr && From.Blue == Blend->Blue && From.Green == Blend->Green && From.Red == Blend->Red) {
                To.Blue = MixedByte(To.Blue, From.Blue, Share);
                To.Green = MixedByte(To.Green, From.Green, Share);
                To.Red = MixedByte(To.Red, From.Red, Share);
            } else {
                To = From;
            }
        }
    }
}

UINT8 GrayOf(PIXEL From, const FLOAT_MATH_PROTOCOL& Math)
{
    const auto Share = [&](INT64 Thousandths) {
        return Math.FloatDivide(Math.IntToFloat(Thousandths), Math.IntToFloat(1000));
    };
    const auto Part = [&](UINT8 Byte, INT64 Thousandths) {
        return Math.FloatMultiply(Math.IntToFloat(Byte), Share(Thousandths));
    };
    return static_cast<UINT8>(Math.FloatToInt(
        Math.FloatAdd(Math.FloatAdd(Part(From.Red, 299), Part(From.Green, 587)), Part(From.Blue, 114))));
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, KernelsTest, testing::Values("Sse2", "Sse41"), [](const auto& Info) { return Info.param; });

// --- Kernels and their plain twins ---

TEST_P(KernelsTest, TintingGivesWhatThePlainTwinGives)
{
    ForCases([&] {
        const BLOCKS Blocks = MakeBlocks();
        const PIXEL Color = RandomColor();
        const UINT32 Percent = 1 + Random(99);
        gPlainKernels.TintPixels({Expected, Blocks.DstStride}, Blocks.Columns, Blocks.Rows, Color, Percent);
        TintPixels({Dst, Blocks.DstStride}, Blocks.Columns, Blocks.Rows, Color, Percent);
    });
}

TEST_P(KernelsTest, GrayingGivesWhatThePlainTwinGivesInPlaceAndFromAnotherBuffer)
{
    ForCases([&] {
        const BLOCKS Blocks = MakeBlocks();
        const PIXEL Key = RandomColor();
        const bool InPlace = Coin();
        const UINTN Stride = InPlace ? Blocks.DstStride : Blocks.SrcStride;
        gPlainKernels.GrayPixels({Expected, Blocks.DstStride}, {InPlace ? Expected : Src, Stride}, Blocks.Columns,
                                 Blocks.Rows, Key);
        GrayPixels({Dst, Blocks.DstStride}, {InPlace ? Dst : Src, Stride}, Blocks.Columns, Blocks.Rows, Key);
    });
}

TEST_P(KernelsTest, FillingAndCopyingGiveWhatThePlainTwinsGive)
{
    ForCases([&] {
        const BLOCKS Blocks = MakeBlocks();
        const PIXEL Color = RandomColor();
        const UINTN Count = Random(static_cast<UINT32>(DstCount) + 1);
        gPlainKernels.FillPixels(Expected + (DstCount - Count), Count, Color);
        FillPixels(Dst + (DstCount - Count), Count, Color);
        ASSERT_TRUE(SameDestination());
        gPlainKernels.CopyPixels({Expected, Blocks.DstStride}, {Src, Blocks.SrcStride}, Blocks.Columns, Blocks.Rows);
        CopyPixels({Dst, Blocks.DstStride}, {Src, Blocks.SrcStride}, Blocks.Columns, Blocks.Rows);
    });
}

TEST_P(KernelsTest, LayingThePointerGivesWhatThePlainTwinGives)
{
    ForCases([&] {
        MakeDestination(Random(120));
        MakeSource(DstCount);
        for (UINTN I = 0; I < DstCount; I++) { // single zero bytes, in each colour and in the reserved byte
            UINT8* Bytes = &Src[I].Blue;
            Bytes[Random(4)] = static_cast<UINT8>(Random(2));
        }
        gPlainKernels.LayPointerPixels(Expected, Src, DstCount);
        LayPointerPixels(Dst, Src, DstCount);
    });
}

TEST_P(KernelsTest, ARowOfALayerGivesWhatThePlainTwinGives)
{
    ForCases([&] {
        MakeDestination(Random(120));
        const bool AtEnd = Coin();
        INT32* First = reinterpret_cast<INT32*>(SrcRoom.Place(DstCount, AtEnd));
        INT32* Last = reinterpret_cast<INT32*>(MoreRoom.Place(DstCount, AtEnd));
        const INT32 Height = static_cast<INT32>(1 + Random(12));
        for (UINTN I = 0; I < DstCount; I++) {
            First[I] = static_cast<INT32>(Random(14));
            Last[I] = First[I] + static_cast<INT32>(Random(5));
        }
        const PIXEL Fill = RandomColor();
        const PIXEL Line = RandomColor();
        gPlainKernels.PlotChartRow(Expected, {First, Last}, DstCount, Height, Fill, Line);
        PlotChartRow(Dst, {First, Last}, DstCount, Height, Fill, Line);
    });
}

TEST_P(KernelsTest, ComposingTwoSeriesGivesWhatThePlainTwinGives)
{
    constexpr UINT8 Classes[] = {LINE_CHART_LINE, LINE_CHART_FILL, LINE_CHART_ABOVE};
    // Half of the rows that are all fill or all above are told to be.
    const auto Classify = [&](PIXEL* Layer, UINTN Count) {
        FillRandom(Layer, Count);
        const UINTN Longest = Random(3) == 0 ? Count : Coin() ? 2 : 30;
        UINT8 Class = LINE_CHART_MIXED;
        for (UINTN I = 0; I < Count;) {
            Class = Classes[Random(3)];
            for (UINTN Stretch = Longest == Count ? Count : 1 + Random(Longest); Stretch > 0 && I < Count; Stretch--) {
                Layer[I++].Reserved = Class;
            }
        }
        const bool Told = Longest == Count && Class != LINE_CHART_LINE && Coin();
        return static_cast<LINE_CHART_CLASS>(Told ? Class : UINT8{LINE_CHART_MIXED});
    };
    ForCases([&] {
        MakeDestination(Random(120));
        const bool AtEnd = Coin();
        PIXEL* Lower = SrcRoom.Place(DstCount, AtEnd);
        PIXEL* Upper = MoreRoom.Place(DstCount, AtEnd);
        const LINE_CHART_CLASS LowerWhole = Classify(Lower, DstCount);
        const LINE_CHART_CLASS UpperWhole = Classify(Upper, DstCount);
        const CHART_LAYER_ROW LowerRow = {Lower, RandomColor(), RandomColor(), LowerWhole};
        const CHART_LAYER_ROW UpperRow = {Upper, RandomColor(), RandomColor(), UpperWhole};
        gPlainKernels.ComposeChartRow(Expected, DstCount, LowerRow, UpperRow);
        ComposeChartRow(Dst, DstCount, LowerRow, UpperRow);
    });
}

// --- Whole ranges ---

TEST_P(KernelsTest, EveryMixOfEveryTwoBytesDropsTheRemainder)
{
    PIXEL Row[256];
    for (UINT32 Percent = 1; Percent <= 99; Percent++) {
        for (UINT32 Source = 0; Source < 256; Source++) {
            for (UINT32 I = 0; I < 256; I++) {
                const UINT8 Byte = static_cast<UINT8>(I);
                Row[I] = {Byte, Byte, Byte, Byte};
            }
            const UINT8 Byte = static_cast<UINT8>(Source);
            TintPixels({Row, 256}, 256, 1, {Byte, Byte, Byte, 0x5A}, Percent);
            for (UINT32 I = 0; I < 256; I++) {
                const UINT8 Mixed = MixedByte(I, Source, Percent);
                const PIXEL Wanted = {Mixed, Mixed, Mixed, static_cast<UINT8>(I)};
                ASSERT_EQ(PixelWord(Wanted), PixelWord(Row[I])) << Percent << "% of " << Source << " over " << I;
            }
        }
    }
}

TEST_P(KernelsTest, EveryColourHasTheGrayThatTheFloatServiceGives)
{
    std::vector<PIXEL> Row(0x10000);
    for (UINT32 Red = 0; Red < 256; Red++) {
        for (UINT32 I = 0; I < Row.size(); I++) {
            Row[I] = {static_cast<UINT8>(I), static_cast<UINT8>(I >> 8), static_cast<UINT8>(Red), 3};
        }
        const std::vector<PIXEL> Before = Row;
        ASSERT_EQ(EFI_SUCCESS, GrayBlt(Row.data(), Row.size(), 1, Row.data(), Row.size(), 1));
        for (UINT32 I = 0; I < Row.size(); I++) {
            const UINT8 Gray = GrayOf(Before[I], gBoardFloatMath);
            const PIXEL Wanted = SameColor(Before[I], gKeyColor) ? Before[I] : PIXEL{Gray, Gray, Gray, 3};
            ASSERT_EQ(PixelWord(Wanted), PixelWord(Row[I])) << std::hex << PixelWord(Before[I]);
        }
    }
}

// --- Block operations ---

TEST_P(KernelsTest, OverlayBltFollowsItsRulesAtEveryPlace)
{
    ForCases([&] {
        const INT32 SrcWidth = static_cast<INT32>(1 + Random(Coin() ? 12 : 200));
        const INT32 SrcHeight = static_cast<INT32>(1 + Random(Random(8) == 0 ? 56 : 8));
        // Or as wide as a surface: there narrow blocks are staged.
        const INT32 DstWidth = Random(64) == 0 ? 1024 : static_cast<INT32>(1 + Random(40));
        const INT32 DstHeight = static_cast<INT32>(1 + Random(DstWidth == 1024 ? 56 : 10));
        const INT32 X = static_cast<INT32>(Random(60)) - 15;
        const INT32 Y = static_cast<INT32>(Random(16)) - 5;
        MakeDestination(static_cast<UINTN>(DstWidth * DstHeight));
        MakeSource(static_cast<UINTN>(SrcWidth * SrcHeight));
        const PIXEL Key = RandomColor();
        const PIXEL Blend = Random(8) == 0 ? Key : RandomColor();
        const PIXEL* KeyPointer = Coin() ? &Key : nullptr;
        const PIXEL* BlendPointer = Coin() ? &Blend : nullptr;
        const UINT8 Percent = static_cast<UINT8>(Random(256));
        ReferenceOverlay(Src, SrcWidth, SrcHeight, Expected, DstWidth, DstHeight, X, Y, KeyPointer, BlendPointer,
                         Percent);
        EXPECT_EQ(EFI_SUCCESS, OverlayBlt(Src, SrcWidth, SrcHeight, Dst, static_cast<UINTN>(DstWidth),
                                          static_cast<UINTN>(DstHeight), X, Y, KeyPointer, BlendPointer, Percent));
    });
}

TEST_P(KernelsTest, ExtractBltCopiesWhatTheSourceHasAndLeavesTheRest)
{
    ForCases([&] {
        const UINTN DstWidth = 1 + Random(Coin() ? 12 : 90);
        const UINTN DstHeight = 1 + Random(8);
        const UINTN SrcWidth = 1 + Random(90);
        const UINTN SrcHeight = 1 + Random(8);
        const UINTN OffsetX = Random(static_cast<UINT32>(SrcWidth) + 3);
        const UINTN OffsetY = Random(static_cast<UINT32>(SrcHeight) + 3);
        MakeDestination(DstWidth * DstHeight);
        MakeSource(SrcWidth * SrcHeight);
        for (UINTN J = 0; J < DstHeight; J++) {
            for (UINTN I = 0; I < DstWidth; I++) {
                if (OffsetX + I < SrcWidth && OffsetY + J < SrcHeight) {
                    Expected[J * DstWidth + I] = Src[(OffsetY + J) * SrcWidth + OffsetX + I];
                }
            }
        }
        EXPECT_EQ(EFI_SUCCESS, ExtractBlt(Dst, DstWidth, DstHeight, Src, SrcWidth, SrcHeight,
                                          static_cast<INT32>(OffsetY), static_cast<INT32>(OffsetX)));
    });
}

TEST_P(KernelsTest, PasteBltCopiesWholeRowsAndCutsAtTheScreensEdges)
{
    GUARDED_PIXELS Surface(gScreenWidth * gScreenHeight);
    PIXEL* Screen = Surface.Place(gScreenWidth * gScreenHeight, true);
    for (int Case = 0, Count = CaseCount(); Case < Count; Case++) {
        Generator.seed(static_cast<UINT32>(Case + 1));
        const UINTN Width = 1 + Random(Coin() ? 10 : 120);
        const UINTN Height = 1 + Random(6);
        const UINTN X = Coin() ? Random(gScreenWidth) : gScreenWidth - Random(60);
        const UINTN Y = Coin() ? Random(gScreenHeight) : gScreenHeight - Random(8);
        MakeSource(Width * Height);
        // One pixel more on each side must keep its mark.
        const UINTN Left = X == 0 ? 0 : X - 1;
        const UINTN Top = Y == 0 ? 0 : Y - 1;
        const UINTN Right = std::min<UINTN>(X + Width + 1, gScreenWidth);
        const UINTN Bottom = std::min<UINTN>(Y + Height + 1, gScreenHeight);
        const PIXEL Mark = {1, 2, 3, static_cast<UINT8>(Case)};
        for (UINTN Row = Top; Row < Bottom; Row++) {
            std::fill(Screen + Row * gScreenWidth + Left, Screen + Row * gScreenWidth + std::max(Left, Right), Mark);
        }
        const bool Refused = X >= gScreenWidth || Y >= gScreenHeight;
        ASSERT_EQ(Refused ? EFI_OUT_OF_RESOURCES : EFI_SUCCESS, PasteBlt(Src, Width, Height, X, Y, Screen));
        for (UINTN Row = Top; Row < Bottom; Row++) {
            for (UINTN Col = Left; Col < Right; Col++) {
                const bool Inside = !Refused && Col >= X && Col < X + Width && Row >= Y && Row < Y + Height;
                const PIXEL Wanted = Inside ? Src[(Row - Y) * Width + Col - X] : Mark;
                ASSERT_EQ(PixelWord(Wanted), PixelWord(Screen[Row * gScreenWidth + Col])) << "case " << Case;
            }
        }
    }
}

TEST_P(KernelsTest, GrayBltTakesTheServicesWordWhateverArithmeticItHas)
{
    // A service that rounds where the board's drops the fraction, and one that works with other shares.
    FLOAT_MATH_PROTOCOL Rounding = gBoardFloatMath;
    Rounding.FloatToInt = [](FLOAT_WORD Word) -> INT64 {
        return static_cast<INT64>(__builtin_bit_cast(float, static_cast<UINT32>(Word)) + 0.5f);
    };
    FLOAT_MATH_PROTOCOL Coarse = gBoardFloatMath;
    Coarse.FloatMultiply = [](FLOAT_WORD A, FLOAT_WORD B) -> FLOAT_WORD {
        return gBoardFloatMath.FloatMultiply(A, B) & 0xFFFFFF00;
    };
    FLOAT_MATH_PROTOCOL* const Services[] = {&gBoardFloatMath, &Rounding, &Coarse};
    ForCases([&] {
        gFloatMath = Services[Random(3)];
        const UINTN DstWidth = 1 + Random(20);
        const UINTN DstHeight = 1 + Random(4);
        const UINTN SrcWidth = 1 + Random(20);
        const UINTN SrcHeight = 1 + Random(4);
        MakeDestination(DstWidth * DstHeight);
        MakeSource(SrcWidth * SrcHeight);
        for (UINTN Row = 0; Row < std::min(DstHeight, SrcHeight); Row++) {
            for (UINTN Col = 0; Col < std::min(DstWidth, SrcWidth); Col++) {
                PIXEL& To = Expected[Row * DstWidth + Col];
                if (To.Blue != 0xFF || To.Green != 0 || To.Red != 0xFF) {
                    const UINT8 Gray = GrayOf(Src[Row * SrcWidth + Col], *gFloatMath);
                    To = {Gray, Gray, Gray, To.Reserved};
                }
            }
        }
        EXPECT_EQ(EFI_SUCCESS, GrayBlt(Dst, DstWidth, DstHeight, Src, SrcWidth, SrcHeight));
    });
}

TEST_P(KernelsTest, MarkingARectangleIsTwoOverlaysOfABlockWithAFrame)
{
    ForCases([&] {
        const INT32 CanvasWidth = static_cast<INT32>(1 + Random(50));
        const INT32 CanvasHeight = static_cast<INT32>(1 + Random(8));
        const INT32 Width = static_cast<INT32>(1 + Random(40));
        const INT32 Height = static_cast<INT32>(1 + Random(8));
        const INT32 X = static_cast<INT32>(Random(52));
        const INT32 Y = static_cast<INT32>(Random(10));
        const PIXEL Color = RandomColor();
        MakeDestination(static_cast<UINTN>(CanvasWidth * CanvasHeight));

        std::vector<PIXEL> Block(static_cast<size_t>(Width * Height), Color);
        ReferenceOverlay(Block.data(), Width, Height, Expected, CanvasWidth, CanvasHeight, X, Y, nullptr, &Color, 20);
        for (INT32 Row = 0; Row < Height; Row++) {
            for (INT32 Col = 0; Col < Width; Col++) {
                const bool OnFrame = Row == 0 || Col == 0 || Row == Height - 1 || Col == Width - 1;
                const bool OnCanvas = X + Col < CanvasWidth && Y + Row < CanvasHeight;
                PIXEL& Pixel = Block[static_cast<size_t>(Row * Width + Col)];
                Pixel = OnFrame || !OnCanvas ? Color : Expected[(Y + Row) * CanvasWidth + X + Col];
            }
        }
        ReferenceOverlay(Block.data(), Width, Height, Expected, CanvasWidth, CanvasHeight, X, Y, nullptr, &Color, 100);
        EXPECT_TRUE(MarkRectangle(Dst, static_cast<UINT32>(CanvasWidth), static_cast<UINT32>(CanvasHeight), X, Y,
                                  static_cast<UINT32>(Width), static_cast<UINT32>(Height), Color));
    });
}
