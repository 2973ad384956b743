// Names that another board may give: none, of the length that has room, beyond it, and beyond what is drawn at all.
#include "tests/console/ConsoleBench.h"

namespace {

struct NAME {
    int Item;
    int Room;    // characters
    PLACE Text;  // of the first one
    AREA Around; // what a name may change
};

constexpr NAME gNames[] = {
    {0, 6, {111, 303}, {55, 296, 110, 37}}, // a source's radio
    {4, 8, {307, 156}, Tab(4)},
    {13, 15, {323, 686}, Gauge(2)},
};

// The first screen when these items' names have Length characters, or More than there is room for; with neither, none.
PICTURE FirstScreen(int Length, int More = -1)
{
    SCENE Scene;
    for (const NAME& Name : gNames) {
        const int Count = More < 0 ? Length : Name.Room + More;
        const std::string Letters(static_cast<UINTN>(Count), 'W');
        Scene.Line("string " + std::to_string(Name.Item) + " " + (Count == 0 ? "null" : Letters));
    }
    return Scene.Turns().Screenshot("s").Play().Picture("s");
}

// The picture without what names may change.
PICTURE Rest(PICTURE Picture)
{
    for (const NAME& Name : gNames) {
        for (int Row = Name.Around.Y; Row < Name.Around.Y + Name.Around.Height; Row++) {
            std::fill_n(Picture.begin() + Row * gScreen.Width + Name.Around.X, Name.Around.Width, 0);
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
    for (const PICTURE& Named : {Full, More, Most}) {
        ExpectSamePicture(Rest(Named), Rest(None));
    }
    for (const NAME& Name : gNames) {
        SCOPED_TRACE(Name.Item);
        const AREA Text = {Name.Text.X, Name.Text.Y, Name.Room * 8, 19};
        for (int Letter = 0; Letter < Name.Room; Letter++) {
            EXPECT_TRUE(Differ(None, Full, Text.Part(8 * Letter, 0, 8, 19))) << Letter;
        }
        ExpectSamePicture(Full, More, Text); // what fits is shown
        ExpectSamePicture(Full, Most, Text);
    }
}

} // namespace
