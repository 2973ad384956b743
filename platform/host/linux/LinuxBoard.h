// The machine that the program runs on as a board: its sensors and fans by Linux's files of sensor chips.
//
// Read alone, unless SetFans; then what every fan that can be set held is kept, and Default and Cancel give it back, as
// does the end of the process in any other way than by leaving the console. The readings come from threads of their own,
// all else happens on the caller's.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/board/BoardSource.h"
#include "platform/host/linux/FanFiles.h"
#include "platform/host/linux/Guardian.h"
#include "platform/host/linux/Readings.h"

constexpr const char* gLinuxBoardName = "linux";
constexpr const char* gLinuxSensors = "/sys/class/hwmon";

struct LINUX_BOARD_OPTIONS {
    std::string Root = gLinuxSensors;
    std::vector<std::string> Temperatures; // see ChooseSensors; three at most
    bool SetFans = false;
    bool Keep = false; // what was set stays, however the process ends
    std::chrono::milliseconds StaleAfter{5000};
    std::function<VOID(const std::string&)> Say; // sentences for the user; null: standard error
};

struct LINUX_BOARD : BOARD_SOURCE {
    // False with a sentence when the folder can't be read or a wanted temperature isn't there. Sets nothing yet.
    bool Find(const LINUX_BOARD_OPTIONS& Options, std::string* Error);
    // A line for each sensor: what it reads, and what becomes of it on the console.
    std::string List() const;
    // From now on it is a source. While the process has one thread; tells what the user should know.
    VOID Open();
    // The console is left. By a signal the fans get back what they had, unless Keep; else they stay as they were set, and
    // a fixed duty that stays is told.
    VOID Leave(bool BySignal);

private:
    struct FAN {
        FAN_FILES Files;
        FAN_CONTROL Control = CONTROL_NONE;
        SHOWN_PAGE Page;
    };
    VOID DealPages();
    VOID Place(UINT8 Item, const SENSOR* Sensor);
    VOID Say(const std::string& Sentence) const;
    bool MayFansBeSet(); // and tells it once where they may not
    bool CommandAll(bool (FAN_FILES::*Command)(std::string*), const char* What);
    EFI_STATUS Set(UINT8 Item, const FAN_SETTING& Setting);
    EFI_STATUS Get(UINT8 Item, FAN_SETTING* Setting);

    LINUX_BOARD_OPTIONS mOptions;
    std::vector<SENSOR> mSensors;
    CHOSEN_SENSORS mChosen;
    const SENSOR* mByItem[gItemCount] = {};
    std::u16string mNames[gItemCount];
    std::map<UINT8, FAN> mFans; // by item
    bool mTakenBack = false;    // Default or Cancel since the console started
    bool mToldReadOnly = false;
    std::optional<READINGS> mReadings; // of the sensors in the order of mShown
    std::vector<UINT8> mShown;
    GUARDIAN mGuardian;
};
