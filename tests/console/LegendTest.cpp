// The legend beside the curve: its texts, their places and colours, and when it stays as it was.
#include "tests/console/ConsoleBench.h"

namespace {

constexpr UINT32 gPanel = 0x242424;
constexpr UINT32 gNode[4] = {0x04961F, 0x006DF7, 0xFAB000, 0xCA0000};
constexpr UINT32 gInactive = 0x606060;

// The texts of a legend that is drawn in a turn, one for each that goes to the stored screen too.
std::vector<std::string> Texts(const RUN& Run, UINT64 Turn)
{
    std::vector<std::string> Found;
    for (const CALL_LINE& Call : Run.NamedInTurn("StringToImage", Turn)) {
        const std::string Text = Call.Text("text");
        if (Text == "/" || Text.ends_with("%") || Text.ends_with("\u00F8C")) {
            Found.push_back(Text);
        }
    }
    std::vector<std::string> Once;
    for (size_t Index = 0; Index + 1 < Found.size(); Index += 2) {
        EXPECT_EQ(Found[Index], Found[Index + 1]);
        Once.push_back(Found[Index]);
    }
    return Once;
}

// Counts of a row's pixels by colour: only the row's colour and the panel may be there, from First to the right end.
void ExpectRowColor(const PICTURE& Picture, UINTN Row, UINT32 Color)
{
    const UINTN Y = 260 + 29 * Row;
    const UINTN Colored = CountColor(Picture, Color, 866, Y, 90, 19);
    const UINTN Plain = CountColor(Picture, gPanel, 866, Y, 90, 19);
    EXPECT_GT(Colored, 60u) << Row;
    EXPECT_EQ(Colored + Plain, 90u * 19) << Row;
}

// Whether anything but panel stands in a box of a row.
bool HasInk(const PICTURE& Picture, UINTN X, UINTN Row, UINTN Width)
{
    return CountColor(Picture, gPanel, X, 260 + 29 * Row, Width, 19) != Width * 19;
}

TEST(Legend, SaysDutyAndTemperatureOfEachNodeInItsColour)
{
    SCENE Scene;
    Scene.Turns().Screenshot("on").Click(296, 242);
    const UINT64 Off = Scene.TurnsSoFar - 1;
    Scene.Screenshot("off").Turns();
    const RUN Run = Scene.Play();
    EXPECT_EQ(Texts(Run, Off), (std::vector<std::string>{"25%", "/", "40\u00F8C", "50%", "/", "55\u00F8C", "75%", "/",
                                                         "70\u00F8C", "100%", "/", "85\u00F8C"}));
    const PICTURE& On = Run.Picture("on");
    for (UINTN Row = 0; Row < 4; Row++) {
        ExpectRowColor(On, Row, gNode[Row]);
        ExpectRowColor(Run.Picture("off"), Row, gInactive);
    }
    // A text of n characters ends at 956 (duty) or 906 (temperature); the slash is one character at 908.
    for (UINTN Row = 0; Row < 4; Row++) {
        EXPECT_TRUE(HasInk(On, 948, Row, 8)) << Row;
        EXPECT_FALSE(HasInk(On, 956, Row, 7)) << Row; // up to the panel's right edge
        EXPECT_TRUE(HasInk(On, 908, Row, 8)) << Row;
        EXPECT_FALSE(HasInk(On, 906, Row, 2)) << Row;
        EXPECT_TRUE(HasInk(On, 874, Row, 8)) << Row;
        EXPECT_FALSE(HasInk(On, 866, Row, 8)) << Row;
    }
    // Rows are 29 apart to the pixel: the slash stands alike in each.
    for (UINTN Row = 1; Row < 4; Row++) {
        for (UINTN Y = 0; Y < 19; Y++) {
            for (UINTN X = 908; X < 916; X++) {
                ASSERT_EQ(PixelAt(On, X, 260 + Y) == gPanel, PixelAt(On, X, 260 + 29 * Row + Y) == gPanel) << Row;
            }
        }
    }
    EXPECT_FALSE(HasInk(On, 924, 0, 8)); // "25%" begins at 932
    EXPECT_TRUE(HasInk(On, 924, 3, 8));  // "100%" at 924

    // The icons: node i's colour at (836, 250 + 30 x i + 4), gray while the curve is off.
    for (UINTN Row = 0; Row < 4; Row++) {
        EXPECT_EQ(PixelAt(On, 836 + 8, 254 + 30 * Row + 8), gNode[Row]) << Row;
        const UINT32 Gray = PixelAt(Run.Picture("off"), 836 + 8, 254 + 30 * Row + 8);
        EXPECT_EQ(Gray & 0xFF, Gray >> 16) << Row;
        EXPECT_EQ(Gray & 0xFF, Gray >> 8 & 0xFF) << Row;
        EXPECT_EQ(PixelAt(Run.Picture("off"), 836, 254 + 30 * Row), gPanel) << Row; // cut out beside the disc
    }
    // 299, 587 and 114 thousandths of red, green and blue: (4, 150, 31) is 92, (202, 0, 0) is 60.
    EXPECT_EQ(PixelAt(Run.Picture("off"), 844, 262), 0x5C5C5Cu);
    EXPECT_EQ(PixelAt(Run.Picture("off"), 844, 352), 0x3C3C3Cu);
}

TEST(Legend, ReadsSixRowsInTensAndIsGrayOnAPageWhoseBoxIsOff)
{
    SCENE Scene;
    Scene.Click(620, 150);
    const UINT64 Fan7 = Scene.TurnsSoFar - 1;
    Scene.Click(720, 150);
    const UINT64 Fan8 = Scene.TurnsSoFar - 1;
    Scene.Screenshot("fan 8").Turns();
    const RUN Run = Scene.Play();
    const std::vector<std::string> Curve = {"50%", "/", "40\u00F8C", "60%", "/", "50\u00F8C", "80%", "/", "60\u00F8C",
                                            "100%", "/", "70\u00F8C"};
    EXPECT_EQ(Texts(Run, Fan7), Curve);
    EXPECT_EQ(Texts(Run, Fan8), Curve);
    for (UINTN Row = 0; Row < 4; Row++) {
        ExpectRowColor(Run.Picture("fan 8"), Row, gInactive);
    }
}

TEST(Legend, StaysAsItWasOnAPageWithoutACurve)
{
    SCENE Scene;
    Scene.Click(720, 150).Move(600, 720).Turns(2).Screenshot("fan 8");
    Scene.Click(818, 150).Move(600, 720).Turns(2).Screenshot("fan 9");
    Scene.Click(917, 150).Drag(397, 322, {{397, 362}}).Move(600, 720).Turns(2).Screenshot("fan 10").Turns();
    const RUN Run = Scene.Play();
    for (const char* Page : {"fan 9", "fan 10"}) {
        EXPECT_TRUE(SameRectangle(Run.Picture("fan 8"), Run.Picture(Page), 836, 250, 120, 130)) << Page;
        EXPECT_TRUE(SameRectangle(Run.Picture("fan 8"), Run.Picture(Page), 286, 232, 113, 20)) << Page;
    }
}

TEST(Legend, NamesTheEndsOfTheGrid)
{
    // Nodes in the first and the last column, on the lowest and the highest level; two nodes on one row.
    SCENE Scene;
    Scene.Line("setting 4 " + Record("01 0d 0c 02 01 01 01 08 08"));
    Scene.Line("setting 6 " + Record("01 0d 0c 02 01 01 01 06 06 00 01"));
    Scene.Turns().Click(521, 150);
    const UINT64 Fan6 = Scene.TurnsSoFar - 1;
    Scene.Click(323, 150);
    const UINT64 Fan4 = Scene.TurnsSoFar - 1;
    const RUN Run = Scene.Play();
    EXPECT_EQ(Texts(Run, Fan6), (std::vector<std::string>{"50%", "/", "40\u00F8C", "50%", "/", "45\u00F8C", "100%", "/",
                                                          "95\u00F8C", "100%", "/", "100\u00F8C"}));
    EXPECT_EQ(Texts(Run, Fan4), (std::vector<std::string>{"12.5%", "/", "40\u00F8C", "12.5%", "/", "45\u00F8C", "100%",
                                                          "/", "95\u00F8C", "100%", "/", "100\u00F8C"}));
}

} // namespace
