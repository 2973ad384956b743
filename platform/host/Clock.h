// The clock of the hosted firmware: the machine's own, or a virtual one that stands still until it is moved.
//
// It counts from 0 when the machine is switched on. The processor's timer runs at one tick a nanosecond on it, and the
// calendar follows it: the virtual one begins on 1 January 2026, so that two runs of one script see the same times.
#pragma once

#include "uefi/Base.h"

struct CLOCK {
    bool Virtual = true;

    explicit CLOCK(bool IsVirtual);

    UINT64 Nanoseconds() const;
    UINT64 Microseconds() const { return Nanoseconds() / 1000; }
    // Moves a virtual clock on; the machine's own isn't moved by anybody.
    void Advance(UINT64 Microseconds);
    // A stall: the virtual clock moves on, on the machine's own the program sleeps.
    void Stall(UINT64 Microseconds);
    // The calendar, in UTC.
    void ReadCalendar(EFI_TIME* Time) const;

private:
    UINT64 mNanoseconds = 0;
    UINT64 mOrigin = 0;
};

// Days, hours and so on of a moment, in UTC. Seconds count from 1970.
void FillCalendar(UINT64 Seconds, UINT32 Nanosecond, EFI_TIME* Time);
