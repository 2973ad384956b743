#include "platform/host/linux/Readings.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <filesystem>
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

std::string FolderOf(const SENSOR& Sensor) { return Sensor.Stem.substr(0, Sensor.Stem.rfind('/')); }

// What stays when a driver is loaded again, while its folder's number doesn't: the device behind it. Empty where a folder
// names none.
std::string DeviceOf(const std::string& Folder)
{
    std::error_code Error;
    return std::filesystem::canonical(Folder + "/device", Error).string();
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
    // Looks for the folder of a chip that has lost its own: by its device, or, where that isn't told, by its driver, if no
    // other chip has the same.
    VOID FindAgain(UINTN Chip, const std::string& Device)
    {
        const auto First =
            std::find_if(Sensors.begin(), Sensors.end(), [Chip](const SENSOR& Sensor) { return Sensor.Chip == Chip; });
        const std::string Folder = FolderOf(*First);
        std::vector<SENSOR> Found;
        std::string Ignored;
        if (access((Folder + "/name").c_str(), F_OK) == 0 ||
            !FindSensors(Folder.substr(0, Folder.rfind('/')), &Found, &Ignored)) {
            return;
        }
        std::vector<std::string> Candidates;
        for (const SENSOR& Sensor : Found) {
            const std::string Other = FolderOf(Sensor);
            if (Sensor.Driver == First->Driver && (Device.empty() || DeviceOf(Other) == Device) &&
                (Candidates.empty() || Candidates.back() != Other)) {
                Candidates.push_back(Other);
            }
        }
        for (SENSOR& Sensor : Sensors) {
            if (Candidates.size() == 1 && Sensor.Chip == Chip) {
                Sensor.Stem = Candidates[0] + Sensor.Stem.substr(Folder.size());
            }
        }
    }
    VOID ReadChip(UINTN Chip, const std::string& Device)
    {
        FindAgain(Chip, Device);
        for (UINTN Index = 0; Index < Sensors.size(); Index++) {
            if (Sensors[Index].Chip == Chip) {
                INT64 Number;
                const bool Good = Sensors[Index].Read(&Number, true) == 0;
                if (Good) {
                    Values[Index].Number = Number;
                }
                Values[Index].At = Good ? Now() : 0;
            }
        }
    }
    VOID Run(UINTN Chip)
    {
        std::string Device;
        for (const SENSOR& Sensor : Sensors) {
            Device = Sensor.Chip == Chip ? DeviceOf(FolderOf(Sensor)) : Device;
        }
        for (bool First = true;; First = false) {
            ReadChip(Chip, Device);
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
