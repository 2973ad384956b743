#include "platform/board/chips/ChipFan.h"

namespace {

// A chip that doesn't answer reads as all ones, and no mode does.
bool IsReadable(const FAN_STATE& State) { return State.Mode != 0xFF; }

bool IsFixed(const CHIP_FAN& Fan, const FAN_STATE& State) { return (State.Mode & Fan.Means.ModeBits) == 0; }

FAN_STATE ReadState(const CHIP_FAN& Fan) { return Fan.Chip->Driver->ReadFan(*Fan.Chip, Fan.Number); }

UINT8 WithMode(const CHIP_FAN& Fan, UINT8 Mode, UINT8 Wanted)
{
    return static_cast<UINT8>((Mode & ~(Fan.Means.ModeBits | Fan.Means.ClearedBits)) | Wanted);
}

FAN_STATE WithDuty(const CHIP_FAN& Fan, const FAN_STATE& State, INT32 Duty)
{
    FAN_STATE Wanted = State;
    Wanted.Mode = WithMode(Fan, State.Mode, 0);
    Wanted.Duty = static_cast<UINT8>(Duty < Fan.Means.Floor ? Fan.Means.Floor : Duty);
    Wanted.Switch = 1;
    return Wanted;
}

// By itself the chip moves the duty as it likes.
bool Has(const CHIP_FAN& Fan, const FAN_STATE& Now, const FAN_STATE& Wanted)
{
    bool Same = ((Now.Mode ^ Wanted.Mode) & ~Fan.Means.ClearedBits & 0xFF) == 0 && Now.Switch == Wanted.Switch &&
                (!IsFixed(Fan, Wanted) || Now.Duty == Wanted.Duty);
    for (UINTN Point = 0; Point < gCurveNodes; Point++) {
        Same = Same && Now.Degrees[Point] == Wanted.Degrees[Point] && Now.PointDuty[Point] == Wanted.PointDuty[Point];
    }
    return Same;
}

// A state that a fan may be given back: read twice alike, so that no single torn or foreign byte is in it.
bool ReadTwice(const CHIP_FAN& Fan, FAN_STATE* State)
{
    const FAN_STATE First = ReadState(Fan);
    const FAN_STATE Second = ReadState(Fan);
    if (!IsReadable(First) || First.Mode != Second.Mode || !Has(Fan, Second, First)) {
        return false;
    }
    *State = First;
    return true;
}

// Writes a state, and looks whether the chip has it.
bool Put(CHIP_FAN* Fan, const FAN_STATE& Wanted)
{
    Fan->Written = true;
    Fan->Chip->Driver->WriteFan(*Fan->Chip, Fan->Number, Wanted);
    return Has(*Fan, ReadState(*Fan), Wanted);
}

// The last resort: what the other registers hold doesn't matter to it, and it is tried twice.
bool RunAtFullSpeed(CHIP_FAN* Fan)
{
    const FAN_STATE Now = ReadState(*Fan);
    return IsReadable(Now) && (Put(Fan, WithDuty(*Fan, Now, gFullDuty)) || Put(Fan, WithDuty(*Fan, Now, gFullDuty)));
}

bool PutOr(CHIP_FAN* Fan, const FAN_STATE& Wanted, const FAN_STATE& Before)
{
    if (Put(Fan, Wanted)) {
        return true;
    }
    if (!Put(Fan, Before)) {
        (void)RunAtFullSpeed(Fan);
    }
    return false;
}

} // namespace

VOID OpenChipFan(CHIP_FAN* Fan, const CHIP* Chip, UINT8 Number)
{
    *Fan = {};
    Fan->Chip = Chip;
    Fan->Number = Number;
    Fan->Means = Chip->Driver->DescribeFan(*Chip, Number);
    if (!ReadTwice(*Fan, &Fan->AtStart) && Fan->Means.WhyNot == nullptr) {
        Fan->Means.WhyNot = "what it has can't be read, so that it couldn't be given back";
    }
}

