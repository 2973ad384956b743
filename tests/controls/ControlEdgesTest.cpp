// The edges of what the controls' headers promise: a control that isn't there, no pool, no place, a second joining.
#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/DragDropFrame.h"
#include "controls/GridImage.h"
#include "controls/Labels.h"
#include "controls/LineChart.h"
#include "controls/Slider.h"
#include "controls/VoltageGauge.h"
#include "gui/PageBar.h"
#include "shell/Services.h"
#include "support/Library.h"
#include "tests/gui/ToolkitBench.h"

namespace {

using CONTROL_EDGES = TOOLKIT;

constexpr UINT32 gNodePictures = 11;
constexpr UINT32 gColumns = 13;
constexpr UINT32 gNoCell = gColumns * 8;

TEST_F(CONTROL_EDGES, AControlThatIsntThereTakesEveryCallAsItsHeaderSays)
{
    constexpr UINT32 Cells[gNodeCount] = {};
    const struct {
        const char* Call;
        EFI_STATUS Given;
        EFI_STATUS Promised;
    } Calls[] = {
        {"CreateDragDropFrame", CreateDragDropFrame(nullptr, gDutyLabels8, &gArtworkFileGuid, gNodePictures, Cells),
         EFI_SUCCESS},
        {"DestroyDragDropFrame", DestroyDragDropFrame(nullptr), EFI_SUCCESS},
        {"CreateSlider", CreateSlider(nullptr, &gArtworkFileGuid, 0), EFI_SUCCESS},
        {"DestroySlider", DestroySlider(nullptr), EFI_SUCCESS},
        {"DestroyLineChart", DestroyLineChart(nullptr), EFI_NOT_FOUND},
        {"PushLineChartSample", PushLineChartSample(nullptr, 1, 1), EFI_NOT_FOUND},
        {"DrawLineChart", DrawLineChart(nullptr), EFI_NOT_FOUND},
        {"ShowLineChart", ShowLineChart(nullptr), EFI_NOT_FOUND},
        {"SetButtonCallback", SetButtonCallback(nullptr, nullptr, 0), EFI_INVALID_PARAMETER},
        {"AddButtonListener", AddButtonListener(nullptr, 0, nullptr), EFI_OUT_OF_RESOURCES},
        {"DestroyCheckBox", DestroyCheckBox(nullptr), EFI_NOT_FOUND},
        {"AddCheckBoxLink", AddCheckBoxLink(nullptr, nullptr, nullptr, 0, nullptr, 0), EFI_LOAD_ERROR},
        {"DestroyVoltageGauge", DestroyVoltageGauge(nullptr), EFI_NOT_FOUND},
        {"SetVoltageGaugeValue", SetVoltageGaugeValue(nullptr, 1000), EFI_NOT_FOUND},
        {"DrawVoltageGauge", DrawVoltageGauge(nullptr, 1, 1), EFI_SUCCESS},
        {"AddPageBarButton", AddPageBarButton(nullptr, nullptr, nullptr), EFI_LOAD_ERROR},
        {"AddPageBarCheckBox", AddPageBarCheckBox(nullptr, nullptr, nullptr), EFI_LOAD_ERROR},
        {"AddPageBarTarget", AddPageBarTarget(nullptr, nullptr, nullptr, 1, nullptr, 0), EFI_NO_RESPONSE},
        {"DestroyPageBar", DestroyPageBar(nullptr), EFI_SUCCESS},
    };
    for (const auto& Call : Calls) {
        EXPECT_EQ(Call.Given, Call.Promised) << Call.Call;
    }
    PaintButton(0, nullptr);
    DestroyButton(nullptr);
    DrawCheckBox(0, nullptr);
    EXPECT_TRUE(Blts().empty());
}

TEST_F(CONTROL_EDGES, ANodeWhoseIndexIsNoCellStandsUpAndRightOfTheOneBefore)
{
    const struct {
        UINT32 Cells[gNodeCount];
        std::pair<UINT32, UINT32> Places[gNodeCount]; // column and row, from the top left
    } Cases[] = {
        {{gNoCell, gNoCell, gNoCell, gNoCell}, {{0, 7}, {1, 6}, {2, 5}, {3, 4}}},
        {{5 * gColumns + 10, gNoCell, gNoCell, gNoCell}, {{10, 5}, {11, 4}, {12, 3}, {12, 2}}},
        {{12, gNoCell, gNoCell, gNoCell}, {{12, 0}, {12, 0}, {12, 0}, {12, 0}}},
    };
    for (const auto& Case : Cases) {
        DRAGDROP_COMPONENT Frame;
        ASSERT_EQ(CreateDragDropFrame(&Frame, gDutyLabels8, &gArtworkFileGuid, gNodePictures, Case.Cells), EFI_SUCCESS);
        for (UINT32 Node = 0; Node < gNodeCount; Node++) {
            EXPECT_EQ(std::make_pair(Frame.Nodes[Node].Column, Frame.Nodes[Node].Row), Case.Places[Node]) << Node;
        }
        (void)DestroyDragDropFrame(&Frame);
    }
    constexpr const CHAR16* Empty[] = {nullptr};
    DRAGDROP_COMPONENT Frame;
    EXPECT_EQ(CreateDragDropFrame(&Frame, Empty, &gArtworkFileGuid, gNodePictures, Cases[0].Cells),
              EFI_INVALID_PARAMETER);
}

TEST_F(CONTROL_EDGES, WithoutPoolForAPictureAFrameAndASliderHaveNoComponentAndNoEffect)
{
    constexpr UINT32 Cells[gNodeCount] = {91, 79, 67, 55};
    constexpr UINT8 Places[] = {4, 3, 2, 1, 1, 2, 3, 4};
    gGuiCore->MouseState = L_HOLD;
    UINTN FramesRefused = 0;
    UINTN SlidersRefused = 0;
    for (UINT64 Nth = 1; Nth <= 20; Nth++) {
        const UINT32 Before = gGuiCore->Components->Count;
        DRAGDROP_COMPONENT Frame;
        Boot->Pool.BeginStart(1);
        Boot->Pool.FailOnly = Nth;
        if (CreateDragDropFrame(&Frame, gDutyLabels8, &gArtworkFileGuid, gNodePictures, Cells) == EFI_BUFFER_TOO_SMALL) {
            FramesRefused++;
            EXPECT_EQ(gGuiCore->Components->Count, Before);
            EXPECT_EQ(SetDragDropNodes(&Frame, Places), EFI_NOT_FOUND);
            RepaintDragDropFrame(&Frame);
            gGuiCore->Target = &Frame;
            gGuiCore->TargetKind = _DRAGDROP_COMPONENT;
            (void)DragDropFrameDispatch();
        }
        (void)DestroyDragDropFrame(&Frame);
    }
    for (UINT64 Nth = 1; Nth <= 20; Nth++) {
        const UINT32 Before = gGuiCore->Components->Count;
        SLIDER_COMPONENT Slider;
        Boot->Pool.BeginStart(1);
        Boot->Pool.FailOnly = Nth;
        if (CreateSlider(&Slider, &gArtworkFileGuid, 2) == EFI_BUFFER_TOO_SMALL) {
            SlidersRefused++;
            EXPECT_EQ(gGuiCore->Components->Count, Before);
            EXPECT_EQ(SetSliderLevel(&Slider, 5), EFI_NOT_FOUND);
            EXPECT_EQ(Slider.Level, 4) << "it is changed all the same";
            (void)RefreshSlider(&Slider);
            gGuiCore->Target = &Slider;
            gGuiCore->TargetKind = _SLIDER_COMPONENT;
            (void)SliderStep();
            (void)SliderStep();
        }
        (void)DestroySlider(&Slider);
    }
    EXPECT_EQ(FramesRefused, 4u);  // the cells and three pictures
    EXPECT_EQ(SlidersRefused, 3u); // three pictures
    EXPECT_TRUE(Blts().empty());
    EXPECT_TRUE(std::all_of(gGuiCore->Screen, gGuiCore->Screen + gScreenWidth * gScreenHeight,
                            [](PIXEL Pixel) { return ColorOf(Pixel) == ColorOf(gScreenFill); }));
    ClearTarget();
}

TEST_F(CONTROL_EDGES, AGridAndAChartLieOnTheScreenOrAreRefused)
{
    // All grids begin at (382, 262) of 1024 by 768.
    EXPECT_TRUE(GridFitsScreen(642, 506));
    EXPECT_FALSE(GridFitsScreen(643, 506));
    EXPECT_FALSE(GridFitsScreen(642, 507));
    EXPECT_FALSE(GridFitsScreen(0, 1));
    EXPECT_FALSE(GridFitsScreen(1, 0));

    constexpr EFI_GUID History = {1, 2, 3, {4}};
    const auto IsMade = [&](UINT32 X, UINT32 Y, UINT32 Width, UINT32 Height) {
        const GUI_RECT Rect = {X, Y, Width, Height, static_cast<UINT64>(Width) * Height * sizeof(PIXEL)};
        LINE_CHART Stale;
        LINE_CHART* Chart = &Stale;
        const EFI_STATUS Status = CreateLineChart(&Chart, &Rect, &History, &History);
        EXPECT_EQ(EfiError(Status), Chart == nullptr);
        (void)DestroyLineChart(Chart);
        return !EfiError(Status);
    };
    EXPECT_TRUE(IsMade(1014, 758, 10, 10));
    EXPECT_FALSE(IsMade(1015, 758, 10, 10));
    EXPECT_FALSE(IsMade(1014, 759, 10, 10));
    EXPECT_FALSE(IsMade(0, 0, 0, 10));
    EXPECT_FALSE(IsMade(0, 0, 10, 0));
    EXPECT_FALSE(IsMade(0, 0, 1025, 10));
    EXPECT_FALSE(IsMade(0, 0, 10, 769));
}

TEST_F(CONTROL_EDGES, AMarkIsCutAtThePictureAndLeftOutWithoutPixels)
{
    constexpr UINT32 Width = 6;
    constexpr UINT32 Height = 5;
    const auto Marked = [&](INT32 X, INT32 Y, UINT32 MarkWidth, UINT32 MarkHeight, bool* Done) {
        PIXEL Canvas[Width * Height] = {};
        *Done = MarkRectangle(Canvas, Width, Height, X, Y, MarkWidth, MarkHeight, gWhiteColor);
        std::string Picture; // '.' as it was, 't' tinted, '#' framed
        for (UINT32 At = 0; At < Width * Height; At++) {
            Picture += Canvas[At].Red == 0 ? '.' : Canvas[At].Red < 128 ? 't' : '#';
            Picture += At % Width == Width - 1 ? "/" : "";
        }
        return Picture;
    };
    bool Done;
    EXPECT_EQ(Marked(1, 1, 4, 3, &Done), "....../.####./.#tt#./.####./....../");
    EXPECT_TRUE(Done);
    EXPECT_EQ(Marked(3, 2, 40, 30, &Done), "....../....../...###/...#tt/...#tt/") << "no line where it is cut";
    EXPECT_TRUE(Done);
    for (const std::pair<INT32, INT32>& Beyond : {std::pair(6, 0), std::pair(0, 5)}) {
        EXPECT_EQ(Marked(Beyond.first, Beyond.second, 2, 2, &Done).find_first_of("t#"), std::string::npos);
        EXPECT_TRUE(Done);
    }
    struct {
        INT32 X, Y;
        UINT32 Width, Height;
    } const Refused[] = {{-1, 0, 2, 2}, {0, -1, 2, 2}, {0, 0, 0, 2}, {0, 0, 2, 0}, {0, 0, 1025, 2}, {0, 0, 2, 769}};
    for (const auto& Mark : Refused) {
        EXPECT_EQ(Marked(Mark.X, Mark.Y, Mark.Width, Mark.Height, &Done).find_first_of("t#"), std::string::npos);
        EXPECT_FALSE(Done) << Mark.X << " " << Mark.Y << " " << Mark.Width << " " << Mark.Height;
    }
}

std::string gSelected; // which select function ran

EFI_STATUS SelectFirst(EFI_EVENT, VOID*)
{
    gSelected += "first ";
    return EFI_SUCCESS;
}

EFI_STATUS SelectSecond(EFI_EVENT, VOID*)
{
    gSelected += "second ";
    return EFI_SUCCESS;
}

TEST_F(CONTROL_EDGES, AMemberThatJoinsAgainGetsANewSelectEventAndNothingElse)
{
    CHECK_BOX_COMPONENT* Box = nullptr;
    PAGE_BAR* Bar = nullptr;
    ASSERT_EQ(CreateCheckBox(&Box, nullptr, 286, 232, 19, &gArtworkFileGuid, CHECK_BOX_BMP, 0, 0), EFI_SUCCESS);
    ASSERT_EQ(CreatePageBar(&Bar), EFI_SUCCESS);
    ASSERT_EQ(AddPageBarCheckBox(Bar, Box, SelectFirst), EFI_SUCCESS);
    (void)AddPageBarCheckBox(Bar, Box, SelectSecond);
    EXPECT_EQ(Bar->Entries->Count, 1);
    PAGE_BAR_ENTRY* Entry = nullptr;
    ASSERT_EQ(FindPageBarEntry(Bar->Entries, 0, &Entry), EFI_SUCCESS);
    gSelected.clear();
    SignalIfAny(Entry->SelectEvent);
    EXPECT_EQ(gSelected, "second ");

    CHECK_BOX_COMPONENT Stranger = {};
    Stranger.Id = 60000;
    EXPECT_EQ(AddPageBarCheckBox(Bar, &Stranger, nullptr), EFI_LOAD_ERROR) << "it has no component";
    (void)DestroyPageBar(Bar);
    (void)DestroyCheckBox(Box);
}

TEST_F(CONTROL_EDGES, AGaugeIsMadeOnceInItsPlace)
{
    VOLTAGE_GAUGE* Gauge = nullptr;
    ASSERT_EQ(CreateVoltageGauge(&Gauge, u"+12V", 100), EFI_SUCCESS);
    VOLTAGE_GAUGE* const First = Gauge;
    EXPECT_EQ(CreateVoltageGauge(&Gauge, u"+5V", 200), EFI_UNSUPPORTED);
    EXPECT_EQ(Gauge, First);
    (void)DestroyVoltageGauge(Gauge);
}

TEST(Library, GuidsAreTheSameOnlyInEveryByte)
{
    const EFI_GUID Guid = {0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};
    EXPECT_TRUE(SameGuid(Guid, Guid));
    for (UINTN At = 0; At < sizeof(EFI_GUID); At++) {
        EFI_GUID Other = Guid;
        reinterpret_cast<UINT8*>(&Other)[At] ^= 0x40;
        EXPECT_FALSE(SameGuid(Guid, Other)) << At;
    }
}

TEST(Library, BytesAreMovedWholeWhereTheRangesOverlap)
{
    const auto Moved = [](UINTN From, UINTN To, UINTN Length) {
        std::string Text = "abcdefgh";
        MoveBytes(Text.data() + To, Text.data() + From, Length);
        return Text;
    };
    EXPECT_EQ(Moved(2, 0, 5), "cdefgfgh");
    EXPECT_EQ(Moved(0, 2, 5), "ababcdeh");
    EXPECT_EQ(Moved(3, 3, 5), "abcdefgh");
    EXPECT_EQ(Moved(0, 4, 0), "abcdefgh");
}

} // namespace
