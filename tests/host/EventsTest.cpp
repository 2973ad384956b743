#include <gtest/gtest.h>

#include <string>

#include "platform/host/Events.h"

namespace {

// Every notify function writes its name here, so that the order of calls can be read.
std::string gCalls;
EVENTS* gEvents;

struct ACTION {
    const char* Name;
    EFI_EVENT Signals = nullptr; // from inside the notify function
    EFI_EVENT Closes = nullptr;
};

EFI_STATUS Note(EFI_EVENT, VOID* Context)
{
    const ACTION* Action = static_cast<ACTION*>(Context);
    gCalls += Action->Name;
    if (Action->Signals != nullptr) {
        gCalls += "(";
        (void)gEvents->Signal(Action->Signals);
        gCalls += ")";
    }
    if (Action->Closes != nullptr) {
        (void)gEvents->Close(Action->Closes);
    }
    return EFI_SUCCESS;
}

struct EventsTest : testing::Test {
    COMPLAINTS Complaints;
    CLOCK Clock{true};
    EVENTS Events{&Clock, &Complaints};

    EventsTest()
    {
        Complaints.Quiet = true;
        gCalls.clear();
        gEvents = &Events;
    }

    EFI_EVENT Create(EFI_TPL Tpl, ACTION* Action, const EFI_GUID* Group = nullptr)
    {
        EFI_EVENT Event = nullptr;
        EXPECT_EQ(Events.Create(EVT_NOTIFY_SIGNAL, Tpl, Note, Action, Group, &Event), EFI_SUCCESS);
        return Event;
    }
    EFI_EVENT CreateTimer(UINT64 Microseconds)
    {
        EFI_EVENT Event = nullptr;
        EXPECT_EQ(Events.Create(EVT_TIMER, TPL_CALLBACK, nullptr, nullptr, nullptr, &Event), EFI_SUCCESS);
        EXPECT_EQ(Events.SetTimer(Event, TimerPeriodic, Microseconds * 10), EFI_SUCCESS);
        return Event;
    }
};

constexpr EFI_GUID gGroup = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};

TEST_F(EventsTest, ASignalOfAHigherPriorityRunsInsideAndAnEqualOrLowerOneWaitsForItsTurn)
{
    ACTION Inner{"n"};
    const EFI_EVENT Notify = Create(TPL_NOTIFY, &Inner);
    ACTION Low{"c", Notify};
    const EFI_EVENT Callback = Create(TPL_CALLBACK, &Low);
    EXPECT_EQ(Events.Signal(Callback), EFI_SUCCESS);
    EXPECT_EQ(gCalls, "c(n)");

    gCalls.clear();
    ACTION Outer{"N", Callback};
    Low.Signals = nullptr;
    const EFI_EVENT High = Create(TPL_NOTIFY, &Outer);
    EXPECT_EQ(Events.Signal(High), EFI_SUCCESS);
    EXPECT_EQ(gCalls, "N()c") << "the callback waits until the notify function has returned, but not longer";

    gCalls.clear();
    ACTION Twin{"M"};
    Outer.Signals = Create(TPL_NOTIFY, &Twin);
    EXPECT_EQ(Events.Signal(High), EFI_SUCCESS);
    EXPECT_EQ(gCalls, "N()M") << "an equal priority waits too";
}

TEST_F(EventsTest, WhatWasQueuedRunsWhenThePriorityFallsHighestFirst)
{
    ACTION A{"a"}, B{"b"}, C{"c"};
    const EFI_EVENT First = Create(TPL_CALLBACK, &A);
    const EFI_EVENT Second = Create(TPL_CALLBACK, &B);
    const EFI_EVENT Urgent = Create(TPL_NOTIFY, &C);
    const EFI_TPL Old = Events.RaiseTpl(TPL_HIGH_LEVEL);
    EXPECT_EQ(Old, TPL_APPLICATION);
    (void)Events.Signal(Second);
    (void)Events.Signal(First);
    (void)Events.Signal(Second); // already waiting: once is enough
    (void)Events.Signal(Urgent);
    EXPECT_EQ(gCalls, "");
    Events.RestoreTpl(TPL_CALLBACK);
    EXPECT_EQ(gCalls, "c");
    Events.RestoreTpl(Old);
    EXPECT_EQ(gCalls, "cba");
    EXPECT_TRUE(Complaints.Lines.empty());
}

TEST_F(EventsTest, AMemberOfAGroupSignalsEveryMemberAndNobodyElse)
{
    ACTION A{"a"}, B{"b"}, C{"c"}, Other{"x"};
    const EFI_GUID OtherGroup = {9, 2, 3, {}};
    const EFI_EVENT First = Create(TPL_CALLBACK, &A, &gGroup);
    (void)Create(TPL_NOTIFY, &B, &gGroup);
    (void)Create(TPL_CALLBACK, &Other, &OtherGroup);
    (void)Create(TPL_CALLBACK, &C, &gGroup);
    EXPECT_EQ(Events.Signal(First), EFI_SUCCESS);
    EXPECT_EQ(gCalls, "bca") << "the highest priority first, and the newest member first within one";
}

TEST_F(EventsTest, ClosingAnEventTakesItOutOfTheQueue)
{
    ACTION Victim{"v"};
    const EFI_EVENT Event = Create(TPL_CALLBACK, &Victim);
    ACTION Killer{"k", Event, Event};
    const EFI_EVENT High = Create(TPL_NOTIFY, &Killer);
    EXPECT_EQ(Events.Signal(High), EFI_SUCCESS);
    EXPECT_EQ(gCalls, "k()");
    EXPECT_EQ(Events.Signal(Event), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Events.Close(Event), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Complaints.Lines.size(), 2u);
}