VOID KeepChipFan(CHIP_FAN* Fan)
{
    FAN_STATE Now = {};
    if (!Fan->Written && ReadTwice(*Fan, &Now)) {
        Fan->AtStart = Now;
    }
}

FAN_SETTING GetChipFan(const CHIP_FAN& Fan, FAN_CONTROL Control)
{
    const FAN_STATE Now = ReadState(Fan);
    FAN_SETTING Setting = {};
    if (Control != CONTROL_CURVE8) {
        const UINT8 Duty = IsFixed(Fan, Now) ? Now.Duty : Fan.Chip->Driver->ReadDuty(*Fan.Chip, Fan.Number);
        Setting.FixedLevel = NearestLevel(Duty, CONTROL_FIXED_LEVEL);
    }
    if (Control == CONTROL_FIXED_LEVEL) {
        return Setting;
    }
    CURVE Curve = {{{1, 1}, {2, 2}, {3, 3}, {4, 4}}};
    if (Fan.Means.HasCurve) {
        Setting.CurveEnabled = (Now.Mode & Fan.Means.ModeBits) == Fan.Means.CurveMode ? 1 : 0;
        CURVE_POINT Points[gCurveNodes] = {};
        for (UINTN Point = 0; Point < gCurveNodes; Point++) {
            Points[Point] = {INT64{Now.Degrees[Point]} * 1000, Now.PointDuty[Point]};
        }
        Curve = NearestCurve(Points, Control);
    }
    PutCurve(&Setting, Curve);
    return Setting;
}

bool SetChipFan(CHIP_FAN* Fan, FAN_CONTROL Control, const FAN_SETTING& Setting)
{
    FAN_STATE Before = {};
    if (!ReadTwice(*Fan, &Before)) {
        return false;
    }
    if (Setting.CurveEnabled == 0) {
        // Without a slider the box leaves the fan to the board.
        return Control == CONTROL_CURVE8
                   ? GiveChipFanBack(Fan)
                   : PutOr(Fan, WithDuty(*Fan, Before, ChipDuty(Setting.FixedLevel, CONTROL_FIXED_LEVEL)), Before);
    }
    if (!Fan->Means.HasCurve) {
        return false;
    }
    FAN_STATE Wanted = Before;
    Wanted.Mode = WithMode(*Fan, Before.Mode, Fan->Means.CurveMode);
    const CURVE Nodes = CurveOf(Setting);
    for (INT32 Point = 0; Point < gCurveNodes; Point++) {
        // All points stay below the critical temperature, and rise: the fan is faster there than the page says, never
        // slower.
        const INT32 Highest = Fan->Means.CriticalDegrees - (gCurveNodes - Point);
        const INT32 Degrees = DegreesOfColumn(Nodes.Nodes[Point].Column);
        const INT32 Duty = ChipDuty(Nodes.Nodes[Point].Level, Control);
        Wanted.Degrees[Point] = static_cast<UINT8>(Degrees < Highest ? Degrees : Highest);
        Wanted.PointDuty[Point] = static_cast<UINT8>(Duty < Fan->Means.Floor ? Fan->Means.Floor : Duty);
    }
    return Wanted.PointDuty[gCurveNodes - 1] <= Fan->Means.CriticalDuty && PutOr(Fan, Wanted, Before);
}

bool SetChipFanToFullSpeed(CHIP_FAN* Fan)
{
    FAN_STATE Before = {};
    return ReadTwice(*Fan, &Before) ? PutOr(Fan, WithDuty(*Fan, Before, gFullDuty), Before) : RunAtFullSpeed(Fan);
}

bool GiveChipFanBack(CHIP_FAN* Fan)
{
    if (!Fan->Written || Put(Fan, Fan->AtStart) || Put(Fan, Fan->AtStart)) {
        return true;
    }
    (void)RunAtFullSpeed(Fan);
    return false;
}
