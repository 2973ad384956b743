// What a person sees stays the same whatever the firmware's way with texts, and a page shows its own nodes.
#include "tests/console/ConsoleBench.h"

namespace {

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

} // namespace
