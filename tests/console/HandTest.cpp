// The keyboard in the mouse's place: every task can be done by it, and it reaches what answers a press and nothing else.
#include "controls/DragDropFrame.h"
#include "controls/Slider.h"
#include "gui/core/GUICore.h"
#include "tests/console/ConsoleBench.h"

extern "C" EFI_STATUS _ModuleEntryPoint(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable);

namespace {

// Strokes, each with the turns in which it comes to pass. A number behind a key says how often it is pressed.
SCENE& Strokes(SCENE& Scene, const std::vector<std::string>& Keys)
{
    for (const std::string& Key : Keys) {
        (void)Scene.Line("hand " + Key).Turns(4);
        if (Key == "grab") { // a shorter hold would wait for its end
            (void)Scene.Ticks(2);
        }
    }
    return Scene;
}

// The pointer stands on the tab of fan 4 at first, which is on top.
SCENE Begun()
{
    SCENE Scene;
    Scene.Hover(Tab(4).Center()).Ticks(2);
    return Scene;
}

// What of a run matters to the board and to the person: what was set, which pages opened, page and source at the end.
std::vector<std::string> Effects(const RUN& Run)
{
    std::vector<std::string> Effects;
    for (const CALL_LINE& Call : Run.Calls) {
        const std::string& Name = Call.Call;
        if (Name.find("Fan") != Name.npos && Name.find("Get") != 0) {
            Effects.push_back(Name + Call.Text("record"));
        } else if (Name == "CreateMessageBox") {
            Effects.push_back(Call.Text("lines"));
        } else if (Name == "SetVariable" && Call.Text("name") == "GlobalVariable") {
            Effects.push_back(Call.Text("data").substr(0, 2) + Call.Text("data").substr(32, 2));
        }
    }
    return Effects;
}

struct TASK {
    const char* Name;
    SCENE& (*ByMouse)(SCENE& Scene);
    std::vector<std::string> ByKeys;
};
const TASK gTasks[] = {
    {"ChooseATemperature", [](SCENE& S) -> SCENE& { return S.Source(1); }, {"tab 13", "space"}},
    {"DragANode",
     [](SCENE& S) -> SCENE& {
         return S.Tab(4).Node(2, {1, -1});
     },
     {"space", "tab 10", "grab", "right", "up", "grab"}},
    {"DragANodeOfSixRowsPixelByPixel",
     [](SCENE& S) -> SCENE& {
         return S.Tab(6).Node(3, {1, 1});
     },
     {"tab 2", "space", "tab 9", "grab", "shift right 16", "shift down 40", "space"}},
    {"SwitchACurveOff", [](SCENE& S) -> SCENE& { return S.Box(); }, {"tab 7", "space"}},
    {"FixALevel",
     [](SCENE& S) -> SCENE& { return S.Tab(9).Thumb(5); },
     {"tab 5", "space", "tab 2", "grab", "up 2", "grab"}},
    {"FixALevelInPlaceOfACurve",
     [](SCENE& S) -> SCENE& { return S.Tab(7).Box().Thumb(1); },
     {"tab 3", "space", "tab 4", "space", "tab", "grab", "down 9", "grab"}},
    {"SetAllFans",
     [](SCENE& S) -> SCENE& { return S.Button(FULL_SPEED).Button(DEFAULT).Button(CANCEL); },
     {"back 6", "space", "tab", "space", "tab", "space"}},
    {"ReadThePages",
     [](SCENE& S) -> SCENE& { return S.Button(ABOUT).Key("enter").Button(HELP).Key("esc"); },
     {"back 3", "space", "tab", "grab", "tab", "space", "tab", "space"}},
};

TEST(Hand, DoesEveryTaskAsTheMouseDoesIt)
{
    const std::vector<std::string> Nothing = Effects(Begun().Play());
    for (const TASK& Task : gTasks) {
        SCOPED_TRACE(Task.Name);
        SCENE Mouse = Begun();
        SCENE Keys = Begun();
        const RUN ByMouse = Task.ByMouse(Mouse).Away().Ticks(20).Screenshot("end").Play();
        const RUN ByKeys = Strokes(Keys, Task.ByKeys).Away().Ticks(20).Screenshot("end").Play();
        EXPECT_EQ(Effects(ByKeys), Effects(ByMouse));
        EXPECT_NE(Effects(ByKeys), Nothing);
        // Apart from what lives: boxes, tabs, sources, list, buttons.
        for (const AREA& Area : {gBox, gLegend, Source(0), Source(1), Tab(4), Tab(7), Button(FULL_SPEED)}) {
            ExpectSamePicture(ByKeys.Picture("end"), ByMouse.Picture("end"), Area);
        }
    }
    // Strokes that wait while a page opens or closes meet what is open by then.
    SCENE Fast = Begun();
    for (const char* Stroke : {"back 3", "space", "tab", "space", "tab", "space"}) {
        (void)Fast.Line(std::string("hand ") + Stroke);
    }
    (void)Fast.Turns(30).Line("key esc").Line("hand back").Line("hand space");
    SCENE Pages = Begun();
    (void)Pages.Button(ABOUT).Key("esc").Button(HELP).Key("esc").Button(ABOUT);
    EXPECT_EQ(Effects(Fast.Turns(30).Play()), Effects(Pages.Play()));
    SCENE Exit = Begun();
    EXPECT_LT(Strokes(Exit, {"back", "space"}).Ticks(50).Play().Session.Turns, Exit.TurnsSoFar - 50);
}

// --- What Tab reaches ---

bool AnswersAPress(const GUI_COMPONENT& Component)
{
    switch (Component.Kind) {
    case _BTN_COMPONENT:
    case _RADIO_BTN_COMPONENT:
    case _RADIO_CBOX_COMPONENT:
        return Component.Enabled == 1;
    case _CHECK_BOX_COMPONENT:
        return Component.Enabled == 1 && Component.Active == 1;
    case _DRAGDROP_COMPONENT: {
        const auto* Frame = static_cast<const DRAGDROP_COMPONENT*>(Component.Owner);
        return ComponentOf(Frame->Id)->Active == 1 && Frame->Linked != Frame->Inverted;
    }
    case _SLIDER_COMPONENT: {
        const auto* Slider = static_cast<const SLIDER_COMPONENT*>(Component.Owner);
        return ComponentOf(Slider->FrameId)->Active == 1 && Slider->Linked != Slider->Inverted;
    }
    default:
        return false;
    }
}

constexpr UINT64 gRound = 25; // turns with a Tab each; more than there can be places

// Rounds begin in these turns; where the pointer was in one, and what was wrong.
struct ROUNDS {
    std::vector<UINT64> First;
    UINT64 Turn = 0;
    std::set<std::pair<INT64, INT64>> Visited;
    std::string Faults;

