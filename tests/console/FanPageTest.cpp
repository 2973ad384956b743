// What is built for which fan, in which order, and what a later start finds.
#include "tests/console/ConsoleBench.h"

namespace {

using ASKED = std::vector<std::string>;

// Names and settings that are asked for during start-up, in their order: an item's number, or "get" and the fan's.
ASKED AskedAtStart(const RUN& Run)
{
    ASKED Asked;
    for (const CALL_LINE& Call : Run.InTurn(0)) {
        if (Call.Call == "GetItemString") {
            Asked.push_back(Call.Text("item"));
        } else if (Call.Call.starts_with("GetFan") && Call.Call.ends_with("Setting")) {
            Asked.push_back("get " + Call.Call.substr(6, Call.Call.size() - 13));
        }
    }
    return Asked;
}

// Between the six buttons and the captions of the first picture.
ASKED WithFrame(const ASKED& Pages)
{
    ASKED All = {"27", "28", "29", "24", "25", "26"};
    All.insert(All.end(), Pages.begin(), Pages.end());
    All.insert(All.end(), {"22", "30"});
    return All;
}

TEST(FanPage, IsBuiltInTheOrderOfItsParts)
{
    // Gauges, sources; then for each fan its nodes and its level; then for each its tab and its box.
    const ASKED Head = {"11", "12", "13", "14", "15", "16", "17", "0", "1", "2", "get 4"};
    const ASKED Middle = {"get 6", "get 6", "get 7", "get 7", "get 8", "get 8", "get 9", "get 10", "4", "get 4"};
    const ASKED Tail = {"6", "get 6", "7", "get 7", "8", "get 8", "9", "10"};
    const auto Join = [&](const ASKED& Fan5, const ASKED& Tab5) {
        ASKED All = Head;
        All.insert(All.end(), Fan5.begin(), Fan5.end());
        All.insert(All.end(), Middle.begin(), Middle.end());
        All.insert(All.end(), Tab5.begin(), Tab5.end());
        All.insert(All.end(), Tail.begin(), Tail.end());
        return WithFrame(All);
    };
    EXPECT_EQ(AskedAtStart(SCENE("full").Play()), Join({"get 5"}, {"5", "get 5"}));
    EXPECT_EQ(AskedAtStart(SCENE("kind0").Play()), Join({"get 5", "get 5"}, {"5", "get 5"}));
    EXPECT_EQ(AskedAtStart(SCENE("kind2").Play()), Join({}, {}));
    EXPECT_EQ(AskedAtStart(SCENE("small").Play()),
              WithFrame({"11", "15", "0", "1", "get 4", "get 6", "get 6", "get 9", "4", "get 4", "6", "get 6", "9"}));
    EXPECT_EQ(AskedAtStart(SCENE("second-source").Play()), WithFrame({"1", "get 4", "4", "get 4"}));
    EXPECT_EQ(AskedAtStart(SCENE("bare").Play()), WithFrame({}));
}

TEST(FanPage, TabTextsAreMovedByTheLayoutsBlanks)
{
    const auto HasText = [](const RUN& Run, const std::string& Text) {
        for (const CALL_LINE& Call : Run.NamedInTurn("StringToImage", 0)) {
            if (Call.Text("text") == Text) {
                return true;
            }
        }
        return false;
    };
    const RUN Full = SCENE("full").Play();
    for (const char* Text : {"    CPU 1", "    CPU 2", "   Case 1", "   Case 2", "   Case 3", "   Case 4", "    Pump"}) {
        EXPECT_TRUE(HasText(Full, Text)) << Text;
    }
    EXPECT_TRUE(HasText(SCENE("kind0").Play(), "   CPU 2"));
}

TEST(FanPage, OfAFanOfAnUnknownKindDoesNotExist)
{
    SCENE Scene("kind2");
    Scene.Turns().Move(600, 720).Turns(2).Screenshot("before");
    Scene.Click(422, 150).Move(600, 720).Turns(2).Screenshot("after");
    Scene.Click(620, 150).Screenshot("fan 7").Turns(); // the other tabs are where they were
    const RUN Run = Scene.Play();
    EXPECT_TRUE(SameRectangle(Run.Picture("before"), Run.Picture("after"), 274, 117, 690, 64));
    EXPECT_TRUE(SameRectangle(Run.Picture("before"), Run.Picture("after"), 274, 220, 690, 328));
    EXPECT_EQ(PixelAt(Run.Picture("fan 7"), 571, 150), 0x00FFFFu);
    EXPECT_EQ(Run.AllSettings(), std::vector<std::string>{"7:" + Record("01 07 05 03 01 01 02 04 06 00 03")});
}

TEST(FanPage, OnTopAndSourceAreThereAgainAtALaterStartAndGoneAfterAReset)
{
    SCENE Scene;
    Scene.Line("reading 2 51");
    Scene.Click(720, 150).Move(80, 385).Press().Turns().Line("left up").Turns(2).Ticks();
    Scene.Restart().Turns().Line("reading 2 51").Ticks().Screenshot("later");
    const UINT64 Tick = Scene.TurnsSoFar;
    Scene.Line("key esc").Line("turn").Line("reset").Line("start").Turns(2).Screenshot("reset").Turns();
    const RUN Run = Scene.Play();

    std::vector<std::string> Stored;
    for (const CALL_LINE& Call : Run.Named("SetVariable")) {
        if (Call.Text("name") == "GlobalVariable") {
            EXPECT_EQ(Call.Number("attributes"), 2u);
            EXPECT_EQ(Call.Text("guid"), "1D1140CD-3B1C-4B04-A3BE-D8A923E573B8");
            Stored.push_back(Call.Text("data"));
        }
    }
    // Written when it is missing, and at the end of each start: page, temperature, source.
    const std::string Fresh = "040000000000000000000000000000000000000000000000";
    const std::string Fan8 = "080000000000000033000000000000000200000000000000";
    ASSERT_EQ(Stored.size(), 5u);
    EXPECT_EQ(Stored[0], Fresh);
    EXPECT_EQ(Stored[1], Fan8);
    EXPECT_EQ(Stored[2], Fan8);
    EXPECT_EQ(Stored[3], Fresh);

    // The tab of fan 8 is joined with the panel, and its tick reads source 2 and fan 8.
    EXPECT_EQ(PixelAt(Run.Picture("later"), 671, 150), 0x00FFFFu);
    EXPECT_EQ(PixelAt(Run.Picture("reset"), 274, 150), 0x00FFFFu);
    std::vector<std::string> Items;
    for (const CALL_LINE& Call : Run.NamedInTurn("GetItemValue", Tick, 2)) {
        Items.push_back(Call.Text("item"));
    }
    ASSERT_GE(Items.size(), 2u);
    EXPECT_EQ(Items[0] + " " + Items[1], "2 8");
}

} // namespace