TEST_F(EventsTest, AnEventOfAnImageThatIsGoneIsComplainedOfAndNotCalled)
{
    ACTION Older{"o"}, Left{"l"};
    (void)Create(TPL_CALLBACK, &Older, &gGroup);
    const UINTN Mark = Events.MarkNow();
    const EFI_EVENT Event = Create(TPL_CALLBACK, &Left, &gGroup);
    EXPECT_EQ(Events.Abandon(Mark), 1u);
    EXPECT_EQ(Events.Signal(Event), EFI_SUCCESS);
    EXPECT_EQ(gCalls, "o");
    EXPECT_EQ(Complaints.Lines.size(), 1u);
}

TEST_F(EventsTest, CreationRefusesWhatTheSpecificationRefuses)
{
    EFI_EVENT Event;
    ACTION A{"a"};
    struct CASE {
        UINT32 Type;
        EFI_TPL Tpl;
        EFI_EVENT_NOTIFY Notify;
        EFI_STATUS Expected;
    };
    const CASE Cases[] = {
        {EVT_NOTIFY_SIGNAL, TPL_CALLBACK, nullptr, EFI_INVALID_PARAMETER},
        {EVT_NOTIFY_SIGNAL, TPL_APPLICATION, Note, EFI_INVALID_PARAMETER},
        {EVT_NOTIFY_SIGNAL, TPL_HIGH_LEVEL, Note, EFI_INVALID_PARAMETER},
        {EVT_NOTIFY_SIGNAL, 9, Note, EFI_INVALID_PARAMETER},
        {EVT_NOTIFY_WAIT, TPL_CALLBACK, Note, EFI_INVALID_PARAMETER},
        {0x00000001, TPL_CALLBACK, Note, EFI_INVALID_PARAMETER},
        {EVT_TIMER, 0, nullptr, EFI_SUCCESS}, // nothing to notify, so neither matters
        {EVT_TIMER | EVT_NOTIFY_SIGNAL, TPL_NOTIFY, Note, EFI_SUCCESS},
        {0, 0, nullptr, EFI_SUCCESS},
    };
    for (const CASE& Case : Cases) {
        EXPECT_EQ(Events.Create(Case.Type, Case.Tpl, Case.Notify, &A, nullptr, &Event), Case.Expected)
            << std::hex << Case.Type << " at " << Case.Tpl;
    }
    EXPECT_EQ(Events.Create(0, 0, nullptr, nullptr, nullptr, nullptr), EFI_INVALID_PARAMETER);
}

TEST_F(EventsTest, AWaitStopsAtTheLowestDueTimerAndElseAtTheEmptyHandle)
{
    EFI_EVENT Array[4] = {CreateTimer(5000000), CreateTimer(200000), CreateTimer(2000000), nullptr};
    UINTN Index = 9;
    EXPECT_TRUE(EfiError(Events.Wait(4, Array, &Index)));
    EXPECT_EQ(Index, 3u);
    EXPECT_EQ(Clock.Microseconds(), 0u) << "a wait with an empty handle never sleeps";

    Clock.Advance(199999);
    (void)Events.Wait(4, Array, &Index);
    EXPECT_EQ(Index, 3u);
    Clock.Advance(1);
    EXPECT_EQ(Events.Wait(4, Array, &Index), EFI_SUCCESS);
    EXPECT_EQ(Index, 1u);
    (void)Events.Wait(4, Array, &Index);
    EXPECT_EQ(Index, 3u) << "the wait has consumed the signal";

    // At 5 s all three are due; each is told once, and the fast one's missed periods count as one.
    Clock.Advance(4800000);
    for (const UINTN Expected : {0u, 1u, 2u, 3u}) {
        (void)Events.Wait(4, Array, &Index);
        EXPECT_EQ(Index, Expected);
    }
}

TEST_F(EventsTest, ALateTimerKeepsItsBeat)
{
    EFI_EVENT Array[2] = {CreateTimer(200000), nullptr};
    UINTN Index;
    Clock.Advance(350000);
    EXPECT_EQ(Events.Wait(2, Array, &Index), EFI_SUCCESS);
    Clock.Advance(49999);
    EXPECT_TRUE(EfiError(Events.Wait(2, Array, &Index)));
    Clock.Advance(1); // 400 ms, not 350 + 200
    EXPECT_EQ(Events.Wait(2, Array, &Index), EFI_SUCCESS);
}

TEST_F(EventsTest, AWaitRefusesWhatCannotBeWaitedFor)
{
    ACTION A{"a"};
    EFI_EVENT Array[2] = {CreateTimer(100), Create(TPL_CALLBACK, &A)};
    UINTN Index = 9;
    EXPECT_EQ(Events.Wait(2, Array, &Index), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Index, 1u) << "an event with a notify function for its signal";
    EXPECT_EQ(Events.Wait(0, Array, &Index), EFI_INVALID_PARAMETER);
    (void)Events.RaiseTpl(TPL_CALLBACK);
    EXPECT_EQ(Events.Wait(1, Array, &Index), EFI_UNSUPPORTED);
    Events.RestoreTpl(TPL_APPLICATION);
    EXPECT_TRUE(Complaints.Lines.empty());
    EXPECT_EQ(Events.Wait(1, Array, &Index), EFI_UNSUPPORTED) << "would sleep";
    EXPECT_EQ(Complaints.Lines.size(), 1u);
    EXPECT_EQ(Events.SetTimer(Array[0], TimerRelative, 1), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Events.SetTimer(Array[1], TimerPeriodic, 1), EFI_INVALID_PARAMETER) << "no timer event";
}

} // namespace
