#include "platform/host/Crossing.h"

bool OVERRIDES::TakeFailure(CALL Call, EFI_STATUS* Status, bool* Garbage)
{
    *Garbage = false;
    if (Plan.Call != nullptr && Plan.Call(Plan.Context, Call, Status, Garbage)) {
        return true;
    }
    FAILURE& Failure = Failures[Call];
    if (Failure.Left == 0) {
        return false;
    }
    Failure.Left--;
    *Status = Failure.Status;
    return true;
}

VOID CROSSING::BeginStart(TRACE& Trace)
{
    mTurnBegun = false;
    mLimitsCalled = false;
    mEvents.clear();
    mEventsMade = 0;
    Trace.Turn = 0;
}

VOID CROSSING::NoteWait(TRACE& Trace)
{
    if (!mTurnBegun) {
        BeginTurn(Trace);
        mTurnBegun = true;
    }
}

VOID CROSSING::NotePointerRead(TRACE& Trace)
{
    if (!mTurnBegun) {
        BeginTurn(Trace);
    }
    mTurnBegun = false;
}

bool CROSSING::IsFirstLimitsCall()
{
    const bool First = !mLimitsCalled;
    mLimitsCalled = true;
    return First;
}

UINT64 CROSSING::NumberEvent(EFI_EVENT Event) const
{
    const auto Found = mEvents.find(Event);
    return Found == mEvents.end() ? 0 : Found->second;
}

VOID CROSSING::BeginTurn(TRACE& Trace)
{
    Trace.Turn++;
    if (Listener.BeginTurn != nullptr) {
        Listener.BeginTurn(Listener.Context);
    }
}
