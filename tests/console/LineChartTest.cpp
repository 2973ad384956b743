// The running chart of a fan: where each sample is drawn, in which colours, and how long the history lives.
#include <cstring>
#include <random>

#include "controls/LineChart.h"
#include "platform/board/FloatMath.h"
#include "shell/Board.h"
#include "tests/console/ConsoleBench.h"

namespace {

constexpr UINTN gChartX = 382;
constexpr UINTN gChartY = 262;
constexpr UINTN gChartWidth = 391;
constexpr UINTN gChartHeight = 241;

constexpr UINT32 gPanel = 0x242424;
constexpr UINT32 gGrid = 0x474747; // every 24th row
constexpr UINT32 gMark = 0xFFFF00;
constexpr UINT32 gRpm = 0x02FFFD;
constexpr UINT32 gTemperature = 0xF7B500;

UINT32 ChartPixel(const PICTURE& Picture, UINTN X, UINTN Y)
{
    return PixelAt(Picture, gChartX + X, gChartY + Y);
}

bool IsMark(UINTN X, UINTN Y)
{
    return (Y == 240 && X >= 346 && X <= 361) || (Y >= 235 && Y <= 239 && X <= 351 && X + Y >= 351 + 235);
}

UINT32 EmptyChart(UINTN X, UINTN Y)
{
    return IsMark(X, Y) ? gMark : Y % 24 == 0 ? gGrid : gPanel;
}

// A page whose chart lies on the plain panel, but for the thumb in its first column of cells.
SCENE OnPage(int Fan)
{
    SCENE Scene;
    Scene.Click(Fan == 9 ? 818 : 917, 150).Line("reading 0 0");
    return Scene;
}

void Sample(SCENE& Scene, int Fan, int Rpm)
{
    Scene.Line("reading " + std::to_string(Fan) + " " + std::to_string(Rpm)).Ticks();
}

// One run of rows of a column: 'A' above the curve, 'L' on it, 'F' under it.
struct RUN_OF_ROWS {
    UINTN First;
    UINTN Last;
    char Class;
};

// The lowest two rows belong to the temperature of 0 degrees, which is drawn as 1: its point is at height 2.
void ExpectColumn(const PICTURE& Picture, UINTN Column, const std::vector<RUN_OF_ROWS>& Runs)
{
    for (const RUN_OF_ROWS& Run : Runs) {
        for (UINTN Row = Run.First; Row <= Run.Last && Row < 239; Row++) {
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
    for (int Rpm : {0, 0, 1400, 1400, 3500, 3500, 1400, 0}) {
        Sample(Scene, 9, Rpm);
    }
    Sample(Scene, 9, 8000);
    Scene.Screenshot("above");
    Sample(Scene, 9, 7000);
    Scene.Screenshot("all").Turns();
    const RUN Run = Scene.Play();
    const PICTURE& All = Run.Picture("all");

    // A chart without history shows grid and mark alone; the thumb of the slider beneath ends at column 29.
    for (UINTN Row = 0; Row < gChartHeight; Row++) {
        for (UINTN Column = 30; Column < 381; Column++) {
            ASSERT_EQ(ChartPixel(All, Column, Row), EmptyChart(Column, Row)) << Column << ", " << Row;
        }
    }
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
    Scene.Line("reading 9 7000");
    for (int Degrees : {50, 50, 20, 20, 100, 100}) {
        Scene.Line("reading 0 " + std::to_string(Degrees)).Ticks();
    }
    Scene.Screenshot("chart").Turns();
    const RUN Run = Scene.Play();
    const PICTURE& Chart = Run.Picture("chart");
    // 50 degrees are height 120, row 121; 20 degrees height 48, row 193; 100 degrees row 0.
    const std::vector<std::pair<UINTN, UINTN>> Lines[] = {
        {{121, 121}}, {{121, 121}}, {{122, 193}}, {{193, 193}}, {{0, 192}}, {{0, 0}}};
    for (UINTN Index = 0; Index < 6; Index++) {
        for (UINTN Row = 0; Row < gChartHeight; Row++) {
            bool OnLine = false;
            for (const auto& [First, Last] : Lines[Index]) {
                OnLine = OnLine || (Row >= First && Row <= Last);
            }
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
    const auto Play = [](const std::string& Between) {
        SCENE Scene = OnPage(10);
        Scene.Line("reading 0 44");
        for (int Rpm : {700, 5600, 5600, 2100}) {
            Sample(Scene, 10, Rpm);
        }
        if (!Between.empty()) {
            Scene.Line("key esc").Line("turn").Line(Between);
            if (Between == "reset") {
                Scene.Line("start").Line("reading 0 44");
                Scene.Turns().Click(917, 150);
            }
        }
        Sample(Scene, 10, 4900);
        Scene.Screenshot("last").Turns();
        return Scene.Play();
    };
    const RUN Straight = Play("");
    const RUN Later = Play("start");
    const RUN Reset = Play("reset");
    EXPECT_TRUE(SameRectangle(Straight.Picture("last"), Later.Picture("last"), gChartX, gChartY, gChartWidth,
                              gChartHeight));
    const PICTURE& Fresh = Reset.Picture("last");
    for (UINTN Row = 0; Row < gChartHeight; Row++) {
        for (UINTN Column = 30; Column < 390; Column++) {
            ASSERT_EQ(ChartPixel(Fresh, Column, Row), EmptyChart(Column, Row)) << Column << ", " << Row;
        }
    }
    EXPECT_EQ(ChartPixel(Fresh, 390, 241 - 168), gRpm); // 4900 of 7000 is height 168

    // Seven charts, two variables each: looked for, made, and found at the first start; stored at its end.
    UINTN Stored = 0;
    for (const CALL_LINE& Call : Straight.Named("SetVariable")) {
        if (Call.Text("name").starts_with("LineChart")) {
            EXPECT_EQ(Call.Number("attributes"), 2u);
            EXPECT_EQ(Call.Number("size"), gChartWidth * 4);
            Stored++;
        }
    }
    EXPECT_EQ(Stored, 7u + 1 + 14); // the temperature's variable is one for all
}

// --- The plot itself ---

// Classes of a column from the top: 'A', 'L', 'F'; '?' for none of them or for a colour that isn't the class's.
std::vector<std::string> Plot(std::vector<UINT32>& Samples, UINT32 Height, INT32 Maximum, INT32 Minimum)
{
    gFloatMath = &gBoardFloatMath;
    const UINT32 Width = static_cast<UINT32>(Samples.size());
    constexpr UINT32 Color = 0x00112233;
    std::vector<PIXEL> Layer(Width * Height, PIXEL{9, 9, 9, 9});
    std::vector<PIXEL> Gradient;
    for (UINT32 I = 0; I <= Height; I++) {
        Gradient.push_back({static_cast<UINT8>(I), 7, static_cast<UINT8>(I / 256), 0});
    }
    PlotLineChartSeries(Layer.data(), Gradient.data(), Samples.data(), Width, Height, Maximum, Minimum, Color,
                        {1, static_cast<INT32>(Height)});
    std::vector<std::string> Columns(Width);
    for (UINT32 Row = 0; Row < Height; Row++) {
        for (UINT32 Column = 0; Column < Width; Column++) {
            const PIXEL& Pixel = Layer[Row * Width + Column];
            char Class = '?';
            if (Pixel.Reserved == 0xFE) {
                Class = 'A';
            } else if (Pixel.Reserved == 1 && Pixel.Blue == 0x33 && Pixel.Green == 0x22 && Pixel.Red == 0x11) {
                Class = 'L';
            } else if (Pixel.Reserved == 0x80 && Pixel.Blue == static_cast<UINT8>(Height - Row) && Pixel.Green == 7) {
                Class = 'F';
            }
            Columns[Column] += Class;
        }
    }
    return Columns;
}

TEST(LineChartPlot, SaysOfEachPixelWhetherItIsAboveOnOrUnderTheCurve)
{
    std::vector<UINT32> Samples = {0, 55, 55, 95, 25, 100};
    EXPECT_EQ(Plot(Samples, 10, 100, 0), (std::vector<std::string>{
                                             "AAAAAAAAAA",
                                             "AAAAALFFFF",
                                             "AAAAALFFFF",
                                             "ALLLLFFFFF",
                                             "AALLLLLLLF",
                                             "LLLLLLLLFF",
                                         }));
    EXPECT_EQ(Samples, (std::vector<UINT32>{55, 55, 95, 25, 100, 100}));
}

TEST(LineChartPlot, TakesTheHeightBeforeTheLimitAndMovesTheLimitedSampleOn)
{
    std::vector<UINT32> Samples = {150, 5, 250, 45};
    // Only Minimum's part in the range and in the limit counts: a height is measured from 0. 5 of a range of 80 is
    // height 0, 45 is 5.
    EXPECT_EQ(Plot(Samples, 10, 100, 20), (std::vector<std::string>{"FFFFFFFFFF", "LLLLLLLLLL", "FFFFFFFFFF",
                                                                    "LLLLLLFFFF"}));
    EXPECT_EQ(Samples, (std::vector<UINT32>{20, 100, 45, 45}));
}

TEST(LineChartPlot, StandsAnySampleSizeAndRange)
{
    std::vector<UINT32> One = {0xFFFFFFFF};
    EXPECT_EQ(Plot(One, 1, 7000, 0), std::vector<std::string>{"F"});
    EXPECT_EQ(One, std::vector<UINT32>{7000});
    for (const INT32 Maximum : {0, 1, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        for (const INT32 Minimum : {0, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
            std::vector<UINT32> Samples = {0, 1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0};
            for (const std::string& Column : Plot(Samples, 241, Maximum, Minimum)) {
                EXPECT_EQ(Column.find('?'), std::string::npos) << Maximum << ", " << Minimum;
            }
        }
    }
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
