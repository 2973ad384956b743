#include "tests/console/ConsoleBench.h"

#include "platform/host/Boot.h"

namespace {

// Turns that touch what the pictures stand for: tabs, radios, boxes, buttons, drags on a grid and on a slider, pages.
SCENE& TouchEverything(SCENE& Scene)
{
    Scene.Turns(2).Ticks(2).Click(60, 345).Click(296, 242).Click(500, 140);
    Scene.Drag(430, 440, {{450, 400}, {480, 300}}).Click(800, 140).Drag(400, 490, {{420, 400}, {500, 280}});
    return Scene.Click(600, 570).Click(745, 570).Ticks(2);
}

class MissingPicture : public testing::TestWithParam<int> {};

TEST_P(MissingPicture, IsNoReasonToFail)
{
    SCENE Scene;
    Scene.Line("artwork " + std::to_string(GetParam()) + " none");
    const RUN Run = TouchEverything(Scene).Play();
    EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
    EXPECT_EQ(Run.Named("CloseCursor").size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Each, MissingPicture,
                         testing::Values(2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 26));

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
    std::vector<UINT32> Before;
    {
        const BOOT Boot({});
        Before.assign(Boot.Display.Words(), Boot.Display.Words() + 1024 * 768);
    }
    const RUN Run = SCENE().Line("pointer 600 10").Turns(2).Screenshot("with").Turns().Play();
    SCENE Cornerless;
    Cornerless.Line("pointer 600 10").Line("artwork 2 none").Line("artwork 3 none");
    const RUN Bare = Cornerless.Turns(2).Screenshot("without").Turns().Play();
    const PICTURE& With = Run.Picture("with");
    // The frame is 942 by 694 at (43, 36), its corners 20 by 20.
    EXPECT_TRUE(SameRectangle(With, Before, 0, 100, 43, 600));
    EXPECT_TRUE(SameRectangle(With, Before, 985, 100, 39, 600));
    EXPECT_TRUE(SameRectangle(With, Before, 43, 730, 942, 38));
    for (const UINTN X : {43u, 984u}) {
        for (const UINTN Y : {36u, 729u}) {
            EXPECT_EQ(PixelAt(With, X, Y), PixelAt(Before, X, Y)) << X << ", " << Y;
            EXPECT_EQ(CountColor(With, 0xFF00FF, X == 43 ? 43 : 965, Y == 36 ? 36 : 710, 20, 20), 0u);
        }
    }
    // Beyond the corners nothing depends on them, and the picture under them is the frame's own.
    EXPECT_TRUE(SameRectangle(With, Bare.Picture("without"), 63, 36, 902, 694));
    EXPECT_FALSE(SameRectangle(With, Bare.Picture("without"), 43, 36, 20, 20));
    EXPECT_FALSE(SameRectangle(With, Bare.Picture("without"), 965, 710, 20, 20));
}

TEST(MissingArtwork, SectionsOfTheOtherTypeServeAsWell)
{
    SCENE Cornerless;
    Cornerless.Line("pointer 600 10").Line("artwork 2 none").Line("artwork 3 none");
    const RUN Raw = Cornerless.Turns(3).Screenshot("end").Turns().Play();
    const RUN Other = SCENE().Line("pointer 600 10").Line("artwork type 16").Turns(3).Screenshot("end").Turns().Play();
    for (const CALL_LINE& Line : Other.Named("GetArtworkSection")) {
        // The corners alone are always asked for as type 25, and so aren't found.
        const bool Corner = Line.Number("instance") == 2 || Line.Number("instance") == 3;
        EXPECT_EQ(Line.Number("type"), Corner ? 25u : 16u) << Line.Text("instance");
    }
    EXPECT_TRUE(SameRectangle(Raw.Picture("end"), Other.Picture("end"), 0, 0, 1024, 768));
}

} // namespace
