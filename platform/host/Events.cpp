#include "platform/host/Events.h"

#include <algorithm>

#include "platform/host/HostText.h"

namespace {

constexpr UINT32 gKnownTypeBits = EVT_TIMER | EVT_NOTIFY_SIGNAL;
// Period 0 means "at every tick of the firmware's timer": 10 ms on the boards in the field.
constexpr UINT64 gTimerTick = 100000;
constexpr UINT64 gKeyStep = 32;

bool IsNotifyTpl(EFI_TPL Tpl) { return Tpl == TPL_CALLBACK || Tpl == TPL_NOTIFY; }

} // namespace

EFI_TPL EVENTS::RaiseTpl(EFI_TPL NewTpl)
{
    const EFI_TPL Old = mTpl;
    if (NewTpl < Old || NewTpl > TPL_HIGH_LEVEL) {
        mComplaints->Add("RaiseTPL from %llu to %llu", Old, NewTpl);
        return Old;
    }
    mTpl = NewTpl;
    return Old;
}

VOID EVENTS::RestoreTpl(EFI_TPL OldTpl)
{
    if (OldTpl > mTpl) {
        mComplaints->Add("RestoreTPL from %llu to %llu", mTpl, OldTpl);
        return;
    }
    mTpl = OldTpl;
    RunQueued();
}

EFI_STATUS EVENTS::Create(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, VOID* Context, const EFI_GUID* Group,
                          EFI_EVENT* Event)
{
    const bool Notifies = (Type & EVT_NOTIFY_SIGNAL) != 0;
    if (Event == nullptr || (Type & ~gKnownTypeBits) != 0 ||
        (Notifies && (Notify == nullptr || !IsNotifyTpl(NotifyTpl)))) {
        return EFI_INVALID_PARAMETER;
    }
    EVENT_RECORD Record = {};
    Record.Type = Type;
    if (Notifies) {
        Record.NotifyTpl = NotifyTpl;
        Record.Notify = Notify;
        Record.Context = Context;
    }
    if (Group != nullptr) {
        Record.HasGroup = true;
        Record.Group = *Group;
    }
    mEvents.emplace(mNextKey, Record);
    *Event = reinterpret_cast<EFI_EVENT>(mNextKey);
    // A key isn't used again, so that a stale one is always seen.
    mNextKey += gKeyStep;
    return EFI_SUCCESS;
}

UINT64 EVENTS::Now()
{
    if (!StandsInTurns) {
        return mClock->Nanoseconds() / 100;
    }
    if (TurnBegan == 0) {
        TurnBegan = mClock->Microseconds();
    }
    return TurnBegan * 10;
}

EFI_STATUS EVENTS::SetTimer(EFI_EVENT Event, EFI_TIMER_DELAY Type, UINT64 TriggerTime)
{
    EVENT_RECORD* Record = Find(Event);
    if (Record == nullptr || (Record->Type & EVT_TIMER) == 0 || Type > TimerPeriodic) {
        return EFI_INVALID_PARAMETER;
    }
    const KEY Key = reinterpret_cast<KEY>(Event);
    if (Record->Armed) {
        mTimers.erase(std::find(mTimers.begin(), mTimers.end(), Key));
        Record->Armed = false;
    }
    if (Type == TimerCancel) {
        return EFI_SUCCESS;
    }
    Record->Armed = true;
    Record->Period = TriggerTime == 0 ? gTimerTick : TriggerTime;
    Record->Due = Now() + Record->Period;
    mTimers.push_back(Key);
    return EFI_SUCCESS;
}

EFI_STATUS EVENTS::Signal(EFI_EVENT Event)
{
    EVENT_RECORD* Record = Find(Event);
    if (Record == nullptr) {
        mComplaints->Add("SignalEvent of an event that isn't open");
        return EFI_INVALID_PARAMETER;
    }
    if (!Record->HasGroup) {
        QueueSignalled(reinterpret_cast<KEY>(Event), *Record);
    } else if (!Record->Signalled) {
        std::vector<KEY> Members;
        for (const auto& [Key, Member] : mEvents) {
            if (Member.HasGroup && SameGuid(Member.Group, Record->Group)) {
                Members.push_back(Key);
            }
        }
        if (!OldestFirst) {
            std::reverse(Members.begin(), Members.end());
        }
        for (const KEY Key : Members) {
            QueueSignalled(Key, mEvents.at(Key));
        }
    }
    RunQueued();
    return EFI_SUCCESS;
}

