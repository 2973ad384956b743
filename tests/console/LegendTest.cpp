// The legend beside the curve: its texts, its colours, and when it stays as it was.
#include "tests/console/ConsoleBench.h"

namespace {

// The texts of a legend that is drawn in a turn, one for each that goes to the stored screen too.
std::vector<std::string> Legend(const RUN& Run, TURN Turn)
{
    std::vector<std::string> Texts = Run.Texts(Turn);
    std::erase_if(Texts, [](const std::string& Text) {
        return Text != "/" && !Text.ends_with("%") && !Text.ends_with("\u00F8C");
    });
    std::vector<std::string> Once;
    for (size_t Index = 0; Index + 1 < Texts.size(); Index += 2) {
        EXPECT_EQ(Texts[Index], Texts[Index + 1]);
        Once.push_back(Texts[Index]);
    }
    return Once;
}

std::vector<std::string> Rows(const std::vector<std::pair<std::string, std::string>>& Nodes)
{
    std::vector<std::string> Texts;
    for (const auto& [Duty, Degrees] : Nodes) {
        Texts.insert(Texts.end(), {Duty + "%", "/", Degrees + "\u00F8C"});
    }
    return Texts;
}

// The text of row 0 to 3, from behind the icon to the right end.
constexpr AREA Row(int Number) { return {866, 260 + 29 * Number, 90, 19}; }

TEST(Legend, SaysDutyAndTemperatureOfEachNode)
{
    // The board's own curves on both grids; then nodes in the first and the last column, on the lowest and the highest
    // level, two of them on one row.
    SCENE Scene;
    const TURN Eight = Scene.Turns().Box().Mark();
    const TURN Six = Scene.Tab(7).Mark();
    const TURN SixOff = Scene.Tab(8).Mark();
    RUN Run = Scene.Play();
    EXPECT_EQ(Legend(Run, Eight), Rows({{"25", "40"}, {"50", "55"}, {"75", "70"}, {"100", "85"}}));
    const std::vector<std::string> OfSix = Rows({{"50", "40"}, {"60", "50"}, {"80", "60"}, {"100", "70"}});
    EXPECT_EQ(Legend(Run, Six), OfSix);
    EXPECT_EQ(Legend(Run, SixOff), OfSix);

    SCENE Ends;
    Ends.Setting(SettingFromBytes(4, "01 0d 0c 02 01 01 01 08 08"));
    Ends.Setting(SettingFromBytes(6, "01 0d 0c 02 01 01 01 06 06 00 01"));
    const TURN EndsOfSix = Ends.Turns().Tab(6).Mark();
    const TURN EndsOfEight = Ends.Tab(4).Mark();
    Run = Ends.Play();
    EXPECT_EQ(Legend(Run, EndsOfSix), Rows({{"50", "40"}, {"50", "45"}, {"100", "95"}, {"100", "100"}}));
    EXPECT_EQ(Legend(Run, EndsOfEight), Rows({{"12.5", "40"}, {"12.5", "45"}, {"100", "95"}, {"100", "100"}}));
}

TEST(Legend, IsGrayWhileTheBoxIsOff)
{
    SCENE Scene;
    const RUN Run = Scene.Turns().Screenshot("on").Box().Screenshot("off").Tab(8).Screenshot("fan 8").Play();
    constexpr UINT32 OfNode[4] = {0x04961F, 0x006DF7, 0xFAB000, 0xCA0000};
    for (int Number = 0; Number < 4; Number++) {
        for (const auto& [Name, Color] :
             {std::pair{"on", OfNode[Number]}, {"off", UINT32{0x606060}}, {"fan 8", UINT32{0x606060}}}) {
            const UINTN Colored = CountColor(Run.Picture(Name), Color, Row(Number));
            EXPECT_GT(Colored, 60u) << Name << Number;
            EXPECT_EQ(Colored + CountColor(Run.Picture(Name), gPanelGray, Row(Number)), 90u * 19) << Name << Number;
        }
    }
    // The icons, 30 apart. 299, 587 and 114 thousandths of red, green and blue: (4, 150, 31) is 92, (202, 0, 0) is 60.
    EXPECT_EQ(PixelAt(Run.Picture("on"), {844, 262}), OfNode[0]);
    EXPECT_EQ(PixelAt(Run.Picture("off"), {844, 262}), 0x5C5C5Cu);
    EXPECT_EQ(PixelAt(Run.Picture("off"), {844, 352}), 0x3C3C3Cu);
}

TEST(Legend, StaysAsItWasOnAPageWithoutACurve)
{
    SCENE Scene;
    Scene.Tab(8).Away().Screenshot("fan 8").Tab(9).Away().Screenshot("fan 9");
    const RUN Run = Scene.Tab(10).Thumb(4).Away().Screenshot("fan 10").Play();
    for (const char* Page : {"fan 9", "fan 10"}) {
        Run.ExpectSame("fan 8", Page, gLegend);
        Run.ExpectSame("fan 8", Page, {286, 232, 113, 20}); // box and title
    }
}

} // namespace
