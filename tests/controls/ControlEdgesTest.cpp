// The edges of what the controls' headers promise that no board and no picture of ours leads to.
#include <algorithm>

#include "controls/DragDropFrame.h"
#include "controls/Grid.h"
#include "controls/Labels.h"
#include "controls/LineChart.h"
#include "shell/contract/Services.h"
#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"

namespace {

using CONTROL_EDGES = TOOLKIT;

constexpr UINT32 gNodePictures = 11;
constexpr UINT32 gColumns = 13;
constexpr UINT32 gNoCell = gColumns * 8;

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

TEST_F(CONTROL_EDGES, AMarkIsRefusedBeforeThePictureAndWithoutPixels)
{
    constexpr UINT32 Width = 6;
    constexpr UINT32 Height = 5;
    const struct {
        INT32 X, Y;
        UINT32 Width, Height;
    } Refused[] = {{-1, 0, 2, 2}, {0, -1, 2, 2}, {0, 0, 0, 2}, {0, 0, 2, 0}, {0, 0, 1025, 2}, {0, 0, 2, 769}};
    for (const auto& Mark : Refused) {
        PIXEL Canvas[Width * Height] = {};
        EXPECT_FALSE(MarkRectangle(Canvas, Width, Height, Mark.X, Mark.Y, Mark.Width, Mark.Height, gWhiteColor));
        for (const PIXEL& Pixel : Canvas) {
            ASSERT_EQ(ColorOf(Pixel), 0u) << Mark.X << " " << Mark.Y << " " << Mark.Width << " " << Mark.Height;
        }
    }
}

TEST_F(CONTROL_EDGES, SharedPicturesLieApartInOverlayAndInThePoolWhereThatIsFull)
{
    const UINTN Held = Boot->Pool.Count();
    const GUI_RECT Rect = PictureRect(gGridX, gGridY, 391, 241); // 376,924 bytes, of which 3 MB hold eight
    std::vector<PIXEL*> Pictures;
    for (UINT32 CellHeight = 2; CellHeight < 12; CellHeight++) {
        Pictures.push_back(TakeSharedPicture(SHARED_GRID, Rect, CellHeight));
    }
    EXPECT_EQ(Boot->Pool.Count(), Held + 2);
    ReleaseSharedPicture(Pictures[3]);
    Pictures[3] = TakeSharedPicture(SHARED_GRID, Rect, 40); // into the gap
    EXPECT_EQ(Boot->Pool.Count(), Held + 2);
    for (UINT8 Number = 0; Number < Pictures.size(); Number++) {
        SetMem(Pictures[Number], Rect.BufferSize, Number);
    }
    for (UINT8 Number = 0; Number < Pictures.size(); Number++) {
        const auto* Bytes = reinterpret_cast<const UINT8*>(Pictures[Number]);
        EXPECT_EQ(std::count(Bytes, Bytes + Rect.BufferSize, Number), static_cast<INT64>(Rect.BufferSize));
        ReleaseSharedPicture(Pictures[Number]);
    }
    EXPECT_EQ(Boot->Pool.Count(), Held);
}

constexpr EFI_GUID gHistory = {1, 2, 3, {4}};
constexpr const CHAR16* gHistories[] = {u"LineChartRPM", u"LineChartTempature"};

TEST_F(CONTROL_EDGES, AHistoryOfAnotherSizeIsNotFollowed)
{
    for (const UINTN Size : {UINTN{1}, UINTN{30 * 4 - 1}, UINTN{30 * 4 + 1}, UINTN{4000}}) {
        const std::vector<UINT8> Odd(Size, 0x11);
        for (const CHAR16* Name : gHistories) {
            (void)Boot->Variables.Set(Name, &gHistory, 2, 0, nullptr);
            ASSERT_EQ(Boot->Variables.Set(Name, &gHistory, 2, Size, Odd.data()), EFI_SUCCESS);
        }
        const GUI_RECT Rect = {0, 0, 30, 20, 30 * 20 * 4};
        LINE_CHART* Chart = nullptr;
        ASSERT_EQ(CreateLineChart(&Chart, &Rect, &gHistory, &gHistory), EFI_SUCCESS);
        if (Size > 30 * 4) {
            EXPECT_EQ(std::vector<UINT32>(Chart->Rpm.Samples, Chart->Rpm.Samples + 30), std::vector<UINT32>(30, 0));
        }
        (void)PushLineChartSample(Chart, 7000, 100);
        (void)DrawLineChart(Chart);
        EXPECT_EQ(DestroyLineChart(Chart), EFI_SUCCESS);
        EXPECT_EQ(Boot->Variables.Find(gHistories[0], gHistory)->Data.size(), 30u * 4);
    }
}

TEST_F(CONTROL_EDGES, AChartSmallerThanGridAndMarkIsDrawnAllTheSame)
{
    for (const auto& [Width, Height] :
         std::vector<std::pair<UINT32, UINT32>>{{1, 1}, {2, 9}, {9, 5}, {10, 6}, {30, 3}, {1, 241}, {391, 1}}) {
        const GUI_RECT Rect = {0, 0, Width, Height, UINT64{Width} * Height * 4};
        LINE_CHART* Chart = nullptr;
        for (const CHAR16* Name : gHistories) {
            (void)Boot->Variables.Set(Name, &gHistory, 2, 0, nullptr);
        }
        ASSERT_EQ(CreateLineChart(&Chart, &Rect, &gHistory, &gHistory), EFI_SUCCESS);
        for (const UINT64 Value : {UINT64{0}, UINT64{50}, ~UINT64{0}, UINT64{7000}}) {
            (void)PushLineChartSample(Chart, Value, Value);
            (void)DrawLineChart(Chart);
        }
        (void)DestroyLineChart(Chart);
    }
}

} // namespace
