#include "tests/console/ConsoleBench.h"

namespace {

TEST(Teardown, ClosesTheOldShellsInterfaceOnceAllControlsAreGone)
{
    for (const bool InShell : {false, true}) {
        SCOPED_TRACE(InShell);
        SCENE Scene;
        if (InShell) {
            Scene.Options.ShellArguments.emplace();
        }
        const RUN Run = Scene.Turns(2).Key("esc").Play();
        std::string Order; // events one after the other count once
        for (const CALL_LINE& Line : Run.Calls) {
            if (Line.Turn == 0) {
                continue;
            }
            if (Line.Call == "CloseEvent" && !Order.ends_with('E')) {
                Order += 'E';
            } else if (Line.Call == "ClearScreen") {
                Order += 'C';
            } else if (Line.Call == "CloseProtocol" && Line.Text("guid") == "47C7B223-C42A-11D2-8E57-00A0C969723B") {
                Order += 'P';
            } else if (Line.Call == "SetVariable" && Line.Text("name") == "GlobalVariable") {
                Order += 'V';
            } else if (Line.Call == "CloseCursor") {
                Order += 'X';
            }
        }
        EXPECT_EQ(Order, InShell ? "ECPVXE" : "EPVXE");
    }
}

} // namespace
