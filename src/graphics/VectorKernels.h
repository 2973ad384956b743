// The kernels on four pixels at a time, for the processor that the including file is compiled for: SSE2 is what every
// x86-64 processor has, SSE4.1 chooses and spreads bytes by one instruction in place of three. Each file that includes
// this gets a set of its own, gVectorKernels.
#pragma once

#include "graphics/Kernels.h"

#if defined(__SSE4_1__)
#include <smmintrin.h>
#else
#include <emmintrin.h>
#endif

namespace {

constexpr UINT32 gColorBits = 0x00FFFFFF;
constexpr UINT32 gReservedBits = 0xFF000000;

inline __m128i Splat(UINT32 Word) { return _mm_set1_epi32(static_cast<int>(Word)); }

inline __m128i SplatPixel(PIXEL Pixel) { return Splat(PixelWord(Pixel)); }

// First in the bytes where Mask is all ones, Second where it is 0.
inline __m128i Select(__m128i Mask, __m128i First, __m128i Second)
{
#if defined(__SSE4_1__)
    return _mm_blendv_epi8(Second, First, Mask);
#else
    return _mm_xor_si128(_mm_and_si128(Mask, _mm_xor_si128(First, Second)), Second);
#endif
}

// The low byte of each word of 32 bits in its three lower bytes, where it is all that the word holds.
inline __m128i Thrice(__m128i Words)
{
#if defined(__SSE4_1__)
    return _mm_shuffle_epi8(Words, _mm_setr_epi8(0, 0, 0, -1, 4, 4, 4, -1, 8, 8, 8, -1, 12, 12, 12, -1));
#else
    const __m128i Twice = _mm_or_si128(Words, _mm_slli_epi32(Words, 8));
    return _mm_or_si128(Twice, _mm_slli_epi32(Words, 16));
#endif
}

// --- Four, two or one pixel in a register; the other places hold 0 ---

struct FOUR_PIXELS {
    static __m128i Load(const VOID* From)
    {
        __m128i Pixels = _mm_loadu_si128(static_cast<const __m128i*>(From));
        // Keeps the compiler from loading the same pixels again for their second use.
        asm("" : "+x"(Pixels));
        return Pixels;
    }
    static VOID Store(VOID* To, __m128i Pixels) { _mm_storeu_si128(static_cast<__m128i*>(To), Pixels); }
};

struct TWO_PIXELS {
    static __m128i Load(const VOID* From) { return _mm_loadl_epi64(static_cast<const __m128i*>(From)); }
    static VOID Store(VOID* To, __m128i Pixels) { _mm_storel_epi64(static_cast<__m128i*>(To), Pixels); }
};

struct ONE_PIXEL {
    static __m128i Load(const VOID* From)
    {
        int Word;
        __builtin_memcpy(&Word, From, sizeof(Word));
        return _mm_cvtsi32_si128(Word);
    }
    static VOID Store(VOID* To, __m128i Pixels)
    {
        const int Word = _mm_cvtsi128_si32(Pixels);
        __builtin_memcpy(To, &Word, sizeof(Word));
    }
};

// Calls Step(PIXELS, Index) for as many pixels of a row of Count as PIXELS loads and stores, from pixel Index on, until the
// row's end. A row's last pixels go through the same arithmetic in smaller loads and stores, so that nothing beyond the
// row is touched.
template <typename STEP> inline VOID ForRow(UINTN Index, UINTN Count, STEP Step)
{
    for (; Index + 4 <= Count; Index += 4) {
        Step(FOUR_PIXELS{}, Index);
    }
    if ((Count & 2) != 0) {
        Step(TWO_PIXELS{}, Index);
        Index += 2;
    }
    if ((Count & 1) != 0) {
        Step(ONE_PIXEL{}, Index);
    }
}

// Puts Rule.Apply(destination, source) into eight pixels. A rule that can save work on eight alike pixels brings its
// own.
template <typename RULE> inline VOID ApplyToEight(PIXEL* Dst, const PIXEL* Src, const RULE& Rule)
{
    const __m128i First = Rule.Apply(FOUR_PIXELS::Load(Dst), FOUR_PIXELS::Load(Src));
    const __m128i Second = Rule.Apply(FOUR_PIXELS::Load(Dst + 4), FOUR_PIXELS::Load(Src + 4));
    FOUR_PIXELS::Store(Dst, First);
    FOUR_PIXELS::Store(Dst + 4, Second);
}

template <typename RULE> inline VOID ApplyToRow(PIXEL* Dst, const PIXEL* Src, UINTN Count, const RULE& Rule)
{
    UINTN Index = 0;
    for (; Index + 8 <= Count; Index += 8) {
        ApplyToEight(Dst + Index, Src + Index, Rule);
    }
    ForRow(Index, Count, [=](auto Pixels, UINTN At) {
        Pixels.Store(Dst + At, Rule.Apply(Pixels.Load(Dst + At), Pixels.Load(Src + At)));
    });
}

// Rows of up to this many pixels are staged.
constexpr UINTN gNarrow = 12;
constexpr UINTN gStagedRows = 24;

// A narrow block on a surface whose rows lie a multiple of 4096 bytes apart. The processor takes a load for one of the
// stores shortly before it when their addresses agree in the low twelve bits, and waits. Row under row they all agree:
// so all are worked out first and stored then.
template <typename RULE>
inline VOID ApplyToNarrowBlock(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, const RULE& Rule)
{
    PIXEL Staged[gStagedRows * gNarrow];
    while (Rows > 0) {
        const UINTN Count = Rows < gStagedRows ? Rows : gStagedRows;
        for (UINTN Row = 0; Row < Count; Row++) {
            const PIXEL* To = Dst.Row + Row * Dst.Stride;
            const PIXEL* From = Src.Row + Row * Src.Stride;
            ForRow(0, Columns, [=, Out = Staged + Row * gNarrow](auto Pixels, UINTN Index) {
                Pixels.Store(Out + Index, Rule.Apply(Pixels.Load(To + Index), Pixels.Load(From + Index)));
            });
        }
        for (UINTN Row = 0; Row < Count; Row++, Dst.Row += Dst.Stride, Src.Row += Src.Stride) {
            ForRow(0, Columns, [To = Dst.Row, From = Staged + Row * gNarrow](auto Pixels, UINTN Index) {
                Pixels.Store(To + Index, Pixels.Load(From + Index));
            });
        }
        Rows -= Count;
    }
}

template <typename RULE>
inline VOID ApplyToBlock(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, RULE Rule)
{
    if (Columns <= gNarrow && Dst.Stride % (4096 / sizeof(PIXEL)) == 0) {
        ApplyToNarrowBlock(Dst, Src, Columns, Rows, Rule);
        return;
    }
    for (; Rows > 0; Rows--, Dst.Row += Dst.Stride, Src.Row += Src.Stride) {
        ApplyToRow(Dst.Row, Src.Row, Columns, Rule);
    }
}

// --- Mixing ---

// ((100 - Percent) x destination + Percent x source) / 100 with the remainder dropped, for one source colour.
//
// A division for each colour byte is what would cost here. With the source fixed the quotient is a line over the
// destination byte d, d x Factor + Offset, worked out in words of 8 whole and 8 fraction bits: d stands in the high
// byte, the high half of its 16-bit product with Factor is d x (100 - Percent) / 100, and the sum's high byte is the
// result.
//
// That is exact for each percentage and any two bytes. The true quotient's fraction is a multiple of 1/100, which is
// 2.56 steps of the fraction's eight bits, so a sum that is a step or two too large has the right high byte all the
// same. It must never be too small: Offset is rounded up and a step more, which makes good for the low half that is
// dropped.
//
// The reserved byte goes along as one more colour byte with a line that gives d itself.
struct MIXER {
    MIXER(PIXEL Color, UINT32 Percent)
    {
        const UINT32 Factor = ((100 - Percent) * 0x10000 + 50) / 100;
        EvenFactors = Splat(Factor << 16 | Factor);
        OddFactors = Splat(0xFFFFu << 16 | Factor);
        EvenOffsets = Splat(Offset(Color.Red, Percent) << 16 | Offset(Color.Blue, Percent));
        OddOffsets = Splat(1u << 16 | Offset(Color.Green, Percent));
    }

