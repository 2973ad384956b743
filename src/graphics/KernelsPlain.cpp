#include "graphics/Kernels.h"

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

namespace plain {

VOID OverlayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, const PIXEL* Key,
                   const PIXEL* Blend, UINT32 Percent)
{
    for (; Rows > 0; Rows--, Dst.Row += Dst.Stride, Src.Row += Src.Stride) {
        for (UINTN Index = 0; Index < Columns; Index++) {
            if (Key != nullptr && SameColor(Src.Row[Index], *Key)) {
                continue;
            }
            if (Blend != nullptr && SameColor(Src.Row[Index], *Blend)) {
                MixPixel(&Dst.Row[Index], Src.Row[Index], Percent);
            } else {
                Dst.Row[Index] = Src.Row[Index];
            }
        }
    }
}

VOID TintPixels(PIXEL_BLOCK Dst, UINTN Columns, UINTN Rows, PIXEL Color, UINT32 Percent)
{
    for (; Rows > 0; Rows--, Dst.Row += Dst.Stride) {
        for (UINTN Index = 0; Index < Columns; Index++) {
            MixPixel(&Dst.Row[Index], Color, Percent);
        }
    }
}

VOID GrayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, PIXEL Key)
{
    for (; Rows > 0; Rows--, Dst.Row += Dst.Stride, Src.Row += Src.Stride) {
        for (UINTN Index = 0; Index < Columns; Index++) {
            if (SameColor(Dst.Row[Index], Key)) {
                continue;
            }
            const PIXEL From = Src.Row[Index];
            const float Sum = From.Red * gRedShare + From.Green * gGreenShare + From.Blue * gBlueShare;
            const UINT8 Gray = static_cast<UINT8>(static_cast<INT32>(Sum));
            Dst.Row[Index] = {Gray, Gray, Gray, Dst.Row[Index].Reserved};
        }
    }
}

VOID FillPixels(PIXEL* Dst, UINTN Count, PIXEL Color)
{
    for (UINTN Index = 0; Index < Count; Index++) {
        Dst[Index] = Color;
    }
}

VOID CopyPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows)
{
    for (; Rows > 0; Rows--, Dst.Row += Dst.Stride, Src.Row += Src.Stride) {
        for (UINTN Index = 0; Index < Columns; Index++) {
            Dst.Row[Index] = Src.Row[Index];
        }
    }
}

VOID LayPointerPixels(PIXEL* Dst, const PIXEL* Image, UINTN Count)
{
    for (UINTN Index = 0; Index < Count; Index++) {
        if (Image[Index].Blue != 0 && Image[Index].Green != 0 && Image[Index].Red != 0) {
            Dst[Index] = Image[Index];
        }
    }
}

VOID PlotChartRow(PIXEL* Layer, CHART_COLUMNS Columns, UINTN Count, INT32 Height, PIXEL Fill, PIXEL Line)
{
    for (UINTN Index = 0; Index < Count; Index++) {
        if (Height > Columns.Last[Index]) {
            Layer[Index] = {0, 0, 0, LINE_CHART_ABOVE};
        } else if (Height >= Columns.First[Index]) {
            Layer[Index] = {Line.Blue, Line.Green, Line.Red, LINE_CHART_LINE};
        } else {
            Layer[Index] = {Fill.Blue, Fill.Green, Fill.Red, LINE_CHART_FILL};
        }
    }
}

VOID ComposeChartRow(PIXEL* Pixels, UINTN Count, const CHART_LAYER_ROW& Lower, const CHART_LAYER_ROW& Upper)
{
    for (UINTN Index = 0; Index < Count; Index++) {
        ComposeChartPixel(&Pixels[Index], Lower.Layer[Index], Lower);
        ComposeChartPixel(&Pixels[Index], Upper.Layer[Index], Upper);
    }
}

} // namespace plain

} // namespace

const KERNELS gPlainKernels = {
    plain::OverlayPixels, plain::TintPixels,       plain::GrayPixels,   plain::FillPixels,
    plain::CopyPixels,    plain::LayPointerPixels, plain::PlotChartRow, plain::ComposeChartRow,
};
