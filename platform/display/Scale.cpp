#include "platform/display/Scale.h"

#include <emmintrin.h>

namespace {

// Each pixel Multiple times.
VOID Repeat(const PIXEL* From, UINTN Count, UINT32 Multiple, PIXEL* To)
{
    UINTN At = 0;
    // Twice is what dense displays take.
    for (; Multiple == 2 && At + 4 <= Count; At += 4, To += 8) {
        const __m128i Pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(From + At));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(To), _mm_unpacklo_epi32(Pixels, Pixels));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(To + 4), _mm_unpackhi_epi32(Pixels, Pixels));
    }
    for (; At < Count; At++) {
        for (UINT32 Each = 0; Each < Multiple; Each++) {
            *To++ = From[At];
        }
    }
}

VOID EnlargeRows(const PIXEL* Picture, const PLACEMENT& Place, const PANEL_AREA& Target, PIXEL* Pixels)
{
    const UINT32 Multiple = Place.Multiple;
    const UINTN Width = Target.Right - Target.Left;
    const UINT32 First = (Target.Left - Place.X) / Multiple;
    for (UINT32 Row = Target.Top - Place.Y; Row < Target.Bottom - Place.Y; Row++, Pixels += Width) {
        if (Row % Multiple != 0 && Row != Target.Top - Place.Y) {
            __builtin_memcpy(Pixels, Pixels - Width, Width * sizeof(PIXEL));
        } else {
            Repeat(Picture + static_cast<UINTN>(Row / Multiple) * gPictureWidth + First, Width / Multiple, Multiple,
                   Pixels);
        }
    }
}

// The pixels of the picture under one pixel of the display, along one axis: Count of them from First on, each with its
// share in the mean.
constexpr UINT32 gWholeShare = 256; // all of them together
struct COVER {
    UINT16 First;
    UINT16 Count;
    UINT16 FirstShare;
    UINT16 LastShare; // where Count is over 1
    UINT16 Share;     // of each between the two
};

COVER CoverOf(UINT32 At, UINT32 Extent, UINT32 Length)
{
    // In units of 1 / Length of a pixel: the display's pixel covers Extent of them, and Length are a pixel of the picture.
    const UINT32 Begin = At * Extent;
    const UINT32 End = Begin + Extent;
    const UINT32 First = Begin / Length;
    const UINT32 Last = (End - 1) / Length;
    const auto ShareOf = [&](UINT32 Units) { return Units * gWholeShare / Extent; };
    COVER Cover = {};
    Cover.First = static_cast<UINT16>(First);
    Cover.Count = static_cast<UINT16>(Last - First + 1);
    Cover.LastShare = static_cast<UINT16>(First == Last ? 0 : ShareOf(End - Last * Length));
    Cover.Share = static_cast<UINT16>(ShareOf(Length));
    // What the rounding leaves over goes to the first, so that a plain area stays as it is.
    Cover.FirstShare =
        static_cast<UINT16>(gWholeShare - Cover.LastShare - (First == Last ? 0 : (Last - First - 1) * Cover.Share));
    return Cover;
}

UINT16 ShareOf(const COVER& Cover, UINT32 Index)
{
    return Index == 0 ? Cover.FirstShare : Index + 1 == Cover.Count ? Cover.LastShare : Cover.Share;
}

VOID FitRows(const PIXEL* Picture, const PLACEMENT& Place, const PANEL_AREA& Target, PIXEL* Pixels)
{
    constexpr UINTN Channels = sizeof(PIXEL);
    constexpr UINT32 Whole = gWholeShare * gWholeShare;
    COVER Columns[gPictureWidth];
    UINT16 Sums[gPictureWidth * Channels]; // a row of the display, as wide as the picture still
    const UINTN Width = Target.Right - Target.Left;
    if (Width == 0) {
        return;
    }
    for (UINT32 Index = 0; Index < Width; Index++) {
        Columns[Index] = CoverOf(Target.Left - Place.X + Index, gPictureWidth, Place.Width);
    }
    const UINTN Left = Columns[0].First;
    const UINTN Bytes = (Columns[Width - 1].First + Columns[Width - 1].Count - Left) * Channels;

    for (UINT32 Row = Target.Top - Place.Y; Row < Target.Bottom - Place.Y; Row++) {
        const COVER Down = CoverOf(Row, gPictureHeight, Place.Height);
        __builtin_memset(Sums, 0, Bytes * sizeof(Sums[0]));
        for (UINT32 Each = 0; Each < Down.Count; Each++) {
            const auto* From =
                reinterpret_cast<const UINT8*>(Picture + (Down.First + UINTN{Each}) * gPictureWidth + Left);
            const UINT16 Share = ShareOf(Down, Each);
            for (UINTN Index = 0; Index < Bytes; Index++) {
                Sums[Index] = static_cast<UINT16>(Sums[Index] + From[Index] * Share);
            }
        }
        for (UINTN Column = 0; Column < Width; Column++) {
            const COVER& Across = Columns[Column];
            const UINT16* Sum = Sums + (Across.First - Left) * Channels;
            UINT32 Color[] = {Whole / 2, Whole / 2, Whole / 2}; // blue, green, red; rounded
            for (UINT32 Each = 0; Each < Across.Count; Each++, Sum += Channels) {
                const UINT32 Share = ShareOf(Across, Each);
                Color[0] += Sum[0] * Share;
                Color[1] += Sum[1] * Share;
                Color[2] += Sum[2] * Share;
            }
            *Pixels++ = {.Blue = static_cast<UINT8>(Color[0] / Whole),
                         .Green = static_cast<UINT8>(Color[1] / Whole),
                         .Red = static_cast<UINT8>(Color[2] / Whole),
                         .Reserved = 0};
        }
    }
}

} // namespace

VOID ScaleRows(const PIXEL* Picture, const PLACEMENT& Place, const PANEL_AREA& Target, PIXEL* Pixels)
{
    if (Place.Multiple != 0) {
        EnlargeRows(Picture, Place, Target, Pixels);
    } else {
        FitRows(Picture, Place, Target, Pixels);
    }
}