    __m128i Mix(__m128i Dst) const
    {
        const __m128i OddBytes = _mm_set1_epi16(static_cast<short>(0xFF00));
        const __m128i Even = _mm_mulhi_epu16(_mm_slli_epi16(Dst, 8), EvenFactors);
        const __m128i Odd = _mm_mulhi_epu16(_mm_and_si128(Dst, OddBytes), OddFactors);
        const __m128i MixedEven = _mm_srli_epi16(_mm_add_epi16(Even, EvenOffsets), 8);
        const __m128i MixedOdd = _mm_add_epi16(Odd, OddOffsets);
#if defined(__SSE4_1__)
        return Select(OddBytes, MixedOdd, MixedEven);
#else
        return _mm_or_si128(MixedEven, _mm_and_si128(MixedOdd, OddBytes)); // takes less than to select
#endif
    }

    static UINT32 Offset(UINT8 Source, UINT32 Percent) { return (Percent * Source * 256 + 99) / 100 + 1; }

    __m128i EvenFactors; // blue and red
    __m128i OddFactors;  // green and reserved
    __m128i EvenOffsets;
    __m128i OddOffsets;
};

// --- Overlay ---

// A colour to find in pixels, whatever their reserved bytes are.
struct COLOR_TEST {
    explicit COLOR_TEST(PIXEL Color) : Wanted(Splat(PixelWord(Color) & gColorBits)) {}
    __m128i Matches(__m128i Pixels) const { return _mm_cmpeq_epi32(_mm_and_si128(Pixels, Splat(gColorBits)), Wanted); }

