// The two faces of the scales around the chart, and the labels that light up during a drag. Where digits and captions stand
// in either face is in the reference pictures.
#include "tests/console/ConsoleBench.h"

namespace {

constexpr AREA gFoot = {391, 520, 400, 25};  // the panel's foot between the captions, where the temperatures are
constexpr AREA gLeft = {330, 247, 40, 270};  // of duty or degrees
constexpr AREA gRight = {800, 251, 33, 260}; // of revolutions

UINTN White(const PICTURE& Picture, const AREA& Area) { return CountColor(Picture, 0xFFFFFF, Area); }

// Whether a label of two digits and nothing else is lit in a scale.
bool LightsOnly(const PICTURE& Picture, const AREA& Scale, PLACE Label)
{
    const UINTN Lit = White(Picture, {Label.X, Label.Y, 16, 19});
    return Lit > 0 && Lit == White(Picture, Scale);
}

TEST(Scales, ChangeTheirFaceForADragAndComeBackExactly)
{
    for (const auto& [Fan, Grip] :
         {std::pair{4, NodePlace(EIGHT_ROWS, 1)}, {7, NodePlace(SIX_ROWS, 1)}, {9, ThumbPlace(3)}}) {
        SCOPED_TRACE(Fan);
        SCENE Scene;
        Scene.Tab(Fan).Away().Screenshot("rest").Move(Grip).Press().Turns(4).Screenshot("drag");
        // There and back, so that labels have lit up in several places; the clock hasn't come to a tick.
        for (const auto& [X, Y] : {std::pair{-45, 0}, {60, 60}, {0, 0}, {30, -40}, {0, 80}, {0, 0}}) {
            Scene.Hover(Grip.By(X, Y));
        }
        const RUN Run = Scene.Release(1000).Turns().Away().Screenshot("back").Play();
        Run.ExpectSame("rest", "back", gPanel);
        const auto IsPlain = [&Run](const char* Name, const AREA& Area) {
            return CountColor(Run.Picture(Name), gPanelGray, Area) == static_cast<UINTN>(Area.Width * Area.Height);
        };
        EXPECT_TRUE(IsPlain("rest", gFoot) && !IsPlain("rest", gRight));
        EXPECT_TRUE(!IsPlain("drag", gFoot) && IsPlain("drag", gRight));
        EXPECT_TRUE(Run.Differ("rest", "drag", gLeft));
    }
}

TEST(Scales, ALitLabelGoesInOneTurnAndTheNextComesInTheTurnAfter)
{
    // Node 1 of fan 4 goes from column 3, row 4 to column 4, row 5.
    const PLACE Node1 = NodePlace(EIGHT_ROWS, 1);
    SCENE Scene;
    for (const int Item : {0, 1, 2, 4, 5, 6, 7, 8, 9, 10}) {
        Scene.Reading(Item, 7);
    }
    const TURN First = Scene.Move(Node1).Press().Turns(2).Mark();
    const TURN Moved = Scene.Screenshot("first").Move(Node1.By(30, 30)).Mark();
    const RUN Run = Scene.Screenshot("between").Turns().Screenshot("second").Turns(2).Release(1000).Turns(2).Play();
    const auto LastTexts = [&Run](TURN Turn) {
        const std::vector<std::string> Texts = Run.Texts(Turn);
        return std::vector<std::string>(Texts.end() - std::min<INT64>(4, static_cast<INT64>(Texts.size())),
                                        Texts.end());
    };
    EXPECT_EQ(LastTexts(First), (std::vector<std::string>{"55", "55", "50", "50"}));
    EXPECT_EQ(LastTexts(Moved), (std::vector<std::string>{"  ", "  ", "    ", "    "}));
    EXPECT_EQ(LastTexts(Moved + 1), (std::vector<std::string>{"60", "60", "37.5", "37.5"}));

    // Column c's label is at (2c + 1) x 15 + 376, row r's ends at 362 and begins at 30r + 270.
    EXPECT_TRUE(LightsOnly(Run.Picture("first"), gFoot, {481, 520}));
    EXPECT_TRUE(LightsOnly(Run.Picture("first"), gLeft, {346, 390}));
    EXPECT_EQ(White(Run.Picture("between"), gFoot) + White(Run.Picture("between"), gLeft), 0u);
    EXPECT_TRUE(LightsOnly(Run.Picture("second"), gFoot, {511, 520}));
    EXPECT_EQ(White(Run.Picture("second"), {330, 420, 32, 19}), White(Run.Picture("second"), gLeft));
}

TEST(Scales, AThumbLightsAllTemperaturesAndItsRow)
{
    SCENE Scene;
    // The highlights look before the slider's step does, so they follow a turn later than those of a node.
    Scene.Tab(9).Move(ThumbPlace(3)).Press().Turns(3).Screenshot("lit").Move(ThumbPlace(4)).Turns().Screenshot("gone");
    const RUN Run = Scene.Turns().Screenshot("lit again").Turns().Release(1000).Turns(2).Play();
    for (int Column = 0; Column < 13; Column++) {
        EXPECT_GT(White(Run.Picture("lit"), {391 + 30 * Column, 520, 16, 19}), 0u) << Column;
    }
    // 70% at y 393, 80% at 353. Between the two the old label is gone.
    EXPECT_TRUE(LightsOnly(Run.Picture("lit"), gLeft, {346, 393}));
    EXPECT_EQ(White(Run.Picture("gone"), gLeft), 0u);
    EXPECT_TRUE(LightsOnly(Run.Picture("lit again"), gLeft, {346, 353}));
}

} // namespace
