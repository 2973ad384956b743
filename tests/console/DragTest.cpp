// Dragging a node of a curve: how far it goes, where it falls, what it shows meanwhile and what reaches the service.
#include "tests/console/ConsoleBench.h"

namespace {

// Node 1 of fan 4, at its place at rest.
constexpr PLACE gNode1 = NodePlace(EIGHT_ROWS, 1);

// A fan without a thumb is written with level 1 from a drag.
WRITE DroppedFan4(int Node, CELL By) { return SettingOf(4).Node(Node, By).Level(1); }

TEST(Drag, ANodeStopsAtItsNeighboursCellsAndAtTheFrame)
{
    // Node 0 may stand in columns 0 to 2 and rows 4 to 7, node 1 in 1 to 5 and 2 to 6, node 2 in 4 to 8 and 0 to 4,
    // node 3 in 7 to 12 and 0 to 2.
    struct {
        int Node;
        CELL Most[4]; // to the left, to the right, up, down
    } const Cases[] = {{0, {{0, 0}, {2, 0}, {0, -2}, {0, 1}}},
                       {1, {{-2, 0}, {2, 0}, {0, -2}, {0, 2}}},
                       {2, {{-2, 0}, {2, 0}, {0, -2}, {0, 2}}},
                       {3, {{-2, 0}, {3, 0}, {0, 0}, {0, 2}}}};
    SCENE Scene;
    WRITES Expected;
    for (const auto& Case : Cases) {
        const PLACE From = NodePlace(EIGHT_ROWS, Case.Node);
        const PLACE Far[] = {{100, From.Y}, {1000, From.Y}, {From.X, 100}, {From.X, 760}};
        for (int Way = 0; Way < 4; Way++) {
            Scene.Drag(From, {Far[Way]}).Key("c"); // Cancel puts the nodes back
            Expected.push_back(DroppedFan4(Case.Node, Case.Most[Way]));
        }
    }
    EXPECT_EQ(Scene.Play().Writes(), Expected);
}

TEST(Drag, ANodeOfSixRowsKeepsToItsNeighboursToo)
{
    // Fan 7's node 1 may rise to the row of node 2 and sink to that of node 0. Cancel leaves the nodes of such a fan.
    SCENE Scene;
    const PLACE Node1 = NodePlace(SIX_ROWS, 1);
    Scene.Tab(7).Drag(Node1, {{Node1.X, 100}}).Key("c").Drag(Node1.By(0, -80), {{Node1.X, 760}}).Key("c");
    Scene.Drag(NodePlace(SIX_ROWS, 3), {{1000, 282}});
    EXPECT_EQ(Scene.Play().Writes(),
              (WRITES{SettingOf(7), // the selection of the tab
                      SettingOf(7).Node(1, {0, -2}), SettingOf(7).Node(1, {0, 1}),
                      SettingOf(7).Node(1, {0, 1}).Node(3, {6, 0})}));
}

TEST(Drag, APressCarriedStraightOverSomethingToClickStaysADrag)
{
    // The pointer is there in the very turn in which the drag begins, and the thing follows it from there.
    const auto Carry = [](SCENE& Scene, PLACE From, PLACE Over, CELL By) {
        Scene.Move(From).Press().Move(Over).Move(Over.By(30 * By.Column, 40 * By.Row)).Turns();
        return Scene.Release(400000).Turns(2).Play().Writes();
    };
    for (const PLACE Over : {Button(FULL_SPEED).Center(), Source(1).Center()}) {
        SCENE Node;
        EXPECT_EQ(Carry(Node, gNode1, Over, {1, 0}), (WRITES{DroppedFan4(1, {1, 0})}));
    }
    SCENE Thumb;
    EXPECT_EQ(Carry(Thumb.Tab(9), ThumbPlace(3), Source(1).Center(), {0, -1}), (WRITES{SettingOf(9).Level(4)}));
}

TEST(Drag, ANodeFallsIntoTheCellUnderItsPicturesCentre)
{
    // The press is off the node's centre in the first two drags: the grab point doesn't matter. Node 1's centre starts at
    // frame (105, 135); columns change at 60, rows at 120.
    SCENE Scene;
    const PLACE Beside = gNode1.By(-12, -12);
    Scene.Drag(Beside, {Beside.By(-46, 0)}).Key("c"); // centre at x 59
    Scene.Drag(Beside, {Beside.By(-45, 0)}).Key("c"); // centre at x 60
    Scene.Drag(gNode1, {gNode1.By(0, -16)}).Key("c"); // centre at y 119
    Scene.Drag(gNode1, {gNode1.By(0, -15)});          // centre at y 120
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{DroppedFan4(1, {-2, 0}), DroppedFan4(1, {-1, 0}), DroppedFan4(1, {0, -1}),
                                             DroppedFan4(1, {0, 0})}));
}

