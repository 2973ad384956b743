// Every allocation and every call fails in turn. A build with sanitizers is slow: there a use ends before its settling, so
// that no picture is compared, and fewer calls are tried. As released, each seventh allocation of the start fails, since
// with sanitizers every one does. VENTARA_SWEEP=full in the environment tries every place of every scenario, settling and
// all, in whatever build, VENTARA_SWEEP=N each Nth place.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/faults/FaultBench.h"

#if VENTARA_SANITIZED
// An allocation of an absurd size is refused, as a firmware does it. A small quarantine keeps the copies quick.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1:quarantine_size_mb=2"; }
#endif

namespace {

// The variable's value; empty: none.
std::string Wanted()
{
    const char* Value = std::getenv("VENTARA_SWEEP");
    return Value == nullptr ? "" : Value;
}

bool SweepsAll() { return Wanted() == "full"; }
bool SweepsInShort() { return VENTARA_SANITIZED && Wanted().empty(); }

UINT64 Step()
{
    const UINT64 Number = std::strtoull(Wanted().c_str(), nullptr, 10);
    return Number == 0 ? 1 : Number;
}

// Calls of one operation, see SweepCalls: in this build, and in a slow one. Some are made ten thousand times in a run.
UINT64 CallsAtMost(UINT64 Released, UINT64 Sanitized)
{
    if (SweepsAll()) {
        return VENTARA_SANITIZED ? 200 : 0;
    }
    return Step() > 1 ? 8 : VENTARA_SANITIZED ? Sanitized : Released;
}

// Of the ways in which all calls of an operation fail. Odd, so that outputs of both kinds have their turns.
UINT64 StepOfWays() { return SweepsInShort() ? 5 : Step(); }

// The start is followed by a use, so that what the start left out is missed. What fails in that use itself is tried where
// everything is: the uses have the same.
SWEEP OfAStart()
{
    const UINT64 Default = VENTARA_SANITIZED ? 1 : 7;
    return {.Turns = {0, SweepsAll() ? gToTheEnd : 0}, .Step = Wanted().empty() ? Default : Step()};
}

SWEEP OfAUse(bool SamePicture)
{
    const bool Settles = SamePicture ? !SweepsInShort() : !Wanted().empty();
    return {.Turns = {1, gToTheEnd}, .Step = Step(), .Settles = Settles, .SamePicture = SamePicture && Settles};
}

VOID Expect(const SWEEP_RESULT& Result)
{
    EXPECT_GT(Result.Places, 0u);
    std::printf("tried %llu of %llu\n", Result.Tried, Result.Places);
    ::testing::Test::RecordProperty("places", std::to_string(Result.Places));
    ::testing::Test::RecordProperty("tried", std::to_string(Result.Tried));
    for (const std::string& Fault : Result.Faults) {
        ADD_FAILURE() << Fault;
    }
}

// The parameter is a scenario's name.
class EveryFailure : public testing::TestWithParam<const char*> {
protected:
    const SCENARIO& Scenario() const { return FindScenario(GetParam()); }
};

std::string NameCase(const testing::TestParamInfo<const char*>& Info) { return Info.param; }

class EveryFailureOfAStart : public EveryFailure {};
class EveryFailureOfAUse : public EveryFailure {};

TEST_P(EveryFailureOfAStart, AnAllocationThatFailsAlone) { Expect(SweepAllocations(Scenario(), OfAStart(), false)); }

TEST_P(EveryFailureOfAStart, AllAllocationsFromOneOn) { Expect(SweepAllocations(Scenario(), OfAStart(), true)); }

TEST_P(EveryFailureOfAStart, ACallThatFailsAlone) { Expect(SweepCalls(Scenario(), OfAStart(), CallsAtMost(30, 3))); }

TEST_P(EveryFailureOfAStart, AllCallsOfAnOperation) { Expect(SweepOperations(Scenario(), StepOfWays())); }

TEST_P(EveryFailureOfAUse, AnAllocationThatFailsAloneLeavesThePictureWhole)
{
    Expect(SweepAllocations(Scenario(), OfAUse(true), false));
}

TEST_P(EveryFailureOfAUse, AllAllocationsFromOneOn) { Expect(SweepAllocations(Scenario(), OfAUse(false), true)); }

TEST_P(EveryFailureOfAUse, ACallThatFailsAlone)
{
    if (SweepsAll()) {
        GTEST_SKIP() << "the next test tries the same calls, and looks at the picture too";
    }
    SWEEP Sweep = OfAUse(false);
    Sweep.Settles = false;
    Expect(SweepCalls(Scenario(), Sweep, CallsAtMost(0, 12)));
}

TEST_P(EveryFailureOfAUse, ACallThatFailsAloneLeavesThePictureWhole)
{
    if (SweepsInShort()) {
        GTEST_SKIP() << "without a settling no picture is compared, and the calls are tried already";
    }
    Expect(SweepCalls(Scenario(), OfAUse(true), CallsAtMost(20, 20)));
}

INSTANTIATE_TEST_SUITE_P(Always, EveryFailureOfAStart, testing::Values("StartOnTheFullBoard"), NameCase);
INSTANTIATE_TEST_SUITE_P(Always, EveryFailureOfAUse, testing::Values("Node", "Buttons", "AboutPage"), NameCase);

// What takes long all together: the build configuration gives these to the nightly run.
INSTANTIATE_TEST_SUITE_P(Nightly, EveryFailureOfAStart,
                         testing::Values("StartOnTheSmallBoard", "StartOnGeneration4", "StartOnKind0", "StartOnKind2",
                                         "StartOnTheSecondSource", "StartOnTheBareBoard"),
                         NameCase);
INSTANTIATE_TEST_SUITE_P(Nightly, EveryFailureOfAUse,
                         testing::Values("CheckBox", "NodeBehindALayer", "Thumb", "Tabs", "Sources", "HelpPage", "Keys",
                                         "Watching", "Restart"),
                         NameCase);

} // namespace
