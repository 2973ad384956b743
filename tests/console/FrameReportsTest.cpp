#include "tests/console/ConsoleBench.h"

namespace {

using TEXTS = std::vector<std::string>;

// Texts of the report lines of a unit.
TEXTS ReportsOf(const RUN& Run, const std::string& Unit)
{
    TEXTS Texts;
    const std::string& Errors = Run.Session.ErrorText;
    for (size_t At = 0; (At = Errors.find("ASSERT " + Unit, At)) != std::string::npos;) {
        const size_t Text = Errors.find("): ", At) + 3;
        At = Errors.find('\n', Text);
        Texts.push_back(Errors.substr(Text, At - Text));
    }
    while (!Texts.empty() && Texts.back().ends_with('\r')) {
        Texts.back().pop_back();
    }
    return Texts;
}

// The allocation of so many bytes that comes first after the frame's picture was looked up, as the pool counts.
UINT64 AllocationOfFrame(const RUN& Run, UINT64 Bytes)
{
    bool LookedUp = false;
    for (const CALL_LINE& Line : Run.Calls) {
        LookedUp = LookedUp || (Line.Call == "GetArtworkSection" && Line.Number("instance") == 4);
        if (LookedUp && Line.Call == "AllocatePool" && Line.Number("bytes") == Bytes) {
            return Line.Number("block");
        }
    }
    ADD_FAILURE() << "no block of " << Bytes << " bytes";
    return 0;
}

TEST(FrameReports, TellEachFailureWhereItHappens)
{
    SCENE Whole;
    Whole.Options.TracePool = true;
    const RUN Good = Whole.Play();
    const UINT64 Picture = AllocationOfFrame(Good, 942 * 694 * 4);
    const UINT64 OldScreen = AllocationOfFrame(Good, 1024 * 768 * 4);
    ASSERT_LT(Picture, OldScreen);

    const std::string Pool = "LocatePool Fail";
    const std::string Corner = "ConvertBmpToGopBltA Fail";
    const struct {
        const char* What;
        std::vector<const char*> Lines; // of the script
        UINT64 PoolFail;                // the allocation that fails alone
        UINT64 PoolLimit;               // the one from which on all fail
        TEXTS OfFrame;
        TEXTS OfArtwork;
    } Cases[] = {
        {"nothing", {}, 0, 0, {}, {}},
        {"no upper corner", {"artwork 3 none"}, 0, 0, {}, {}},
        {"no lower corner", {"artwork 2 none"}, 0, 0, {}, {}},
        {"no picture", {"artwork 4 none"}, 0, 0, {Pool}, {}},
        {"no picture and no corners", {"artwork 4 none", "artwork 3 none", "artwork 2 none"}, 0, 0, {Pool}, {}},
        // The picture's own failure is told by who crops it, and the old screen's allocation after it was well.
        {"no pool for the picture", {}, Picture, 0, {}, {"LocatePool fail"}},
        // Told at once, and again before the corners; the corners' own allocations then make it good.
        {"no pool for the old screen", {}, OldScreen, 0, {Pool, Pool}, {}},
        // Nothing makes it good here.
        {"nor an upper corner", {"artwork 3 none"}, OldScreen, 0, {Pool, Pool, Corner}, {}},
        {"no pool from the old screen on", {}, 0, OldScreen, {Pool, Pool, Corner}, {}},
    };
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.What);
        SCENE Scene;
        for (const char* Line : Case.Lines) {
            Scene.Line(Line);
        }
        Scene.Options.PoolFail = Case.PoolFail;
        Scene.Options.PoolLimit = Case.PoolLimit;
        const RUN Run = Scene.Turns(2).Play();
        EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
        EXPECT_EQ(ReportsOf(Run, "Ventaraframe"), Case.OfFrame);
        if (Case.PoolLimit == 0) {
            EXPECT_EQ(ReportsOf(Run, "Artwork"), Case.OfArtwork);
        }
    }
}

} // namespace
