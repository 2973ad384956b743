// What is built at a start, in which order, and what a later start finds of the one before.
#include "tests/console/ConsoleBench.h"

namespace {

using ASKED = std::vector<std::string>;

// Names and settings that are asked for during start-up, in their order: an item's number, or "get" and the fan's.
ASKED AskedAtStart(const char* Board)
{
    ASKED Asked;
    for (const CALL_LINE& Call : SCENE(Board).Play().InTurn(0)) {
        if (Call.Call == "GetItemString") {
            Asked.push_back(Call.Text("item"));
        } else if (Call.Call.starts_with("GetFan") && Call.Call.ends_with("Setting")) {
            Asked.push_back("get " + Call.Call.substr(6, Call.Call.size() - 13));
        }
    }
    return Asked;
}

TEST(FanPages, AreBuiltPartByPartOfWhatTheBoardHas)
{
    // The six buttons; gauges, sources; for each fan its nodes and its level, then for each its tab and its box; captions.
    EXPECT_EQ(AskedAtStart("full"),
              (ASKED{"27",    "28",    "29",    "24",    "25",    "26",     "11",    "12",    "13",    "14",
                     "15",    "16",    "17",    "0",     "1",     "2",      "get 4", "get 5", "get 6", "get 6",
                     "get 7", "get 7", "get 8", "get 8", "get 9", "get 10", "4",     "get 4", "5",     "get 5",
                     "6",     "get 6", "7",     "get 7", "8",     "get 8",  "9",     "10",    "22",    "30"}));
    EXPECT_EQ(AskedAtStart("small"),
              (ASKED{"27",    "28",    "29",    "24", "25",    "26", "11",    "15", "0",  "1", "get 4",
                     "get 6", "get 6", "get 9", "4",  "get 4", "6",  "get 6", "9",  "22", "30"}));
    // A second fan of six rows has a level too; one of an unknown kind has nothing.
    for (const auto& [Board, Reads] : {std::pair{"full", 2}, {"kind0", 3}, {"kind2", 0}}) {
        const ASKED Asked = AskedAtStart(Board);
        EXPECT_EQ(std::count(Asked.begin(), Asked.end(), "get 5"), Reads) << Board;
        EXPECT_EQ(std::count(Asked.begin(), Asked.end(), "5"), Reads == 0 ? 0 : 1) << Board;
    }
}

TEST(FanPages, OfAFanOfAnUnknownKindOrNoneAtAllCanNotBeReached)
{
    SCENE Scene("kind2");
    Scene.Away().Screenshot("before").Tab(5).Away().Screenshot("after").Tab(7).Screenshot("fan 7");
    const RUN Run = Scene.Play();
    Run.ExpectSame("before", "after", {274, 117, 690, 64});
    Run.ExpectSame("before", "after", gPanel);
    EXPECT_EQ(PixelAt(Run.Picture("fan 7"), {571, 150}), gOutlineCyan); // the other tabs are where they were
    EXPECT_EQ(Run.Writes(), WRITES{SettingOf(7)});
    EXPECT_EQ(SCENE("small").Tab(5).Tab(6).Play().Writes(), WRITES{SettingOf(6)});
}

// The calls for the settings variable of a start, as "call size status" with the record of a writing behind it.
std::vector<std::string> SettingsCalls(const RUN& Run, UINT64 Start)
{
    std::vector<std::string> Found;
    for (const CALL_LINE& Line : Run.Calls) {
        if (Line.Start != Start || Line.Text("name") != "GlobalVariable") {
            continue;
        }
        EXPECT_EQ(Line.Text("guid"), "1D1140CD-3B1C-4B04-A3BE-D8A923E573B8");
        std::string Call = Line.Call + " " + Line.Text("size") + " " + Line.Text("status");
        if (Line.Call == "SetVariable") {
            EXPECT_EQ(Line.Number("attributes"), 2u);
            Call += " " + Line.Text("data");
        }
        Found.push_back(Call);
    }
    return Found;
}

constexpr char gProbeNotFound[] = "GetVariable 0 0x800000000000000e";
constexpr char gProbeFound[] = "GetVariable 0 0x8000000000000005";
constexpr char gRead[] = "GetVariable 24 0x0000000000000000";
// Byte 0 the fan on top, bytes 8 to 15 the temperature, bytes 16 to 19 its source.
constexpr char gDefaultsWritten[] =
    "SetVariable 24 0x0000000000000000 040000000000000000000000000000000000000000000000";
constexpr char gChosenWritten[] = "SetVariable 24 0x0000000000000000 090000000000000047000000000000000100000000000000";

// A tick in an even turn, without readouts, takes the temperature over.
SCENE& ChooseFan9AndSource1(SCENE& Scene) { return Scene.Turns().Reading(1, 0x47).Tab(9).Source(1).Ticks(2).Away(); }

TEST(Settings, TheViewOutlivesAStartButNotAReset)
{
    SCENE Scene;
    ChooseFan9AndSource1(Scene).Screenshot("first").Restart().Point(gAway).Turns(3).Ticks().Screenshot("second");
    const TURN Tick = Scene.Mark();
    Scene.Thumb(4).Reset().Turns(3).Screenshot("third");
    const RUN Run = Scene.Play();
    using CALLS = std::vector<std::string>;
    EXPECT_EQ(SettingsCalls(Run, 1), (CALLS{gProbeNotFound, gDefaultsWritten, gProbeFound, gRead, gChosenWritten}));
    CALLS Later = SettingsCalls(Run, 2);
    ASSERT_EQ(Later.size(), 3u);
    Later.pop_back();
    EXPECT_EQ(Later, (CALLS{gProbeFound, gRead}));
    Later = SettingsCalls(Run, 3);
    Later.resize(2);
    EXPECT_EQ(Later, (CALLS{gProbeNotFound, gDefaultsWritten}));

    // What the user had on screen; what the ticks read; and what the mouse reaches.
    for (const AREA& Place : {Tab(4), Tab(9), Source(0), Source(1)}) {
        Run.ExpectSame("first", "second", Place);
        EXPECT_TRUE(Run.Differ("first", "third", Place));
    }
    const std::vector<int> Items = Run.Items(Tick);
    EXPECT_EQ((std::vector<int>{Items.at(0), Items.at(1)}), (std::vector<int>{1, 9}));
    EXPECT_EQ(Run.Writes(2), WRITES{SettingOf(9).Level(4)});
}

TEST(Settings, AVariableThatCannotBeReadIsNotFollowedAndNotWrittenOver)
{
    // The probe finds a variable; its reading fails as that of a larger one does.
    SCENE Larger;
    ChooseFan9AndSource1(Larger).Key("esc").Line("fail GetVariable BUFFER_TOO_SMALL 2").StartAgain();
    const RUN Run = Larger.Turns(2).Screenshot("second").Play();
    const std::vector<std::string> Calls = SettingsCalls(Run, 2);
    ASSERT_EQ(Calls.size(), 3u) << "only the end of the start writes";
    EXPECT_EQ(Calls[0], gProbeFound);
    EXPECT_EQ(Calls[1], "GetVariable 24 0x8000000000000005");
    // The first tab is on top, then.
    const RUN Fresh = SCENE().Turns(3).Screenshot("fresh").Play();
    ExpectSamePicture(Run.Picture("second"), Fresh.Picture("fresh"), Tab(4));

    // Any other answer to the probe: nothing is read and nothing written.
    const RUN Broken = SCENE().Line("fail GetVariable DEVICE_ERROR").Turns(2).Play();
    ASSERT_EQ(SettingsCalls(Broken, 1).size(), 2u);
    EXPECT_EQ(SettingsCalls(Broken, 1)[0], "GetVariable 0 0x8000000000000007");
    EXPECT_EQ(SettingsCalls(Broken, 1)[1].substr(0, 14), "SetVariable 24");
}

} // namespace
