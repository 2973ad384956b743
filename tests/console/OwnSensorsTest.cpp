// The whole console on files of chips: what a person does reaches them, and nothing else does.
#include "platform/host/linux/LinuxBoard.h"
#include "tests/console/ConsoleBench.h"
#include "tests/host/HwmonTree.h"

namespace {

TEST(OwnSensors, OnlyADragWritesAndTheCancelButtonTakesItBackOnEveryPage)
{
    HWMON_TREE Tree;
    Tree.MakeDesktop();
    const HWMON_TREE::FILES Before = Tree.Bytes();
    LINUX_BOARD Board;
    std::string Error;
    ASSERT_TRUE(
        Board.Find({.Root = Tree.Root, .Temperatures = {}, .SetFans = true, .Keep = false, .Say = nullptr}, &Error));
    Board.Open();

    SCENE Look;
    Look.Options.Source = &Board;
    Look.Ticks(3).Screenshot("pages");
    for (const int Fan : {5, 6, 9, 4, 6}) {
        Look.Tab(Fan).Ticks(2);
    }
    (void)Look.Play();
    EXPECT_EQ(Tree.Bytes(), Before) << "looking at pages writes nothing";

    // The fourth node of a page of six levels, from 70 degrees and 90 % to 85 degrees and 100 %.
    SCENE Drag;
    Drag.Options.Source = &Board;
    Drag.Ticks(3).Tab(6).Ticks(2).Drag({577, 323}, {{600, 300}, {667, 283}}).Ticks(2);
    const RUN Run = Drag.Play();
    ASSERT_EQ(Run.Writes().size(), 2u) << "the tab's and the drag's";
    EXPECT_EQ(Tree.Text("hwmon10/pwm3_auto_point4_temp"), "85000");
    EXPECT_EQ(Tree.Text("hwmon10/pwm3_auto_point4_pwm"), "255");
    EXPECT_EQ(Tree.Text("hwmon10/pwm3_auto_point1_pwm"), "128");

    SCENE Cancel;
    Cancel.Options.Source = &Board;
    Cancel.Ticks(3).Tab(6).Ticks(2).Drag({667, 283}, {{690, 290}, {700, 283}}).Ticks(2);
    Cancel.Button(CANCEL).Ticks(2).Tab(4).Tab(6).Ticks(2);
    (void)Cancel.Play();
    EXPECT_EQ(Tree.Bytes(), Before);
    Board.Leave(false);
}

} // namespace
