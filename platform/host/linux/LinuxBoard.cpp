#include "platform/host/linux/LinuxBoard.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "platform/host/HostText.h"

namespace {

const char* NameControl(FAN_CONTROL Control)
{
    switch (Control) {
    case CONTROL_CURVE8:
        return "a page with a curve of 8 levels";
    case CONTROL_CURVE6:
        return "a page with a curve of 6 levels";
    default:
        return "a page with a slider";
    }
}

LINUX_BOARD& BoardOf(BOARD_SOURCE* This) { return *static_cast<LINUX_BOARD*>(This); }

std::string Describe(const SENSOR& Sensor)
{
    INT64 Value;
    const int Error = Sensor.Read(&Value);
    if (Error != 0) {
        return Error == ERANGE ? "nothing likely" : std::strerror(Error);
    }
    char Text[32];
    switch (Sensor.Kind) {
    case SENSOR_TEMPERATURE:
        std::snprintf(Text, sizeof(Text), "%.1f °C", static_cast<double>(Value) / 1000);
        break;
    case SENSOR_FAN:
        std::snprintf(Text, sizeof(Text), "%lld rpm", Value);
        break;
    case SENSOR_VOLTAGE:
        std::snprintf(Text, sizeof(Text), "%.3f V", static_cast<double>(Value) / 1000);
        break;
    }
    return Text;
}

// What the console shows of a value: whole degrees, or the unit of the files.
INT64 ShownValue(const SENSOR& Sensor, INT64 Value)
{
    if (Sensor.Kind != SENSOR_TEMPERATURE) {
        return Value;
    }
    return Value >= 0 ? (Value + 500) / 1000 : -((-Value + 500) / 1000);
}

} // namespace

VOID LINUX_BOARD::Say(const std::string& Sentence) const
{
    if (mOptions.Say != nullptr) {
        mOptions.Say(Sentence);
    } else {
        std::fprintf(stderr, "ventara: %s\n", Sentence.c_str());
    }
}

VOID LINUX_BOARD::Place(UINT8 Item, const SENSOR* Sensor)
{
    if (Sensor != nullptr) {
        mByItem[Item] = Sensor;
        mNames[Item] = ToUtf16(Sensor->Label);
        Present |= UINT32{1} << Item;
    }
}

VOID LINUX_BOARD::DealPages()
{
    std::map<const SENSOR*, FAN_FILES> Fans;
    for (const SENSOR* Sensor : mChosen.Fans) {
        if (Sensor != nullptr) {
            Fans.emplace(Sensor, *Sensor);
        }
    }
    for (const FAN_MEANS Means : {FAN_CURVE, FAN_DUTY, FAN_SPEED_ALONE}) {
        for (const SENSOR* Sensor : mChosen.Fans) {
            if (Sensor == nullptr || Fans.at(Sensor).Means != Means) {
                continue;
            }
            for (const UINT8 Item : Means == FAN_CURVE ? gCurvePages : gSliderPages) {
                if (mByItem[Item] == nullptr) {
                    Place(Item, Sensor);
                    mFans.emplace(Item,
                                  FAN{.Files = Fans.at(Sensor), .Control = ControlOfFan(FanKind, Item), .Page = {}});
                    break;
                }
            }
        }
    }
}

bool LINUX_BOARD::Find(const LINUX_BOARD_OPTIONS& Options, std::string* Error)
{
    mOptions = Options;
    Present = 0;
    FanKind = 1;
    if (!FindSensors(Options.Root, &mSensors, Error) ||
        !ChooseSensors(mSensors, Options.Temperatures, &mChosen, Error)) {
        return false;
    }
    for (UINT8 Index = 0; Index < gTemperatureItemCount; Index++) {
        Place(static_cast<UINT8>(gFirstTemperatureItem + Index), mChosen.Temperatures[Index]);
    }
    for (UINT8 Index = 0; Index < gVoltageItemCount; Index++) {
        Place(static_cast<UINT8>(gFirstVoltageItem + Index), mChosen.Voltages[Index]);
    }
    DealPages();
    return true;
}

std::string LINUX_BOARD::List() const
{
    std::string Lines;
    for (const SENSOR& Sensor : mSensors) {
        char Front[128];
        std::snprintf(Front, sizeof(Front), "%-12s %-22s %14s   ", Sensor.Driver.c_str(), Sensor.Label.c_str(),
                      Describe(Sensor).c_str());
        const auto At = std::find(std::begin(mByItem), std::end(mByItem), &Sensor);
        const UINT8 Item = static_cast<UINT8>(At - std::begin(mByItem));
        std::string Fate = "not shown";
        if (Item < gTemperatureItemCount) {
            Fate = "temperature " + std::to_string(Item + 1);
        } else if (IsFanItem(Item)) {
            const FAN& Fan = mFans.at(Item);
            Fate = "fan " + std::to_string(Item - gFirstFanItem + 1) + ", " + NameControl(Fan.Control) + "; " +
                   (Fan.Files.WhyNot.empty() ? mOptions.SetFans ? "can be set" : "can be set with --set-fans"
                                             : "never set: " + Fan.Files.WhyNot);
        } else if (Item < gItemCount) {
            Fate = "voltage " + std::to_string(Item - gFirstVoltageItem + 1);
        }
        Lines += Front + Fate + '\n';
    }
    if (Lines.empty()) {
        Lines = mOptions.Root + ": no sensor; the drivers of the board's chips may not be loaded\n";
    }
    return Lines;
}

