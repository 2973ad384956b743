// What a person sees of the texts: each stands on one ground, with no box of another shade around it, and can be read.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "tests/console/ConsoleBench.h"

namespace {

enum SIDES { ALL_SIDES, NOT_RIGHT, NOT_LEFT }; // value and unit of a readout stand on grounds of their own
enum COLORS { OWN_GROUND, PALETTE_GROUND };    // whether the pictures choose what the text stands on

struct TEXT_PLACE {
    std::string Name;
    UINTN X;
    UINTN Y;
    UINTN Width;
    UINTN Height;
    UINT32 Color;
    COLORS Ground;
    SIDES Sides = ALL_SIDES;
};

constexpr UINTN gRow = 19; // a character cell of the system font is 8 by 19

int Distance(UINT32 A, UINT32 B)
{
    int Largest = 0;
    for (UINT32 Shift = 0; Shift < 24; Shift += 8) {
        const int Step = static_cast<int>(A >> Shift & 0xFF) - static_cast<int>(B >> Shift & 0xFF);
        Largest = std::max(Largest, std::abs(Step));
    }
    return Largest;
}

double Luminance(UINT32 Color)
{
    double Sum = 0;
    constexpr double Weights[3] = {0.2126, 0.7152, 0.0722};
    for (int Channel = 0; Channel < 3; Channel++) {
        const double Value = (Color >> (16 - 8 * Channel) & 0xFF) / 255.0;
        Sum += Weights[Channel] * (Value <= 0.04045 ? Value / 12.92 : std::pow((Value + 0.055) / 1.055, 2.4));
    }
    return Sum;
}

double Contrast(UINT32 A, UINT32 B)
{
    const double Lighter = std::max(Luminance(A), Luminance(B));
    const double Darker = std::min(Luminance(A), Luminance(B));
    return (Lighter + 0.05) / (Darker + 0.05);
}

// What may lie between two pixels of one ground: what the coding misses by beside a bright shape, and a gradient's step
// from row to row.
constexpr int gSameRow = 3;
constexpr int gNextRow = 8;
constexpr double gReadable = 4.5;

// The text's letters are alone on the ground that goes on outside their box, and differ from it enough.
void ExpectOnOneGround(const PICTURE& Picture, const TEXT_PLACE& Place)
{
    const bool Left = Place.Sides != NOT_LEFT;
    const bool Right = Place.Sides != NOT_RIGHT;
    UINTN Letters = 0;
    double Lowest = 21;
    for (UINTN Y = Place.Y; Y < Place.Y + Place.Height; Y++) {
        const UINT32 Ground = PixelAt(Picture, Left ? Place.X - 1 : Place.X + Place.Width, Y);
        if (Left && Right) {
            EXPECT_LE(Distance(PixelAt(Picture, Place.X + Place.Width, Y), Ground), gSameRow)
                << Place.Name << ": right of row " << Y;
        }
        for (UINTN X = Place.X; X < Place.X + Place.Width; X++) {
            const UINT32 Color = PixelAt(Picture, X, Y);
            if (Color == Place.Color) {
                Letters++;
                Lowest = std::min(Lowest, Contrast(Color, Ground));
            } else {
                ASSERT_LE(Distance(Color, Ground), gSameRow) << Place.Name << ": " << X << ", " << Y;
            }
        }
    }
    for (const UINTN Y : {Place.Y, Place.Y + Place.Height}) {
        for (UINTN X = Place.X; X < Place.X + Place.Width; X++) {
            const UINT32 Above = PixelAt(Picture, X, Y - 1);
            const UINT32 Below = PixelAt(Picture, X, Y);
            if (Above != Place.Color && Below != Place.Color) {
                ASSERT_LE(Distance(Above, Below), gNextRow) << Place.Name << ": between rows at " << X << ", " << Y;
            }
        }
    }
    EXPECT_GT(Letters, 5u) << Place.Name << ": no text here";
    if (Place.Ground == OWN_GROUND) {
        EXPECT_GE(Lowest, gReadable) << Place.Name;
    }
}

constexpr UINTN gTabX[] = {275, 374, 473, 572, 672, 770, 869};
constexpr UINTN gReadoutX[] = {275, 374, 473, 572, 671, 770, 869};

std::vector<TEXT_PLACE> PlacesAtRest()
{
    constexpr UINT32 Caption = 0x767676;
    constexpr UINT32 Label = 0x7B7B7B;
    constexpr UINT32 Heading = 0x007ADA;
    std::vector<TEXT_PLACE> Places = {
        {"About", 786, 85, 40, gRow, Caption, OWN_GROUND},
        {"Help", 867, 85, 32, gRow, Caption, OWN_GROUND},
        {"Exit", 942, 87, 32, gRow, Caption, OWN_GROUND},
        {"Full speed", 543, 561, 112, gRow, Caption, OWN_GROUND},
        {"Default", 690, 561, 112, gRow, Caption, OWN_GROUND},
        {"Cancel", 837, 561, 112, gRow, Caption, OWN_GROUND},
        {"panel title", 311, 232, 88, gRow, Heading, PALETTE_GROUND},
        {"caption of the gauges", 69, 600, 64, gRow, Heading, PALETTE_GROUND},
    };
    for (UINTN Fan = 0; Fan < 7; Fan++) {
        const std::string Name = "fan " + std::to_string(Fan + 4);
        const bool OnTop = Fan == 0;
        Places.push_back({Name + "'s tab", gTabX[Fan] + 20, 156, 60, gRow, Caption, OWN_GROUND});
        Places.push_back({Name + "'s value", gReadoutX[Fan] + 6, 189, 40, gRow, OnTop ? 0x19F8F5u : Label,
                          PALETTE_GROUND, NOT_RIGHT});
        // Behind the blank that the unit begins with, in which the line between the two cells stands.
        Places.push_back({Name + "'s unit", gReadoutX[Fan] + 54, 189, 24, gRow, Label, PALETTE_GROUND});
    }
    for (UINTN Source = 0; Source < 3; Source++) {
        const std::string Name = "source " + std::to_string(Source);
        const UINTN Y = 304 + 37 * Source;
        Places.push_back({Name + "'s name", 111, Y - 1, 48, gRow, 0xF5F5F5, OWN_GROUND});
        Places.push_back({Name + "'s value", 181, Y, 40, gRow, 0xF7B500, PALETTE_GROUND, NOT_RIGHT});
        Places.push_back({Name + "'s unit", 222, Y, 15, gRow, Label, PALETTE_GROUND, NOT_LEFT});
    }
    constexpr UINT32 NodeColors[] = {0x04961F, 0x006DF7, 0xFAB000, 0xCA0000};
    for (UINTN Node = 0; Node < 4; Node++) {
        // From behind the icons to the panel's outline.
        Places.push_back({"legend of node " + std::to_string(Node + 1), 868, 260 + 29 * Node, 88, gRow,
                          NodeColors[Node], PALETTE_GROUND});
    }
    for (UINTN Gauge = 0; Gauge < 7; Gauge++) {
        // A gauge is 127 wide; its last column is left to look at.
        const std::string Name = "gauge " + std::to_string(Gauge);
        Places.push_back({Name + "'s value", 69 + 127 * Gauge, 624, 126, gRow, 0x606060, PALETTE_GROUND});
        Places.push_back({Name + "'s title", 69 + 127 * Gauge, 686, 126, gRow, 0x646464, PALETTE_GROUND});
    }
    return Places;
}

} // namespace

