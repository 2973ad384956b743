#include "controls/LineChart.h"

#include "graphics/GraphicProtocol.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "support/Report.h"

namespace {

constexpr UINT32 gGridLineCount = 10;
constexpr UINT32 gPlotColumns = 128;       // columns that are plotted together
constexpr INT32 gTemperatureMaximum = 100; // degrees
constexpr INT32 gRpmMaximum = 7000;        // revolutions a minute

constexpr CHAR16 gRpmVariableName[] = u"LineChartRPM";
constexpr CHAR16 gTemperatureVariableName[] = u"LineChartTempature"; // spelled so on purpose

constexpr CHAR8 gSourcePath[] = "src\\controls\\LineChart.cpp";

FLOAT_WORD Quotient(INT64 A, INT64 B)
{
    return gFloatMath->FloatDivide(gFloatMath->IntToFloat(A), gFloatMath->IntToFloat(B));
}

UINT8 ScaleColor(UINT8 Value, FLOAT_WORD Factor)
{
    return static_cast<UINT8>(gFloatMath->FloatToInt(gFloatMath->FloatMultiply(gFloatMath->IntToFloat(Value), Factor)));
}

// Builds both tables of a series: its colour at the top entry, fading to black towards entry 0.
bool BuildGradients(const LINE_CHART* Chart, LINE_CHART_SERIES* Series, PIXEL Color)
{
    const UINT32 Count = Chart->Rect.Height + 1;
    Series->Gradient = AllocateZeroArray<PIXEL>(Count);
    Series->BlendGradient = AllocateZeroArray<PIXEL>(Count);
    if (Series->Gradient == nullptr || Series->BlendGradient == nullptr) {
        return false;
    }
    for (UINT32 Index = Count; Index > 0; Index--) {
        PIXEL* Entry = &Series->Gradient[Index - 1];
        *Entry = MixColor(Quotient(Index, Count), Color, gBlackPixel);
        // Red is scaled by the complement, which is a little less.
        PIXEL* Blend = &Series->BlendGradient[Index - 1];
        Blend->Blue = ScaleColor(Entry->Blue, Chart->BlendFactor);
        Blend->Green = ScaleColor(Entry->Green, Chart->BlendFactor);
        Blend->Red = ScaleColor(Entry->Red, Chart->BlendComplement);
    }
    return true;
}

bool AllocateSeries(const LINE_CHART* Chart, LINE_CHART_SERIES* Series, SHARED_PICTURE_KIND Layer)
{
    Series->Layer = TakeSharedPicture(Layer, Chart->Rect);
    Series->Samples = AllocateZeroArray<UINT32>(Chart->Rect.Width);
    return Series->Layer != nullptr && Series->Samples != nullptr;
}

UINTN HistorySize(const LINE_CHART* Chart) { return Chart->Rect.Width * sizeof(UINT32); }

VOID StoreHistory(const CHAR16* Name, const LINE_CHART* Chart, const LINE_CHART_SERIES& Series)
{
    (void)gRT->SetVariable(Name, &Series.VariableGuid, EFI_VARIABLE_BOOTSERVICE_ACCESS, HistorySize(Chart),
                           Series.Samples);
}

// Takes up the history that the variable holds, or makes the variable. A variable that is longer than the chart is
// asked for with the chart's own size, which the firmware refuses: the history then starts empty.
VOID LoadHistory(const CHAR16* Name, const LINE_CHART* Chart, LINE_CHART_SERIES* Series)
{
    UINTN Size = 0;
    EFI_STATUS Status = gRT->GetVariable(Name, &Series->VariableGuid, nullptr, &Size, nullptr);
    if (Status == EFI_NOT_FOUND) {
        StoreHistory(Name, Chart, *Series);
        Size = 0;
        Status = gRT->GetVariable(Name, &Series->VariableGuid, nullptr, &Size, nullptr);
    }
    if (Status != EFI_BUFFER_TOO_SMALL) {
        return;
    }
    if (Size > HistorySize(Chart)) {
        Size = HistorySize(Chart);
    }
    (void)gRT->GetVariable(Name, &Series->VariableGuid, nullptr, &Size, Series->Samples);
}

VOID FreeChart(LINE_CHART* Chart)
{
    ReleaseSharedPicture(Chart->Rpm.Layer);
    ReleaseSharedPicture(Chart->Temperature.Layer);
    ReleaseSharedPicture(Chart->Pixels);
    FreePool(Chart->Rpm.Samples);
    FreePool(Chart->Temperature.Samples);
    FreePool(Chart->Rpm.Gradient);
    FreePool(Chart->Rpm.BlendGradient);
    FreePool(Chart->Temperature.Gradient);
    FreePool(Chart->Temperature.BlendGradient);
    FreePool(Chart);
}

bool BuildChart(LINE_CHART* Chart)
{
    Chart->Temperature.Maximum = gTemperatureMaximum;
    Chart->Rpm.Maximum = gRpmMaximum;
    const FLOAT_WORD Factor = Quotient(128, 255);
    Chart->BlendFactor = static_cast<UINT32>(Factor);
    Chart->BlendComplement =
        static_cast<UINT32>(gFloatMath->FloatSubtract(gFloatMath->IntToFloat(1), Chart->BlendFactor));
    Chart->Pixels = TakeSharedPicture(SHARED_CHART, Chart->Rect);
    if (Chart->Pixels == nullptr) {
        return false;
    }
    return BuildGradients(Chart, &Chart->Rpm, gChartRpmColor) &&
           BuildGradients(Chart, &Chart->Temperature, gChartTemperatureColor) &&
           AllocateSeries(Chart, &Chart->Rpm, SHARED_RPM_LAYER) &&
           AllocateSeries(Chart, &Chart->Temperature, SHARED_TEMPERATURE_LAYER);
}

UINT32 StoredSample(UINT64 Value)
{
    const UINT32 Sample = static_cast<UINT32>(Value);
    return Sample == 0 ? 1 : Sample;
}

UINT32 LimitSample(UINT32 Sample, INT32 Minimum, INT32 Maximum)
{
    const INT64 Value = Sample;
    return Value < Minimum ? static_cast<UINT32>(Minimum) : Value > Maximum ? static_cast<UINT32>(Maximum) : Sample;
}

// Some neighbouring columns of a layer: the heights at which each shows the curve, and what these heights are for all.
struct PLOT {
    INT32 First[gPlotColumns];
    INT32 Last[gPlotColumns];
    UINT32 Count;
    INT32 Lowest;
    INT32 Highest;
};

INT32 LimitHeight(INT64 Height, UINT32 Top)
{
    return static_cast<INT32>(Height < 0 ? 0 : Height > Top ? Top + INT64{1} : Height);
}

// Adds a column whose point is at Height, after one whose point is at Previous; a sample above the scale gives a height
// above the top row. A vertical run joins the two in this column, but none rises out of a column without a point, and
// none falls in the first column.
VOID AddColumn(PLOT* Plot, UINT32 Top, INT64 Height, INT64 Previous, bool First)
{
    INT64 From = Height;
    INT64 To = Height;
    if (Height < Previous && !First) {
        To = Previous - 1;
    } else if (Height > Previous && Previous != 0) {
        From = Previous + 1;
    }
    const INT32 FirstHeight = LimitHeight(From, Top);
    const INT32 LastHeight = LimitHeight(To, Top);
    Plot->Lowest = Plot->Count == 0 || FirstHeight < Plot->Lowest ? FirstHeight : Plot->Lowest;
    Plot->Highest = Plot->Count == 0 || LastHeight > Plot->Highest ? LastHeight : Plot->Highest;
    Plot->First[Plot->Count] = FirstHeight;
    Plot->Last[Plot->Count] = LastHeight;
    Plot->Count++;
}

PIXEL WithClass(PIXEL Color, LINE_CHART_CLASS Class)
{
    Color.Reserved = Class;
    return Color;
}

// Writes the plot's columns row by row, which is the order of the pixels in memory. Most rows lie wholly above the
// curve or wholly below it, and did so before.
VOID WritePlot(const PLOT& Plot, PIXEL* Layer, const PIXEL* Gradient, UINT32 Width, UINT32 Top, PIXEL Line,
               LINE_CHART_EXTENT Known)
{
    PIXEL* Row = Layer;
    for (INT32 Height = static_cast<INT32>(Top); Height > 0; Height--, Row += Width) {
        if (Height > Plot.Highest) {
            if (Height <= Known.Highest) {
                FillPixels(Row, Plot.Count, WithClass(gBlackPixel, LINE_CHART_ABOVE));
            }
        } else if (Height < Plot.Lowest) {
            if (Height >= Known.Lowest) {
                FillPixels(Row, Plot.Count, WithClass(Gradient[Height], LINE_CHART_FILL));
            }
        } else {
            PlotChartRow(Row, {Plot.First, Plot.Last}, Plot.Count, Height, Gradient[Height], Line);
        }
    }
}

VOID DrawGrid(LINE_CHART* Chart)
{
    const UINT32 Step = Chart->Rect.Height / gGridLineCount;
    if (Step == 0) {
        return;
    }
    for (UINT32 Row = 0; Row < Chart->Rect.Height; Row += Step) {
        FillPixels(Chart->Pixels + static_cast<UINTN>(Row) * Chart->Rect.Width, Chart->Rect.Width, gChartGridColor);
    }
}

VOID PlotSeries(const LINE_CHART* Chart, LINE_CHART_SERIES* Series, PIXEL Color)
{
    const GUI_RECT& Rect = Chart->Rect;
    LINE_CHART_EXTENT& Extent = ExtentOfLayer(Series->Layer);
    Extent = PlotLineChartSeries(Series->Layer, Series->Gradient, Series->Samples, Rect.Width, Rect.Height,
                                 Series->Maximum, Series->Minimum, PixelWord(Color), Extent);
}

LINE_CHART_CLASS ClassOfRow(LINE_CHART_EXTENT Extent, UINT32 Height)
{
    const INT32 At = static_cast<INT32>(Height);
    return At > Extent.Highest ? LINE_CHART_ABOVE : At < Extent.Lowest ? LINE_CHART_FILL : LINE_CHART_MIXED;
}

// Lays both layers over the picture. Where the areas overlap, temperature lies on top of speed.
VOID ComposeLayers(LINE_CHART* Chart)
{
    const UINT32 Width = Chart->Rect.Width;
    const LINE_CHART_EXTENT RpmExtent = ExtentOfLayer(Chart->Rpm.Layer);
    const LINE_CHART_EXTENT TemperatureExtent = ExtentOfLayer(Chart->Temperature.Layer);
    PIXEL* Row = Chart->Pixels;
    CHART_LAYER_ROW Rpm = {Chart->Rpm.Layer, {}, gChartRpmColor, LINE_CHART_MIXED};
    CHART_LAYER_ROW Temperature = {Chart->Temperature.Layer, {}, gChartTemperatureColor, LINE_CHART_MIXED};
    for (UINT32 Height = Chart->Rect.Height; Height > 0; Height--) {
        Rpm.Blend = Chart->Rpm.BlendGradient[Height];
        Rpm.Whole = ClassOfRow(RpmExtent, Height);
        Temperature.Blend = Chart->Temperature.BlendGradient[Height];
        Temperature.Whole = ClassOfRow(TemperatureExtent, Height);
        ComposeChartRow(Row, Width, Rpm, Temperature);
        Row += Width;
        Rpm.Layer += Width;
        Temperature.Layer += Width;
    }
}

// Paints columns First to Last of the row that lies FromBottom rows above the chart's lower edge, as far as there are
// any.
VOID DrawMarkRow(LINE_CHART* Chart, UINT32 FromBottom, INT64 First, INT64 Last)
{
    const INT64 Width = Chart->Rect.Width;
    First = First < 0 ? 0 : First;
    Last = Last >= Width ? Width - 1 : Last;
    if (FromBottom > Chart->Rect.Height || First > Last) {
        return;
    }
    PIXEL* Row = Chart->Pixels + static_cast<UINTN>(Chart->Rect.Height - FromBottom) * Chart->Rect.Width;
    FillPixels(Row + First, static_cast<UINTN>(Last - First + 1), gChartMarkColor);
}

// A wedge that leans left and stands on a foot line on the bottom row.
VOID DrawMark(LINE_CHART* Chart)
{
    const INT64 Middle = static_cast<INT64>(Chart->Rect.Width / 10) * 9;
    for (UINT32 FromBottom = 6; FromBottom > 1; FromBottom--) {
        DrawMarkRow(Chart, FromBottom, Middle + FromBottom - 6, Middle);
    }
    DrawMarkRow(Chart, 1, Middle - 5, Middle + 10);
}

} // namespace

