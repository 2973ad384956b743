// What happens at the line between the console and its firmware: turns are counted, calls are made to fail, events get the
// numbers by which the trace calls them, and the board's readings and strings are overridden.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/host/Calls.h"
#include "platform/host/Trace.h"
#include "shell/contract/Services.h"

// Told of turns and stalls; either function may be null.
struct TURN_LISTENER {
    VOID (*BeginTurn)(VOID* Context) = nullptr;
    VOID (*Stalled)(VOID* Context, UINT64 Microseconds) = nullptr;
    VOID* Context = nullptr;
};

struct READING_OVERRIDE {
    enum KIND : UINT8 { VALUE, ABSENT, ERROR } Kind;
    UINT64 Value;
};

// For tests that try every failure in turn: asked at each call that can fail, and at each allocation, the board services'
// own included. Both functions may be null; true means that it fails.
struct FAILURE_PLAN {
    // *Garbage true: what the call would have filled holds no value that means anything, instead of what stood there.
    bool (*Call)(VOID* Context, CALL Call, EFI_STATUS* Status, bool* Garbage) = nullptr;
    bool (*Allocation)(VOID* Context) = nullptr;
    VOID* Context = nullptr;
};

// What outlives a reset of the machine: it is not the machine's.
struct OVERRIDES {
    struct FAILURE {
        EFI_STATUS Status;
        UINT64 Left; // calls that still fail
    };
    FAILURE Failures[CALL_COUNT] = {};
    UINT64 Slow[CALL_COUNT] = {}; // microseconds of the clock that a call takes
    std::map<UINT8, READING_OVERRIDE> Readings;
    std::map<UINT8, std::optional<std::u16string>> Strings; // nothing: a null string
    FAILURE_PLAN Plan;

    // The next Count calls return Status and do nothing.
    VOID Fail(CALL Call, EFI_STATUS Status, UINT64 Count) { Failures[Call] = {Status, Count}; }
    // True, with the status, when this call is one of those, or one that the plan wants to fail.
    bool TakeFailure(CALL Call, EFI_STATUS* Status, bool* Garbage);
};

struct CROSSING {
    TURN_LISTENER Listener;
    OVERRIDES Overrides;

    // Turns and events are counted from the beginning again.
    VOID BeginStart(TRACE& Trace);
    // To be told of every call of either; they make the turns.
    VOID NoteWait(TRACE& Trace);
    VOID NotePointerRead(TRACE& Trace);
    // True the first time in a start.
    bool IsFirstLimitsCall();

    // Number of an event, 0 for one that isn't known.
    UINT64 NumberEvent(EFI_EVENT Event) const;
    VOID AddEvent(EFI_EVENT Event) { mEvents[Event] = ++mEventsMade; }

private:
    VOID BeginTurn(TRACE& Trace);

    bool mTurnBegun = false; // a turn has begun and the pointer hasn't been read in it
    bool mLimitsCalled = false;
    std::map<EFI_EVENT, UINT64> mEvents;
    UINT64 mEventsMade = 0;
};
