// The example of a board of one's own does what docs/board-services.md says of it: the console runs on it.
#include "docs/examples/minimal_board.h"
#include "tests/console/ConsoleBench.h"

namespace {

TEST(MinimalBoard, CarriesTheConsoleThroughACurveAndAllCommands)
{
    SCENE Scene;
    Scene.Options.Source = &gMinimalBoard;
    Scene.Ticks(3);
    Scene.Node(2, {1, -1}); // the third node to 75 degrees and 87.5%
    Scene.Key("f").Ticks(3).Key("d").Ticks(3).Key("c").Ticks(3).Screenshot("end");
    const RUN Run = Scene.Play();

    EXPECT_EQ(Run.Session.Statuses, std::vector<EFI_STATUS>{EFI_SUCCESS});
    EXPECT_EQ(Run.Writes(), WRITES{SettingOf(4).Node(2, {1, -1}).Level(1)});
    EXPECT_EQ(Run.Named("SetAllFansFullSpeed").size(), 1u);
    EXPECT_EQ(Run.Named("LoadDefaultFanSettings").size(), 1u);
    EXPECT_EQ(Run.Named("RestoreFanSettings").size(), 1u);
    // The speed followed the commands: 4 of 8 steps, all of it, and 4 of 8 again.
    std::vector<UINT64> Speeds;
    for (const CALL_LINE& Call : Run.Named("GetItemValue")) {
        if (Call.Number("item") == 4 && (Speeds.empty() || Speeds.back() != Call.Number("value"))) {
            Speeds.push_back(Call.Number("value"));
        }
    }
    EXPECT_EQ(Speeds, (std::vector<UINT64>{1200, 2400, 1200}));
    // No message line of the console or of the firmware: nothing of the board was found wanting.
    EXPECT_EQ(Run.Session.OutputText + Run.Session.ErrorText, "");
}

} // namespace
