// What a fan's service is told, and when: every occasion on which a page writes, every one on which it doesn't, and what
// becomes of settings that no service should hold.
#include "tests/console/ConsoleBench.h"

namespace {

TEST(FanWrites, HoldTheBytesOfTheContract)
{
    // The box, columns of nodes 3 to 0 from 1, levels of nodes 0 to 3 from the bottom, a byte of nothing, the fixed level.
    SCENE Scene;
    const RUN Run = Scene.Node(1, {1, 1}).Tab(7).Play();
    const auto Expect = [&Run](const char* Call, std::string Bytes) {
        Bytes.resize(128, '0');
        ASSERT_EQ(Run.Count(Call), 1u);
        EXPECT_EQ(Run.Named(Call)[0].Text("record"), Bytes);
    };
    Expect("SetFan4Setting", "010a0705010203060800"
                             "0100");
    Expect("SetFan7Setting", "01070503010102040600"
                             "0300");
}

TEST(FanWrites, TheBoxOfAPageWithoutALevelWritesItsNodesAndEndsAtItsRightAndBottomEdge)
{
    SCENE Scene;
    for (const PLACE Place :
         std::vector<PLACE>{{286, 232}, {305, 251}, {306, 242}, {296, 252}, {285, 242}, {296, 231}}) {
        Scene.Click(Place);
    }
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{SettingOf(4).Off(), SettingOf(4)}));
}

TEST(FanWrites, ASecondFanOfSixRowsWritesItsLevelToo)
{
    const WRITE Fan5 = SettingOf(5, SIX_ROWS);
    SCENE Scene("kind0");
    Scene.Tab(5).Box().Box().Node(1, {1, 0});
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{Fan5, Fan5.Off(), Fan5, Fan5.Node(1, {1, 0})}));
}

TEST(FanWrites, ASelectionOfATabWritesOncePerClickOnAPageWithALevelAndACurve)
{
    // Fan 4 and 5 have no level, 9 and 10 no curve: their tabs write nothing. A click on the tab already selected runs its
    // page's functions again.
    SCENE Scene;
    WRITES Expected;
    for (const int Fan : {5, 6, 6, 7, 7, 8, 8, 9, 9, 10, 4, 4, 8}) {
        Scene.Tab(Fan);
        if (Fan >= 6 && Fan <= 8) {
            Expected.push_back(SettingOf(Fan));
        }
    }
    EXPECT_EQ(Scene.Play().Writes(), Expected);
}

TEST(FanWrites, AStartWritesOnlyTheSettingOfAPageOnTopThatHasALevelAndACurve)
{
    for (const int Fan : {5, 8, 10}) {
        EXPECT_EQ(SCENE().Turns().Tab(Fan).Restart().Turns(2).Play().Writes(2),
                  Fan == 8 ? WRITES{SettingOf(8)} : WRITES{})
            << Fan;
    }
}

TEST(FanWrites, NothingElseWrites)
{
    // Readings, ticks, tabs of fans without a level and a curve, radios, the empty panel, presses that end elsewhere, the
    // letters, and leaving.
    SCENE Scene;
    Scene.Ticks(20).Tab(5).Source(1).Source(0).Click({600, 540}).Click({420, 290});
    Scene.Move(gBox.Center())
        .Press()
        .Turns()
        .Move({600, 540})
        .Release(50000)
        .Turns(2);                                                      // began on the box, ended beside
    Scene.Move(gBox.Center()).Press().Turns().Release(300000).Turns(2); // too long for a click
    Scene.Key("f").Key("d").Key("c").Key("F").Key("D").Key("C").Key("x").Tab(9).Tab(10).Ticks(2);
    EXPECT_EQ(Scene.Play().Writes(), WRITES{});
}

TEST(FanWrites, ADropWritesOnlyTheFanOfThePageOnTop)
{
    // Frames of 4, 5, 6, 7 and sliders of 7 to 10 are all on the lists of a drop; each time one page answers.
    SCENE Scene;
    Scene.Node(1, {1, 0}).Tab(5).Node(1, {1, 0}).Tab(10).Thumb(4).Tab(8).Thumb(4);
    EXPECT_EQ(Scene.Play().Writes(),
              (WRITES{SettingOf(4).Node(1, {1, 0}).Level(1), SettingOf(5).Node(1, {1, 0}).Level(1),
                      SettingOf(10).Level(4), SettingOf(8), SettingOf(8).Level(4)}));
}

TEST(FanWrites, AServiceOutOfResourcesGivesTheDefaultCurve)
{
    // The first read of each page builds its nodes. On either grid the default curve is one cell up and right from node
    // to node. What the failing read says for the level or the box is another read.
    SCENE Scene;
    Scene.Line("fail GetFan4Setting OUT_OF_RESOURCES").Line("fail GetFan6Setting OUT_OF_RESOURCES");
    Scene.Setting(SettingOf(6).Level(1)).Box().Tab(6);
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{SettingFromBytes(4, "00 04 03 02 01 01 02 03 04"),
                                             SettingFromBytes(6, "01 04 03 02 01 01 02 03 04 00 01")}));
}