TEST(Drag, BeyondACornerOrOnALineOfItsLimitsANodeStaysWhereItWasLastDrawn)
{
    // Node 1's limits run from (412, 322) to (562, 472). At (520, 430) it is in column 4, row 5.
    SCENE Scene;
    WRITES Expected;
    for (const PLACE Beyond : std::vector<PLACE>{
             {300, 100}, {1000, 100}, {300, 760}, {1000, 760}, {412, 397}, {562, 397}, {487, 322}, {487, 472}}) {
        Scene.Drag(gNode1, {{520, 430}, Beyond}).Key("c");
        Expected.push_back(DroppedFan4(1, {1, 1}));
    }
    EXPECT_EQ(Scene.Play().Writes(), Expected);
}

TEST(Drag, AShortPressMovesNothingAndStillWrites)
{
    // However far the pointer went, 184999 microseconds are a click; 185000 are a drag.
    SCENE Scene;
    Scene.Move(gNode1).Press().Turns(2).Hover({520, 430}).Release(184999).Turns(2);
    Scene.Move(gNode1).Press().Turns(2).Hover({520, 430}).Release(185000).Turns(2);
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{DroppedFan4(1, {0, 0}), DroppedFan4(1, {1, 1})}));
}

TEST(Drag, ADropOnAnotherNodesCellMovesNothingAndStillWrites)
{
    // A long press that ends before the first step of its drag falls where the drag before left its picture: on node 1.
    SCENE Scene;
    Scene.Node(1, {1, 1}).Screenshot("before");
    Scene.Move(NodePlace(EIGHT_ROWS, 2)).Press().Turns().Release(300000).Turns(2).Away().Screenshot("after");
    const RUN Run = Scene.Play();
    EXPECT_EQ(Run.Writes(), (WRITES{DroppedFan4(1, {1, 1}), DroppedFan4(1, {1, 1})}));
    // The cell of node 2 and the upper half of node 1's row up to it, but for the pointer's old place.
    Run.ExpectSame("before", "after", CellArea(EIGHT_ROWS, {6, 2}));
    Run.ExpectSame("before", "after", gFrame.Part(0, 150, 135, 15));
}

TEST(Drag, AFrameWhoseBoxIsOffIsNotLive)
{
    SCENE Scene;
    Scene.Box().Ticks().Screenshot("off").Node(1, {1, 1}).Box().Node(1, {1, 1});
    const RUN Run = Scene.Play();
    EXPECT_EQ(Run.Writes(), (WRITES{SettingOf(4).Off(), SettingOf(4), DroppedFan4(1, {1, 1})}));
    // No node is left on the chart: where node 1's rim stood, right of its digit, there is the panel.
    EXPECT_EQ(PixelAt(Run.Picture("off"), gNode1.By(10, -7)), gPanelGray);
}

TEST(Drag, LeavesNoGridAndNoLinesBehindAndHidesANodeUnderTheOneInHand)
{
    SCENE Scene;
    Scene.Away().Screenshot("rest").Move(gNode1).Press().Turns(2).Hover(NodePlace(EIGHT_ROWS, 2)).Turns();
    Scene.Screenshot("over node 2").Hover(gNode1.By(12, 12)).Release(190000).Away().Screenshot("dropped");
    const RUN Run = Scene.Play();
    // No tick has brought the chart yet.
    Run.ExpectSame("rest", "dropped", gFrame);
    EXPECT_EQ(Run.Writes(), WRITES{DroppedFan4(1, {0, 0})});
    EXPECT_EQ(PixelAt(Run.Picture("over node 2"), CellArea(EIGHT_ROWS, {6, 2}).Part(8, 8, 1, 1).Center()), 0x2C2C2Cu);
}

TEST(Drag, TellsTheServiceOnlyAtTheDropAndTheLegendAfterIt)
{
    SCENE Scene;
    const TURN Drop = Scene.Node(1, {1, 1}).Mark();
    const RUN Run = Scene.Play();
    EXPECT_EQ(Run.Writes().size(), 1u);
    EXPECT_EQ(Run.WritesInTurn(Drop), WRITES{DroppedFan4(1, {1, 1})});
    // The legend's texts follow the write: node 1 now says 37.5% and 60 degrees.
    std::vector<CALL_LINE> Calls = Run.InTurn(Drop);
    const auto IsWrite = [](const CALL_LINE& Call) { return Call.Call == "SetFan4Setting"; };
    Calls.erase(Calls.begin(), std::find_if(Calls.begin(), Calls.end(), IsWrite));
    const std::vector<CALL_LINE> Texts = CallsNamed(Calls, "StringToImage");
    const char* const Expected[] = {"25%", "/", "40\u00F8C", "37.5%", "/", "60\u00F8C",
                                    "75%", "/", "70\u00F8C", "100%",  "/", "85\u00F8C"};
    ASSERT_GE(Texts.size(), 2 * std::size(Expected)); // a gauge may follow on the tick
    for (UINTN Index = 0; Index < 2 * std::size(Expected); Index++) {
        EXPECT_EQ(Texts[Index].Text("text"),
                  Expected[Index / 2]); // straight to the display, and into the stored screen
    }
}

} // namespace
