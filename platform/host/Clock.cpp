#include "platform/host/Clock.h"

#include <cerrno>
#include <cstring>
#include <ctime>

namespace {

constexpr UINT64 gNanosecondsPerSecond = 1000000000;
constexpr UINT64 gVirtualEpoch = 1767225600; // 1 January 2026, 00:00:00 UTC
constexpr INT16 gUtc = 0;

UINT64 ReadMonotonic()
{
    timespec Now;
    clock_gettime(CLOCK_MONOTONIC, &Now);
    return static_cast<UINT64>(Now.tv_sec) * gNanosecondsPerSecond + static_cast<UINT64>(Now.tv_nsec);
}

} // namespace

CLOCK::CLOCK(bool IsVirtual) : Virtual(IsVirtual), mOrigin(IsVirtual ? 0 : ReadMonotonic()) {}

UINT64 CLOCK::Nanoseconds() const { return Virtual ? mNanoseconds : ReadMonotonic() - mOrigin; }

void CLOCK::Advance(UINT64 Microseconds)
{
    if (Virtual) {
        // It stands still at the end of its range rather than go back.
        const UINT64 Room = (~0ull - mNanoseconds) / 1000;
        mNanoseconds += (Microseconds < Room ? Microseconds : Room) * 1000;
    }
}

void CLOCK::Stall(UINT64 Microseconds)
{
    if (Virtual) {
        Advance(Microseconds);
        return;
    }
    timespec Left = {static_cast<time_t>(Microseconds / 1000000), static_cast<long>(Microseconds % 1000000 * 1000)};
    while (nanosleep(&Left, &Left) != 0 && errno == EINTR) {
    }
}

void CLOCK::ReadCalendar(EFI_TIME* Time) const
{
    if (Virtual) {
        FillCalendar(gVirtualEpoch + mNanoseconds / gNanosecondsPerSecond,
                     static_cast<UINT32>(mNanoseconds % gNanosecondsPerSecond), Time);
        return;
    }
    timespec Now;
    clock_gettime(CLOCK_REALTIME, &Now);
    FillCalendar(static_cast<UINT64>(Now.tv_sec), static_cast<UINT32>(Now.tv_nsec), Time);
}

void FillCalendar(UINT64 Seconds, UINT32 Nanosecond, EFI_TIME* Time)
{
    const time_t Moment = static_cast<time_t>(Seconds);
    tm Parts;
    gmtime_r(&Moment, &Parts);
    std::memset(Time, 0, sizeof(*Time));
    Time->Year = static_cast<UINT16>(Parts.tm_year + 1900);
    Time->Month = static_cast<UINT8>(Parts.tm_mon + 1);
    Time->Day = static_cast<UINT8>(Parts.tm_mday);
    Time->Hour = static_cast<UINT8>(Parts.tm_hour);
    Time->Minute = static_cast<UINT8>(Parts.tm_min);
    Time->Second = static_cast<UINT8>(Parts.tm_sec);
    Time->Nanosecond = Nanosecond;
    Time->TimeZone = gUtc;
}