TEST(FanWrites, ASettingReadBackIsTakenAsItStands)
{
    // Any CurveEnabled but 0 counts as checked; what is written back is 1. A level of 6 is the top row.
    const WRITE Odd = SettingFromBytes(7, "80 0d 0c 0b 0a 01 01 06 06 00 06");
    EXPECT_EQ(SCENE().Setting(Odd).Tab(7).Play().Writes(), WRITES{Odd.On()});
}

TEST(FanWrites, AStoredLevelAboveTheRowsComesUpAtTheBottom)
{
    SCENE Scene;
    Scene.Setting(SettingOf(9).Level(7)).Setting(SettingOf(7).Level(256)).Tab(9);
    Scene.Move(ThumbPlace(1)).Press().Turns(3).Release(300000).Turns(2).Tab(7);
    EXPECT_EQ(Scene.Play().Writes(), (WRITES{SettingOf(9).Level(1), SettingOf(7).Level(1)}));
}

TEST(FanWrites, SettingsAgainstTheContractLeaveTheConsoleWholeAndTheNextWriteLegal)
{
    // The bench fails when a service gets a record that no fan should get; here every page writes once after having read
    // one, and again after Default and Cancel have brought it back.
    for (const char* Bytes : {
             "01 01 02 03 04 04 03 02 01 00 09",    // columns and levels that fall, a level of 9
             "ff ff ff ff ff ff ff ff ff ff ff ff", // everything too far
             "00 05 05 05 00 00 01 02 09 00 00",    // nodes on one column, levels and fixed level of 0
         }) {
        SCOPED_TRACE(Bytes);
        SCENE Scene("kind0");
        for (int Fan = gFirstFan; Fan <= gLastFan; Fan++) {
            Scene.Setting(SettingFromBytes(Fan, Bytes)).Default(SettingFromBytes(Fan, Bytes));
        }
        Scene.Box().Key("d").Box().Key("c").Box();
        for (int Fan = 5; Fan <= gLastFan; Fan++) {
            Scene.Tab(Fan).Ticks().Box().Key("d").Box().Key("c");
            Scene.Drag(ThumbPlace(1), {ThumbPlace(4)}).Drag(ThumbPlace(6), {ThumbPlace(4)});
        }
        const RUN Run = Scene.Play();
        EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
        EXPECT_GE(Run.Writes().size(), 15u);
    }
}

TEST(FanWrites, ServicesThatFailToReadOrWriteAreNotAskedAgain)
{
    SCENE Scene;
    for (int Fan = gFirstFan; Fan <= gLastFan; Fan++) {
        Scene.Line("fail GetFan" + std::to_string(Fan) + "Setting DEVICE_ERROR 100");
        Scene.Line("fail SetFan" + std::to_string(Fan) + "Setting DEVICE_ERROR 100");
    }
    Scene.Drag({397, 487}, {{427, 427}}).Box().Box();
    for (int Fan = 5; Fan <= gLastFan; Fan++) {
        Scene.Tab(Fan).Ticks();
    }
    const RUN Run = Scene.Key("d").Key("c").Key("f").Play();
    EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
    EXPECT_GE(Run.Count("SetFan4Setting"), 2u); // two clicks on its box
    for (const char* Tab : {"SetFan6Setting", "SetFan7Setting", "SetFan8Setting"}) {
        EXPECT_EQ(Run.Count(Tab), 1u) << Tab;
    }
}

// How many runs wrote each of the outcomes; any other fails the test.
std::vector<int> RunsThatWrote(const std::vector<RUN>& Runs, const std::vector<WRITES>& Outcomes)
{
    std::vector<int> Counts(Outcomes.size());
    for (const RUN& Run : Runs) {
        const auto Found = std::find(Outcomes.begin(), Outcomes.end(), Run.Writes());
        if (Found == Outcomes.end()) {
            ADD_FAILURE() << "wrote " << testing::PrintToString(Run.Writes());
        } else {
            Counts[static_cast<size_t>(Found - Outcomes.begin())]++;
        }
    }
    return Counts;
}

TEST(FanWrites, AFanWithoutAPlaceInTheRegistryIsTakenForNoOther)
{
    // Fans 9 and 10 have a thumb and nothing else. Without its tab 10 can't be chosen, and without its thumb or the frame
    // that this stands on not be set; whatever else is missing, what is meant for it doesn't reach 9.
    std::vector<RUN> Runs = PlayWithoutOneComponent(SceneWithOnly({9, 10}).Tab(10).Thumb(4));
    std::vector<int> Counts = RunsThatWrote(Runs, {{SettingOf(10).Level(4)}, {}});
    EXPECT_GT(Counts[0], 8);
    EXPECT_EQ(Counts[1], 3);

    // Fans 4 and 5 have nodes. Without its tab 5 can't be chosen, and the drag is one of the page of 4 that is on screen.
    // Without the node itself or its frame nothing happens, and no other node goes in its place.
    const auto Moved = [](int Fan) { return WRITES{SettingOf(Fan).Node(1, {1, 0}).Level(1)}; };
    Runs = PlayWithoutOneComponent(SceneWithOnly({4, 5}).Tab(5).Node(1, {1, 0}));
    Counts = RunsThatWrote(Runs, {Moved(5), {}, Moved(4)});
    EXPECT_GT(Counts[0], 8);
    EXPECT_EQ(Counts[1], 2);
    EXPECT_EQ(Counts[2], 1);
}

} // namespace