TEST(Looks, EveryTextAtRestStandsOnOneGroundAndCanBeRead)
{
    const RUN Run = SCENE("full").Move(900, 450).Ticks(20).Screenshot("rest").Play();
    for (const TEXT_PLACE& Place : PlacesAtRest()) {
        ExpectOnOneGround(Run.Picture("rest"), Place);
    }
}

TEST(Looks, CaptionsUnderThePointerStandOnOneGroundAndCanBeRead)
{
    const struct {
        int PointerX;
        int PointerY;
        TEXT_PLACE Place;
    } Hovers[] = { // the pointer stays beside the caption, and its picture of 16 by 24 too
        {832, 83, {"About", 786, 85, 40, gRow, 0xFFFFFF, OWN_GROUND}},
        {905, 83, {"Help", 867, 85, 32, gRow, 0xFFFFFF, OWN_GROUND}},
        {976, 83, {"Exit", 942, 87, 32, gRow, 0xFFFFFF, OWN_GROUND}},
        {664, 570, {"Full speed", 543, 561, 112, gRow, 0xFFFFFF, OWN_GROUND}},
        {480, 130, {"fan 6's tab", 493, 156, 60, gRow, 0xFFFFFF, OWN_GROUND}},
        {60, 345, {"source 1's name", 111, 340, 48, gRow, 0xF5F5F5, OWN_GROUND}},
    };
    SCENE Scene("full");
    Scene.Ticks(3);
    for (const auto& Hover : Hovers) {
        Scene.Move(Hover.PointerX, Hover.PointerY).Turns(3).Ticks(3).Screenshot(Hover.Place.Name);
    }
    const RUN Run = Scene.Play();
    for (const auto& Hover : Hovers) {
        ExpectOnOneGround(Run.Picture(Hover.Place.Name), Hover.Place);
    }
}