    __m128i Wanted;
};

struct COPY_RULE {
    __m128i Apply(__m128i, __m128i Src) const { return Src; }
};

struct KEY_RULE {
    COLOR_TEST Key;
    __m128i Apply(__m128i Dst, __m128i Src) const { return Select(Key.Matches(Src), Dst, Src); }
};

struct BLEND_RULE {
    COLOR_TEST Blend;
    MIXER Mixer;
    __m128i Apply(__m128i Dst, __m128i Src) const { return Select(Blend.Matches(Src), Mixer.Mix(Dst), Src); }
};

struct KEY_AND_BLEND_RULE {
    COLOR_TEST Key;
    BLEND_RULE Blend;
    __m128i Apply(__m128i Dst, __m128i Src) const { return Select(Key.Matches(Src), Dst, Blend.Apply(Dst, Src)); }
};

// The source of a tint is one colour whose reserved bytes are 0. To ask eight pixels for that takes less than to choose.
inline VOID ApplyToEight(PIXEL* Dst, const PIXEL* Src, const BLEND_RULE& Rule)
{
    const __m128i Wanted = Rule.Blend.Wanted;
    const __m128i Same = _mm_and_si128(_mm_cmpeq_epi32(FOUR_PIXELS::Load(Src), Wanted),
                                       _mm_cmpeq_epi32(FOUR_PIXELS::Load(Src + 4), Wanted));
    if (_mm_movemask_epi8(Same) == 0xFFFF) {
        FOUR_PIXELS::Store(Dst, Rule.Mixer.Mix(FOUR_PIXELS::Load(Dst)));
        FOUR_PIXELS::Store(Dst + 4, Rule.Mixer.Mix(FOUR_PIXELS::Load(Dst + 4)));
        return;
    }
    FOUR_PIXELS::Store(Dst, Rule.Apply(FOUR_PIXELS::Load(Dst), FOUR_PIXELS::Load(Src)));
    FOUR_PIXELS::Store(Dst + 4, Rule.Apply(FOUR_PIXELS::Load(Dst + 4), FOUR_PIXELS::Load(Src + 4)));
}

struct TINT_RULE {
    MIXER Mixer;
    __m128i Apply(__m128i Dst, __m128i) const { return Mixer.Mix(Dst); }
};

// --- Gray ---

struct GRAY_RULE {
    explicit GRAY_RULE(PIXEL KeyColor) : Key(KeyColor) {}

