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
    std::string Script;
    UINTN ComparedRows =
        gDisplayHeight; // of the display, from the top; with less than all, the chart isn't compared either
    PANEL Panel = {};   // of 1024 by 768
};

// A start of each board and generation, followed by a short use of everything, so that what a failure left out is used; and
// uses of one control or page each, after a start without failures.
const SCENARIO& FindScenario(const std::string& Name);

// What a run with a failure must show all the same: see Judge.
struct EXPECTATION {
    bool LeavesPool = false;   // FreePool itself fails, so that pool stays behind
    bool LeavesEvents = false; // CloseEvent itself fails
    UINTN SameRows = 0;        // so many rows of the display are at the end those of a run without failure
};

// What is wrong with a run, in words; empty: nothing. A run may end early with EFI_PROTOCOL_ERROR, and it may show less,
// but no pool is left, no event, and the firmware has nothing to complain of, a record least of all that no fan may get.
std::vector<std::string> Judge(const SESSION_RESULT& Result, const SESSION_RESULT& Reference,
                               const EXPECTATION& Expected);

// Turns of the first start, the first and the last of them included; 0 is the time in which the console starts. Further
// starts are swept too where the last is gToTheEnd.
constexpr UINT64 gToTheEnd = ~0ull;
struct TURNS {
    UINT64 First;
    UINT64 Last;
};

// What is swept, and how.
struct SWEEP {
    TURNS Turns;         // the places in these turns
    UINT64 Step = 1;     // of allocations each Step-th
    bool Settles = true; // the scenario's settling is played; without it a run is much shorter
    bool SamePicture =
        false; // the rows compared must be whole at the end wherever the failure came before the settling
};

struct SWEEP_RESULT {
    UINT64 Places = 0; // where a failure was possible
    UINT64 Tried = 0;
    std::vector<std::string> Faults; // of each place where something went wrong, a line
};

// Each allocation fails: alone, or with all that follow it.
SWEEP_RESULT SweepAllocations(const SCENARIO& Scenario, const SWEEP& Sweep, bool AllThatFollow);

// The calls fail in turn, each with one of its statuses, outputs untouched or garbage, by rotation; where the run has few
// calls of an operation, and AtMost isn't even less, each of them with all. About AtMost calls of one operation are tried,
// evenly spread over the run; 0: all. The picture has to be whole after those of which no failure can lose what a person
// did.
SWEEP_RESULT SweepCalls(const SCENARIO& Scenario, const SWEEP& Sweep, UINT64 AtMost);

// Every call of an operation fails, from the first on: for each operation with each status that it may give and one that
// it may not, outputs untouched and garbage; of these ways each Step-th.
SWEEP_RESULT SweepOperations(const SCENARIO& Scenario, UINT64 Step);
