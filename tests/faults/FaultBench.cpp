#include "tests/faults/FaultBench.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/host/CurrentBoot.h"
#include "platform/host/HostText.h"
#include "tests/console/Places.h"

namespace {

// Longer than any run takes on a machine that has other things to do: a run that needs more hangs.
constexpr unsigned gSecondsToHang = 120;
constexpr UINT64 gFaultsToTell = 20;
constexpr UINTN gPoolFillLimit = 4096;    // whole pictures would take most of a run's time
constexpr UINT64 gTurnsWithoutKeys = 400; // then keys work again: a run without a script ends by Escape

// Up to so many calls of an operation in a run, each of them fails in all ways, one after the other; not where fewer than
// that are to be tried.
constexpr UINT64 gCallsWithAllWays = 16;

constexpr EFI_STATUS gNeverGiven = EFI_ABORTED; // no operation's description has it

struct WAY {
    EFI_STATUS Status;
    bool Garbage;
};

// The ways in which an operation fails: its statuses and the one that it may not give, each with both kinds of outputs.
std::vector<WAY> WaysToFail(CALL Call)
{
    std::vector<WAY> Ways;
    for (const EFI_STATUS Status : StatusesOf(Call)) {
        Ways.push_back({Status, false});
        Ways.push_back({Status, true});
    }
    Ways.push_back({gNeverGiven, false}); // to an operation without a status it says nothing
    Ways.push_back({gNeverGiven, true});
    return Ways;
}

// Operations whose failure in a turn loses a drawing, and nothing that the settling doesn't bring back. Any other may lose
// what a person did, a click's event, the pointer's place, a moment's time; and a wrong reading stays in a chart for long.
constexpr CALL gPassingCalls[] = {
    CALL_ALLOCATE_POOL,   CALL_FREE_POOL,       CALL_LOCATE_PROTOCOL, CALL_BLT,
    CALL_STRING_TO_IMAGE, CALL_FLOAT_TO_STRING, CALL_GET_ITEM_STRING, CALL_DRAW_LINE,
};

EXPECTATION ExpectationOf(CALL Call, UINTN SameRows)
{
    const bool Passes = std::find(std::begin(gPassingCalls), std::end(gPassingCalls), Call) != std::end(gPassingCalls);
    return {.LeavesPool = Call == CALL_FREE_POOL,
            .LeavesEvents = Call == CALL_CLOSE_EVENT,
            .SameRows = Passes ? SameRows : 0};
}

std::string Describe(CALL Call, const WAY& Way)
{
    char Status[40];
    std::snprintf(Status, sizeof(Status), " 0x%llx, %s", static_cast<unsigned long long>(Way.Status),
                  Way.Garbage ? "garbage" : "outputs untouched");
    return NameCall(Call) + std::string(Status);
}

// Where the pointer is before the script moves it: where the start shows it, and where the first turn finds it.
constexpr const char* gFirstPlaces = "pointer 174 196\nturn 3\npointer 0 0\nturn 3\n";

// The scenario's script, with its settling or without. The settling begins with the pointer at every place where it was
// before: what it left there when it went, because the ground couldn't be painted back, nothing else paints anew.
std::string ScriptOf(const SCENARIO& Scenario, bool Settles)
{
    std::istringstream Lines(Scenario.Script);
    std::ostringstream Script;
    std::ostringstream Visits;
    Visits << gFirstPlaces;
    for (std::string Line; std::getline(Lines, Line) && (Settles || Line != gSettleMark);) {
        Script << Line << "\n";
        if (Line.starts_with("pointer ")) {
            Visits << Line << "\nturn 3\n";
        }
        if (Line == gSettleMark) {
            Script << Visits.str();
        }
    }
    return Script.str();
}

SESSION_OPTIONS OptionsOf(const SCENARIO& Scenario, bool Settles = true, bool KeepDisplay = false)
{
    SESSION_OPTIONS Options;
    Options.Board = Scenario.Board;
    Options.Generation = Scenario.Generation;
    Options.Panel = Scenario.Panel;
    Options.Script = ScriptOf(Scenario, Settles);
    Options.ImagePath = VENTARA_CONSOLE_IMAGE;
    Options.PoolFillLimit = gPoolFillLimit;
    Options.KeepDisplay = KeepDisplay;
    return Options;
}

// The process in two at a place of a run. In the copy, Split is true from then on, and Judgement tells the original.
struct SPLITTER {
    bool IsCopy = false;
    EXPECTATION Expected;
    SWEEP_RESULT Result;

