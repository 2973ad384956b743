// What the console's layout and its text count on in the pictures themselves.
#include <algorithm>
#include <cstdlib>
#include <set>

#include <gtest/gtest.h>

#include "tests/board/ArtworkBench.h"

namespace {

constexpr UINT32 gKey = 0xFF00FF;

void ExpectFlat(const PICTURE& Picture, UINT32 X, UINT32 Y, UINT32 Width, UINT32 Height, UINT32 Color)
{
    ASSERT_LE(X + Width, Picture.Width);
    ASSERT_LE(Y + Height, Picture.Height);
    for (UINT32 Row = Y; Row < Y + Height; Row++) {
        for (UINT32 Column = X; Column < X + Width; Column++) {
            ASSERT_EQ(Picture.Color(Column, Row), Color) << Column << ", " << Row;
        }
    }
}

int Distance(UINT32 A, UINT32 B)
{
    int Largest = 0;
    for (UINT32 Shift = 0; Shift < 24; Shift += 8) {
        Largest = std::max(Largest, std::abs(static_cast<int>(A >> Shift & 0xFF) - static_cast<int>(B >> Shift & 0xFF)));
    }
    return Largest;
}

} // namespace

TEST(ArtworkPictures, FitTheirPlacesOnTheScreen)
{
    ARTWORK_BENCH Bench;
    // Width and height are at most what the neighbours leave; a strip's height is that of one frame.
    const struct {
        UINT32 Instance;
        UINT32 Frames;
        UINT32 MaxWidth;
        UINT32 MaxHeight;
    } Places[] = {
        {5, 4, 97, 63},   // tabs: pitch 99 with an outline on each side, down to the readouts at y 181
        {6, 4, 147, 33},  {7, 4, 147, 33}, {8, 4, 147, 33}, // pitch 147, down to the gauge plate
        {15, 4, 81, 31},  {16, 4, 81, 31},  {17, 4, 52, 31}, // pitch 81, down to the title band's foot at y 111
        {18, 4, 110, 37},                                   // up to the readouts at x 165, pitch 37
        {20, 1, 98, 39},                                    // pitch 98 and 99, down to the panel at y 220
        {21, 1, 108, 37},                                   // up to the panel's outline at x 273, pitch 37
        {22, 1, 60, 27},                                    // panel ends at y 548
        {23, 1, 63, 27},                                    // up to the temperature labels at x 391
        {24, 1, 60, 27},
    };
    for (const auto& Place : Places) {
        const PICTURE Picture = Bench.Jpeg(Place.Instance);
        ASSERT_GT(Picture.Width, 0u) << Place.Instance;
        EXPECT_LE(Picture.Width, Place.MaxWidth) << Place.Instance;
        EXPECT_EQ(Picture.Height % Place.Frames, 0u) << Place.Instance;
        EXPECT_LE(Picture.Height / Place.Frames, Place.MaxHeight) << Place.Instance;
    }
    const PICTURE CheckBox = Bench.Bmp(19);
    EXPECT_LE(CheckBox.Width, 311u - 286);
    EXPECT_EQ(CheckBox.Height % 4, 0u);
    EXPECT_GT(CheckBox.Width, 0u);
}

TEST(ArtworkPictures, OfTheFrameHoldEverythingThatStandsOnIt)
{
    ARTWORK_BENCH Bench;
    const PICTURE Frame = Bench.Jpeg(4);
    EXPECT_GT(43 + Frame.Width, 966u + 1); // the last tab's outline; the gauges end before
    EXPECT_GT(36 + Frame.Height, 705u);
    EXPECT_LE(43 + Frame.Width, 1024u);
    EXPECT_LE(36 + Frame.Height, 768u);
    const PICTURE Exit = Bench.Jpeg(17);
    EXPECT_GE(Exit.Width, 10u + 32); // its caption of four letters
    EXPECT_LT(932 + Exit.Width, 43 + Frame.Width);
}