EFI_STATUS CreateLineChart(LINE_CHART** Chart, const GUI_RECT* Rect, const EFI_GUID* RpmGuid,
                           const EFI_GUID* TemperatureGuid)
{
    *Chart = nullptr;
    if (!RectOnScreen(Rect->X, Rect->Y, Rect->Width, Rect->Height)) {
        REPORT("No place (CreateLineChart)");
        return EFI_INVALID_PARAMETER;
    }
    LINE_CHART* New = AllocateZeroRecord<LINE_CHART>();
    if (New == nullptr) {
        REPORT("AllocatePool Fail (CreateLineChart)");
        return EFI_OUT_OF_RESOURCES;
    }
    New->Rect = *Rect;
    New->Rpm.VariableGuid = *RpmGuid;
    New->Temperature.VariableGuid = *TemperatureGuid;
    if (!BuildChart(New)) {
        REPORT("AllocatePool Fail (CreateLineChart)");
        FreeChart(New);
        return EFI_OUT_OF_RESOURCES;
    }
    LoadHistory(gRpmVariableName, New, &New->Rpm);
    LoadHistory(gTemperatureVariableName, New, &New->Temperature);
    *Chart = New;
    return EFI_SUCCESS;
}

EFI_STATUS DestroyLineChart(LINE_CHART* Chart)
{
    if (Chart == nullptr) {
        return EFI_NOT_FOUND;
    }
    StoreHistory(gRpmVariableName, Chart, Chart->Rpm);
    StoreHistory(gTemperatureVariableName, Chart, Chart->Temperature);
    FreeChart(Chart);
    return EFI_SUCCESS;
}

