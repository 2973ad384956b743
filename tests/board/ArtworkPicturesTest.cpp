// What the console's layout and its text count on in the pictures themselves.
#include <algorithm>
#include <cstdlib>

#include "tests/board/ArtworkBench.h"

namespace {

constexpr UINT32 gKey = 0xFF00FF;

void ExpectFlat(const DECODED& Picture, UINT32 X, UINT32 Y, UINT32 Width, UINT32 Height, UINT32 Color)
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
        Largest =
            std::max(Largest, std::abs(static_cast<int>(A >> Shift & 0xFF) - static_cast<int>(B >> Shift & 0xFF)));
    }
    return Largest;
}

using ArtworkPictures = ARTWORK_BENCH;

TEST_F(ArtworkPictures, HaveTheSizesThatTheControlsCalculateWith)
{
    const struct {
        UINT32 Instance;
        UINT32 Width;
        UINT32 Height;
    } Sizes[] = {{11, 30, 4 * 30}, {13, 30, 4 * 40}, {26, 30, 40}};
    for (const auto& Size : Sizes) {
        const DECODED Picture = Bmp(Size.Instance);
        EXPECT_EQ(Picture.Width, Size.Width) << Size.Instance;
        EXPECT_EQ(Picture.Height, Size.Height) << Size.Instance;
    }
    for (const UINT32 Digits : {9u, 10u}) {
        const DECODED Strip = Jpeg(Digits);
        EXPECT_EQ(Strip.Width, 6u); // the scales place their labels by it
        EXPECT_EQ(Strip.Height % 14, 0u);
        EXPECT_GE(Strip.Height / 14, 7u);
        EXPECT_LE(Strip.Height / 14, 14u); // the white label of 19 rows has to cover it
    }
}

TEST_F(ArtworkPictures, AreExactlyFlatUnderTheirText)
{
    const DECODED Frame = Jpeg(4);
    ExpectFlat(Frame, 69 - 43, 600 - 36, 400, 19, 0x161616);     // caption of the gauges
    ExpectFlat(Frame, 69 - 43, 624 - 36, 7 * 127, 81, 0x121212); // where a voltage is missing, its place looks alike
    const DECODED Fan = Jpeg(20);
    ExpectFlat(Fan, 6, 8, 40, 19, 0x0C0C0C);
    ExpectFlat(Fan, 46 + 8, 8, 24, 19, 0x121212); // " RPM" begins with a blank
    const DECODED Temperature = Jpeg(21);
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
        ExpectFlat(Jpeg(Caption.Instance), Caption.X, Caption.Y, Caption.Width, 15, 0x040404);
    }
}

TEST_F(ArtworkPictures, OfStripsDifferFromFrameToFrame)
{
    const struct {
        UINT32 Instance;
        bool IsJpeg;
    } Strips[] = {{5, true},  {6, true},  {7, true},   {8, true},   {15, true}, {16, true},
                  {17, true}, {18, true}, {19, false}, {11, false}, {13, false}};
    for (const auto& Strip : Strips) {
        const DECODED Picture = Strip.IsJpeg ? Jpeg(Strip.Instance) : Bmp(Strip.Instance);
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

TEST_F(ArtworkPictures, WithCutOutsHaveNoFringeOfTheKeyColor)
{
    for (const UINT32 Instance : {2u, 3u, 11u, 13u, 26u}) {
        const DECODED Picture = Bmp(Instance);
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

TEST_F(ArtworkPictures, OfThePointerLooksTheSameInTheMiddleAndAtTheEdgeOfTheScreen)
{
    const DECODED Pointer = Bmp(0, gCursorFileGuid);
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

} // namespace