TEST(ArtworkPictures, HaveTheSizesThatTheControlsCalculateWith)
{
    ARTWORK_BENCH Bench;
    const struct {
        UINT32 Instance;
        UINT32 Width;
        UINT32 Height;
    } Sizes[] = {{11, 30, 4 * 30}, {13, 30, 4 * 40}, {26, 30, 40}};
    for (const auto& Size : Sizes) {
        const PICTURE Picture = Bench.Bmp(Size.Instance);
        EXPECT_EQ(Picture.Width, Size.Width) << Size.Instance;
        EXPECT_EQ(Picture.Height, Size.Height) << Size.Instance;
    }
    for (const UINT32 Digits : {9u, 10u}) {
        const PICTURE Strip = Bench.Jpeg(Digits);
        EXPECT_EQ(Strip.Width, 6u); // the scales place their labels by it
        EXPECT_EQ(Strip.Height % 14, 0u);
        EXPECT_GE(Strip.Height / 14, 7u);
        EXPECT_LE(Strip.Height / 14, 14u); // the white label of 19 rows has to cover it
    }
}

TEST(ArtworkPictures, AreExactlyFlatUnderTheirText)
{
    ARTWORK_BENCH Bench;
    const PICTURE Frame = Bench.Jpeg(4);
    ExpectFlat(Frame, 69 - 43, 600 - 36, 400, 19, 0x161616);     // caption of the gauges
    ExpectFlat(Frame, 69 - 43, 624 - 36, 7 * 127, 81, 0x121212); // where a voltage is missing, its place looks alike
    const PICTURE Fan = Bench.Jpeg(20);
    ExpectFlat(Fan, 6, 8, 40, 19, 0x0C0C0C);
    ExpectFlat(Fan, 46 + 8, 8, 24, 19, 0x121212); // " RPM" begins with a blank
    const PICTURE Temperature = Bench.Jpeg(21);
    ExpectFlat(Temperature, 16, 8, 40, 19, 0x0C0C0C);
    ExpectFlat(Temperature, 57, 8, 15, 19, 0x121212); // the line between value and unit stands in the first column
    // Captions of buttons and tabs at rest.
    const struct {
        UINT32 Instance;
        UINT32 X;
        UINT32 Y;
        UINT32 Width;
    } Captions[] = {{5, 8, 40, 80}, {6, 8, 8, 120}, {15, 8, 8, 56}, {16, 8, 8, 48}, {17, 8, 8, 40}};
    for (const auto& Caption : Captions) {
        ExpectFlat(Bench.Jpeg(Caption.Instance), Caption.X, Caption.Y, Caption.Width, 15, 0x040404);
    }
}

TEST(ArtworkPictures, OnThePanelMeltIntoIt)
{
    ARTWORK_BENCH Bench;
    constexpr UINT32 Panel = 0x242424;
    for (const UINT32 Instance : {9u, 10u, 22u, 23u, 24u}) {
        const PICTURE Picture = Bench.Jpeg(Instance);
        int PanelPixels = 0;
        for (UINT32 Row = 0; Row < Picture.Height; Row++) {
            // Beside a coloured glyph the coding misses by up to three steps, which nobody sees; a haze would show.
            const int Off = Distance(Picture.Color(Picture.Width - 1, Row), Panel);
            EXPECT_TRUE(Off <= 3 || Off > 60) << Instance << " row " << Row << " off " << Off;
            PanelPixels += Off <= 3 ? 1 : 0;
        }
        EXPECT_GT(PanelPixels, static_cast<int>(Picture.Height) / 2) << Instance;
    }
    const PICTURE CheckBox = Bench.Bmp(19);
    for (UINT32 Frame = 0; Frame < 4; Frame++) {
        EXPECT_EQ(CheckBox.Color(0, Frame * CheckBox.Height / 4), Panel);
    }
}

TEST(ArtworkPictures, OfStripsDifferFromFrameToFrame)
{
    ARTWORK_BENCH Bench;
    const struct {
        UINT32 Instance;
        bool IsJpeg;
    } Strips[] = {{5, true},  {6, true},  {7, true},  {8, true},   {15, true},  {16, true},
                  {17, true}, {18, true}, {19, false}, {11, false}, {13, false}};
    for (const auto& Strip : Strips) {
        const PICTURE Picture = Strip.IsJpeg ? Bench.Jpeg(Strip.Instance) : Bench.Bmp(Strip.Instance);
        const UINT32 Height = Picture.Height / 4;
        for (UINT32 First = 0; First < 4; First++) {
            for (UINT32 Second = First + 1; Second < 4; Second++) {
                int Differing = 0;
                for (UINT32 Row = 0; Row < Height; Row++) {
                    for (UINT32 Column = 0; Column < Picture.Width; Column++) {
                        Differing += Distance(Picture.Color(Column, First * Height + Row),
                                              Picture.Color(Column, Second * Height + Row)) > 8;
                    }
                }
                EXPECT_GT(Differing, 20) << Strip.Instance << ": " << First << " and " << Second;
            }
        }
    }
}