    // The gray of each pixel, as a word of 32 bits.
    static __m128i Grays(__m128i Src)
    {
        // Green and red stay where they are in the pixel. Their shares are divided by 256 and 65536 instead, which is
        // exact.
        const __m128 Blue = Scale(_mm_and_si128(Src, Splat(0xFF)), gBlueShare);
        const __m128 Green = Scale(_mm_and_si128(Src, Splat(0xFF00)), gGreenShare / 0x100);
        const __m128 Red = Scale(_mm_and_si128(Src, Splat(0xFF0000)), gRedShare / 0x10000);
        return _mm_cvttps_epi32(_mm_add_ps(_mm_add_ps(Red, Green), Blue));
    }

    __m128i Apply(__m128i Dst, __m128i Src) const
    {
        return Select(_mm_or_si128(Key.Matches(Dst), Splat(gReservedBits)), Dst, Thrice(Grays(Src)));
    }

    COLOR_TEST Key;

    static __m128 Scale(__m128i Bytes, float Share) { return _mm_mul_ps(_mm_cvtepi32_ps(Bytes), _mm_set1_ps(Share)); }
};

// --- Pointer ---

struct POINTER_RULE {
    __m128i Apply(__m128i Dst, __m128i Image) const
    {
        const __m128i Zero = _mm_setzero_si128();
        const __m128i ZeroBytes = _mm_cmpeq_epi8(_mm_or_si128(Image, Splat(gReservedBits)), Zero);
        return Select(_mm_cmpeq_epi32(ZeroBytes, Zero), Image, Dst);
    }
};

// --- Charts ---

inline __m128i SplatClass(PIXEL Color, UINT8 Class)
{
    Color.Reserved = Class;
    return SplatPixel(Color);
}

// The classes are told by the pixel as a signed number, which its reserved byte leads: LINE_CHART_LINE alone is
// positive, LINE_CHART_FILL is the lowest.
struct SERIES_RULE {
    explicit SERIES_RULE(const CHART_LAYER_ROW& Row)
        : Blend(Splat(PixelWord(Row.Blend) & gColorBits)), Line(SplatPixel(Row.Line))
    {
    }

    __m128i Apply(__m128i Dst, __m128i Plotted) const
    {
        const __m128i IsLine = _mm_cmpgt_epi32(Plotted, _mm_setzero_si128());
        const __m128i IsFill = _mm_cmpgt_epi32(Splat((LINE_CHART_FILL + 1u) << 24), Plotted);
        return Select(IsLine, Line, Select(IsFill, Filled(Dst), Dst));
    }

    __m128i Filled(__m128i Dst) const
    {
        // There is no shift of bytes: the bit that each gets from its neighbour is cut off, and so is the reserved
        // byte.
        const __m128i Half = _mm_and_si128(_mm_srli_epi16(Dst, 1), Splat(0x007F7F7F));
        return _mm_or_si128(_mm_add_epi8(Half, Blend), _mm_and_si128(Dst, Splat(gReservedBits)));
    }

