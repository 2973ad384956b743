#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "bench/Work.h"
#include "controls/LineChart.h"
#include "support/Pool.h"

namespace {

constexpr INT32 gWidth = static_cast<INT32>(gFrameWidth);
constexpr INT32 gHeight = static_cast<INT32>(gFrameHeight);
constexpr UINTN gSmallCalls = 64;

// Small pictures land beside each other on the screen, as the letters of a page do.
INT32 SmallX(UINTN Call) { return static_cast<INT32>(100 + Call % 8 * 47); }
INT32 SmallY(UINTN Call) { return static_cast<INT32>(100 + Call / 8 * 41); }

void LayOnScreen(BENCH_PICTURES& Pictures, const PICTURE& Src, const PIXEL* Key, const PIXEL* Blend, UINT8 Percent)
{
    (void)OverlayBlt(Src.data(), gWidth, gHeight, Pictures.Screen.data(), gScreenWidth, gScreenHeight, gGridX, gGridY,
                     Key, Blend, Percent);
}

// One turn of a drag but for the display: grid, tint of the limits, four nodes, two guide lines, to the screen.
void PaintDrag(BENCH_PICTURES& Pictures, INT32 Left, INT32 Top, UINT32 Width, UINT32 Height)
{
    PIXEL* Canvas = Pictures.Canvas.data();
    CopyMem(Canvas, Pictures.Grid.data(), gFramePixels * sizeof(PIXEL));
    (void)MarkRectangle(Canvas, gFrameWidth, gFrameHeight, Left, Top, Width, Height, gBenchBlend);
    for (INT32 Node = 0; Node < 4; Node++) {
        (void)OverlayBlt(Pictures.Keyed[2].data(), 30, 30, Canvas, gFrameWidth, gFrameHeight, 30 + 90 * Node,
                         200 - 60 * Node, &gKeyColor, &gKeyColor, 1);
    }
    for (UINTN Row = 95; Row < gFrameHeight; Row++) {
        Canvas[Row * gFrameWidth + 225] = gBenchBlend;
    }
    FillPixels(Canvas + 95 * gFrameWidth + 1, 225, gBenchBlend);
    (void)PasteBlt(Canvas, gFrameWidth, gFrameHeight, gGridX, gGridY, Pictures.Screen.data());
}

EFI_STATUS NoVariable(const CHAR16*, const EFI_GUID*, UINT32*, UINTN*, VOID*) { return EFI_NOT_FOUND; }
EFI_STATUS KeepNothing(const CHAR16*, const EFI_GUID*, UINT32, UINTN, const VOID*) { return EFI_SUCCESS; }

// A chart whose history is two slow waves with the unrest that real readings have.
LINE_CHART* MakeChart()
{
    static EFI_RUNTIME_SERVICES RuntimeServices = {};
    RuntimeServices.GetVariable = NoVariable;
    RuntimeServices.SetVariable = KeepNothing;
    gRT = &RuntimeServices;
    const GUI_RECT Rect = {gGridX, gGridY, gFrameWidth, gFrameHeight, gFramePixels * sizeof(PIXEL)};
    const EFI_GUID Guid = {};
    LINE_CHART* Chart = nullptr;
    (void)CreateLineChart(&Chart, &Rect, &Guid, &Guid);
    std::mt19937 Generator{2};
    for (UINT32 Column = 0; Column < gFrameWidth; Column++) {
        Chart->Rpm.Samples[Column] =
            static_cast<UINT32>(3600 + 1500 * std::sin(Column / 60.0)) + static_cast<UINT32>(Generator() % 60);
        Chart->Temperature.Samples[Column] =
            static_cast<UINT32>(52 + 9 * std::sin(Column / 90.0 + 1)) + static_cast<UINT32>(Generator() % 2);
    }
    return Chart;
}

void RefillChart(LINE_CHART* Chart)
{
    (void)PushLineChartSample(Chart, Chart->Rpm.Samples[0], Chart->Temperature.Samples[0]);
    (void)DrawLineChart(Chart);
}

// What a row of a layer is if all of it is the same: a plot knows that when it has written it.
LINE_CHART_CLASS ClassOfRow(const PIXEL* Row)
{
    const UINT8 First = Row[0].Reserved;
    const bool Alike = std::all_of(Row, Row + gFrameWidth, [=](const PIXEL& Each) { return Each.Reserved == First; });
    return static_cast<LINE_CHART_CLASS>(Alike && First != LINE_CHART_LINE ? First : UINT8{LINE_CHART_MIXED});
}

using CHART_ROWS = std::vector<std::pair<CHART_LAYER_ROW, CHART_LAYER_ROW>>; // speed, temperature

CHART_ROWS RowsOf(const LINE_CHART* Chart)
{
    CHART_ROWS Rows;
    for (UINTN Row = 0; Row < gFrameHeight; Row++) {
        const UINTN Height = gFrameHeight - Row;
        const PIXEL* Rpm = Chart->Rpm.Layer + Row * gFrameWidth;
        const PIXEL* Temperature = Chart->Temperature.Layer + Row * gFrameWidth;
        Rows.push_back(
            {{Rpm, Chart->Rpm.BlendGradient[Height], gChartRpmColor, ClassOfRow(Rpm)},
             {Temperature, Chart->Temperature.BlendGradient[Height], gChartTemperatureColor, ClassOfRow(Temperature)}});
    }
    return Rows;
}

// The composition of a chart's two layers, as DrawLineChart does it, and the chart on its way to the screen.
void ComposeChart(BENCH_PICTURES& Pictures, LINE_CHART* Chart, const CHART_ROWS& Rows)
{
    PIXEL* Pixels = Chart->Pixels;
    for (const auto& [Rpm, Temperature] : Rows) {
        ComposeChartRow(Pixels, gFrameWidth, Rpm, Temperature);
        Pixels += gFrameWidth;
    }
    (void)PasteBlt(Chart->Pixels, gFrameWidth, gFrameHeight, gGridX, gGridY, Pictures.Screen.data());
}

void CopyRows(BENCH_PICTURES& Pictures, const PICTURE& Src)
{
    for (UINTN Row = 0; Row < gFrameHeight; Row++) {
        std::memcpy(static_cast<void*>(Pictures.ScreenAt(gGridX, gGridY + Row)), Src.data() + Row * gFrameWidth,
                    gFrameWidth * sizeof(PIXEL));
    }
}

} // namespace

