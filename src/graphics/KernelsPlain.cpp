#include "graphics/Kernels.h"

namespace plain {

namespace {

UINT8 Mix(UINT8 Destination, UINT8 Source, UINT32 Percent)
{
    return static_cast<UINT8>(((100 - Percent) * Destination + Percent * Source) / 100);
}

VOID MixPixel(PIXEL* Dst, PIXEL Src, UINT32 Percent)
{
    Dst->Blue = Mix(Dst->Blue, Src.Blue, Percent);
    Dst->Green = Mix(Dst->Green, Src.Green, Percent);
    Dst->Red = Mix(Dst->Red, Src.Red, Percent);
}

VOID ComposeChartPixel(PIXEL* Pixel, PIXEL Plotted, const CHART_LAYER_ROW& Series)
{
    if (Plotted.Reserved == LINE_CHART_FILL) {
        Pixel->Blue = static_cast<UINT8>(Series.Blend.Blue + Pixel->Blue / 2);
        Pixel->Green = static_cast<UINT8>(Series.Blend.Green + Pixel->Green / 2);
        Pixel->Red = static_cast<UINT8>(Series.Blend.Red + Pixel->Red / 2);
    } else if (Plotted.Reserved == LINE_CHART_LINE) {
        *Pixel = Series.Line;
    }
}

} // namespace

VOID OverlayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, const PIXEL* Key,
                   const PIXEL* Blend, UINT32 Percent)
{
    for (; Rows > 0; Rows--, Dst.Row += Dst.Stride, Src.Row += Src.Stride) {
        for (UINTN I = 0; I < Columns; I++) {
            if (Key != nullptr && SameColor(Src.Row[I], *Key)) {
                continue;
            }
            if (Blend != nullptr && SameColor(Src.Row[I], *Blend)) {
                MixPixel(&Dst.Row[I], Src.Row[I], Percent);
            } else {
                Dst.Row[I] = Src.Row[I];
            }
        }
    }
}

VOID TintPixels(PIXEL_BLOCK Dst, UINTN Columns, UINTN Rows, PIXEL Color, UINT32 Percent)
{
    for (; Rows > 0; Rows--, Dst.Row += Dst.Stride) {
        for (UINTN I = 0; I < Columns; I++) {
            MixPixel(&Dst.Row[I], Color, Percent);
        }
    }
}

VOID GrayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, PIXEL Key)
{
    for (; Rows > 0; Rows--, Dst.Row += Dst.Stride, Src.Row += Src.Stride) {
        for (UINTN I = 0; I < Columns; I++) {
            if (SameColor(Dst.Row[I], Key)) {
                continue;
            }
            const PIXEL From = Src.Row[I];
            const float Sum = From.Red * gRedShare + From.Green * gGreenShare + From.Blue * gBlueShare;
            const UINT8 Gray = static_cast<UINT8>(static_cast<INT32>(Sum));
            Dst.Row[I] = {Gray, Gray, Gray, Dst.Row[I].Reserved};
        }
    }
}

VOID FillPixels(PIXEL* Dst, UINTN Count, PIXEL Color)
{
    for (UINTN I = 0; I < Count; I++) {
        Dst[I] = Color;
    }
}

VOID CopyPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows)
{
    for (; Rows > 0; Rows--, Dst.Row += Dst.Stride, Src.Row += Src.Stride) {
        for (UINTN I = 0; I < Columns; I++) {
            Dst.Row[I] = Src.Row[I];
        }
    }
}

VOID LayPointerPixels(PIXEL* Dst, const PIXEL* Image, UINTN Count)
{
    for (UINTN I = 0; I < Count; I++) {
        if (Image[I].Blue != 0 && Image[I].Green != 0 && Image[I].Red != 0) {
            Dst[I] = Image[I];
        }
    }
}

VOID PlotChartRow(PIXEL* Layer, CHART_COLUMNS Columns, UINTN Count, INT32 Height, PIXEL Fill, PIXEL Line)
{
    for (UINTN I = 0; I < Count; I++) {
        if (Height > Columns.Last[I]) {
            Layer[I] = {0, 0, 0, LINE_CHART_ABOVE};
        } else if (Height >= Columns.First[I]) {
            Layer[I] = {Line.Blue, Line.Green, Line.Red, LINE_CHART_LINE};
        } else {
            Layer[I] = {Fill.Blue, Fill.Green, Fill.Red, LINE_CHART_FILL};
        }
    }
}

VOID ComposeChartRow(PIXEL* Pixels, UINTN Count, const CHART_LAYER_ROW& Lower, const CHART_LAYER_ROW& Upper)
{
    for (UINTN I = 0; I < Count; I++) {
        ComposeChartPixel(&Pixels[I], Lower.Layer[I], Lower);
        ComposeChartPixel(&Pixels[I], Upper.Layer[I], Upper);
    }
}

} // namespace plain

// Where Kernels.cpp has nothing faster, these are the kernels.
#if !defined(__SSE2__)

VOID OverlayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, const PIXEL* Key,
                   const PIXEL* Blend, UINT32 Percent)
{
    plain::OverlayPixels(Dst, Src, Columns, Rows, Key, Blend, Percent);
}

VOID TintPixels(PIXEL_BLOCK Dst, UINTN Columns, UINTN Rows, PIXEL Color, UINT32 Percent)
{
    plain::TintPixels(Dst, Columns, Rows, Color, Percent);
}

VOID GrayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, PIXEL Key)
{
    plain::GrayPixels(Dst, Src, Columns, Rows, Key);
}

VOID FillPixels(PIXEL* Dst, UINTN Count, PIXEL Color) { plain::FillPixels(Dst, Count, Color); }

VOID CopyPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows)
{
    plain::CopyPixels(Dst, Src, Columns, Rows);
}

VOID LayPointerPixels(PIXEL* Dst, const PIXEL* Image, UINTN Count) { plain::LayPointerPixels(Dst, Image, Count); }

VOID PlotChartRow(PIXEL* Layer, CHART_COLUMNS Columns, UINTN Count, INT32 Height, PIXEL Fill, PIXEL Line)
{
    plain::PlotChartRow(Layer, Columns, Count, Height, Fill, Line);
}

VOID ComposeChartRow(PIXEL* Pixels, UINTN Count, const CHART_LAYER_ROW& Lower, const CHART_LAYER_ROW& Upper)
{
    plain::ComposeChartRow(Pixels, Count, Lower, Upper);
}

#endif