    __m128i Blend;
    __m128i Line;
};

// What eight pixels of a layer are together.
enum EIGHT_CLASS { EIGHT_ABOVE, EIGHT_FILL, EIGHT_MIXED };

inline EIGHT_CLASS ClassOfEight(__m128i First, __m128i Second)
{
    constexpr int AllFour = 15;
    const auto TopBits = [](__m128i Pixels) { return _mm_movemask_ps(_mm_castsi128_ps(Pixels)); };
    const __m128i Both = _mm_and_si128(First, Second);
    // Only LINE_CHART_ABOVE has the second bit, only LINE_CHART_LINE hasn't the first.
    if (TopBits(_mm_slli_epi32(Both, 1)) == AllFour) {
        return EIGHT_ABOVE;
    }
    const __m128i Either = _mm_or_si128(First, Second);
    return TopBits(Both) == AllFour && TopBits(_mm_slli_epi32(Either, 1)) == 0 ? EIGHT_FILL : EIGHT_MIXED;
}

template <typename FILLED> inline VOID FillChartRow(PIXEL* Pixels, UINTN Count, FILLED Filled)
{
    UINTN Index = 0;
    for (; Index + 8 <= Count; Index += 8) {
        const __m128i First = Filled(FOUR_PIXELS::Load(Pixels + Index));
        const __m128i Second = Filled(FOUR_PIXELS::Load(Pixels + Index + 4));
        FOUR_PIXELS::Store(Pixels + Index, First);
        FOUR_PIXELS::Store(Pixels + Index + 4, Second);
    }
    ForRow(Index, Count, [=](auto Part, UINTN At) { Part.Store(Pixels + At, Filled(Part.Load(Pixels + At))); });
}

namespace vectors {

VOID OverlayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, const PIXEL* Key,
                   const PIXEL* Blend, UINT32 Percent)
{
    // A colour that is both is never mixed.
    const bool Mixes = Blend != nullptr && (Key == nullptr || !SameColor(*Key, *Blend));
    if (Key == nullptr && !Mixes) {
        ApplyToBlock(Dst, Src, Columns, Rows, COPY_RULE{});
    } else if (!Mixes) {
        ApplyToBlock(Dst, Src, Columns, Rows, KEY_RULE{COLOR_TEST(*Key)});
    } else if (Key == nullptr) {
        ApplyToBlock(Dst, Src, Columns, Rows, BLEND_RULE{COLOR_TEST(*Blend), MIXER(*Blend, Percent)});
    } else {
        ApplyToBlock(Dst, Src, Columns, Rows,
                     KEY_AND_BLEND_RULE{COLOR_TEST(*Key), {COLOR_TEST(*Blend), MIXER(*Blend, Percent)}});
    }
}

VOID TintPixels(PIXEL_BLOCK Dst, UINTN Columns, UINTN Rows, PIXEL Color, UINT32 Percent)
{
    ApplyToBlock(Dst, {Dst.Row, Dst.Stride}, Columns, Rows, TINT_RULE{MIXER(Color, Percent)});
}

VOID GrayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, PIXEL Key)
{
    ApplyToBlock(Dst, Src, Columns, Rows, GRAY_RULE(Key));
}

VOID FillPixels(PIXEL* Dst, UINTN Count, PIXEL Color)
{
    const __m128i Colors = SplatPixel(Color);
    ForRow(0, Count, [=](auto Pixels, UINTN Index) { Pixels.Store(Dst + Index, Colors); });
}

VOID CopyPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows)
{
    ApplyToBlock(Dst, Src, Columns, Rows, COPY_RULE{});
}

VOID LayPointerPixels(PIXEL* Dst, const PIXEL* Image, UINTN Count) { ApplyToRow(Dst, Image, Count, POINTER_RULE{}); }

VOID PlotChartRow(PIXEL* Layer, CHART_COLUMNS Columns, UINTN Count, INT32 Height, PIXEL Fill, PIXEL Line)
{
    const __m128i Heights = Splat(static_cast<UINT32>(Height));
    const __m128i FillPixel = SplatClass(Fill, LINE_CHART_FILL);
    const __m128i LinePixel = SplatClass(Line, LINE_CHART_LINE);
    const __m128i AbovePixel = SplatClass(gBlackPixel, LINE_CHART_ABOVE);
    ForRow(0, Count, [=](auto Pixels, UINTN Index) {
        const __m128i IsAbove = _mm_cmpgt_epi32(Heights, Pixels.Load(Columns.Last + Index));
        const __m128i IsFill = _mm_cmpgt_epi32(Pixels.Load(Columns.First + Index), Heights);
        Pixels.Store(Layer + Index, Select(IsAbove, AbovePixel, Select(IsFill, FillPixel, LinePixel)));
    });
}