    bool Split(const std::string& Place, const EXPECTATION& ExpectedOfCopy);
    // In the copy: tells the original what was found, and ends.
    [[noreturn]] VOID Tell(const std::vector<std::string>& Faults);

private:
    VOID Hear(pid_t Copy, const std::string& Place);

    int mPipe[2] = {-1, -1};
};

bool SPLITTER::Split(const std::string& Place, const EXPECTATION& ExpectedOfCopy)
{
    Result.Tried++;
    if (pipe(mPipe) != 0) {
        Result.Faults.push_back(std::string("no pipe: ") + std::strerror(errno));
        return false;
    }
    std::fflush(nullptr);
    const pid_t Copy = fork();
    if (Copy == 0) {
        close(mPipe[0]);
        IsCopy = true;
        Expected = ExpectedOfCopy;
        alarm(gSecondsToHang);
        return true;
    }
    close(mPipe[1]);
    if (Copy < 0) {
        Result.Faults.push_back(std::string("no process: ") + std::strerror(errno));
        close(mPipe[0]);
        return false;
    }
    Hear(Copy, Place);
    return false;
}

VOID SPLITTER::Hear(pid_t Copy, const std::string& Place)
{
    std::string Text;
    char Buffer[4096];
    ssize_t Length;
    while ((Length = read(mPipe[0], Buffer, sizeof(Buffer))) > 0) {
        Text.append(Buffer, static_cast<size_t>(Length));
    }
    close(mPipe[0]);
    int Status = 0;
    while (waitpid(Copy, &Status, 0) < 0 && errno == EINTR) {
    }
    if (WIFSIGNALED(Status)) {
        Text += "ended by signal " + std::to_string(WTERMSIG(Status));
    } else if (WEXITSTATUS(Status) != 0) {
        Text += "ended with " + std::to_string(WEXITSTATUS(Status));
    }
    if (!Text.empty() && Result.Faults.size() < gFaultsToTell) {
        Result.Faults.push_back(Place + ": " + Text);
    }
}

VOID SPLITTER::Tell(const std::vector<std::string>& Faults)
{
    for (const std::string& Fault : Faults) {
        const std::string Line = Fault + "; ";
        (void)!write(mPipe[1], Line.data(), Line.size());
    }
    _exit(0);
}

// Plays the scenario under a plan; of the copies' ends, none is reached here.
SWEEP_RESULT Play(const SCENARIO& Scenario, const FAILURE_PLAN& Plan, const SWEEP& Sweep, SPLITTER& Splitter)
{
    SESSION_OPTIONS Options = OptionsOf(Scenario, Sweep.Settles, Sweep.SamePicture);
    const SESSION_RESULT Reference = RunSession(Options);
    for (const std::string& Fault : Judge(Reference, Reference, {})) {
        Splitter.Result.Faults.push_back("without a failure: " + Fault);
    }
    Options.Failures = Plan;
    const SESSION_RESULT Result = RunSession(Options);
    if (Splitter.IsCopy) {
        Splitter.Tell(Judge(Result, Reference, Splitter.Expected));
    }
    return Splitter.Result;
}

bool IsSwept(const TURNS& Turns)
{
    const UINT64 Turn = gCurrentBoot->Trace.Turn;
    return gCurrentBoot->Trace.Start > 1 ? Turns.Last == gToTheEnd : Turn >= Turns.First && Turn <= Turns.Last;
}

// A moment of a session: during the given turn of a start.
struct MOMENT {
    UINT64 Start;
    UINT64 Turn;
};

MOMENT Now() { return {gCurrentBoot->Trace.Start, gCurrentBoot->Trace.Turn}; }

// The last turn in front of a script's settling.
MOMENT BeforeSettling(const std::string& Script)
{
    MOMENT Moment = {1, 0};
    std::istringstream Lines(Script);
    for (std::string Line; std::getline(Lines, Line) && Line != gSettleMark;) {
        unsigned long long Count = 1;
        if (Line == "start") {
            Moment = {Moment.Start + 1, 0};
        } else if (Line.starts_with("turn") || Line.starts_with("tick")) {
            (void)std::sscanf(Line.c_str() + 4, "%llu", &Count);
            Moment.Turn += Count;
        }
    }
    return Moment;
}

// Whether what isn't drawn now is drawn by the settling: so in a turn, and not while the console starts.
bool IsRepaired(const MOMENT& LastRepaired)
{
    const MOMENT Moment = Now();
    return Moment.Turn != 0 && (Moment.Start < LastRepaired.Start ||
                                (Moment.Start == LastRepaired.Start && Moment.Turn <= LastRepaired.Turn));
}

std::string Here() { return " in start " + std::to_string(Now().Start) + ", turn " + std::to_string(Now().Turn); }

struct ALLOCATION_SWEEP {
    SWEEP Sweep;
    bool AllThatFollow;
    UINTN SameRows;
    MOMENT LastRepaired; // up to here, the settling that follows makes the picture whole
    SPLITTER Splitter = {};

