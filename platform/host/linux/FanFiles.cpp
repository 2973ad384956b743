#include "platform/host/linux/FanFiles.h"

#include <grp.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>

namespace {

constexpr const char* gFixed = "1"; // pwmN_enable: the duty that pwmN has

// Which number of pwmN_enable is the curve of points. What isn't in the table has it at 2, the first automatic mode, or
// is in its automatic mode already; that a mode above 2 of such a chip follows the points is unconfirmed.
constexpr struct {
    const char* Driver;
    const char* Mode;
} gCurveModes[] = {{"nct61", "5"}, {"nct67", "5"}};

// Fans that are somebody else's: the graphics card's firmware looks after them.
constexpr const char* gLeaveAlone[] = {"amdgpu", "radeon", "nouveau", "nvidia", "i915", "xe"};

INT64 NumberOf(const std::string& Text)
{
    INT64 Number = 0;
    (void)std::from_chars(Text.data(), Text.data() + Text.size(), Number);
    return Number;
}

std::string Percent(INT64 Duty) { return std::to_string((Duty * 100 + gFullDuty / 2) / gFullDuty) + " %"; }

} // namespace

bool FAN_FILES::HELD::Matches(const HELD& Other) const
{
    // By itself the chip moves the duty as it likes.
    return Mode == Other.Mode && Points == Other.Points && (!IsFixed() || Duty == Other.Duty);
}

std::string FAN_FILES::PathOf(const std::string& Name) const { return mFan.Beside(Name); }

std::string FAN_FILES::PointPath(size_t Index, const char* What) const
{
    return PathOf(mPwm + "_auto_point" + std::to_string(Index + 1) + What);
}

int FAN_FILES::ReadAll(HELD* Held, std::string* Path) const
{
    HELD Read;
    *Path = PathOf(mPwm);
    if (const int Error = ReadChipText(*Path, &Read.Duty)) {
        return Error;
    }
    *Path = PathOf(mPwm + "_enable");
    const int Error = ReadChipText(*Path, &Read.Mode);
    if (Error != 0 && Error != ENOENT) {
        return Error;
    }
    for (size_t Index = 0;; Index++) {
        POINT Point;
        const int First = ReadChipText(*Path = PointPath(Index, "_temp"), &Point.Temperature);
        if (First == ENOENT) {
            break;
        }
        const int Second = ReadChipText(*Path = PointPath(Index, "_pwm"), &Point.Duty);
        if (Second == ENOENT) {
            break; // a chip of slopes names temperatures alone
        }
        if (First != 0 || Second != 0) {
            return First != 0 ? First : Second;
        }
        Read.Points.push_back(Point);
    }
    *Held = Read;
    return 0;
}

// Empty when every file can be written, else which can't and what would change that.
std::string FAN_FILES::LookForRights() const
{
    std::vector<std::string> Paths = {PathOf(mPwm)};
    if (!mAtStart.Mode.empty()) {
        Paths.push_back(PathOf(mPwm + "_enable"));
    }
    // Behind the nodes of a page there may be a point that the chip has fixed, such as full speed.
    for (size_t Index = 0; Means == FAN_CURVE && Index < gCurveNodes; Index++) {
        Paths.push_back(PointPath(Index, "_temp"));
        Paths.push_back(PointPath(Index, "_pwm"));
    }
    for (const std::string& Path : Paths) {
        struct stat Facts;
        if (stat(Path.c_str(), &Facts) != 0) {
            return Path + ": " + std::strerror(errno);
        }
        if ((Facts.st_mode & 0222) == 0) {
            return Path + ": the chip's driver doesn't let it be written";
        }
        if (faccessat(AT_FDCWD, Path.c_str(), W_OK, AT_EACCESS) != 0) {
            const int Error = errno;
            const group* Group = getgrgid(Facts.st_gid);
            const std::string Name = Group == nullptr ? std::to_string(Facts.st_gid) : Group->gr_name;
            return Path + ": " + std::strerror(Error) +
                   ((Facts.st_mode & 0020) != 0 ? "; the group " + Name + " may write it: sudo usermod -aG " + Name +
                                                      " \"$USER\", and log in anew"
                                                : "; start with sudo, or: sudo chgrp \"$(id -gn)\" " + PathOf(mPwm) +
                                                      "* && sudo chmod g+w " + PathOf(mPwm) + "*");
        }
    }
    return "";
}

