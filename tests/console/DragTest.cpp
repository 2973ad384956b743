// Dragging a node of a curve: how far it goes, where it falls, what it shows meanwhile and what reaches the service.
#include "tests/console/ConsoleBench.h"

namespace {

// The curve that the board "full" holds for fan 4 stands on (0, 6), (3, 4), (6, 2) and (9, 0) of a grid of 13 by 8 cells.
constexpr int gCenterX[4] = {397, 487, 577, 667};
constexpr int gCenterY[4] = {457, 397, 337, 277};
const std::string gUnmovedFan4 = Record("01 0a 07 04 01 02 04 06 08 00 01");

constexpr UINTN gFrameX = 382;
constexpr UINTN gFrameY = 262;
constexpr UINTN gFrameWidth = 391;
constexpr UINTN gFrameHeight = 241;

UINT32 FramePixel(const PICTURE& Picture, UINTN X, UINTN Y)
{
    return PixelAt(Picture, gFrameX + X, gFrameY + Y);
}

// Turn in which the node or thumb of the SCENE::Drag just written was let go.
UINT64 DropTurn(const SCENE& Scene)
{
    return Scene.TurnsSoFar - 2;
}

TEST(Drag, ANodeStopsAtItsNeighboursCellsAndAtTheFrame)
{
    // Node 0 may stand in columns 0 to 2 and rows 4 to 7, node 1 in 1 to 5 and 2 to 6, node 2 in 4 to 8 and 0 to 4,
    // node 3 in 7 to 12 and 0 to 2.
    struct {
        int Node;
        int ToX;
        int ToY;
        const char* Written;
    } const Cases[] = {
        {0, 100, 457, "01 0a 07 04 01 02 04 06 08 00 01"},  {0, 1000, 457, "01 0a 07 04 03 02 04 06 08 00 01"},
        {0, 397, 300, "01 0a 07 04 01 04 04 06 08 00 01"},  {0, 397, 760, "01 0a 07 04 01 01 04 06 08 00 01"},
        {1, 100, 397, "01 0a 07 02 01 02 04 06 08 00 01"},  {1, 1000, 397, "01 0a 07 06 01 02 04 06 08 00 01"},
        {1, 487, 100, "01 0a 07 04 01 02 06 06 08 00 01"},  {1, 487, 760, "01 0a 07 04 01 02 02 06 08 00 01"},
        {2, 100, 337, "01 0a 05 04 01 02 04 06 08 00 01"},  {2, 1000, 337, "01 0a 09 04 01 02 04 06 08 00 01"},
        {2, 577, 100, "01 0a 07 04 01 02 04 08 08 00 01"},  {2, 577, 760, "01 0a 07 04 01 02 04 04 08 00 01"},
        {3, 100, 277, "01 08 07 04 01 02 04 06 08 00 01"},  {3, 1000, 277, "01 0d 07 04 01 02 04 06 08 00 01"},
        {3, 667, 100, "01 0a 07 04 01 02 04 06 08 00 01"},  {3, 667, 760, "01 0a 07 04 01 02 04 06 06 00 01"},
    };
    SCENE Scene;
    std::vector<std::string> Expected;
    for (const auto& Case : Cases) {
        Scene.Drag(gCenterX[Case.Node], gCenterY[Case.Node], {{Case.ToX, Case.ToY}});
        Scene.Key("c"); // puts the nodes back
        Expected.push_back("4:" + Record(Case.Written));
    }
    EXPECT_EQ(Scene.Play().AllSettings(), Expected);
}

TEST(Drag, ANodeOfSixRowsKeepsToItsNeighboursToo)
{
    // Fan 7 stands on (0, 5), (2, 4), (4, 2), (6, 0) of 13 by 6 cells; its node 1 may rise to the row of node 2 and sink
    // to that of node 0. The selection of the tab writes once; fixed level 3. Cancel leaves the nodes of such a fan.
    SCENE Scene;
    Scene.Click(600, 150);
    Scene.Drag(457, 442, {{457, 100}}).Key("c");
    Scene.Drag(457, 362, {{457, 760}}).Key("c");
    Scene.Drag(577, 282, {{1000, 282}});
    EXPECT_EQ(Scene.Play().AllSettings(),
              (std::vector<std::string>{"7:" + Record("01 07 05 03 01 01 02 04 06 00 03"),
                                        "7:" + Record("01 07 05 03 01 01 04 04 06 00 03"),
                                        "7:" + Record("01 07 05 03 01 01 01 04 06 00 03"),
                                        "7:" + Record("01 0d 05 03 01 01 01 04 06 00 03")}));
}

TEST(Drag, ANodeFallsIntoTheCellUnderItsPicturesCentre)
{
    // The press is off the node's centre in the first two drags: the grab point doesn't matter. Node 1's centre starts at
    // frame (105, 135); columns change at 60, rows at 120.
    SCENE Scene;
    Scene.Drag(475, 385, {{475 - 46, 385}}).Key("c"); // centre at x 59
    Scene.Drag(475, 385, {{475 - 45, 385}}).Key("c"); // centre at x 60
    Scene.Drag(487, 397, {{487, 397 - 16}}).Key("c"); // centre at y 119
    Scene.Drag(487, 397, {{487, 397 - 15}});          // centre at y 120
    EXPECT_EQ(Scene.Play().Settings(4), (std::vector<std::string>{Record("01 0a 07 02 01 02 04 06 08 00 01"),
                                                                  Record("01 0a 07 03 01 02 04 06 08 00 01"),
                                                                  Record("01 0a 07 04 01 02 05 06 08 00 01"),
                                                                  gUnmovedFan4}));
}

TEST(Drag, BeyondACornerOrOnALineOfItsLimitsANodeStaysWhereItWasLastDrawn)
{
    // Node 1's limits run from (412, 322) to (562, 472). At (520, 430) it is in column 4, row 5.
    const std::string AtLastPlace = Record("01 0a 07 05 01 02 03 06 08 00 01");
    SCENE Scene;
    std::vector<std::string> Expected;
    for (const auto& [X, Y] : std::vector<std::pair<int, int>>{
             {300, 100}, {1000, 100}, {300, 760}, {1000, 760}, {412, 397}, {562, 397}, {487, 322}, {487, 472}}) {
        Scene.Drag(487, 397, {{520, 430}, {X, Y}}).Key("c");
        Expected.push_back(AtLastPlace);
    }
    EXPECT_EQ(Scene.Play().Settings(4), Expected);
}

TEST(Drag, AShortPressMovesNothingAndStillWrites)
{
    SCENE Scene;
    // However far the pointer went, 184999 microseconds are a click; 185000 are a drag.
    Scene.Move(487, 397).Press().Turns(2).Move(520, 430).Turns().Release(184999).Turns(2);
    Scene.Move(487, 397).Press().Turns(2).Move(520, 430).Turns().Release(185000).Turns(2);
    EXPECT_EQ(Scene.Play().AllSettings(),
              (std::vector<std::string>{"4:" + gUnmovedFan4, "4:" + Record("01 0a 07 05 01 02 03 06 08 00 01")}));
}

TEST(Drag, ADropOnAnotherNodesCellMovesNothingAndStillWrites)
{
    // A long press that ends before the first step of its drag falls where the drag before left its picture: on node 1.
    SCENE Scene;
    Scene.Drag(487, 397, {{517, 427}}); // node 1 to column 4, row 5
    Scene.Screenshot("before");
    Scene.Move(gCenterX[2], gCenterY[2]).Press().Turns().Release(300000).Turns(2);
    Scene.Move(900, 700).Turns(2).Screenshot("after").Turns();
    const RUN Run = Scene.Play();
    const std::string Moved = Record("01 0a 07 05 01 02 03 06 08 00 01");
    EXPECT_EQ(Run.Settings(4), (std::vector<std::string>{Moved, Moved}));
    // The cell of node 2 and the whole row of node 1, but for the pointer's old place.
    EXPECT_TRUE(SameRectangle(Run.Picture("before"), Run.Picture("after"), 562, 322, 30, 30));
    EXPECT_TRUE(SameRectangle(Run.Picture("before"), Run.Picture("after"), 382, 412, 135, 15));
}

TEST(Drag, AFrameWhoseBoxIsOffIsNotLive)
{
    SCENE Scene;
    Scene.Click(296, 242); // unchecked
    Scene.Ticks().Screenshot("off").Turns();
    Scene.Drag(487, 397, {{520, 430}});
    Scene.Click(296, 242); // checked again
    Scene.Drag(487, 397, {{520, 430}});
    const RUN Run = Scene.Play();
    EXPECT_EQ(Run.AllSettings(), (std::vector<std::string>{
                                     "4:" + Record("00 0a 07 04 01 02 04 06 08"),
                                     "4:" + Record("01 0a 07 04 01 02 04 06 08"),
                                     "4:" + Record("01 0a 07 05 01 02 03 06 08 00 01"),
                                 }));
    // No node is left on the chart: where node 1's rim stood, right of its digit, there is the panel.
    EXPECT_EQ(PixelAt(Run.Picture("off"), 497, 390), 0x242424u);
}

TEST(Drag, ThePictureShowsGridLimitsAndGuideLinesInTheNodesColour)
{
    SCENE Scene;
    Scene.Move(900, 700).Turns(2).Screenshot("rest");
    Scene.Move(487, 397).Press().Turns(2);
    Scene.Move(499, 409).Turns().Screenshot("drag"); // the picture at frame (102, 132)
    const UINT64 SecondStep = Scene.TurnsSoFar;
    Scene.Turns().Move(577, 337).Turns(2).Screenshot("over node 2");
    Scene.Move(499, 409).Turns(2).Release(190000).Turns().Move(900, 700).Turns(2).Screenshot("dropped").Turns();
    const RUN Run = Scene.Play();
    const PICTURE& Drag = Run.Picture("drag");

    constexpr UINT32 Blue = 0x006DF7;      // of node 1
    constexpr UINT32 Line = 0x242424;      // grid lines, two pixels at each cell's top and left
    constexpr UINT32 Cell = 0x2C2C2C;
    constexpr UINT32 TintedCell = 0x233954; // 80% of 44, 44, 44 and 20% of 0, 109, 247
    constexpr UINT32 TintedLine = 0x1C324E; // 80% of 36, 36, 36 and the same
    constexpr UINT32 Border = 0x006CF5;     // 1% of either and 99% of 0, 109, 247
    struct {
        UINTN X;
        UINTN Y;
        UINT32 Color;
    } const Pixels[] = {
        {200, 100, Cell}, {210, 100, Line}, {211, 100, Line}, {212, 100, Cell}, {200, 240, Line}, {390, 100, Line},
        // Limits from (30, 60) to (179, 209).
        {45, 75, TintedCell}, {60, 75, TintedLine}, {61, 75, TintedLine}, {62, 75, TintedCell},
        {45, 90, TintedLine}, {45, 91, TintedLine}, {45, 92, TintedCell},
        {30, 60, Border}, {179, 60, Border}, {30, 209, Border}, {179, 209, Border},
        {45, 60, Border}, {45, 61, TintedLine}, {45, 59, Cell},
        {179, 75, Border}, {178, 75, TintedCell}, {180, 95, Line},
        {30, 75, Border}, {31, 75, TintedLine}, {29, 75, Cell},
        {45, 209, Border}, {45, 208, TintedCell}, {45, 210, Line},
        // Guide lines from the picture's centre (117, 147) down to the lowest row and left to column 1.
        {117, 200, Blue}, {117, 230, Blue}, {117, 240, Blue}, {118, 200, TintedCell}, {116, 100, TintedCell},
        {1, 147, Blue}, {15, 147, Blue}, {60, 147, Blue}, {100, 147, Blue}, {0, 147, Line}, {155, 147, TintedCell},
        {60, 146, TintedLine}, {60, 148, TintedLine},
    };
    for (const auto& Pixel : Pixels) {
        EXPECT_EQ(FramePixel(Drag, Pixel.X, Pixel.Y), Pixel.Color) << Pixel.X << ", " << Pixel.Y;
    }

    // The nodes in their pictures: the one in hand moved by (12, 12), the others at rest. The pictures' middles are
    // opaque; (7, 7) inside a picture lies on its disc.
    const PICTURE& Rest = Run.Picture("rest");
    for (UINTN Row = 7; Row < 14; Row++) {
        for (UINTN Column = 7; Column < 14; Column++) {
            EXPECT_EQ(FramePixel(Drag, 102 + Column, 132 + Row), FramePixel(Rest, 90 + Column, 120 + Row));
            EXPECT_EQ(FramePixel(Drag, 180 + Column, 60 + Row), FramePixel(Rest, 180 + Column, 60 + Row));
            EXPECT_EQ(FramePixel(Drag, 270 + Column, Row), FramePixel(Rest, 270 + Column, Row));
        }
    }
    // A node under the pointer isn't drawn: its place shows the grid.
    EXPECT_EQ(FramePixel(Run.Picture("over node 2"), 188, 68), Cell);

    // One turn of a drag sends the frame once, and the pointer with it.
    UINTN FrameBlts = 0;
    UINTN PointerBlts = 0;
    for (const CALL_LINE& Blt : Run.NamedInTurn("Blt", SecondStep)) {
        FrameBlts += Blt.Number("x") == gFrameX && Blt.Number("y") == gFrameY && Blt.Number("width") == gFrameWidth &&
                     Blt.Number("height") == gFrameHeight;
        PointerBlts += Blt.Number("x") == 499 && Blt.Number("y") == 409;
    }
    EXPECT_EQ(FrameBlts, 1u);
    EXPECT_GE(PointerBlts, 1u);

    // Dropped into its own cell, the frame shows what it showed at rest (no tick has brought the chart yet): neither grid
    // nor lines are left.
    EXPECT_TRUE(SameRectangle(Rest, Run.Picture("dropped"), gFrameX, gFrameY, gFrameWidth, gFrameHeight));
    EXPECT_EQ(Run.Settings(4), std::vector<std::string>{gUnmovedFan4});
}

TEST(Drag, TellsTheServiceOnlyAtTheDropAndTheLegendAfterIt)
{
    SCENE Scene;
    Scene.Drag(487, 397, {{520, 430}});
    const UINT64 Drop = DropTurn(Scene);
    const RUN Run = Scene.Play();
    ASSERT_EQ(Run.Named("SetFan4Setting").size(), 1u);
    EXPECT_EQ(Run.Named("SetFan4Setting")[0].Turn, Drop);
    // The legend's texts follow the write: node 1 now says 37.5% and 60 degrees.
    std::vector<std::string> AfterTheWrite;
    bool Written = false;
    for (const CALL_LINE& Call : Run.InTurn(Drop)) {
        Written = Written || Call.Call == "SetFan4Setting";
        if (Call.Call == "StringToImage" && Written) {
            AfterTheWrite.push_back(Call.Text("text"));
        }
    }
    // Each text is drawn twice: straight to the display, and into the stored screen.
    std::vector<std::string> Expected;
    for (const char* Text : {"25%", "/", "40\u00F8C", "37.5%", "/", "60\u00F8C", "75%", "/", "70\u00F8C", "100%", "/",
                             "85\u00F8C"}) {
        Expected.insert(Expected.end(), 2, Text);
    }
    ASSERT_GE(AfterTheWrite.size(), Expected.size());
    AfterTheWrite.resize(Expected.size()); // a gauge may follow on the tick
    EXPECT_EQ(AfterTheWrite, Expected);
}

} // namespace