TEST(Looks, TextsOfAMessageBoxStandOnOneGroundAndCanBeRead)
{
    SCENE Scene("full");
    Scene.Ticks(3).Click(883, 94).Turns(3).Move(900, 600).Turns(3).Screenshot("help");
    const RUN Run = Scene.Play();
    // The box begins at (300, 159), its text 20 right and 16 below; two rows, two blank ones, four rows.
    constexpr UINT32 Letter = 0xC8C8C8;
    for (const UINTN Line : {0u, 1u, 4u, 5u, 6u, 7u}) {
        ExpectOnOneGround(Run.Picture("help"), {"line " + std::to_string(Line), 320, 175 + gRow * Line, 352, gRow,
                                                Letter, OWN_GROUND});
    }
    ExpectOnOneGround(Run.Picture("help"), {"OK", 484, 381, 32, gRow, Letter, OWN_GROUND});
}

TEST(Looks, TheFormInWhichAFirmwareHandsOutTextsIsNotToBeSeen)
{
    SCENE Scene;
    Scene.Ticks(3).Click(800, 150).Ticks(3).Screenshot("page").Click(883, 94).Turns(3).Screenshot("help");
    const RUN High = Scene.Play();
    Scene.Options.LowTextPictures = true;
    const RUN Low = Scene.Play();
    EXPECT_TRUE(High.Picture("page") == Low.Picture("page"));
    EXPECT_TRUE(High.Picture("help") == Low.Picture("help"));
}

TEST(Looks, APageShowsItsOwnNodesFromItsFirstVisitOn)
{
    // Tabs of fans with their curve on; of each the second node's place, told by the node's color around its number.
    const struct {
        const char* Board;
        int TabX;
        UINTN NodeX;
        UINTN NodeY;
    } Pages[] = {{"full", 420, 487, 397}, {"kind0", 420, 457, 442}, {"full", 520, 457, 442}, {"full", 620, 457, 442}};
    for (const auto& Page : Pages) {
        const RUN Run = SCENE(Page.Board).Ticks(2).Click(Page.TabX, 150).Ticks(2).Screenshot("page").Play();
        const UINTN InNode = CountColor(Run.Picture("page"), 0x006DF7, Page.NodeX - 15, Page.NodeY - 15, 30, 30);
        EXPECT_GT(InNode, 100u) << Page.Board << " " << Page.TabX;
        EXPECT_EQ(CountColor(Run.Picture("page"), 0x006DF7, 382, 262, 391, 241), InNode) << "another page's node";
    }
}
