// Names that another board may give: none, of the length that has room, beyond it, and beyond what is drawn at all.
#include "tests/console/ConsoleBench.h"

namespace {

struct PLACE {
    int Item;
    UINTN Room;                // characters
    UINTN TextX, TextY;        // of the first one
    UINTN X, Y, Width, Height; // what a name may change
};

constexpr PLACE gPlaces[] = {
    {0, 6, 111, 303, 55, 296, 110, 37},    // a source's radio
    {4, 8, 307, 156, 275, 118, 97, 63},    // a fan's tab
    {13, 15, 323, 686, 323, 624, 127, 81}, // a voltage's gauge
};

// The first screen when these items' names have Length characters, or More than there is room for; with neither, none.
PICTURE FirstScreen(UINTN Length, int More = -1)
{
    SCENE Scene;
    for (const PLACE& Place : gPlaces) {
        const UINTN Count = More < 0 ? Length : Place.Room + static_cast<UINTN>(More);
        Scene.Line("string " + std::to_string(Place.Item) + " " + (Count == 0 ? "null" : std::string(Count, 'W')));
    }
    return Scene.Turns().Screenshot("s").Turns().Play().Picture("s");
}

// The picture without what names may change.
PICTURE Rest(PICTURE Picture)
{
    for (const PLACE& Place : gPlaces) {
        for (UINTN Row = Place.Y; Row < Place.Y + Place.Height; Row++) {
            std::fill_n(Picture.begin() + static_cast<std::ptrdiff_t>(Row * 1024 + Place.X), Place.Width, 0);
        }
    }
    return Picture;
}

TEST(Names, OfAnyLengthStayInTheirPlacesAndTooLongOnesAreLeftOut)
{
    const PICTURE None = FirstScreen(0);
    const PICTURE Full = FirstScreen(0, 0);
    const PICTURE More = FirstScreen(0, 1);
    const PICTURE Most = FirstScreen(59); // 63 with a tab's four blanks
    EXPECT_TRUE(FirstScreen(64) == None);
    EXPECT_TRUE(Rest(Full) == Rest(None));
    EXPECT_TRUE(Rest(More) == Rest(None));
    EXPECT_TRUE(Rest(Most) == Rest(None));
    for (const PLACE& Place : gPlaces) {
        SCOPED_TRACE(Place.Item);
        for (UINTN Letter = 0; Letter < Place.Room; Letter++) {
            EXPECT_FALSE(SameRectangle(None, Full, Place.TextX + Letter * 8, Place.TextY, 8, 19)) << Letter;
        }
        EXPECT_TRUE(SameRectangle(Full, More, Place.TextX, Place.TextY, Place.Room * 8, 19)) << "what fits is shown";
        EXPECT_TRUE(SameRectangle(Full, Most, Place.TextX, Place.TextY, Place.Room * 8, 19));
    }
}

} // namespace