FAN_FILES::FAN_FILES(const SENSOR& Fan) : mFan(Fan), mPwm("pwm" + std::to_string(Fan.Number))
{
    std::string Path;
    const int Error = ReadAll(&mAtStart, &Path);
    mNow = mAtStart;
    if (Error == ENOENT && Path == PathOf(mPwm)) {
        WhyNot = "its chip's driver tells the speed alone";
        return;
    }
    const bool HasCurve = mAtStart.Points.size() >= gCurveNodes && !mAtStart.Mode.empty();
    Means = HasCurve ? FAN_CURVE : FAN_DUTY;
    mCurveMode = mAtStart.IsFixed() ? "2" : mAtStart.Mode;
    for (const auto& Row : gCurveModes) {
        if (BeginsWith(Fan.Driver, Row.Driver)) {
            mCurveMode = Row.Mode;
        }
    }
    for (const char* Floor : {"_floor", "_min"}) {
        INT64 Duty = 0;
        if (ReadChipNumber(PathOf(mPwm + Floor), &Duty) == 0) {
            mFloor = std::max(mFloor, std::min<INT64>(Duty, gFullDuty));
        }
    }

    INT64 Speed = 0;
    if (Error != 0) {
        WhyNot = Path + ": " + std::strerror(Error) + ", so that it couldn't be given back";
    } else if (std::any_of(std::begin(gLeaveAlone), std::end(gLeaveAlone),
                           [&](const char* Driver) { return BeginsWith(Fan.Driver, Driver); })) {
        WhyNot = "it is the graphics card's";
    } else if (Mentions(Fan.Label, "pump")) {
        WhyNot = "a pump is left alone";
    } else if (Fan.Read(&Speed) != 0 || Speed == 0) {
        WhyNot = "it stands still, or there is none"; // the two look the same
    } else {
        WhyNot = LookForRights();
    }
}

FAN_SETTING FAN_FILES::Get(FAN_CONTROL Control) const
{
    FAN_SETTING Setting = {};
    if (Control != CONTROL_CURVE8) {
        // A fan that nobody holds back runs as fast as it can.
        Setting.FixedLevel =
            Means == FAN_SPEED_ALONE ? gFixedLevels : NearestLevel(NumberOf(mNow.Duty), CONTROL_FIXED_LEVEL);
    }
    if (Control == CONTROL_FIXED_LEVEL) {
        return Setting;
    }
    CURVE Curve = {{{1, 1}, {2, 2}, {3, 3}, {4, 4}}};
    if (Means == FAN_CURVE) {
        Setting.CurveEnabled = mNow.Mode == mCurveMode ? 1 : 0;
        CURVE_POINT Points[gCurveNodes] = {};
        for (UINT8 Node = 0; Node < gCurveNodes; Node++) {
            Points[Node] = {NumberOf(mNow.Points[Node].Temperature), NumberOf(mNow.Points[Node].Duty)};
        }
        Curve = NearestCurve(Points, Control);
    }
    PutCurve(&Setting, Curve);
    return Setting;
}

bool FAN_FILES::Write(const std::string& Name, const std::string& Text, std::string* Error) const
{
    std::string Before;
    if (ReadChipText(Name, &Before) == 0 && Before == Text) {
        return true;
    }
    if (const int Status = WriteChipText(Name, Text)) {
        *Error = Name + ": " + std::strerror(Status) + " (writing " + Text + ")";
        return false;
    }
    return true;
}

bool FAN_FILES::FindChip(std::string* Error)
{
    if (!mFan.Follow()) {
        *Error = PathOf(mPwm) + ": the driver of its chip isn't loaded";
        return false;
    }
    return true;
}

bool FAN_FILES::Put(const HELD& Wanted, std::string* Error)
{
    bool Good = true;
    for (size_t Index = 0; Index < Wanted.Points.size(); Index++) {
        Good = Good && Write(PointPath(Index, "_temp"), Wanted.Points[Index].Temperature, Error) &&
               Write(PointPath(Index, "_pwm"), Wanted.Points[Index].Duty, Error);
    }
    // A duty is only taken in the mode for it. A fan that goes back to its chip gets its former duty on the way there.
    const std::string Mode = PathOf(mPwm + "_enable");
    if (!Wanted.Mode.empty() && Wanted.IsFixed()) {
        Good = Good && Write(Mode, gFixed, Error);
    }
    std::string ModeNow;
    if (Wanted.IsFixed() || (ReadChipText(Mode, &ModeNow) == 0 && ModeNow == gFixed)) {
        Good = Good && Write(PathOf(mPwm), Wanted.Duty, Error);
    }
    if (!Wanted.Mode.empty()) {
        Good = Good && Write(Mode, Wanted.Mode, Error);
    }

    std::string Path;
    if (const int Status = ReadAll(&mNow, &Path); Status != 0 && Good) {
        *Error = Path + ": " + std::strerror(Status) + " (reading back)";
        Good = false;
    }
    return Good;
}

