#include "platform/host/linux/Readings.h"

#include <atomic>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <thread>

namespace {

using CLOCK_NOW = std::chrono::steady_clock;

constexpr std::chrono::milliseconds gPause{250};
constexpr std::chrono::seconds gLongestWait{1};

INT64 Now()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(CLOCK_NOW::now().time_since_epoch()).count();
}

} // namespace

struct READINGS::SHARED {
    struct VALUE {
        std::atomic<INT64> Number{0};
        std::atomic<INT64> At{0}; // milliseconds; 0: the last attempt failed, or there was none
    };
    std::vector<SENSOR> Sensors; // those of a chip are its thread's alone
    std::vector<VALUE> Values;
    INT64 StaleAfter;
    std::mutex Lock;
    std::condition_variable Changed;
    UINTN FirstRounds = 0; // threads that haven't been through all sensors once
    UINTN Running = 0;
    bool Stop = false;

    SHARED(const std::vector<SENSOR>& TheSensors, INT64 TheStaleAfter)
        : Sensors(TheSensors), Values(TheSensors.size()), StaleAfter(TheStaleAfter)
    {
    }
    VOID ReadChip(UINTN Chip)
    {
        bool There = true; // one search a round is enough
        for (UINTN Index = 0; Index < Sensors.size(); Index++) {
            if (Sensors[Index].Chip == Chip) {
                INT64 Number;
                There = There && Sensors[Index].Follow();
                const bool Good = There && Sensors[Index].Read(&Number, true) == 0;
                if (Good) {
                    Values[Index].Number = Number;
                }
                Values[Index].At = Good ? Now() : 0;
            }
        }
    }
    VOID Run(UINTN Chip)
    {
        for (bool First = true;; First = false) {
            ReadChip(Chip);
            std::unique_lock<std::mutex> Held(Lock);
            FirstRounds -= First ? 1 : 0;
            Changed.notify_all();
            if (Changed.wait_for(Held, gPause, [this] { return Stop; })) {
                Running--;
                Changed.notify_all();
                return;
            }
        }
    }
};

READINGS::READINGS(const std::vector<SENSOR>& Sensors, std::chrono::milliseconds StaleAfter)
    : mShared(std::make_shared<SHARED>(Sensors, StaleAfter.count()))
{
    std::vector<UINTN> Chips;
    for (const SENSOR& Sensor : Sensors) {
        if (Chips.empty() || Chips.back() != Sensor.Chip) {
            Chips.push_back(Sensor.Chip);
        }
    }
    mShared->FirstRounds = mShared->Running = Chips.size();
    // Signals are for the console's thread.
    sigset_t All, Before;
    sigfillset(&All);
    (void)pthread_sigmask(SIG_SETMASK, &All, &Before);
    for (const UINTN Chip : Chips) {
        std::thread([Shared = mShared, Chip] { Shared->Run(Chip); }).detach();
    }
    (void)pthread_sigmask(SIG_SETMASK, &Before, nullptr);
    std::unique_lock<std::mutex> Held(mShared->Lock);
    (void)mShared->Changed.wait_for(Held, gLongestWait, [this] { return mShared->FirstRounds == 0; });
}

READINGS::~READINGS()
{
    std::unique_lock<std::mutex> Held(mShared->Lock);
    mShared->Stop = true;
    mShared->Changed.notify_all();
    (void)mShared->Changed.wait_for(Held, gPause, [this] { return mShared->Running == 0; });
}

bool READINGS::Last(UINTN Index, INT64* Value) const
{
    const INT64 At = mShared->Values[Index].At;
    *Value = mShared->Values[Index].Number;
    return At != 0 && Now() - At <= mShared->StaleAfter;
}