    static bool Decide(VOID* Context) { return static_cast<ALLOCATION_SWEEP*>(Context)->Decide(); }
    bool Decide()
    {
        if (Splitter.IsCopy) {
            return AllThatFollow;
        }
        if (!IsSwept(Sweep.Turns) || Splitter.Result.Places++ % Sweep.Step != 0) {
            return false;
        }
        return Splitter.Split(
            "allocation " + std::to_string(Splitter.Result.Places) + Here(),
            {.LeavesPool = false, .LeavesEvents = false, .SameRows = IsRepaired(LastRepaired) ? SameRows : 0});
    }
};

struct CALL_SWEEP {
    SWEEP Sweep;
    UINT64 AtMost;
    UINTN SameRows;
    MOMENT LastRepaired;
    SPLITTER Splitter = {};
    bool Counting = true;
    UINT64 Calls[CALL_COUNT] = {};  // of the whole run
    UINT64 Passed[CALL_COUNT] = {}; // so far

    static bool Decide(VOID* Context, CALL Call, EFI_STATUS* Status, bool* Garbage)
    {
        return static_cast<CALL_SWEEP*>(Context)->Decide(Call, Status, Garbage);
    }
    bool Decide(CALL Call, EFI_STATUS* Status, bool* Garbage)
    {
        if (Splitter.IsCopy || !IsSwept(Sweep.Turns)) {
            return false;
        }
        if (Counting) {
            Calls[Call]++;
            return false;
        }
        const UINT64 Number = Passed[Call]++;
        const std::vector<WAY> Ways = WaysToFail(Call);
        const UINT64 Step = AtMost == 0 || Calls[Call] <= AtMost ? 1 : Calls[Call] / AtMost;
        Splitter.Result.Places++;
        if (Number % Step != 0) {
            return false;
        }
        // A call has one of the ways, the next call the next one; after each round the order moves on by one, for calls
        // that come in rounds themselves. Where there are few calls, each has all ways.
        const UINT64 Turn = Number / Step;
        const bool AllWays = Calls[Call] <= gCallsWithAllWays && (AtMost == 0 || AtMost >= gCallsWithAllWays);
        const UINTN Tried = AllWays ? Ways.size() : 1;
        for (UINTN At = 0; At < Tried; At++) {
            if (Fails(Call, Ways[(Turn + Turn / Ways.size() + At) % Ways.size()], Number + 1, Status, Garbage)) {
                return true;
            }
        }
        return false;
    }
    bool Fails(CALL Call, const WAY& Way, UINT64 Number, EFI_STATUS* Status, bool* Garbage)
    {
        const std::string Place = Describe(Call, Way) + ", call " + std::to_string(Number) + Here();
        if (!Splitter.Split(Place, ExpectationOf(Call, IsRepaired(LastRepaired) ? SameRows : 0))) {
            return false;
        }
        *Status = Way.Status;
        *Garbage = Way.Garbage;
        return true;
    }
};

struct OPERATION_FAILURE {
    CALL Call;
    WAY Way;

    static bool Decide(VOID* Context, CALL Call, EFI_STATUS* Status, bool* Garbage)
    {
        const OPERATION_FAILURE& This = *static_cast<OPERATION_FAILURE*>(Context);
        if (Call != This.Call || (Call == CALL_READ_KEY_STROKE && gCurrentBoot->Trace.Turn > gTurnsWithoutKeys)) {
            return false;
        }
        *Status = This.Way.Status;
        *Garbage = This.Way.Garbage;
        return true;
    }
};

} // namespace

