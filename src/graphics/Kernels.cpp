#include "graphics/Kernels.h"

#include <cpuid.h>

namespace {

const KERNELS& ChooseKernels()
{
    unsigned Eax = 0;
    unsigned Ebx = 0;
    unsigned Ecx = 0;
    unsigned Edx = 0;
    const bool Asked = __get_cpuid(1, &Eax, &Ebx, &Ecx, &Edx) != 0;
    return Asked && (Ecx & bit_SSE4_1) != 0 ? gSse41Kernels : gSse2Kernels;
}

const KERNELS* gChosen;

// The processor is asked once: under a hypervisor the question leaves the machine.
const KERNELS& Kernels()
{
    if (gChosen == nullptr) {
        gChosen = &ChooseKernels();
    }
    return *gChosen;
}

} // namespace

VOID UseKernels(const KERNELS* Set) { gChosen = Set; }

VOID OverlayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, const PIXEL* Key,
                   const PIXEL* Blend, UINT32 Percent)
{
    Kernels().OverlayPixels(Dst, Src, Columns, Rows, Key, Blend, Percent);
}

VOID TintPixels(PIXEL_BLOCK Dst, UINTN Columns, UINTN Rows, PIXEL Color, UINT32 Percent)
{
    Kernels().TintPixels(Dst, Columns, Rows, Color, Percent);
}

VOID GrayPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows, PIXEL Key)
{
    Kernels().GrayPixels(Dst, Src, Columns, Rows, Key);
}

VOID FillPixels(PIXEL* Dst, UINTN Count, PIXEL Color) { Kernels().FillPixels(Dst, Count, Color); }

VOID CopyPixels(PIXEL_BLOCK Dst, CONST_PIXEL_BLOCK Src, UINTN Columns, UINTN Rows)
{
    Kernels().CopyPixels(Dst, Src, Columns, Rows);
}

VOID LayPointerPixels(PIXEL* Dst, const PIXEL* Image, UINTN Count) { Kernels().LayPointerPixels(Dst, Image, Count); }

VOID PlotChartRow(PIXEL* Layer, CHART_COLUMNS Columns, UINTN Count, INT32 Height, PIXEL Fill, PIXEL Line)
{
    Kernels().PlotChartRow(Layer, Columns, Count, Height, Fill, Line);
}

VOID ComposeChartRow(PIXEL* Pixels, UINTN Count, const CHART_LAYER_ROW& Lower, const CHART_LAYER_ROW& Upper)
{
    Kernels().ComposeChartRow(Pixels, Count, Lower, Upper);
}