TEST(ArtworkPictures, WithCutOutsHaveNoFringeOfTheKeyColor)
{
    ARTWORK_BENCH Bench;
    for (const UINT32 Instance : {2u, 3u, 11u, 13u, 26u}) {
        const PICTURE Picture = Bench.Bmp(Instance);
        int Keyed = 0;
        for (UINT32 Row = 0; Row < Picture.Height; Row++) {
            for (UINT32 Column = 0; Column < Picture.Width; Column++) {
                const PIXEL& Pixel = Picture.At(Column, Row);
                if (Picture.Color(Column, Row) == gKey) {
                    Keyed++;
                } else {
                    const int Magenta = std::min(Pixel.Red, Pixel.Blue) - Pixel.Green;
                    EXPECT_LT(Magenta, 48) << Instance << ": " << Column << ", " << Row;
                }
            }
        }
        EXPECT_GT(Keyed, 10) << Instance;
        EXPECT_LT(Keyed, static_cast<int>(Picture.Width * Picture.Height) * 3 / 4) << Instance;
    }
}

TEST(ArtworkPictures, OfTheCornersContinueTheFrameOnBothSides)
{
    ARTWORK_BENCH Bench;
    const PICTURE Frame = Bench.Jpeg(4);
    for (const UINT32 Instance : {2u, 3u}) {
        const PICTURE Corner = Bench.Bmp(Instance);
        const bool Lower = Instance == 2;
        const UINT32 Top = Lower ? Frame.Height - Corner.Height : 0;
        EXPECT_EQ(Corner.Color(0, Lower ? Corner.Height - 1 : 0), gKey);
        for (UINT32 Row = 0; Row < Corner.Height; Row++) {
            for (UINT32 Column = 0; Column < Corner.Width; Column++) {
                // Around the outline the frame's picture is blended into the black outside, the corner isn't.
                constexpr UINT32 Radius = 14;
                const bool OnOutline = Column < Radius && (Lower ? Row + Radius >= Corner.Height : Row < Radius);
                if (Corner.Color(Column, Row) == gKey || (OnOutline && Distance(Corner.Color(Column, Row), 0x060606) < 24)) {
                    continue;
                }
                const UINT32 Color = Corner.Color(Column, Row);
                EXPECT_LE(Distance(Frame.Color(Column, Top + Row), Color), 3) << Column << ", " << Row;
                EXPECT_LE(Distance(Frame.Color(Frame.Width - 1 - Column, Top + Row), Color), 3)
                    << "right " << Column << ", " << Row;
            }
        }
    }
}

TEST(ArtworkPictures, OfThePointerLooksTheSameInTheMiddleAndAtTheEdgeOfTheScreen)
{
    ARTWORK_BENCH Bench;
    const PICTURE Pointer = Bench.Bmp(0, gCursorFileGuid);
    ASSERT_GT(Pointer.Width, 0u);
    int Light = 0;
    int Dark = 0;
    for (const PIXEL& Pixel : Pointer.Pixels) {
        // In the middle a pixel with any zero byte is left out, at the edge only a black one: no pixel may differ.
        const bool AnyZero = Pixel.Blue == 0 || Pixel.Green == 0 || Pixel.Red == 0;
        const bool Black = Pixel.Blue == 0 && Pixel.Green == 0 && Pixel.Red == 0;
        EXPECT_EQ(AnyZero, Black);
        Light += Pixel.Green > 200;
        Dark += !Black && Pixel.Green < 64;
    }
    EXPECT_GT(Light, 40); // seen on dark
    EXPECT_GT(Dark, 20);  // seen on light
    EXPECT_NE(Pointer.Color(0, 0), 0u) << "the tip is where it points";
}
