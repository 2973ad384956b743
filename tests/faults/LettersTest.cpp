// Every letter in every turn of a drag and of a click, on every page: the process splits in each turn of a gesture, a copy for
// each letter gets it there and plays the gesture to its end. What must hold in each turn is looked at in each turn, and at
// rest that no fan got a record that nobody chose and that nothing on the page contradicts anything else.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include "fan/FanPage.h"
#include "platform/host/CurrentBoot.h"
#include "platform/host/Session.h"
#include "tests/faults/Invariants.h"

extern "C" EFI_STATUS _ModuleEntryPoint(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable);

namespace {

constexpr UINT32 gSecondsToHang = 60;
constexpr int gTabCenter[] = {323, 422, 521, 620, 720, 818, 917}; // of fans 4 to 10

// A page, and what is dragged on it: node 1, or the thumb.
struct PAGE {
    const char* Name;
    const char* Board;
    int Fan;
    bool BoxOffFirst;
    int X, Y, ToX, ToY;
    int Start, To; // the node's column or the thumb's level
};
constexpr PAGE gPages[] = {
    {"Fan4", "full", 4, false, 487, 397, 517, 397, 3, 4},
    {"Fan5OfEightRows", "full", 5, false, 487, 397, 517, 397, 3, 4},
    {"Fan5OfSixRows", "kind0", 5, false, 457, 442, 487, 442, 2, 3},
    {"Fan6", "full", 6, false, 457, 442, 487, 442, 2, 3},
    {"Fan7WithNodes", "full", 7, false, 457, 442, 487, 442, 2, 3},
    {"Fan7WithThumb", "full", 7, true, 397, 402, 397, 362, 2, 3},
    {"Fan8", "full", 8, false, 397, 402, 397, 362, 2, 3}, // its box comes up off
    {"Fan9", "full", 9, false, 397, 402, 397, 362, 2, 3},
    {"Fan10", "full", 10, false, 397, 322, 397, 362, 4, 3},
};

void PrintTo(const PAGE& Page, std::ostream* Out) { *Out << Page.Name; } // else a test's name has addresses in it

// A gesture's turns, the last of them at rest, and how often it writes. A drag writes if something was picked up: a letter
// before that may have taken it away.
struct GESTURE {
    const char* Name;
    UINT64 First, Last, Rest; // the button comes up in the turn before the last
    int Writes;
    bool Drags;
    int LandsAt; // of what is dragged
};

struct SWEEP_STATE {
    const PAGE* Page;
    std::vector<GESTURE> Gestures;
    size_t At = 0;
    UINT64 LetterTurn = 0; // of a copy: when its letter was given; 0 in the original
    int PipeToOriginal = -1;
    TURN_WATCH Watch;
    std::vector<PIXEL> RestFace;
    bool Set[gFanItemCount] = {};
    int Writes[gFanItemCount] = {};
    bool WasInHand = false;
    UINTN Copies = 0;
    std::vector<std::string> Faults;
} gSweep;

// True in a copy of the process. The original waits for the copy's end and has in Told what it told.
bool Split(std::string* Told)
{
    int Ends[2];
    if (pipe(Ends) != 0) {
        *Told = "no pipe";
        return false;
    }
    std::fflush(nullptr);
    const pid_t Copy = fork();
    if (Copy == 0) {
        close(Ends[0]);
        gSweep.PipeToOriginal = Ends[1];
        alarm(gSecondsToHang);
        return true;
    }
    close(Ends[1]);
    Told->clear();
    char Buffer[4096];
    ssize_t Length;
    while ((Length = read(Ends[0], Buffer, sizeof(Buffer))) > 0) {
        Told->append(Buffer, static_cast<size_t>(Length));
    }
    close(Ends[0]);
    int Status = -1;
    (void)waitpid(Copy, &Status, 0);
    if (Status != 0) {
        *Told += " ended with status " + std::to_string(Status);
    }
    return false;
}

[[noreturn]] void Tell(const std::string& Text)
{
    (void)!write(gSweep.PipeToOriginal, Text.data(), Text.size());
    _exit(0);
}

bool InHand(const FAN_PAGE* Page)
{
    return (PageHasFrame(Page) && Page->Frame.ActiveNode != gNoActiveNode) ||
           (PageHasSlider(Page) && Page->Slider.Dragging != 0);
}

int PlaceOfDragged(const FAN_PAGE* Page)
{
    const bool Node = gSweep.Page->X != 397; // a thumb stands in the first column
    return static_cast<int>(Node ? Page->Frame.Nodes[1].Column : Page->Slider.Level);
}

std::string JudgeGesture(const GESTURE& Gesture)
{
    const FAN_PAGE* Page = FindFanPage(static_cast<UINT8>(gSweep.Page->Fan));
    for (const FAN_PAGE& Any : gFanPage) {
        const int Most = &Any == Page ? (Gesture.Drags ? (gSweep.WasInHand ? 1 : 0) : Gesture.Writes) : 0;
        const int Writes = gSweep.Writes[IndexOfFanPage(&Any)];
        if (Writes != Most) {
            return std::to_string(Writes) + " records for fan " + std::to_string(Any.ItemId) + " instead of " +
                   std::to_string(Most);
        }
    }
    const bool LetterCameAfterwards = gSweep.LetterTurn + 1 >= Gesture.Last; // and may have moved everything
    if (Gesture.Drags && gSweep.WasInHand && !LetterCameAfterwards && PlaceOfDragged(Page) != Gesture.LandsAt) {
        return "what was dragged landed at " + std::to_string(PlaceOfDragged(Page));
    }
    return CheckRest(gSweep.Set, &gSweep.RestFace);
}

VOID BeginGesture()
{
    gSweep.WasInHand = false;
    for (int& Writes : gSweep.Writes) {
        Writes = 0;
    }
}

VOID LookAtTurn()
{
    const UINT64 Turn = gCurrentBoot->Trace.Turn;
    const GESTURE& Gesture = gSweep.Gestures[gSweep.At];
    const bool IsCopy = gSweep.LetterTurn != 0;
    if (Turn == Gesture.First && !IsCopy) {
        BeginGesture();
    }
    gSweep.WasInHand = gSweep.WasInHand || InHand(FindFanPage(static_cast<UINT8>(gSweep.Page->Fan)));
    std::string Fault = CheckTurn(&gSweep.Watch);
    if (Fault.empty() && Turn == Gesture.Rest) {
        Fault = JudgeGesture(Gesture);
    }
    if (IsCopy && (!Fault.empty() || Turn == Gesture.Rest)) {
        Tell(Fault.empty() ? "" : Fault + " in turn " + std::to_string(Turn));
    }
    if (!Fault.empty()) {
        gSweep.Faults.push_back(std::string(Gesture.Name) + ", no letter, turn " + std::to_string(Turn) + ": " + Fault);
    }
    if (Turn == Gesture.Rest && gSweep.At + 1 < gSweep.Gestures.size()) {
        gSweep.At++;
    }
    for (const char Letter : {'f', 'd', 'c'}) {
        std::string Told;
        if (IsCopy || Turn < Gesture.First || Turn > Gesture.Last) {
            return;
        }
        gSweep.Copies++;
        if (Split(&Told)) {
            gSweep.LetterTurn = Turn;
            gCurrentBoot->Consoles.Press(0, static_cast<CHAR16>(Letter));
            return;
        }
        if (!Told.empty()) {
            gSweep.Faults.push_back(std::string(Gesture.Name) + ", " + Letter + " in turn " + std::to_string(Turn) +
                                    " of " + std::to_string(Gesture.First) + " to " + std::to_string(Gesture.Rest) +
                                    ": " + Told);
        }
    }
}

bool OnCall(VOID*, CALL Call, EFI_STATUS*, bool*)
{
    if (Call == CALL_WAIT_FOR_EVENT) {
        LookAtTurn();
    } else if (Call >= CALL_GET_FAN_4_SETTING && Call <= CALL_SET_FAN_10_SETTING) {
        const UINTN Slot = static_cast<UINTN>(Call) - CALL_GET_FAN_4_SETTING; // pairs of get and set
        if (Slot % 2 == 1) {
            gSweep.Writes[Slot / 2]++;
            gSweep.Set[Slot / 2] = true;
        }
    } else if (Call >= CALL_LOAD_DEFAULT_FAN_SETTINGS && Call <= CALL_RESTORE_FAN_SETTINGS) {
        for (bool& Set : gSweep.Set) {
            Set = false;
        }
    }
    return false;
}

// The page's gestures as a script. Each ends at rest, with a tick and a turn.
struct WRITER {
    std::string Script;
    UINT64 Turn = 0; // turns so far