void AddOwnWork(std::vector<BENCH_WORK>& Work, BENCH_PICTURES& Pictures)
{
    BENCH_PICTURES* P = &Pictures;
    const auto Add = [&](std::string Name, BENCH_UNIT Unit, double Goal, std::function<void()> Run) {
        Work.push_back({std::move(Name), Unit, Goal, 1, std::move(Run), {}});
    };
    Add("T", BENCH_UNIT_NONE, 0,
        [P] { std::memcpy(static_cast<void*>(P->Canvas.data()), P->Art.data(), gFramePixels * sizeof(PIXEL)); });
    Add("R", BENCH_UNIT_NONE, 0, [P] { CopyRows(*P, P->Art); });
    Add("F", BENCH_UNIT_NONE, 0, [P] {
        std::memcpy(static_cast<void*>(P->Canvas.data()), P->Grid.data(), gFramePixels * sizeof(PIXEL));
        CopyRows(*P, P->Canvas);
    });

    Add("paste", BENCH_UNIT_R, 1.10,
        [P] { (void)PasteBlt(P->Art.data(), gFrameWidth, gFrameHeight, gGridX, gGridY, P->Screen.data()); });
    Add("extract", BENCH_UNIT_R, 1.10, [P] {
        (void)ExtractBlt(P->Canvas.data(), gFrameWidth, gFrameHeight, P->Screen.data(), gScreenWidth, gScreenHeight,
                         gGridY, gGridX);
    });
    for (size_t I = 0; I < std::size(BENCH_PICTURES::KeyPercents); I++) {
        Add("keyed, " + std::to_string(BENCH_PICTURES::KeyPercents[I]) + "% key pixels", BENCH_UNIT_R, 1.8,
            [P, I] { LayOnScreen(*P, P->Keyed[I], &gKeyColor, nullptr, 0); });
    }
    Add("key and blend, thirds in stretches", BENCH_UNIT_R, 3.3,
        [P] { LayOnScreen(*P, P->Thirds, &gKeyColor, &gBenchBlend, 40); });
    Add("key and blend, thirds pixel by pixel", BENCH_UNIT_R, 3.3,
        [P] { LayOnScreen(*P, P->MixedThirds, &gKeyColor, &gBenchBlend, 40); });
    Add("key and blend, all blended", BENCH_UNIT_R, 4.3,
        [P] { LayOnScreen(*P, P->AllBlend, &gKeyColor, &gBenchBlend, 40); });
    Add("gray", BENCH_UNIT_R, 3.1,
        [P] { (void)GrayBlt(P->Gray.data(), gFrameWidth, gFrameHeight, P->Gray.data(), gFrameWidth, gFrameHeight); });
    Add("20% tint, by overlay", BENCH_UNIT_T, 2.8, [P] {
        (void)OverlayBlt(P->AllBlend.data(), gWidth, gHeight, P->Canvas.data(), gFrameWidth, gFrameHeight, 0, 0,
                         nullptr, &gBenchBlend, 20);
    });
    Add("20% tint, as a drag marks its limits", BENCH_UNIT_T, 2.8, [P] {
        (void)MarkRectangle(P->Canvas.data(), gFrameWidth, gFrameHeight, 0, 0, gFrameWidth, gFrameHeight, gBenchBlend);
    });

    const std::shared_ptr<LINE_CHART> Chart(MakeChart(), [](LINE_CHART* Made) { (void)DestroyLineChart(Made); });
    RefillChart(Chart.get());
    Add("chart composed and pasted", BENCH_UNIT_T, 7.5,
        [P, Chart, Rows = RowsOf(Chart.get())] { ComposeChart(*P, Chart.get(), Rows); });
    Add("chart drawn whole and pasted", BENCH_UNIT_T, 0, [P, Chart] {
        RefillChart(Chart.get());
        (void)PasteBlt(Chart->Pixels, gFrameWidth, gFrameHeight, gGridX, gGridY, P->Screen.data());
    });

    Add("drag frame, part tinted", BENCH_UNIT_F, 1.7, [P] { PaintDrag(*P, 120, 60, 150, 120); });
    Add("drag frame, all tinted", BENCH_UNIT_F, 2.3, [P] { PaintDrag(*P, 0, 0, gFrameWidth, gFrameHeight); });

    const auto AddSmall = [&](std::string Name, BENCH_UNIT Unit, double Goal, INT32 Width, INT32 Height) {
        const double Calls = gSmallCalls;
        Work.push_back({std::move(Name),
                        Unit,
                        Goal,
                        Unit == BENCH_UNIT_PIXEL ? Calls * Width * Height : Calls,
                        [P, Width, Height] {
                            for (UINTN Call = 0; Call < gSmallCalls; Call++) {
                                (void)OverlayBlt(P->Keyed[2].data(), Width, Height, P->Screen.data(), gScreenWidth,
                                                 gScreenHeight, SmallX(Call), SmallY(Call), &gKeyColor, nullptr, 0);
                            }
                        },
                        {}});
    };
    AddSmall("keyed, 30 x 30", BENCH_UNIT_PIXEL, 0.25, 30, 30);
    AddSmall("keyed, 40 x 19", BENCH_UNIT_PIXEL, 0.25, 40, 19);
    AddSmall("keyed, a letter of 8 x 19", BENCH_UNIT_CALL, 90, 8, 19);
}