VOID LINUX_BOARD::Open()
{
    NameOf = [](BOARD_SOURCE* This, UINT8 Item) -> const CHAR16* {
        return HasItem(*This, Item) ? BoardOf(This).mNames[Item].c_str() : nullptr;
    };
    Read = [](BOARD_SOURCE* This, UINT8 Item, UINT64* Value) -> EFI_STATUS {
        const LINUX_BOARD& Board = BoardOf(This);
        const auto At = std::find(Board.mShown.begin(), Board.mShown.end(), Item) - Board.mShown.begin();
        INT64 Number;
        if (!Board.mReadings->Last(static_cast<UINTN>(At), &Number)) {
            return EFI_DEVICE_ERROR;
        }
        *Value = static_cast<UINT64>(ShownValue(*Board.mByItem[Item], Number));
        return EFI_SUCCESS;
    };
    GetFan = [](BOARD_SOURCE* This, UINT8 Item, FAN_SETTING* Setting) { return BoardOf(This).Get(Item, Setting); };
    SetFan = [](BOARD_SOURCE* This, UINT8 Item, const FAN_SETTING* Setting) {
        return BoardOf(This).Set(Item, *Setting);
    };
    // A board's defaults aren't in the chip, so both commands go back to what it had.
    LoadDefaults = Restore = [](BOARD_SOURCE* This) -> EFI_STATUS {
        LINUX_BOARD& Board = BoardOf(This);
        Board.mTakenBack = true;
        return Board.CommandAll(&FAN_FILES::GiveBack, "isn't given back") ? EFI_SUCCESS : EFI_DEVICE_ERROR;
    };
    SetFullSpeed = [](BOARD_SOURCE* This) -> EFI_STATUS {
        LINUX_BOARD& Board = BoardOf(This);
        for (auto& [Item, Fan] : Board.mFans) {
            Fan.Page.ShowFullSpeed(Fan.Control);
        }
        return Board.CommandAll(&FAN_FILES::SetFullSpeed, "doesn't run at full speed") ? EFI_SUCCESS : EFI_DEVICE_ERROR;
    };
    Begin = [](BOARD_SOURCE* This) { BoardOf(This).mTakenBack = false; };
    Advance = nullptr;

    bool Any = false;
    if (mOptions.SetFans) {
        for (const auto& [Item, Fan] : mFans) {
            Any = Any || Fan.Files.WhyNot.empty();
            if (!Fan.Files.WhyNot.empty()) {
                Say(mByItem[Item]->Driver + " " + mByItem[Item]->Label + " can't be set: " + Fan.Files.WhyNot);
            }
        }
    }
    if (Any && !mOptions.Keep && !mGuardian.Start([this] {
            Say("the console ended before its time; the fans get back what they had");
            (void)CommandAll(&FAN_FILES::GiveBack, "isn't given back");
        })) {
        Say("no process can be started that would give the fans back after a fault, so that no fan is set");
        mOptions.SetFans = false;
    }
    std::vector<SENSOR> Shown;
    for (const SENSOR& Sensor : mSensors) { // chip by chip
        const auto At = std::find(std::begin(mByItem), std::end(mByItem), &Sensor);
        if (At != std::end(mByItem)) {
            Shown.push_back(Sensor);
            mShown.push_back(static_cast<UINT8>(At - std::begin(mByItem)));
        }
    }
    mReadings.emplace(Shown, mOptions.StaleAfter);
}

bool LINUX_BOARD::MayFansBeSet()
{
    if (!mOptions.SetFans && !mToldReadOnly) {
        Say("the fans are only read: start with --set-fans to set them");
        mToldReadOnly = true;
    }
    return mOptions.SetFans;
}

bool LINUX_BOARD::CommandAll(bool (FAN_FILES::*Command)(std::string*), const char* What)
{
    bool Good = MayFansBeSet();
    for (auto& [Item, Fan] : mFans) {
        std::string Error;
        if (mOptions.SetFans && Fan.Files.WhyNot.empty() && !(Fan.Files.*Command)(&Error)) {
            Say(mByItem[Item]->Label + " " + What + ": " + Error);
            Good = false;
        }
    }
    return Good;
}

EFI_STATUS LINUX_BOARD::Get(UINT8 Item, FAN_SETTING* Setting)
{
    *Setting = {};
    const auto Found = mFans.find(Item);
    if (Found == mFans.end()) {
        return EFI_NOT_FOUND;
    }
    FAN& Fan = Found->second;
    *Setting = Fan.Files.Get(Fan.Control);
    Fan.Page.WasRead(Fan.Control, *Setting, mTakenBack);
    return EFI_SUCCESS;
}

EFI_STATUS LINUX_BOARD::Set(UINT8 Item, const FAN_SETTING& Setting)
{
    FAN& Fan = mFans.at(Item);
    const bool Shown = Fan.Page.Shows(Fan.Control, Setting);
    Fan.Page.WasSent(Fan.Control, Setting);
    if (Shown) {
        return EFI_SUCCESS;
    }
    if (!MayFansBeSet()) {
        return EFI_WRITE_PROTECTED;
    }
    std::string Error = Fan.Files.WhyNot;
    if (!Error.empty() || !Fan.Files.Set(Fan.Control, Setting, &Error)) {
        Say(mByItem[Item]->Label + " isn't set: " + Error);
        return EFI_DEVICE_ERROR;
    }
    return EFI_SUCCESS;
}

VOID LINUX_BOARD::Leave(bool BySignal)
{
    if (BySignal && mOptions.SetFans && !mOptions.Keep) {
        (void)CommandAll(&FAN_FILES::GiveBack, "isn't given back");
    }
    mGuardian.Dismiss();
    for (const auto& [Item, Fan] : mFans) {
        if (const std::string Left = Fan.Files.DescribeFixedDuty(); !Left.empty()) {
            Say(mByItem[Item]->Label + " " + Left);
        }
    }
}