    WRITER& Do(const std::string& Lines, UINT64 Turns)
    {
        Script += Lines + "turn " + std::to_string(Turns) + "\n";
        Turn += Turns;
        return *this;
    }
    WRITER& Move(int X, int Y) { return Do("pointer " + std::to_string(X) + " " + std::to_string(Y) + "\n", 1); }
    WRITER& Press() { return Do("left down\n", 2); }
    WRITER& Release(bool Long) { return Do(std::string("advance ") + (Long ? "300000" : "50000") + "\nleft up\n", 2); }
    void Settle(const char* Name, UINT64 First, int Writes, bool Drags = false, int LandsAt = 0)
    {
        const UINT64 Last = Turn;
        Script += "tick 1\n";
        Turn++;
        (void)Do("", 2);
        gSweep.Gestures.push_back({Name, First, Last, Turn, Writes, Drags, LandsAt});
    }
};

std::string WriteGestures(const PAGE& Page)
{
    WRITER Writer;
    (void)Writer.Move(gTabCenter[Page.Fan - 4], 150).Press().Release(false);
    if (Page.BoxOffFirst) {
        (void)Writer.Move(296, 242).Press().Release(false);
    }
    (void)Writer.Move(600, 540).Do("advance 200000\n", 2);
    UINT64 First = Writer.Turn + 1;
    Writer.Move(600, 540).Press().Release(false).Settle("click beside everything", First, 0);
    if (Page.Fan <= 8) {
        for (int Time = 0; Time < 2; Time++) {
            First = Writer.Turn + 1;
            Writer.Move(296, 242).Press().Release(false).Settle("click on the box", First, 1);
        }
    }
    First = Writer.Turn + 1;
    Writer.Move(Page.X, Page.Y).Press().Do("", 1).Release(false).Settle("click on it", First, 1, true, Page.Start);
    First = Writer.Turn + 1;
    Writer.Move(Page.X, Page.Y).Press().Do("", 1).Move(Page.ToX, Page.ToY).Do("", 1).Release(true);
    Writer.Settle("drag", First, 1, true, Page.To);
    return Writer.Script + "turn 2\n";
}

class Letters : public testing::TestWithParam<PAGE> {};

TEST_P(Letters, LeaveNothingThatContradictsAnythingElse)
{
    std::string Told;
    if (!Split(&Told)) { // the console that is linked in starts once in a process
        EXPECT_EQ(Told, "");
        return;
    }
    gSweep.Page = &GetParam();
    SESSION_OPTIONS Options;
    Options.Board = gSweep.Page->Board;
    Options.Script = WriteGestures(*gSweep.Page);
    Options.Entry = _ModuleEntryPoint;
    Options.KeepPictures = false;
    Options.Failures.Call = OnCall;
    const SESSION_RESULT Result = RunSession(Options);
    std::string Text = Result.Error;
    for (size_t At = 0; At < gSweep.Faults.size() && At < 20; At++) {
        Text += "\n" + gSweep.Faults[At];
    }
    if (gSweep.Copies < 50) {
        Text += "only " + std::to_string(gSweep.Copies) + " letters given";
    }
    Tell(Text);
}

INSTANTIATE_TEST_SUITE_P(Page, Letters, testing::ValuesIn(gPages),
                         [](const testing::TestParamInfo<PAGE>& Info) { return std::string(Info.param.Name); });

} // namespace
