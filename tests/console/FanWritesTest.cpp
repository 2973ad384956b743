// What a fan's service is told, and when: every occasion on which a page writes, every one on which it doesn't, and what
// becomes of settings that no service should hold.
#include "tests/console/ConsoleBench.h"

namespace {

constexpr int gTabCenter[] = {323, 422, 521, 620, 720, 818, 917}; // of fans 4 to 10
constexpr int gTabY = 150;
constexpr int gBoxX = 296;
constexpr int gBoxY = 242;

void SelectTab(SCENE& Scene, int Fan)
{
    Scene.Click(gTabCenter[Fan - 4], gTabY);
}

std::string Setting(int Fan, const std::string& Bytes)
{
    std::string Hex = Record(Bytes);
    return "setting " + std::to_string(Fan) + " " + Hex;
}

using WRITES = std::vector<std::string>;

std::string Write(int Fan, const std::string& Bytes)
{
    return std::to_string(Fan) + ":" + Record(Bytes);
}

TEST(FanWrites, TheBoxOfAPageWithoutALevelWritesItsNodes)
{
    SCENE Scene;
    Scene.Click(gBoxX, gBoxY).Click(gBoxX, gBoxY);
    EXPECT_EQ(Scene.Play().AllSettings(), (WRITES{Write(4, "00 0a 07 04 01 02 04 06 08"),
                                                  Write(4, "01 0a 07 04 01 02 04 06 08")}));
}

TEST(FanWrites, TheBoxEndsAtItsRightAndBottomEdge)
{
    // The box is 20 by 20 at (286, 232). Each hit flips it.
    SCENE Scene;
    for (const auto& [X, Y] : std::vector<std::pair<int, int>>{
             {286, 232}, {305, 251}, {306, 242}, {296, 252}, {285, 242}, {296, 231}}) {
        Scene.Click(X, Y);
    }
    EXPECT_EQ(Scene.Play().AllSettings(), (WRITES{Write(4, "00 0a 07 04 01 02 04 06 08"),
                                                  Write(4, "01 0a 07 04 01 02 04 06 08")}));
}

TEST(FanWrites, ASecondFanOfSixRowsWritesItsLevelToo)
{
    // On the board kind0 fan 5 has nodes on (0, 5), (2, 4), (4, 2), (6, 0) and level 3 counted from 1.
    SCENE Scene("kind0");
    SelectTab(Scene, 5);
    Scene.Click(gBoxX, gBoxY).Click(gBoxX, gBoxY).Drag(457, 442, {{487, 442}});
    EXPECT_EQ(Scene.Play().AllSettings(), (WRITES{
                                              Write(5, "01 07 05 03 01 01 02 04 06 00 03"), // the tab
                                              Write(5, "00 07 05 03 01 01 02 04 06 00 03"),
                                              Write(5, "01 07 05 03 01 01 02 04 06 00 03"),
                                              Write(5, "01 07 05 04 01 01 02 04 06 00 03"), // node 1 dropped
                                          }));
}

TEST(FanWrites, ASelectionOfATabWritesOncePerClickOnAPageWithALevelAndACurve)
{
    // Fan 4 and 5 have no level, 9 and 10 no curve: their tabs write nothing. Fan 8 comes up with its curve off. A click
    // on the tab already selected runs its page's functions again.
    SCENE Scene;
    WRITES Expected;
    const std::string Curve6 = "07 05 03 01 01 02 04 06 00 03";
    for (int Fan : {5, 6, 6, 7, 7, 8, 8, 9, 9, 10, 4, 4, 8}) {
        SelectTab(Scene, Fan);
        if (Fan >= 6 && Fan <= 8) {
            Expected.push_back(Write(Fan, (Fan == 8 ? "00 " : "01 ") + Curve6));
        }
    }
    EXPECT_EQ(Scene.Play().AllSettings(), Expected);
}

TEST(FanWrites, AStartWritesOnlyTheSettingOfAPageOnTopThatHasALevelAndACurve)
{
    for (const auto& [Fan, Writes] :
         std::map<int, WRITES>{{5, {}}, {8, {Write(8, "00 07 05 03 01 01 02 04 06 00 03")}}, {10, {}}}) {
        SCOPED_TRACE(Fan);
        SCENE Scene;
        Scene.Turns();
        SelectTab(Scene, Fan);
        Scene.Restart().Turns(2);
        const RUN Run = Scene.Play();
        WRITES InSecondStart;
        for (const CALL_LINE& Call : Run.Calls) {
            if (Call.Start == 2 && Call.Call.starts_with("SetFan")) {
                InSecondStart.push_back(Call.Call.substr(6, Call.Call.size() - 13) + ":" + Call.Text("record"));
            }
        }
        EXPECT_EQ(InSecondStart, Writes);
    }
}

TEST(FanWrites, NothingElseWrites)
{
    // Readings, ticks, tabs of fans without a level and a curve, radios, the empty panel, presses that end elsewhere, the
    // letters, and leaving.
    SCENE Scene;
    Scene.Ticks(20);
    SelectTab(Scene, 5);
    Scene.Click(80, 345).Click(80, 310).Click(600, 540).Click(420, 290);
    Scene.Move(gBoxX, gBoxY).Press().Turns().Move(600, 540).Release(50000).Turns(2); // began on the box, ended beside
    Scene.Move(gBoxX, gBoxY).Press().Turns().Release(300000).Turns(2);               // too long for a click
    Scene.Key("f").Key("d").Key("c").Key("F").Key("D").Key("C").Key("x");
    SelectTab(Scene, 9);
    SelectTab(Scene, 10);
    Scene.Ticks(2);
    EXPECT_EQ(Scene.Play().AllSettings(), WRITES{});
}

TEST(FanWrites, ADropWritesOnlyTheFanOfThePageOnTop)
{
    // Frames of 4, 5, 6, 7 and sliders of 7 to 10 are all on the lists of a drop; each time one page answers.
    SCENE Scene;
    Scene.Drag(487, 397, {{517, 397}});
    SelectTab(Scene, 5);
    Scene.Drag(487, 397, {{517, 397}});
    SelectTab(Scene, 10);
    Scene.Drag(397, 322, {{397, 362}});
    SelectTab(Scene, 8);
    Scene.Drag(397, 402, {{397, 362}});
    EXPECT_EQ(Scene.Play().AllSettings(), (WRITES{
                                              Write(4, "01 0a 07 05 01 02 04 06 08 00 01"),
                                              Write(5, "01 0a 07 05 01 02 04 06 08 00 01"),
                                              Write(10, "00 00 00 00 00 00 00 00 00 00 04"),
                                              Write(8, "00 07 05 03 01 01 02 04 06 00 03"), // the tab
                                              Write(8, "00 07 05 03 01 01 02 04 06 00 04"),
                                          }));
}

TEST(FanWrites, AServiceOutOfResourcesGivesTheDefaultCurve)
{
    // The first read of each page builds its nodes. On either grid the default curve is one cell up and right from node
    // to node. What the failing read says for the level or the box is another read.
    SCENE Scene;
    Scene.Line("fail GetFan4Setting OUT_OF_RESOURCES").Line("fail GetFan6Setting OUT_OF_RESOURCES");
    Scene.Line(Setting(6, "01 07 05 03 01 01 02 04 06 00 01"));
    Scene.Click(gBoxX, gBoxY);
    SelectTab(Scene, 6);
    EXPECT_EQ(Scene.Play().AllSettings(), (WRITES{Write(4, "00 04 03 02 01 01 02 03 04"),
                                                  Write(6, "01 04 03 02 01 01 02 03 04 00 01")}));
}

TEST(FanWrites, ASettingReadBackIsTakenAsItStands)
{
    // Any CurveEnabled but 0 counts as checked; what is written back is 1. A level of 6 is the top row.
    SCENE Scene;
    Scene.Line(Setting(7, "80 0d 0c 0b 0a 01 01 06 06 00 06"));
    SelectTab(Scene, 7);
    EXPECT_EQ(Scene.Play().AllSettings(), WRITES{Write(7, "01 0d 0c 0b 0a 01 01 06 06 00 06")});
}

TEST(FanWrites, AStoredLevelAboveTheRowsComesUpAtTheBottom)
{
    SCENE Scene;
    Scene.Line(Setting(9, "00 00 00 00 00 00 00 00 00 00 07"));
    Scene.Line(Setting(7, "01 07 05 03 01 01 02 04 06 00 00 01")); // 256
    SelectTab(Scene, 9);
    Scene.Move(397, 482).Press().Turns(3).Release(300000).Turns(2); // the thumb stands on the lowest row
    SelectTab(Scene, 7);
    EXPECT_EQ(Scene.Play().AllSettings(), (WRITES{Write(9, "00 00 00 00 00 00 00 00 00 00 01"),
                                                  Write(7, "01 07 05 03 01 01 02 04 06 00 01")}));
}

TEST(FanWrites, SettingsAgainstTheContractLeaveTheConsoleWholeAndTheNextWriteLegal)
{
    // The bench fails when a service gets a record that no fan should get; here every page writes once after having read
    // one, and again after Default and Cancel have brought it back.
    const std::string Bad[] = {
        "01 01 02 03 04 04 03 02 01 00 09",    // columns and levels that fall, a level of 9
        "ff ff ff ff ff ff ff ff ff ff ff ff", // everything too far
        "00 05 05 05 00 00 01 02 09 00 00",    // nodes on one column, levels and fixed level of 0
    };
    for (const std::string& Bytes : Bad) {
        SCOPED_TRACE(Bytes);
        SCENE Scene("kind0");
        for (int Fan = 4; Fan <= 10; Fan++) {
            Scene.Line(Setting(Fan, Bytes));
            Scene.Line("default " + std::to_string(Fan) + " " + Record(Bytes));
        }
        Scene.Click(gBoxX, gBoxY).Key("d").Click(gBoxX, gBoxY).Key("c").Click(gBoxX, gBoxY);
        for (int Fan = 5; Fan <= 10; Fan++) {
            SelectTab(Scene, Fan);
            Scene.Ticks().Click(gBoxX, gBoxY).Key("d").Click(gBoxX, gBoxY).Key("c");
            Scene.Drag(397, 482, {{397, 362}}).Drag(397, 282, {{397, 362}});
        }
        const RUN Run = Scene.Play();
        EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
        EXPECT_GE(Run.AllSettings().size(), 15u);
    }
}

TEST(FanWrites, ServicesThatFailToReadOrWriteAreNotAskedAgain)
{
    SCENE Scene;
    for (int Fan = 4; Fan <= 10; Fan++) {
        Scene.Line("fail GetFan" + std::to_string(Fan) + "Setting DEVICE_ERROR 100");
        Scene.Line("fail SetFan" + std::to_string(Fan) + "Setting DEVICE_ERROR 100");
    }
    Scene.Drag(397, 487, {{427, 427}});
    Scene.Click(gBoxX, gBoxY).Click(gBoxX, gBoxY);
    for (int Fan = 5; Fan <= 10; Fan++) {
        SelectTab(Scene, Fan);
        Scene.Ticks();
    }
    Scene.Key("d").Key("c").Key("f");
    const RUN Run = Scene.Play();
    EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
    // Two clicks on fan 4's box; the tabs of 6, 7 and 8 once each.
    EXPECT_GE(Run.Settings(4).size(), 2u);
    for (int Fan : {6, 7, 8}) {
        EXPECT_EQ(Run.Settings(Fan).size(), 1u) << Fan;
    }
}

// How often the writes came out as they did, with a component missing in each run.
std::map<WRITES, int> WritesWithoutOneComponent(const SCENE& Scene)
{
    std::map<WRITES, int> Outcomes;
    for (const RUN& Run : PlayWithoutOneComponent(Scene)) {
        Outcomes[Run.AllSettings()]++;
    }
    return Outcomes;
}

TEST(FanWrites, AFanWithoutAPlaceInTheRegistryIsTakenForNoOther)
{
    // Fans 9 and 10 have a thumb and nothing else. Without its tab 10 can't be chosen, and without its thumb or the frame
    // that this stands on not be set; whatever else is missing, what is meant for it doesn't reach 9.
    SCENE Thumbs = SceneWithOnly({9, 10});
    SelectTab(Thumbs, 10);
    Thumbs.Drag(397, 322, {{397, 362}});
    const WRITES Ten = {Write(10, "00 00 00 00 00 00 00 00 00 00 04")};
    std::map<WRITES, int> Outcomes = WritesWithoutOneComponent(Thumbs);
    EXPECT_GT(Outcomes[Ten], 8);
    Outcomes.erase(Ten);
    EXPECT_EQ(Outcomes, (std::map<WRITES, int>{{{}, 3}}));

    // Fans 4 and 5 have nodes. Without its tab 5 can't be chosen, and the drag is one of the page of 4 that is on screen.
    // Without the node itself or its frame nothing happens, and no other node goes in its place.
    SCENE Nodes = SceneWithOnly({4, 5});
    SelectTab(Nodes, 5);
    Nodes.Drag(487, 397, {{517, 397}});
    const std::string Moved = "01 0a 07 05 01 02 04 06 08 00 01";
    Outcomes = WritesWithoutOneComponent(Nodes);
    EXPECT_GT(Outcomes[{Write(5, Moved)}], 8);
    Outcomes.erase({Write(5, Moved)});
    EXPECT_EQ(Outcomes, (std::map<WRITES, int>{{{}, 2}, {{Write(4, Moved)}, 1}}));
}

} // namespace