EFI_STATUS PushLineChartSample(LINE_CHART* Chart, UINT64 Rpm, UINT64 Temperature)
{
    if (Chart == nullptr) {
        return EFI_NOT_FOUND;
    }
    Chart->Rpm.Samples[Chart->Rect.Width - 1] = StoredSample(Rpm);
    Chart->Temperature.Samples[Chart->Rect.Width - 1] = StoredSample(Temperature);
    return EFI_SUCCESS;
}

LINE_CHART_EXTENT PlotLineChartSeries(PIXEL* Layer, const PIXEL* Gradient, UINT32* Samples, UINT32 Width, UINT32 Height,
                                      INT32 Maximum, INT32 Minimum, UINT32 Color, LINE_CHART_EXTENT Known)
{
    const INT64 Span = static_cast<INT64>(Maximum) - Minimum;
    const FLOAT_WORD Range = gFloatMath->IntToFloat(Span < 0 ? -Span : Span);
    const FLOAT_WORD Scale = gFloatMath->IntToFloat(Height);
    const PIXEL Line = __builtin_bit_cast(PIXEL, Color);

    PLOT Plot;
    Plot.Count = 0;
    LINE_CHART_EXTENT Extent = {static_cast<INT32>(Height) + 1, 0};
    INT64 Previous = Height;
    for (UINT32 Column = 0; Column < Width; Column++) {
        // The height comes from the sample before any limit.
        const FLOAT_WORD Sample = gFloatMath->IntToFloat(Samples[Column]);
        const INT64 Point =
            gFloatMath->FloatToInt(gFloatMath->FloatMultiply(gFloatMath->FloatDivide(Sample, Range), Scale));
        Samples[Column] = LimitSample(Samples[Column], Minimum, Maximum);
        AddColumn(&Plot, Height, Point, Previous, Column == 0);
        if (Plot.Count == gPlotColumns || Column + 1 == Width) {
            WritePlot(Plot, Layer + Column + 1 - Plot.Count, Gradient, Width, Height, Line, Known);
            Extent.Lowest = Plot.Lowest < Extent.Lowest ? Plot.Lowest : Extent.Lowest;
            Extent.Highest = Plot.Highest > Extent.Highest ? Plot.Highest : Extent.Highest;
            Plot.Count = 0;
        }
        // The limited sample is what moves on, so that one above the scale fills its column for this one plot only.
        if (Column > 0) {
            Samples[Column - 1] = Samples[Column];
        }
        Previous = Point;
    }
    return Extent;
}

EFI_STATUS DrawLineChart(LINE_CHART* Chart)
{
    if (Chart == nullptr) {
        return EFI_NOT_FOUND;
    }
    DrawGrid(Chart);
    PlotSeries(Chart, &Chart->Rpm, gChartRpmColor);
    PlotSeries(Chart, &Chart->Temperature, gChartTemperatureColor);
    ComposeLayers(Chart);
    DrawMark(Chart);
    return EFI_SUCCESS;
}

EFI_STATUS ShowLineChart(LINE_CHART* Chart)
{
    if (Chart == nullptr) {
        return EFI_NOT_FOUND;
    }
    return RepaintBlt(Chart->Pixels, Chart->Rect);
}
