// The running chart of a fan: where each sample is drawn, in which colours, and how long the history lives.
#include <cstring>
#include <random>

#include "controls/LineChart.h"
#include "platform/board/FloatMath.h"
#include "shell/contract/Board.h"
#include "tests/console/ConsoleBench.h"

namespace {

constexpr UINT32 gGrid = 0x474747; // every 24th row
constexpr UINT32 gMark = 0xFFFF00;
constexpr UINT32 gRpm = 0x02FFFD;
constexpr UINT32 gTemperature = 0xF7B500;

UINT32 ChartPixel(const PICTURE& Picture, int X, int Y) { return PixelAt(Picture, {gFrame.X + X, gFrame.Y + Y}); }

UINT32 EmptyChart(int X, int Y)
{
    const bool IsMark = (Y == 240 && X >= 346 && X <= 361) || (Y >= 235 && Y <= 239 && X <= 351 && X + Y >= 351 + 235);
    return IsMark ? gMark : Y % 24 == 0 ? gGrid : gPanelGray;
}

// Grid and mark alone, from behind the thumb of the slider beneath to a column.
void ExpectEmpty(const PICTURE& Picture, int End)
{
    for (int Row = 0; Row < gFrame.Height; Row++) {
        for (int Column = 30; Column < End; Column++) {
            ASSERT_EQ(ChartPixel(Picture, Column, Row), EmptyChart(Column, Row)) << Column << ", " << Row;
        }
    }
}

// A page whose chart lies on the plain panel, but for the thumb in its first column of cells.
SCENE OnPage(int Fan) { return SCENE().Tab(Fan).Reading(0, 0); }

// One run of rows of a column: 'A' above the curve, 'L' on it, 'F' under it.
struct RUN_OF_ROWS {
    int First;
    int Last;
    char Class;
};

// The lowest two rows belong to the temperature of 0 degrees, which is drawn as 1: its point is at height 2.
void ExpectColumn(const PICTURE& Picture, int Column, const std::vector<RUN_OF_ROWS>& Runs)
{
    for (const RUN_OF_ROWS& Run : Runs) {
        for (int Row = Run.First; Row <= Run.Last; Row++) {
            const UINT32 Color = ChartPixel(Picture, Column, Row);
            const char Class = Color == gRpm ? 'L' : Color == EmptyChart(Column, Row) ? 'A' : 'F';
            ASSERT_EQ(Class, Run.Class) << "column " << Column << ", row " << Row << ", color " << std::hex << Color;
        }
    }
    EXPECT_EQ(ChartPixel(Picture, Column, 239), gTemperature);
}

TEST(LineChart, DrawsEachSampleInItsColumnAndJoinsItToTheOneBefore)
{
    SCENE Scene = OnPage(9);
    for (const UINT64 Rpm : {0, 0, 1400, 1400, 3500, 3500, 1400, 0, 8000}) {
        Scene.Reading(9, Rpm).Ticks();
    }
    const RUN Run = Scene.Screenshot("above").Reading(9, 7000).Ticks().Screenshot("all").Play();
    const PICTURE& All = Run.Picture("all");

    ExpectEmpty(All, 381);
    // 1400 of 7000 is height 48 of 241, row 193; 3500 is height 120, row 121; 7000 is row 0.
    ExpectColumn(All, 381, {{0, 238, 'A'}});
    ExpectColumn(All, 382, {{0, 238, 'A'}});
    ExpectColumn(All, 383, {{0, 192, 'A'}, {193, 193, 'L'}, {194, 238, 'F'}}); // no run rises out of nothing
    ExpectColumn(All, 384, {{0, 192, 'A'}, {193, 193, 'L'}, {194, 238, 'F'}});
    ExpectColumn(All, 385, {{0, 120, 'A'}, {121, 192, 'L'}, {193, 238, 'F'}});
    ExpectColumn(All, 386, {{0, 120, 'A'}, {121, 121, 'L'}, {122, 238, 'F'}});
    ExpectColumn(All, 387, {{0, 121, 'A'}, {122, 193, 'L'}, {194, 238, 'F'}});
    ExpectColumn(All, 388, {{0, 193, 'A'}, {194, 238, 'L'}}); // falls to nothing
    ExpectColumn(All, 389, {{0, 0, 'L'}, {1, 238, 'F'}});     // the sample above the scale, now on its top
    ExpectColumn(All, 390, {{0, 0, 'L'}, {1, 238, 'F'}});
    ExpectColumn(Run.Picture("above"), 390, {{0, 238, 'F'}}); // it filled its column for one plot

    // Fill is the colour's share at its height, halved, over half of what was there: at height 24 (row 217) 25/242 of
    // (2, 255, 253); 36 / 2 = 18 of the panel, 71 / 2 = 35 of the grid.
    EXPECT_EQ(ChartPixel(All, 384, 217), 0x121F1Fu);
    EXPECT_EQ(ChartPixel(All, 384, 216), 0x233030u);
    EXPECT_EQ(ChartPixel(All, 386, 141), 0x124746u);
    EXPECT_EQ(ChartPixel(All, 390, 1), 0x12908Fu);
}

TEST(LineChart, LaysTheTemperatureOverTheSpeed)
{
    SCENE Scene = OnPage(9);
    Scene.Reading(9, 7000);
    for (const UINT64 Degrees : {50, 50, 20, 20, 100, 100}) {
        Scene.Reading(0, Degrees).Ticks();
    }
    const RUN Run = Scene.Screenshot("chart").Play();
    const PICTURE& Chart = Run.Picture("chart");
    // 50 degrees are height 120, row 121; 20 degrees height 48, row 193; 100 degrees row 0.
    const std::pair<int, int> Lines[] = {{121, 121}, {121, 121}, {122, 193}, {193, 193}, {0, 192}, {0, 0}};
    for (int Index = 0; Index < 6; Index++) {
        for (int Row = 0; Row < gFrame.Height; Row++) {
            const bool OnLine = Row >= Lines[Index].first && Row <= Lines[Index].second;
            ASSERT_EQ(ChartPixel(Chart, 385 + Index, Row) == gTemperature, OnLine) << Index << ", " << Row;
        }
    }
    EXPECT_EQ(ChartPixel(Chart, 388, 0), gRpm);
    // Both fills at height 24: 25/242 of (247, 181, 0), halved, over half of the speed's fill of (18, 31, 31).
    EXPECT_EQ(ChartPixel(Chart, 388, 217), 0x15180Fu);
    // Above the temperature the speed's fill stays: height 100.
    EXPECT_EQ(ChartPixel(Chart, 388, 141), 0x124746u);
}

TEST(LineChart, GoesOnAfterALaterStartAndStartsOverAfterAReset)
{
    // Fan 10's chart is the last to be stored, so its page finds both of its series again.
    SCENE Before = OnPage(10);
    Before.Reading(0, 44);
    for (const UINT64 Rpm : {700, 5600, 5600, 2100}) {
        Before.Reading(10, Rpm).Ticks();
    }
    SCENE Later = Before;
    SCENE Reset = Before;
    Reset.Reset().Reading(0, 44).Turns().Tab(10);
    std::vector<RUN> Runs;
    for (SCENE* Scene : {&Before, &Later.Restart(), &Reset}) {
        Runs.push_back(Scene->Reading(10, 4900).Ticks().Screenshot("last").Play());
    }
    ExpectSamePicture(Runs[0].Picture("last"), Runs[1].Picture("last"), gFrame);
    ExpectEmpty(Runs[2].Picture("last"), 390);
    EXPECT_EQ(ChartPixel(Runs[2].Picture("last"), 390, 241 - 168), gRpm); // 4900 of 7000 is height 168

    // Seven charts, two variables each: looked for, made, and found at the first start; stored at its end.
    UINTN Stored = 0;
    for (const CALL_LINE& Call : Runs[0].Named("SetVariable")) {
        if (Call.Text("name").starts_with("LineChart")) {
            EXPECT_EQ(Call.Number("attributes"), 2u);
            EXPECT_EQ(Call.Number("size"), 391u * 4);
            Stored++;
        }
    }
    EXPECT_EQ(Stored, 7u + 1 + 14); // the temperature's variable is one for all
}

// Two fans' charts take turns with one layer, as pages do, and what is known of it spares them most of the writing.
TEST(LineChartPlot, WritesEachPixelThatIsNotWhatItWasWhoeverPlottedLast)
{
    gFloatMath = &gBoardFloatMath;
    constexpr UINT32 Width = 300;
    constexpr UINT32 Height = 60;
    std::vector<PIXEL> Gradient(Height + 1);
    for (UINT32 I = 0; I <= Height; I++) {
        Gradient[I].Blue = static_cast<UINT8>(I);
    }
    std::mt19937 Generator{7};
    std::vector<UINT32> Fans[2] = {std::vector<UINT32>(Width), std::vector<UINT32>(Width)};
    std::vector<PIXEL> Shared(Width * Height, PIXEL{1, 2, 3, 4});
    LINE_CHART_EXTENT Known = {1, Height};
    UINT32 Level = 50;
    for (int Step = 0; Step < 2000; Step++) {
        std::vector<UINT32>& Samples = Fans[Generator() % 8 == 0];
        Level = Generator() % 50 == 0 ? static_cast<UINT32>(Generator() % 130) : Level; // some above the scale
        Samples.back() = Level + static_cast<UINT32>(Generator() % 3);
        std::vector<UINT32> Copy = Samples;
        std::vector<PIXEL> Fresh(Width * Height);
        const LINE_CHART_EXTENT Told =
            PlotLineChartSeries(Fresh.data(), Gradient.data(), Copy.data(), Width, Height, 100, 0, 5, {1, Height});
        Known = PlotLineChartSeries(Shared.data(), Gradient.data(), Samples.data(), Width, Height, 100, 0, 5, Known);
        ASSERT_EQ(std::memcmp(Shared.data(), Fresh.data(), Fresh.size() * sizeof(PIXEL)), 0) << "step " << Step;
        ASSERT_EQ(Samples, Copy);
        for (UINT32 I = 0; I < Width * Height; I++) {
            const INT32 At = static_cast<INT32>(Height - I / Width);
            ASSERT_TRUE(At <= Told.Highest || Fresh[I].Reserved == LINE_CHART_ABOVE) << "step " << Step;
            ASSERT_TRUE(At >= Told.Lowest || Fresh[I].Reserved == LINE_CHART_FILL) << "step " << Step;
        }
    }
}

} // namespace