    static bool AtCall(VOID* Context, CALL Call, EFI_STATUS*, bool*)
    {
        if (Call == CALL_WAIT_FOR_EVENT) {
            static_cast<ROUNDS*>(Context)->BeginTurn();
        }
        return false;
    }
    void BeginTurn()
    {
        Turn++;
        for (const UINT64 Begin : First) {
            if (Turn > Begin && Turn <= Begin + gRound) {
                Visited.emplace(gGuiCore->PointerX, gGuiCore->PointerY);
            }
            if (Turn == Begin + gRound) {
                Compare();
                Visited.clear();
            }
        }
    }
    void Compare()
    {
        size_t Answering = 0;
        for (UINT32 Id = 0; Id < gGuiCore->Components->Count; Id++) {
            const GUI_COMPONENT* Component = ComponentOf(Id);
            if (Component == nullptr || !AnswersAPress(*Component)) {
                continue;
            }
            Answering++;
            size_t Times = 0;
            for (const auto& [X, Y] : Visited) {
                Times += PointerInRect(Component->Rect, X, Y) ? 1 : 0;
            }
            if (Times != 1) {
                Faults += "turn " + std::to_string(Turn) + ": " + std::to_string(Times) + " stops on kind " +
                          std::to_string(Component->Kind) + " at " + std::to_string(Component->Rect.X) + ", " +
                          std::to_string(Component->Rect.Y) + "\n";
            }
        }
        if (Answering != Visited.size() || Answering < 6) {
            Faults += "turn " + std::to_string(Turn) + ": " + std::to_string(Visited.size()) + " stops for " +
                      std::to_string(Answering) + " components\n";
        }
    }
};

// Everything that changes what a page shows, with a round after each.
std::string FaultsOfRounds(const std::string& Board)
{
    SCENE Scene(Board);
    ROUNDS Rounds;
    const auto Round = [&] {
        Scene.Ticks(2);
        Rounds.First.push_back(Scene.TurnsSoFar + 1);
        for (UINT64 At = 0; At < gRound; At++) {
            Scene.Line("hand tab").Turns();
        }
    };
    Scene.Turns(2);
    Round();
    for (int Fan = gFirstFan; Fan <= gLastFan; Fan++) {
        Scene.Tab(Fan);
        Round();
        Scene.Box();
        Round();
        Scene.Box();
        Scene.Node(1, {1, 0}).Node(3, {1, 1});
        Round();
        Scene.Key("f");
        Round();
        Scene.Button(DEFAULT);
        Round();
        Scene.Thumb(6);
        Round();
    }
    Scene.Options.Entry = _ModuleEntryPoint;
    Scene.Options.Failures = {.Call = ROUNDS::AtCall, .Allocation = nullptr, .Context = &Rounds};
    (void)Scene.Play();
    return Rounds.Turn < Scene.TurnsSoFar ? "the console ended early" : Rounds.Faults;
}

class TabStops : public testing::TestWithParam<const char*> {};

TEST_P(TabStops, AreTheComponentsThatAnswerAPressOnEveryPage)
{
    // The console that is linked in starts once in a process.
    EXPECT_EXIT(
        {
            const std::string Faults = FaultsOfRounds(GetParam());
            std::fputs(Faults.c_str(), stderr);
            std::_Exit(Faults.empty() && !testing::Test::HasFailure() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(OnBoard, TabStops,
                         testing::Values("full", "kind0", "kind2", "small", "second-source", "bare"));

} // namespace
