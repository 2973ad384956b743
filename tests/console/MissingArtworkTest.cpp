#include "tests/console/ConsoleBench.h"

#include "platform/host/Boot.h"

namespace {

// Turns that touch what the pictures stand for: tabs, radios, boxes, buttons, drags on a grid and on a slider, pages.
SCENE& TouchEverything(SCENE& Scene)
{
    Scene.Turns(2).Ticks(2).Source(1).Box().Tab(6).Node(1, {1, 1}).Tab(9).Thumb(5);
    return Scene.Button(FULL_SPEED).Button(DEFAULT).Ticks(2);
}

SCENE Cornerless() { return SCENE().Point(gAway).Line("artwork 2 none").Line("artwork 3 none"); }

class MissingPicture : public testing::TestWithParam<int> {};

TEST_P(MissingPicture, IsNoReasonToFail)
{
    SCENE Scene;
    Scene.Line("artwork " + std::to_string(GetParam()) + " none");
    const RUN Run = TouchEverything(Scene).Play();
    EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
    EXPECT_EQ(Run.Count("CloseCursor"), 1u);
}

INSTANTIATE_TEST_SUITE_P(Each, MissingPicture,
                         testing::Values(2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24,
                                         26));

TEST(MissingArtwork, AllOfItStillLeavesAConsoleThatLeaves)
{
    SCENE Scene;
    for (int Instance = 2; Instance <= 26; Instance++) {
        Scene.Line("artwork " + std::to_string(Instance) + " none");
    }
    const RUN Run = TouchEverything(Scene).Play();
    EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
    EXPECT_EQ(Run.Named("SetVariable").back().Text("name"), "GlobalVariable");
}

TEST(MissingArtwork, PicturesThatDoNotDecodeAreReported)
{
    // A test's own source is no picture.
    const std::string NoPicture = VENTARA_SOURCE_DIR "/tests/console/MissingArtworkTest.cpp";
    const auto ReportsOf = [&NoPicture](int Instance) {
        SCENE Scene;
        Scene.Line("artwork " + std::to_string(Instance) + " " + NoPicture).Turns(2);
        const RUN Run = Scene.Play();
        EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
        std::vector<std::string> Texts; // of the frame unit's report lines
        size_t At = 0;
        while ((At = Run.Session.ErrorText.find("ASSERT Ventaraframe", At)) != std::string::npos) {
            const size_t Text = Run.Session.ErrorText.find("): ", At) + 3;
            At = Run.Session.ErrorText.find('\n', Text);
            Texts.push_back(Run.Session.ErrorText.substr(Text, At - Text));
        }
        return Texts;
    };
    using TEXTS = std::vector<std::string>;
    EXPECT_EQ(ReportsOf(4), (TEXTS{"ConvertJPEGToUgaBltA Fail", "LocatePool Fail"}));
    EXPECT_EQ(ReportsOf(3), (TEXTS{"ConvertBmpToGopBltA Fail"}));
    EXPECT_EQ(ReportsOf(2), TEXTS{});
}

TEST(MissingArtwork, TheFirmwaresScreenShowsAroundTheFrameAndThroughItsCorners)
{
    PICTURE Before;
    {
        const BOOT Boot({});
        Before.assign(Boot.Display.Words(), Boot.Display.Words() + 1024 * 768);
    }
    const RUN Run = SCENE().Point(gAway).Turns(2).Screenshot("with").Play();
    const PICTURE& With = Run.Picture("with");
    for (const AREA& Beside : {AREA{0, 100, 43, 600}, {985, 100, 39, 600}, {43, 730, 942, 38}}) {
        ExpectSamePicture(With, Before, Beside);
    }
    const PICTURE Bare = Cornerless().Turns(2).Screenshot("without").Play().Picture("without");
    for (const AREA& Corner : {gConsole.Part(0, 0, 20, 20), gConsole.Part(922, 0, 20, 20),
                               gConsole.Part(0, 674, 20, 20), gConsole.Part(922, 674, 20, 20)}) {
        const PLACE Outmost = {Corner.X == gConsole.X ? Corner.X : Corner.X + 19,
                               Corner.Y == gConsole.Y ? Corner.Y : Corner.Y + 19};
        EXPECT_EQ(PixelAt(With, Outmost), PixelAt(Before, Outmost)) << Outmost.X << ", " << Outmost.Y;
        EXPECT_NE(PixelAt(With, Outmost), PixelAt(Bare, Outmost)) << Outmost.X << ", " << Outmost.Y;
        EXPECT_EQ(CountColor(With, 0xFF00FF, Corner), 0u);
    }
    // Beyond the corners nothing depends on them, and the picture under them is the frame's own.
    ExpectSamePicture(With, Bare, gConsole.Part(20, 0, 902, 694));
}

TEST(MissingArtwork, SectionsOfTheOtherTypeServeAsWell)
{
    const RUN Raw = Cornerless().Turns(3).Screenshot("end").Play();
    const RUN Other = SCENE().Point(gAway).Line("artwork type 16").Turns(3).Screenshot("end").Play();
    for (const CALL_LINE& Line : Other.Named("GetArtworkSection")) {
        // The corners alone are always asked for as type 25, and so aren't found.
        const bool Corner = Line.Number("instance") == 2 || Line.Number("instance") == 3;
        EXPECT_EQ(Line.Number("type"), Corner ? 25u : 16u) << Line.Text("instance");
    }
    ExpectSamePicture(Raw.Picture("end"), Other.Picture("end"));
}

} // namespace
