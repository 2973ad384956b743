// Events, timers and task priorities, as the UEFI specification has them.
//
// A notify function whose priority lies above the current one runs inside the signal; at or below it, it is queued and
// runs when the priority falls. Queued functions run highest priority first, and in the order of their signals within one.
// Signalling a member of a group signals every member, the newest first, as the firmwares in the field do, or the other
// way round: the order is a firmware's own, so nobody may count on one.
//
// Timers are looked at by every wait. What no program of this house asks for is refused: timers that fire once, events
// that are asked with a notify function of their own, and waits that would sleep.
#pragma once

#include <deque>
#include <map>
#include <vector>

#include "platform/host/Clock.h"
#include "platform/host/Complaints.h"
#include "uefi/SystemTable.h"

struct EVENT_RECORD {
    UINT32 Type;
    EFI_TPL NotifyTpl;
    EFI_EVENT_NOTIFY Notify;
    VOID* Context;
    bool HasGroup;
    EFI_GUID Group;
    bool Signalled;
    bool Queued;
    bool Armed;
    UINT64 Due;    // 100 ns on the clock
    UINT64 Period; // 100 ns
};

struct EVENTS {
    // For a window, whose input is recorded: timers are due by the time at which a turn began, and not by moments within it
    // that a record can't tell. All that comes before the first turn happens when the first timer was set.
    bool StandsInTurns = false;
    UINT64 TurnBegan = 0; // microseconds of the clock; 0: no timer was set yet

    EVENTS(CLOCK* TheClock, COMPLAINTS* Where) : mClock(TheClock), mComplaints(Where) {}
    EVENTS(const EVENTS&) = delete;
    EVENTS& operator=(const EVENTS&) = delete;

    bool OldestFirst = false; // in which order the members of a group are signalled

    EFI_TPL RaiseTpl(EFI_TPL NewTpl);
    // Lowers the priority and runs what was queued above it.
    VOID RestoreTpl(EFI_TPL OldTpl);
    EFI_TPL CurrentTpl() const { return mTpl; }

    // Group is null for an event of its own.
    EFI_STATUS Create(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, VOID* Context, const EFI_GUID* Group,
                      EFI_EVENT* Event);
    EFI_STATUS SetTimer(EFI_EVENT Event, EFI_TIMER_DELAY Type, UINT64 TriggerTime);
    EFI_STATUS Signal(EFI_EVENT Event);
    EFI_STATUS Close(EFI_EVENT Event);
    // Walks the array and stops at the first entry that isn't a waiting event, so at an empty handle it gives that index
    // and EFI_INVALID_PARAMETER. Where every entry waits, a firmware would sleep; that is refused with EFI_UNSUPPORTED and
    // a complaint, as the console may never stand still.
    EFI_STATUS Wait(UINTN Count, EFI_EVENT* Events, UINTN* Index);

    // For an image that goes: the events created since Mark stay, as a firmware keeps them, but their notify functions are
    // gone with the image. A signal that reaches one is complained of. Gives their number.
    UINTN MarkNow() const { return mNextKey; }
    UINTN Abandon(UINTN Mark);

    bool IsOpen(EFI_EVENT Event) const { return mEvents.count(reinterpret_cast<UINTN>(Event)) != 0; }
    UINTN Count() const { return mEvents.size(); }

private:
    using KEY = UINTN;

    EVENT_RECORD* Find(EFI_EVENT Event);
    VOID Queue(KEY Key, EVENT_RECORD& Record);
    VOID QueueSignalled(KEY Key, EVENT_RECORD& Record);
    VOID RunQueued();
    VOID SignalDueTimers();
    UINT64 Now();

    CLOCK* mClock;
    COMPLAINTS* mComplaints;
    EFI_TPL mTpl = TPL_APPLICATION;
    std::map<KEY, EVENT_RECORD> mEvents;
    std::vector<KEY> mTimers; // the armed ones
    std::deque<KEY> mQueues[TPL_HIGH_LEVEL + 1];
    KEY mNextKey = 0x7E000000;
};
