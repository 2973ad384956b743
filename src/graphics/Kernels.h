// The inner loops of everything that is done pixel by pixel, in one place: rows and blocks of pixels, nothing of the
// screen and nothing of the firmware.
//
// VectorKernels.h works on four pixels at a time, compiled for SSE2, which every x86-64 processor has, and for SSE4.1, which
// nearly all have since 2008; compilers make almost none of it out of a plain loop. Wider registers stay out, since
// firmware doesn't turn them on. KernelsPlain.cpp says pixel by pixel what each operation computes, and the fast forms are
// compared with it.
//
// Destination and source are the same place or don't overlap. Nothing beyond the pixels named is read or written.
#pragma once

#include "graphics/Palette.h"

// A rectangle inside a larger picture: Row is its top left pixel, and the rows are Stride pixels apart.
struct PIXEL_BLOCK {
    PIXEL* Row;
    UINTN Stride;
};

struct CONST_PIXEL_BLOCK {
    const PIXEL* Row;
    UINTN Stride;
};

// The shares of red, green and blue in a gray.
constexpr float gRedShare = 0.299f;
constexpr float gGreenShare = 0.587f;
constexpr float gBlueShare = 0.114f;

// What a pixel of a chart's layer is; it stands in the pixel's reserved byte.
enum LINE_CHART_CLASS : UINT8 {
    LINE_CHART_MIXED = 0,    // of no pixel: a row whose pixels aren't alike, or not known to be
    LINE_CHART_LINE = 1,     // on the curve; colour bytes: the series' colour
    LINE_CHART_FILL = 0x80,  // under the curve; colour bytes: the gradient's colour
    LINE_CHART_ABOVE = 0xFE, // above the curve; colour bytes aren't used
};

// One series of a chart, as it shows in one row.
struct CHART_LAYER_ROW {
    const PIXEL* Layer; // its row of the layer; each reserved byte is a LINE_CHART_CLASS
    PIXEL Blend;        // what the fill adds in this row
    PIXEL Line;         // the colour of the curve
    // LINE_CHART_FILL or LINE_CHART_ABOVE if every pixel of the row is known to be that: then Layer needn't be read.
    LINE_CHART_CLASS Whole;
};

// In which heights a pixel column of a chart shows the curve: First to Last is the curve, what is below is fill.
struct CHART_COLUMNS {
    const INT32* First;
    const INT32* Last;
};

// Lays Columns x Rows pixels of Src over Dst. Key and Blend may be null; for each pixel the first rule that applies
// decides. Equal to *Key: the destination stays. Equal to *Blend: each of its colour bytes becomes ((100 - Percent) x
// destination + Percent x source) / 100, the remainder dropped, and its reserved byte stays. Else the source pixel
// replaces it. Percent is 1 to 99.
VOID OverlayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, const PIXEL* Key,
                   const PIXEL* Blend, UINT32 Percent);

// Mixes Percent (1 to 99) of Color into Columns x Rows pixels, by the rule above for a source that is all Blend.
VOID TintPixels(PIXEL_BLOCK Dst, UINTN Columns, UINTN Rows, PIXEL Color, UINT32 Percent);

// Gives each pixel of Dst the gray of the Src pixel at its place, unless it has the colour Key; its reserved byte
// stays. The gray is (red x its share + green x its share) + blue x its share, each step rounded to single precision,
// without its fraction.
VOID GrayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, PIXEL Key);

// Count pixels of one colour.
VOID FillPixels(PIXEL* Dst, UINTN Count, PIXEL Color);

// Copies Columns x Rows pixels; for blocks so narrow that a call of CopyMem for each row costs more than the copying.
VOID CopyPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows);

// Lays Count pixels of the pointer's picture over Dst: those of which no colour byte is 0.
VOID LayPointerPixels(PIXEL* Dst, const PIXEL* Image, UINTN Count);

// Writes the row at a height of a chart's layer: curve, fill or above, column by column.
VOID PlotChartRow(PIXEL* Layer, CHART_COLUMNS Columns, UINTN Count, INT32 Height, PIXEL Fill, PIXEL Line);

// Lays a row of two series over Count pixels, first Lower and then Upper: on its curve the series' colour replaces the
// pixel; in its fill each colour byte becomes half its value, the remainder dropped, plus that of Blend, in eight bits.
VOID ComposeChartRow(PIXEL* Pixels, UINTN Count, const CHART_LAYER_ROW& Lower, const CHART_LAYER_ROW& Upper);

// A set of them all. The functions above run the best set that the processor has; all give the same bytes.
struct KERNELS {
    decltype(::OverlayPixels)* OverlayPixels;
    decltype(::TintPixels)* TintPixels;
    decltype(::GrayPixels)* GrayPixels;
    decltype(::FillPixels)* FillPixels;
    decltype(::CopyPixels)* CopyPixels;
    decltype(::LayPointerPixels)* LayPointerPixels;
    decltype(::PlotChartRow)* PlotChartRow;
    decltype(::ComposeChartRow)* ComposeChartRow;
};

extern const KERNELS gPlainKernels; // pixel by pixel; too slow to be chosen
extern const KERNELS gSse2Kernels;
extern const KERNELS gSse41Kernels;

// Has the functions above run Set in place of the processor's best; null: the best again. For tests and benchmarks.
VOID UseKernels(const KERNELS* Set);