// Puts it, or goes back; where that fails too, full speed is the safe end.
bool FAN_FILES::PutOr(const HELD& Wanted, const HELD& Before, std::string* Error)
{
    // Some drivers tell a fixed duty of 255 as full speed.
    if (Put(Wanted, Error) && (mNow.Mode == Wanted.Mode || (mNow.IsFixed() && Wanted.IsFixed()))) {
        return true;
    }
    if (Error->empty()) {
        *Error = PathOf(mPwm + "_enable") + " holds " + mNow.Mode + " after " + Wanted.Mode + " was written";
    }
    std::string Second;
    if (!Put(Before, &Second) || !mNow.Matches(Before)) {
        *Error +=
            SetFullSpeed(&Second) ? "; it runs at full speed now" : "; and what it had can't be given back: " + Second;
    }
    return false;
}

bool FAN_FILES::Set(FAN_CONTROL Control, const FAN_SETTING& Setting, std::string* Error)
{
    const bool Curve = Setting.CurveEnabled != 0;
    if (!FindChip(Error)) {
        return false;
    }
    if (Curve && Means != FAN_CURVE) {
        *Error = "its chip keeps no curve: switch the box off and use the slider";
        return false;
    }
    if (!Curve && Control == CONTROL_CURVE8) {
        return GiveBack(Error); // without a slider the box leaves the fan to the board
    }
    HELD Wanted = mNow;
    if (!Curve) {
        Wanted.Mode = Wanted.Mode.empty() ? "" : gFixed;
        Wanted.Duty = std::to_string(std::max<INT64>(ChipDuty(Setting.FixedLevel, CONTROL_FIXED_LEVEL), mFloor));
        return PutOr(Wanted, mNow, Error);
    }
    Wanted.Mode = mCurveMode;
    const CURVE Nodes = CurveOf(Setting);
    INT64 Temperature = 0;
    INT64 Duty = 0;
    for (size_t Index = 0; Index < Wanted.Points.size(); Index++) {
        const INT64 HadTemperature = NumberOf(mAtStart.Points[Index].Temperature);
        const INT64 HadDuty = NumberOf(mAtStart.Points[Index].Duty);
        if (Index < gCurveNodes) {
            Temperature = ChipTemperature(Nodes.Nodes[Index].Column);
            Duty = std::max<INT64>(ChipDuty(Nodes.Nodes[Index].Level, Control), mFloor);
        }
        // The end of the curve, where the chip gives all it has, stays where it is higher: a chip with more points than
        // the page keeps those for it, one with four has it in the last.
        if (Index >= gCurveNodes || (Index + 1 == Wanted.Points.size() && HadDuty > Duty)) {
            Temperature = std::max(Temperature, HadTemperature);
            Duty = std::max(Duty, HadDuty);
        }
        Wanted.Points[Index] = {std::to_string(Temperature), std::to_string(Duty)};
    }
    return PutOr(Wanted, mNow, Error);
}

// By as few files as it takes, since it is also what is left when others fail.
bool FAN_FILES::SetFullSpeed(std::string* Error)
{
    if (!FindChip(Error)) {
        return false;
    }
    const bool Good = (mNow.Mode.empty() || Write(PathOf(mPwm + "_enable"), gFixed, Error)) &&
                      Write(PathOf(mPwm), std::to_string(gFullDuty), Error);
    std::string Path;
    if (ReadAll(&mNow, &Path) != 0 && Good) {
        mNow.Mode = mNow.Mode.empty() ? "" : gFixed; // a file of the curve that can't be read changes nothing of it
        mNow.Duty = std::to_string(gFullDuty);
    }
    return Good;
}

bool FAN_FILES::GiveBack(std::string* Error)
{
    if (!FindChip(Error)) {
        return false;
    }
    if (Put(mAtStart, Error) && mNow.Matches(mAtStart)) {
        return true;
    }
    if (Error->empty()) {
        *Error = PathOf(mPwm) + ": the chip doesn't take back what it had";
    }
    std::string Second;
    *Error += SetFullSpeed(&Second) ? "; it runs at full speed now" : "; and full speed fails: " + Second;
    return false;
}

std::string FAN_FILES::DescribeFixedDuty() const
{
    if (!mNow.IsFixed() || mNow.Matches(mAtStart)) {
        return "";
    }
    const bool HasMode = !mAtStart.Mode.empty();
    return "stays at " + Percent(mNow.Mode == "0" ? gFullDuty : NumberOf(mNow.Duty)) +
           ", however hot it gets; what it had: echo " + (HasMode ? mAtStart.Mode : mAtStart.Duty) + " | sudo tee " +
           PathOf(HasMode ? mPwm + "_enable" : mPwm);
}
