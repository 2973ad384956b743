// A fan's files of a chip, pwmN and its companions: what they hold in the form of the console's record, a record put into
// them, and what they held at the start given back.
//
// Nothing here goes by a wish: a write is read back, and a fan whose files can't all be read and written isn't set at all.
// A write that fails gives the fan back what it had before it, and when that fails too, full speed.
#pragma once

#include "platform/board/FanPage.h"
#include "platform/host/linux/Hwmon.h"

enum FAN_MEANS : UINT8 {
    FAN_SPEED_ALONE, // the chip tells its speed
    FAN_DUTY,        // and takes a duty
    FAN_CURVE,       // and keeps a curve of four points or more by itself
};

struct FAN_FILES {
    // Looks at the files of a fan and keeps what they hold.
    explicit FAN_FILES(const SENSOR& Fan);

    FAN_MEANS Means = FAN_SPEED_ALONE;
    std::string WhyNot; // why the fan is never set; empty: it can be

    // What the files held when they were read last, as near as the grid of that control comes. A legal record always.
    FAN_SETTING Get(FAN_CONTROL Control) const;
    // False with a sentence when the fan has no use for such a record or a file can't be written.
    bool Set(FAN_CONTROL Control, const FAN_SETTING& Setting, std::string* Error);
    bool SetFullSpeed(std::string* Error);
    // What the files held at the start, byte for byte.
    bool GiveBack(std::string* Error);

    size_t PointCount() const { return mAtStart.Points.size(); }
    // Where the fan stands at a fixed duty that it didn't have at the start: a sentence about that; else empty.
    std::string DescribeFixedDuty() const;

private:
    struct POINT {
        std::string Temperature; // thousandths of a degree
        std::string Duty;        // 0 to 255, as all duties
        bool operator==(const POINT&) const = default;
    };
    struct HELD {
        std::string
            Mode; // of pwmN_enable: 1 a fixed duty, 0 full speed, others by the chip; empty: there is no such file
        std::string Duty;
        std::vector<POINT> Points;
        bool IsFixed() const { return Mode.empty() || Mode == "0" || Mode == "1"; }
        bool Matches(const HELD& Other) const;
    };
    int ReadAll(HELD* Held, std::string* Path) const;
    // Writes a file that doesn't hold the text yet.
    bool Write(const std::string& Name, const std::string& Text, std::string* Error) const;
    bool FindChip(std::string* Error); // where a driver that was loaded again has put it
    bool Put(const HELD& Wanted, std::string* Error);
    bool PutOr(const HELD& Wanted, const HELD& Before, std::string* Error);
    std::string PathOf(const std::string& Name) const;
    std::string PointPath(size_t Index, const char* What) const;
    std::string LookForRights() const;

    SENSOR mFan;
    std::string mPwm; // "pwm1"
    std::string mCurveMode;
    INT64 mFloor = 0;
    HELD mAtStart;
    HELD mNow;
};