EFI_STATUS EVENTS::Close(EFI_EVENT Event)
{
    EVENT_RECORD* Record = Find(Event);
    if (Record == nullptr) {
        mComplaints->Add("CloseEvent of an event that isn't open");
        return EFI_INVALID_PARAMETER;
    }
    (void)SetTimer(Event, TimerCancel, 0);
    const KEY Key = reinterpret_cast<KEY>(Event);
    if (Record->Queued) {
        std::deque<KEY>& Waiting = mQueues[Record->NotifyTpl];
        Waiting.erase(std::find(Waiting.begin(), Waiting.end(), Key));
    }
    mEvents.erase(Key);
    return EFI_SUCCESS;
}

EFI_STATUS EVENTS::Wait(UINTN Count, EFI_EVENT* Events, UINTN* Index)
{
    if (Count == 0 || Events == nullptr || Index == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    if (mTpl != TPL_APPLICATION) {
        return EFI_UNSUPPORTED;
    }
    for (UINTN At = 0; At < Count; At++) {
        SignalDueTimers();
        EVENT_RECORD* Record = Find(Events[At]);
        const bool Waits = Record != nullptr && (Record->Type & EVT_NOTIFY_SIGNAL) == 0;
        if (!Waits || Record->Signalled) {
            *Index = At;
            if (Waits) {
                Record->Signalled = false;
            }
            return Waits ? EFI_SUCCESS : EFI_INVALID_PARAMETER;
        }
    }
    mComplaints->Add("WaitForEvent that would sleep");
    return EFI_UNSUPPORTED;
}

VOID EVENTS::SignalDueTimers()
{
    const UINT64 Moment = Now();
    std::vector<KEY> Due;
    for (const KEY Key : mTimers) {
        if (mEvents.at(Key).Due <= Moment) {
            Due.push_back(Key);
        }
    }
    for (const KEY Key : Due) {
        const EFI_EVENT Event = reinterpret_cast<EFI_EVENT>(Key);
        EVENT_RECORD* Record = Find(Event);
        if (Record == nullptr || !Record->Armed || Record->Due > Moment) {
            continue; // the notify function of another timer closed it or set it anew
        }
        // It keeps its beat: the periods that were slept over count as one.
        Record->Due += ((Moment - Record->Due) / Record->Period + 1) * Record->Period;
        (void)Signal(Event);
    }
}

UINTN EVENTS::Abandon(UINTN Mark)
{
    UINTN Count = 0;
    for (auto Event = mEvents.lower_bound(Mark); Event != mEvents.end(); ++Event) {
        Event->second.Notify = nullptr;
        Count++;
    }
    return Count;
}

EVENT_RECORD* EVENTS::Find(EFI_EVENT Event)
{
    const auto Found = mEvents.find(reinterpret_cast<KEY>(Event));
    return Found == mEvents.end() ? nullptr : &Found->second;
}

VOID EVENTS::Queue(KEY Key, EVENT_RECORD& Record)
{
    if (!Record.Queued) {
        Record.Queued = true;
        mQueues[Record.NotifyTpl].push_back(Key);
    }
}

VOID EVENTS::QueueSignalled(KEY Key, EVENT_RECORD& Record)
{
    Record.Signalled = true;
    if ((Record.Type & EVT_NOTIFY_SIGNAL) != 0) {
        Queue(Key, Record);
    }
}

VOID EVENTS::RunQueued()
{
    for (EFI_TPL Tpl = TPL_HIGH_LEVEL; Tpl > mTpl; Tpl--) {
        while (!mQueues[Tpl].empty()) {
            const KEY Key = mQueues[Tpl].front();
            mQueues[Tpl].pop_front();
            EVENT_RECORD& Record = mEvents.at(Key);
            Record.Queued = false;
            if ((Record.Type & EVT_NOTIFY_SIGNAL) != 0) {
                Record.Signalled = false;
            }
            const EFI_TPL Before = mTpl;
            mTpl = Tpl;
            if (Record.Notify == nullptr) {
                mComplaints->Add("an event was signalled whose image is gone");
                mTpl = Before;
                continue;
            }
            // The function may close its own event: the record isn't looked at after this.
            (void)Record.Notify(reinterpret_cast<EFI_EVENT>(Key), Record.Context);
            if (mTpl != Tpl) {
                mComplaints->Add("a notify function returned at priority %llu instead of %llu", mTpl, Tpl);
            }
            mTpl = Before;
            // It may have queued something above this level only at or below its own, so going on here keeps the order.
        }
    }
}