std::vector<std::string> Judge(const SESSION_RESULT& Result, const SESSION_RESULT& Reference,
                               const EXPECTATION& Expected)
{
    std::vector<std::string> Faults;
    if (!Result.Ran || !Result.Error.empty()) {
        Faults.push_back("the session didn't run: " + Result.Error);
    }
    if (Result.Status != EFI_SUCCESS && Result.Status != EFI_PROTOCOL_ERROR) {
        Faults.push_back("status " + FormatStatus(Result.Status));
    }
    for (const std::string& Complaint : Result.Complaints) {
        Faults.push_back("the firmware complains: " + Complaint);
    }
    if (!Expected.LeavesPool && !Result.Leaks.empty()) {
        Faults.push_back(std::to_string(Result.Leaks.size()) + " blocks left, first " + Result.Leaks[0].Description);
    }
    if (!Expected.LeavesEvents && Result.OpenEvents > Reference.OpenEvents) {
        Faults.push_back(std::to_string(Result.OpenEvents) + " events open instead of " +
                         std::to_string(Reference.OpenEvents));
    }
    UINT64 Count = 0;
    UINTN First = 0;
    for (UINTN At = 0; At < Expected.SameRows * gDisplayWidth; At++) {
        // Where the gauges may be at another point of their rotation, the chart may have a sample more or less, too.
        const PLACE Place = {static_cast<int>(At % gDisplayWidth), static_cast<int>(At / gDisplayWidth)};
        const bool Chart = Place.X >= gFrame.X && Place.X < gFrame.X + gFrame.Width && Place.Y >= gFrame.Y &&
                           Place.Y < gFrame.Y + gFrame.Height && Expected.SameRows < gDisplayHeight;
        if (!Chart && Result.Display[At] != Reference.Display[At] && Count++ == 0) {
            First = At;
        }
    }
    if (Count != 0) {
        Faults.push_back(std::to_string(Count) + " pixels differ, the first at (" + std::to_string(First % 1024) +
                         ", " + std::to_string(First / 1024) + ")");
    }
    return Faults;
}

SWEEP_RESULT SweepAllocations(const SCENARIO& Scenario, const SWEEP& Sweep, bool AllThatFollow)
{
    ALLOCATION_SWEEP Allocations = {Sweep, AllThatFollow, Sweep.SamePicture ? Scenario.ComparedRows : 0,
                                    BeforeSettling(Scenario.Script)};
    return Play(Scenario, {.Call = nullptr, .Allocation = ALLOCATION_SWEEP::Decide, .Context = &Allocations}, Sweep,
                Allocations.Splitter);
}

SWEEP_RESULT SweepCalls(const SCENARIO& Scenario, const SWEEP& Sweep, UINT64 AtMost)
{
    CALL_SWEEP Calls = {Sweep, AtMost, Sweep.SamePicture ? Scenario.ComparedRows : 0, BeforeSettling(Scenario.Script)};
    const FAILURE_PLAN Plan = {.Call = CALL_SWEEP::Decide, .Allocation = nullptr, .Context = &Calls};
    SESSION_OPTIONS Options = OptionsOf(Scenario, Sweep.Settles);
    Options.Failures = Plan;
    (void)RunSession(Options);
    Calls.Counting = false;
    return Play(Scenario, Plan, Sweep, Calls.Splitter);
}

SWEEP_RESULT SweepOperations(const SCENARIO& Scenario, UINT64 Step)
{
    SPLITTER Splitter;
    const SESSION_RESULT Reference = RunSession(OptionsOf(Scenario));
    for (UINTN At = 0; At < CALL_COUNT; At++) {
        const CALL Call = static_cast<CALL>(At);
        for (const WAY& Way : WaysToFail(Call)) {
            if (Splitter.Result.Places++ % Step != 0 ||
                !Splitter.Split("every " + Describe(Call, Way), ExpectationOf(Call, 0))) {
                continue;
            }
            OPERATION_FAILURE Failure = {Call, Way};
            SESSION_OPTIONS Options = OptionsOf(Scenario);
            Options.Failures = {.Call = OPERATION_FAILURE::Decide, .Allocation = nullptr, .Context = &Failure};
            Splitter.Tell(Judge(RunSession(Options), Reference, Splitter.Expected));
        }
    }
    return Splitter.Result;
}
