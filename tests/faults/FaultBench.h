// A bench for failures: a scenario is played once, and at each place where a call or an allocation could fail the process
// splits. The copy has the failure and plays the rest of the scenario with it; the original goes on to the next place. So a
// crash takes one copy with it and is told with its place, and what came before a place is played only once.
#pragma once

#include <string>
#include <vector>

#include "platform/host/Session.h"

// Line of a script from which on everything on the screen is painted anew, so that a drawing that failed before it shows
// no more at the end.
constexpr const char* gSettleMark = "# settle";

struct SCENARIO {
    const char* Name;
    const char* Board;
    UINT8 Generation;
    const char* Script;
    UINTN ComparedRows = gDisplayHeight; // of the display, from the top
};

// The boards and generations; a short use of everything follows the start, so that what a failure left out is used.
extern const SCENARIO gStarts[];
extern const UINTN gStartCount;
// Uses of one control or page each, after a start without failures.
extern const SCENARIO gUses[];
extern const UINTN gUseCount;
const SCENARIO& FindScenario(const std::string& Name);

// What a run with a failure must show all the same: see Judge.
struct EXPECTATION {
    bool LeavesPool = false; // FreePool itself fails, so that pool stays behind
    bool LeavesEvents = false; // CloseEvent itself fails
    UINTN SameRows = 0; // so many rows of the display are at the end those of a run without failure
};

// What is wrong with a run, in words; empty: nothing. A run may end early with EFI_PROTOCOL_ERROR, and it may show less,
// but no pool is left, no event, and the firmware has nothing to complain of, a record least of all that no fan may get.
std::vector<std::string> Judge(const SESSION_RESULT& Result, const SESSION_RESULT& Reference, const EXPECTATION& Expected);

// Turns of the first start, the first and the last of them included; 0 is the time in which the console starts. Further
// starts are swept too where the last is gToTheEnd.
constexpr UINT64 gToTheEnd = ~0ull;
struct TURNS {
    UINT64 First;
    UINT64 Last;
};

struct SWEEP_RESULT {
    UINT64 Places = 0; // where a failure was possible
    UINT64 Tried = 0;
    std::vector<std::string> Faults; // of each place where something went wrong, a line
};

// Each allocation in those turns fails: alone, or with all that follow it. Of the places, those are tried whose number
// leaves Part when divided by Parts.
// With SamePicture the rows compared must be whole at the end wherever the failure came before the scenario's settling.
SWEEP_RESULT SweepAllocations(const SCENARIO& Scenario, const TURNS& Turns, bool AllThatFollow, bool SamePicture,
                              UINT64 Part, UINT64 Parts);

// The calls in those turns fail in turn, each with one of its statuses, outputs untouched or garbage, by rotation; where
// the run has few calls of an operation, and AtMost isn't even less, each of them with all. About AtMost calls of one
// operation are tried, evenly spread over the run; 0: all.
SWEEP_RESULT SweepCalls(const SCENARIO& Scenario, const TURNS& Turns, UINT64 AtMost);

// Every call of an operation fails, from the first on: for each operation with each status that it may give and one that
// it may not, outputs untouched and garbage.
SWEEP_RESULT SweepOperations(const SCENARIO& Scenario, UINT64 Part, UINT64 Parts);
