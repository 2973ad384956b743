// What a person sees of the texts: each stands on one ground, with no box of another shade around it, and can be read.
#include <cmath>

#include "tests/console/ConsoleBench.h"

namespace {

enum SIDES { ALL_SIDES, NOT_RIGHT, NOT_LEFT }; // value and unit of a readout stand on grounds of their own
enum COLORS { OWN_GROUND, PALETTE_GROUND };    // whether the pictures choose what the text stands on

struct TEXT_PLACE {
    std::string Name;
    AREA Area;
    UINT32 Color;
    COLORS Ground;
    SIDES Sides = ALL_SIDES;
};

constexpr int gRow = 19; // a character cell of the system font is 8 by 19

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
    const AREA& Area = Place.Area;
    const int Right = Area.X + Area.Width;
    UINTN Letters = 0;
    double Lowest = 21;
    for (int Y = Area.Y; Y < Area.Y + Area.Height; Y++) {
        const UINT32 Ground = PixelAt(Picture, {Place.Sides == NOT_LEFT ? Right : Area.X - 1, Y});
        if (Place.Sides == ALL_SIDES) {
            EXPECT_LE(Distance(PixelAt(Picture, {Right, Y}), Ground), gSameRow) << Place.Name << ": right of row " << Y;
        }
        for (int X = Area.X; X < Right; X++) {
            const UINT32 Color = PixelAt(Picture, {X, Y});
            if (Color == Place.Color) {
                Letters++;
                Lowest = std::min(Lowest, Contrast(Color, Ground));
            } else {
                ASSERT_LE(Distance(Color, Ground), gSameRow) << Place.Name << ": " << X << ", " << Y;
            }
        }
    }
    for (const int Y : {Area.Y, Area.Y + Area.Height}) {
        for (int X = Area.X; X < Right; X++) {
            const UINT32 Above = PixelAt(Picture, {X, Y - 1});
            const UINT32 Below = PixelAt(Picture, {X, Y});
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

std::vector<TEXT_PLACE> PlacesAtRest()
{
    constexpr UINT32 Caption = 0x767676;
    constexpr UINT32 Label = 0x7B7B7B;
    constexpr UINT32 Heading = 0x007ADA;
    std::vector<TEXT_PLACE> Places = {
        {"About", Button(ABOUT).Part(16, 4, 40, gRow), Caption, OWN_GROUND},
        {"Help", Button(HELP).Part(16, 4, 32, gRow), Caption, OWN_GROUND},
        {"Exit", Button(EXIT).Part(10, 6, 32, gRow), Caption, OWN_GROUND},
        {"Full speed", Button(FULL_SPEED).Part(12, 3, 112, gRow), Caption, OWN_GROUND},
        {"Default", Button(DEFAULT).Part(12, 3, 112, gRow), Caption, OWN_GROUND},
        {"Cancel", Button(CANCEL).Part(12, 3, 112, gRow), Caption, OWN_GROUND},
        {"panel title", {311, 232, 88, gRow}, Heading, PALETTE_GROUND},
        {"caption of the gauges", {69, 600, 64, gRow}, Heading, PALETTE_GROUND},
    };
    for (int Fan = gFirstFan; Fan <= gLastFan; Fan++) {
        const std::string Name = "fan " + std::to_string(Fan);
        const AREA Value = FanNumber(Fan);
        Places.push_back({Name + "'s tab", Tab(Fan).Part(20, 38, 60, gRow), Caption, OWN_GROUND});
        Places.push_back({Name + "'s value", Value, Fan == gFirstFan ? 0x19F8F5u : Label, PALETTE_GROUND, NOT_RIGHT});
        // Behind the blank that the unit begins with, in which the line between the two cells stands.
        Places.push_back({Name + "'s unit", Value.Part(48, 0, 24, gRow), Label, PALETTE_GROUND});
    }
    for (int Number = 0; Number < 3; Number++) {
        const std::string Name = "source " + std::to_string(Number);
        Places.push_back({Name + "'s name", Source(Number).Part(56, 7, 48, gRow), 0xF5F5F5, OWN_GROUND});
        Places.push_back({Name + "'s value", SourceNumber(Number), 0xF7B500, PALETTE_GROUND, NOT_RIGHT});
        Places.push_back(
            {Name + "'s unit", SourceNumber(Number).Part(41, 0, 15, gRow), Label, PALETTE_GROUND, NOT_LEFT});
    }
    constexpr UINT32 NodeColors[] = {0x04961F, 0x006DF7, 0xFAB000, 0xCA0000};
    for (int Node = 0; Node < 4; Node++) {
        // From behind the icons to the panel's outline.
        Places.push_back({"legend of node " + std::to_string(Node + 1),
                          {868, 260 + 29 * Node, 88, gRow},
                          NodeColors[Node],
                          PALETTE_GROUND});
    }
    for (int Number = 0; Number < 7; Number++) {
        // A gauge is 127 wide; its last column is left to look at.
        const std::string Name = "gauge " + std::to_string(Number);
        Places.push_back({Name + "'s value", Gauge(Number).Part(0, 0, 126, gRow), 0x606060, PALETTE_GROUND});
        Places.push_back({Name + "'s title", Gauge(Number).Part(0, 62, 126, gRow), 0x646464, PALETTE_GROUND});
    }
    return Places;
}

} // namespace

TEST(Looks, EveryTextAtRestStandsOnOneGroundAndCanBeRead)
{
    const RUN Run = SCENE().Move({900, 450}).Ticks(20).Screenshot("rest").Play();
    for (const TEXT_PLACE& Place : PlacesAtRest()) {
        ExpectOnOneGround(Run.Picture("rest"), Place);
    }
}

TEST(Looks, CaptionsUnderThePointerStandOnOneGroundAndCanBeRead)
{
    const std::pair<PLACE, std::string> Hovers[] = {
        // the pointer stays beside the caption, and its picture of 16 by 24 too
        {{832, 83}, "About"},       {{905, 83}, "Help"},         {{976, 83}, "Exit"},
        {{664, 570}, "Full speed"}, {{480, 130}, "fan 6's tab"}, {{60, 345}, "source 1's name"}};
    SCENE Scene;
    Scene.Ticks(3);
    for (const auto& [Pointer, Name] : Hovers) {
        Scene.Move(Pointer).Turns(3).Ticks(3).Screenshot(Name);
    }
    const RUN Run = Scene.Play();
    for (TEXT_PLACE& Place : PlacesAtRest()) {
        if (std::any_of(std::begin(Hovers), std::end(Hovers),
                        [&](const auto& Hover) { return Hover.second == Place.Name; })) {
            Place.Color = Place.Name.starts_with("source") ? Place.Color : 0xFFFFFF;
            ExpectOnOneGround(Run.Picture(Place.Name), Place);
        }
    }
}

TEST(Looks, TextsOfAMessageBoxStandOnOneGroundAndCanBeRead)
{
    const RUN Run = SCENE().Ticks(3).Button(HELP).Turns(3).Move({900, 600}).Turns(3).Screenshot("help").Play();
    // The box begins at (300, 159), its text 20 right and 16 below; two rows, two blank ones, four rows.
    constexpr UINT32 Letter = 0xC8C8C8;
    for (const int Line : {0, 1, 4, 5, 6, 7}) {
        ExpectOnOneGround(Run.Picture("help"),
                          {"line " + std::to_string(Line), {320, 175 + gRow * Line, 352, gRow}, Letter, OWN_GROUND});
    }
    ExpectOnOneGround(Run.Picture("help"), {"OK", {484, 381, 32, gRow}, Letter, OWN_GROUND});
}

TEST(Looks, TheFormInWhichAFirmwareHandsOutTextsIsNotToBeSeen)
{
    SCENE Scene;
    Scene.Ticks(3).Tab(9).Ticks(3).Screenshot("page").Button(HELP).Turns(3).Screenshot("help");
    const RUN Close = Scene.Play();
    Scene.Options.RoomyTextPictures = true;
    const RUN Roomy = Scene.Play();
    for (const char* Name : {"page", "help"}) {
        ExpectSamePicture(Close.Picture(Name), Roomy.Picture(Name));
    }
}

TEST(Looks, APageShowsItsOwnNodesFromItsFirstVisitOn)
{
    // Tabs of fans with their curve on; of each the second node's place, told by the node's color around its number.
    const struct {
        const char* Board;
        int Fan;
        GRID Grid;
    } Pages[] = {{"full", 5, EIGHT_ROWS}, {"kind0", 5, SIX_ROWS}, {"full", 6, SIX_ROWS}, {"full", 7, SIX_ROWS}};
    for (const auto& Page : Pages) {
        const RUN Run = SCENE(Page.Board).Ticks(2).Tab(Page.Fan).Ticks(2).Screenshot("page").Play();
        const PLACE Node = NodePlace(Page.Grid, 1);
        const UINTN InNode = CountColor(Run.Picture("page"), 0x006DF7, {Node.X - 15, Node.Y - 15, 30, 30});
        EXPECT_GT(InNode, 100u) << Page.Board << " " << Page.Fan;
        EXPECT_EQ(CountColor(Run.Picture("page"), 0x006DF7, gFrame), InNode) << "another page's node";
    }
}
