// Every allocation and every call fails in turn. VENTARA_SWEEP=full in the environment tries every place of every
// scenario in whatever build, VENTARA_SWEEP=N each Nth place; without it, a build with sanitizers, which is slow, tries a
// sample.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "tests/faults/FaultBench.h"

#if VENTARA_SANITIZED
// An allocation of an absurd size is refused, as a firmware does it. A small quarantine keeps the copies quick.
extern "C" const char* __asan_default_options()
{
    return "allocator_may_return_null=1:quarantine_size_mb=16:detect_leaks=0";
}
#endif

namespace {

bool SweepsAll()
{
    const char* Wanted = std::getenv("VENTARA_SWEEP");
    return Wanted != nullptr && std::strcmp(Wanted, "full") == 0;
}

// A number out of 2, 3, 5 ...: the places of a sample should not all be the first of a control's.
constexpr UINT64 gSampleOfSanitizers = 83;

UINT64 SampleStep()
{
    const char* Wanted = std::getenv("VENTARA_SWEEP");
    const UINT64 Step = Wanted != nullptr ? std::strtoull(Wanted, nullptr, 10) : 0;
    return Step != 0 ? Step : SweepsAll() || !VENTARA_SANITIZED ? 1 : gSampleOfSanitizers;
}

// Calls of one operation, see SweepCalls. Some are made ten thousand times in a run, which is too much for a slow build even
// when everything is to be tried.
UINT64 CallsAtMost()
{
    if (SweepsAll()) {
        return VENTARA_SANITIZED ? 200 : 0;
    }
    return VENTARA_SANITIZED ? 1 : SampleStep() > 1 ? 8 : 20;
}

// The start is followed by a use, so that what the start left out is missed. What fails in that use itself is tried where
// everything is: the uses have the same.
TURNS TurnsOfAStart() { return {0, SweepsAll() ? gToTheEnd : 0}; }
constexpr TURNS gTurnsOfAUse = {1, gToTheEnd};

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

TEST_P(EveryFailureOfAStart, AnAllocationThatFailsAlone)
{
    Expect(SweepAllocations(Scenario(), TurnsOfAStart(), false, false, 0, SampleStep()));
}

TEST_P(EveryFailureOfAStart, AllAllocationsFromOneOn)
{
    Expect(SweepAllocations(Scenario(), TurnsOfAStart(), true, false, 0, SampleStep()));
}

TEST_P(EveryFailureOfAStart, ACallThatFailsAlone)
{
    Expect(SweepCalls(Scenario(), TurnsOfAStart(), CallsAtMost()));
}

TEST_P(EveryFailureOfAStart, AllCallsOfAnOperation) { Expect(SweepOperations(Scenario(), 0, SampleStep())); }

TEST_P(EveryFailureOfAUse, AnAllocationThatFailsAloneLeavesThePictureWhole)
{
    Expect(SweepAllocations(Scenario(), gTurnsOfAUse, false, true, 0, SampleStep()));
}

TEST_P(EveryFailureOfAUse, AllAllocationsFromOneOn)
{
    Expect(SweepAllocations(Scenario(), gTurnsOfAUse, true, false, 0, SampleStep()));
}

TEST_P(EveryFailureOfAUse, ACallThatFailsAlone)
{
    Expect(SweepCalls(Scenario(), gTurnsOfAUse, CallsAtMost()));
}

INSTANTIATE_TEST_SUITE_P(Always, EveryFailureOfAStart, testing::Values("StartOnTheFullBoard"), NameCase);
INSTANTIATE_TEST_SUITE_P(Always, EveryFailureOfAUse, testing::Values("Node", "Buttons", "AboutPage"), NameCase);

// What takes long all together: the build configuration gives these to the nightly run.
INSTANTIATE_TEST_SUITE_P(Nightly, EveryFailureOfAStart,
                         testing::Values("StartOnTheSmallBoard", "StartOnGeneration4", "StartOnKind0", "StartOnKind2",
                                         "StartOnTheSecondSource", "StartOnTheBareBoard"),
                         NameCase);
INSTANTIATE_TEST_SUITE_P(Nightly, EveryFailureOfAUse,
                         testing::Values("CheckBox", "Thumb", "Tabs", "Sources", "HelpPage", "Keys", "Watching",
                                         "Restart"),
                         NameCase);

} // namespace
