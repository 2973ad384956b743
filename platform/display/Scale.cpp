#include "platform/display/Scale.h"

namespace {

VOID EnlargeRows(const PIXEL* Picture, const PLACEMENT& Place, const PANEL_AREA& Target, PIXEL* Pixels)
{
    const UINT32 Multiple = Place.Multiple;
    const UINTN Width = Target.Right - Target.Left;
    const UINT32 FirstColumn = Target.Left - Place.X;
    const PIXEL* Shown = nullptr; // the picture's row that the row before was made of
    for (UINT32 Row = Target.Top - Place.Y; Row < Target.Bottom - Place.Y; Row++, Pixels += Width) {
        const PIXEL* From = Picture + static_cast<UINTN>(Row / Multiple) * gPictureWidth;
        if (From == Shown) {
            __builtin_memcpy(Pixels, Pixels - Width, Width * sizeof(PIXEL));
            continue;
        }
        Shown = From;
        const PIXEL* Source = From + FirstColumn / Multiple;
        UINT32 Left = Multiple - FirstColumn % Multiple; // of the square of *Source
        for (UINTN At = 0; At < Width; At++) {
            Pixels[At] = *Source;
            if (--Left == 0) {
                Source++;
                Left = Multiple;
            }
        }
    }
}

// The pixels of the picture under one pixel of the display, along one axis: Count of them from First on. Each counts by
// its share, in units of 1 / Length of a pixel, of the Extent units that the display's pixel covers in all.
struct COVER {
    UINT32 First;
    UINT32 Count;
    UINT32 FirstShare;
    UINT32 LastShare; // where Count is over 1
};

COVER CoverOf(UINT32 At, UINT32 Extent, UINT32 Length)
{
    const UINT64 Begin = static_cast<UINT64>(At) * Extent;
    const UINT64 End = Begin + Extent;
    COVER Cover = {};
    Cover.First = static_cast<UINT32>(Begin / Length);
    const UINT32 Last = static_cast<UINT32>((End - 1) / Length);
    Cover.Count = Last - Cover.First + 1;
    Cover.FirstShare =
        static_cast<UINT32>(Cover.Count == 1 ? Extent : (static_cast<UINT64>(Cover.First) + 1) * Length - Begin);
    Cover.LastShare = static_cast<UINT32>(End - static_cast<UINT64>(Last) * Length);
    return Cover;
}

UINT32 ShareOf(const COVER& Cover, UINT32 Index, UINT32 Length)
{
    return Index == 0 ? Cover.FirstShare : Index + 1 == Cover.Count ? Cover.LastShare : Length;
}

VOID FitRows(const PIXEL* Picture, const PLACEMENT& Place, const PANEL_AREA& Target, PIXEL* Pixels)
{
    constexpr UINT64 Whole = static_cast<UINT64>(gPictureWidth) * gPictureHeight;
    for (UINT32 Row = Target.Top - Place.Y; Row < Target.Bottom - Place.Y; Row++) {
        const COVER Down = CoverOf(Row, gPictureHeight, Place.Height);
        for (UINT32 Column = Target.Left - Place.X; Column < Target.Right - Place.X; Column++) {
            const COVER Across = CoverOf(Column, gPictureWidth, Place.Width);
            UINT64 Blue = 0;
            UINT64 Green = 0;
            UINT64 Red = 0;
            for (UINT32 Y = 0; Y < Down.Count; Y++) {
                const PIXEL* From = Picture + static_cast<UINTN>(Down.First + Y) * gPictureWidth + Across.First;
                const UINT64 RowShare = ShareOf(Down, Y, Place.Height);
                for (UINT32 X = 0; X < Across.Count; X++) {
                    const UINT64 Share = RowShare * ShareOf(Across, X, Place.Width);
                    Blue += From[X].Blue * Share;
                    Green += From[X].Green * Share;
                    Red += From[X].Red * Share;
                }
            }
            *Pixels++ = {.Blue = static_cast<UINT8>((Blue + Whole / 2) / Whole),
                         .Green = static_cast<UINT8>((Green + Whole / 2) / Whole),
                         .Red = static_cast<UINT8>((Red + Whole / 2) / Whole),
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