VOID ComposeChartRow(PIXEL* Pixels, UINTN Count, const CHART_LAYER_ROW& Lower, const CHART_LAYER_ROW& Upper)
{
    const SERIES_RULE LowerRule(Lower);
    const SERIES_RULE UpperRule(Upper);
    if (Lower.Whole != LINE_CHART_MIXED && Upper.Whole != LINE_CHART_MIXED) {
        if (Lower.Whole == LINE_CHART_FILL && Upper.Whole == LINE_CHART_FILL) {
            FillChartRow(Pixels, Count, [=](__m128i Ground) { return UpperRule.Filled(LowerRule.Filled(Ground)); });
        } else if (Lower.Whole == LINE_CHART_FILL) {
            FillChartRow(Pixels, Count, [=](__m128i Ground) { return LowerRule.Filled(Ground); });
        } else if (Upper.Whole == LINE_CHART_FILL) {
            FillChartRow(Pixels, Count, [=](__m128i Ground) { return UpperRule.Filled(Ground); });
        }
        return;
    }
    UINTN Index = 0;
    for (; Index + 8 <= Count; Index += 8) {
        // What is above a curve and what is below it come in long stretches, which need less work or none.
        const __m128i FirstLower = FOUR_PIXELS::Load(Lower.Layer + Index);
        const __m128i SecondLower = FOUR_PIXELS::Load(Lower.Layer + Index + 4);
        const __m128i FirstUpper = FOUR_PIXELS::Load(Upper.Layer + Index);
        const __m128i SecondUpper = FOUR_PIXELS::Load(Upper.Layer + Index + 4);
        const EIGHT_CLASS LowerClass = ClassOfEight(FirstLower, SecondLower);
        const EIGHT_CLASS UpperClass = ClassOfEight(FirstUpper, SecondUpper);
        if (LowerClass == EIGHT_ABOVE && UpperClass == EIGHT_ABOVE) {
            continue;
        }
        __m128i First = FOUR_PIXELS::Load(Pixels + Index);
        __m128i Second = FOUR_PIXELS::Load(Pixels + Index + 4);
        if (LowerClass == EIGHT_FILL) {
            First = LowerRule.Filled(First);
            Second = LowerRule.Filled(Second);
        } else if (LowerClass == EIGHT_MIXED) {
            First = LowerRule.Apply(First, FirstLower);
            Second = LowerRule.Apply(Second, SecondLower);
        }
        if (UpperClass == EIGHT_FILL) {
            First = UpperRule.Filled(First);
            Second = UpperRule.Filled(Second);
        } else if (UpperClass == EIGHT_MIXED) {
            First = UpperRule.Apply(First, FirstUpper);
            Second = UpperRule.Apply(Second, SecondUpper);
        }
        FOUR_PIXELS::Store(Pixels + Index, First);
        FOUR_PIXELS::Store(Pixels + Index + 4, Second);
    }
    ForRow(Index, Count, [=, LowerLayer = Lower.Layer, UpperLayer = Upper.Layer](auto Part, UINTN At) {
        const __m128i Ground = LowerRule.Apply(Part.Load(Pixels + At), Part.Load(LowerLayer + At));
        Part.Store(Pixels + At, UpperRule.Apply(Ground, Part.Load(UpperLayer + At)));
    });
}

} // namespace vectors

constexpr KERNELS gVectorKernels = {
    vectors::OverlayPixels, vectors::TintPixels,       vectors::GrayPixels,   vectors::FillPixels,
    vectors::CopyPixels,    vectors::LayPointerPixels, vectors::PlotChartRow, vectors::ComposeChartRow,
};

} // namespace
