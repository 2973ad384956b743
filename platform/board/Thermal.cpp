#include "platform/board/Thermal.h"

#include "platform/board/FanStore.h"

namespace {

constexpr UINT64 gStepMicroseconds = 50000;
constexpr UINT64 gMaximumSteps = 200;
constexpr INT32 gFullDuty = 1000;
constexpr INT32 gFullLoad = 1000;

// How a source heats and cools. Its temperature strives for Ambient + Heat * (1 - Cooling * airflow), where the load
// sets Heat between the two ends, so it stays within 30 and 80 degrees whatever the fans do. Temperatures and Cooling
// are in thousandths.
struct SOURCE_FACTS {
    INT32 Ambient;
    INT32 IdleHeat;
    INT32 FullHeat;
    INT32 Cooling;
    INT32 SettlingSteps; // after which two thirds of a difference are gone
};
constexpr SOURCE_FACTS gSources[gTemperatureItemCount] = {
    {.Ambient = 30000, .IdleHeat = 14000, .FullHeat = 48000, .Cooling = 450, .SettlingSteps = 70},
    {.Ambient = 29000, .IdleHeat = 9000, .FullHeat = 22000, .Cooling = 400, .SettlingSteps = 240},
    {.Ambient = 31000, .IdleHeat = 15000, .FullHeat = 30000, .Cooling = 350, .SettlingSteps = 160},
};

// A rail sags by Sag at full load, wanders by Ripple to either side, and is read in the steps of its converter. All in
// millivolts.
struct RAIL_FACTS {
    INT32 Nominal;
    INT32 Sag;
    INT32 Ripple;
    INT32 ConverterStep;
};
constexpr RAIL_FACTS gRails[gVoltageItemCount] = {
    {.Nominal = 1216, .Sag = 40, .Ripple = 6, .ConverterStep = 2},
    {.Nominal = 1052, .Sag = 8, .Ripple = 4, .ConverterStep = 2},
    {.Nominal = 3328, .Sag = 16, .Ripple = 16, .ConverterStep = 8},
    {.Nominal = 5040, .Sag = 30, .Ripple = 20, .ConverterStep = 10},
    {.Nominal = 12096, .Sag = 72, .Ripple = 48, .ConverterStep = 24},
    {.Nominal = 956, .Sag = 16, .Ripple = 6, .ConverterStep = 2},
    {.Nominal = 1352, .Sag = 4, .Ripple = 4, .ConverterStep = 1},
};

// Two thirds of a change of speed in 0.6 seconds.
constexpr INT32 gFanSettlingSteps = 12;
constexpr INT32 gLoadSettlingSteps = 16;
// Speeds are kept finer than a revolution and temperatures finer than a thousandth, else a slow change would stand
// still before its end.
constexpr INT32 gFine = 1024;

struct THERMAL_MODEL {
    const BOARD_SOURCE* Board;
    UINT64 Random;
    UINT64 Time; // of the last step, on the board's clock
    INT32 Load[gTemperatureItemCount];
    INT32 LoadGoal[gTemperatureItemCount];
    UINT32 LoadSteps[gTemperatureItemCount]; // until the next goal
    INT64 Heat[gTemperatureItemCount];       // temperature in thousandths, times gFine
    INT64 Speed[gFanItemCount];              // revolutions a minute, times gFine
    INT32 Jitter[gFanItemCount];             // of the tachometer
    INT32 Ripple[gVoltageItemCount];
};
THERMAL_MODEL gModel;

UINT32 NextRandom()
{
    UINT64 Word = gModel.Random;
    Word ^= Word >> 12;
    Word ^= Word << 25;
    Word ^= Word >> 27;
    gModel.Random = Word;
    return static_cast<UINT32>((Word * 0x2545F4914F6CDD1Dull) >> 32);
}

INT32 RandomBetween(INT32 Low, INT32 High)
{
    const UINT32 Span = static_cast<UINT32>(High - Low) + 1;
    return Low + static_cast<INT32>(NextRandom() % Span);
}

INT32 MilliDegreesOf(UINT8 Source) { return static_cast<INT32>(gModel.Heat[Source] / gFine); }

// A board is idle most of the time and works in bursts.
VOID ChooseLoad(UINT8 Source)
{
    const bool Busy = NextRandom() % 3 == 0;
    gModel.LoadGoal[Source] = Busy ? RandomBetween(500, gFullLoad) : RandomBetween(20, 250);
    gModel.LoadSteps[Source] = static_cast<UINT32>(RandomBetween(60, 300));
}

VOID StepLoad(UINT8 Source)
{
    if (gModel.LoadSteps[Source] == 0) {
        ChooseLoad(Source);
    }
    gModel.LoadSteps[Source]--;
    gModel.Load[Source] += (gModel.LoadGoal[Source] - gModel.Load[Source]) / gLoadSettlingSteps;
}

// Airflow over a source: the mean of its fans' speeds against their top speeds, in thousandths.
INT32 AirflowOver(UINT8 Source)
{
    INT64 Sum = 0;
    INT64 Count = 0;
    for (UINT8 Index = 0; Index < gFanItemCount; Index++) {
        const UINT8 Item = static_cast<UINT8>(gFirstFanItem + Index);
        if (HasItem(*gModel.Board, Item) && SourceOfFan(*gModel.Board, Item) == Source) {
            Sum += gModel.Speed[Index] * gFullDuty / gFine / gSimulatedFans[Index].TopSpeed;
            Count++;
        }
    }
    return Count == 0 ? 0 : static_cast<INT32>(Sum / Count);
}

INT64 SettledHeat(UINT8 Source)
{
    const SOURCE_FACTS& Facts = gSources[Source];
    const INT64 Heat = Facts.IdleHeat + INT64{Facts.FullHeat - Facts.IdleHeat} * gModel.Load[Source] / gFullLoad;
    const INT64 Kept = gFullDuty - INT64{Facts.Cooling} * AirflowOver(Source) / gFullDuty;
    return (Facts.Ambient + Heat * Kept / gFullDuty) * gFine;
}

INT64 SettledSpeed(UINT8 Index)
{
    const SIMULATED_FAN& Fan = gSimulatedFans[Index];
    const INT32 Speed = Fan.TopSpeed * DutyOfFan(static_cast<UINT8>(gFirstFanItem + Index)) / gFullDuty;
    return INT64{Limit<INT32>(Speed, Fan.LowSpeed, Fan.TopSpeed)} * gFine;
}

VOID StepModel()
{
    for (UINT8 Source = 0; Source < gTemperatureItemCount; Source++) {
        StepLoad(Source);
        gModel.Heat[Source] += (SettledHeat(Source) - gModel.Heat[Source]) / gSources[Source].SettlingSteps;
    }
    for (UINT8 Index = 0; Index < gFanItemCount; Index++) {
        gModel.Speed[Index] += (SettledSpeed(Index) - gModel.Speed[Index]) / gFanSettlingSteps;
        gModel.Jitter[Index] = RandomBetween(-4, 4);
    }
    for (UINT8 Index = 0; Index < gVoltageItemCount; Index++) {
        const INT32 Most = gRails[Index].Ripple;
        const INT32 Stride = Most / 4 + 1;
        gModel.Ripple[Index] = Limit<INT32>(gModel.Ripple[Index] + RandomBetween(-Stride, Stride), -Most, Most);
    }
}

UINT64 ReadTemperature(UINT8 Source) { return static_cast<UINT64>((MilliDegreesOf(Source) + 500) / 1000); }

UINT64 ReadSpeed(UINT8 Index)
{
    const INT32 Speed = static_cast<INT32>(gModel.Speed[Index] / gFine) + gModel.Jitter[Index];
    return static_cast<UINT64>(Limit<INT32>(Speed, 0, gSimulatedFans[Index].TopSpeed));
}

UINT64 ReadRail(UINT8 Index)
{
    const RAIL_FACTS& Rail = gRails[Index];
    const INT32 Value = Rail.Nominal - Rail.Sag * gModel.Load[0] / gFullLoad + gModel.Ripple[Index];
    return static_cast<UINT64>(Value / Rail.ConverterStep * Rail.ConverterStep);
}

} // namespace

VOID ResetThermal(const BOARD_SOURCE* Board, UINT64 Seed, UINT64 Now)
{
    gModel = THERMAL_MODEL{};
    gModel.Board = Board;
    gModel.Time = Now;
    // The generator must not start from 0, and neighbouring seeds should differ from the first number on.
    gModel.Random = (Seed + 1) * 0x9E3779B97F4A7C15ull;
    if (gModel.Random == 0) {
        gModel.Random = 1;
    }
    for (UINT8 Source = 0; Source < gTemperatureItemCount; Source++) {
        ChooseLoad(Source);
        gModel.Load[Source] = gModel.LoadGoal[Source];
    }
    // Fans and temperatures depend on each other: some rounds bring them together.
    for (UINT8 Round = 0; Round < 8; Round++) {
        for (UINT8 Source = 0; Source < gTemperatureItemCount; Source++) {
            gModel.Heat[Source] = SettledHeat(Source);
        }
        for (UINT8 Index = 0; Index < gFanItemCount; Index++) {
            gModel.Speed[Index] = SettledSpeed(Index);
        }
    }
}

VOID AdvanceThermal(UINT64 Now)
{
    if (Now <= gModel.Time) {
        return;
    }
    UINT64 Steps = (Now - gModel.Time) / gStepMicroseconds;
    gModel.Time += Steps * gStepMicroseconds;
    for (Steps = Steps > gMaximumSteps ? gMaximumSteps : Steps; Steps != 0; Steps--) {
        StepModel();
    }
}

UINT64 ReadModel(UINT8 Item)
{
    if (Item < gTemperatureItemCount) {
        return ReadTemperature(Item);
    }
    if (IsFanItem(Item)) {
        return ReadSpeed(static_cast<UINT8>(Item - gFirstFanItem));
    }
    if (Item >= gFirstVoltageItem && Item < gFirstVoltageItem + gVoltageItemCount) {
        return ReadRail(static_cast<UINT8>(Item - gFirstVoltageItem));
    }
    return 0;
}

INT32 DutyOfCurve(const FAN_SETTING* Setting, FAN_CONTROL Control, INT32 MilliDegrees)
{
    const CURVE Curve = CurveOf(*Setting);
    INT32 LastDegrees = 0;
    INT32 LastDuty = 0;
    for (const CURVE_NODE& Node : Curve.Nodes) {
        const INT32 Degrees = DegreesOfColumn(Node.Column) * 1000;
        const INT32 Duty = DutyOfLevel(Node.Level, Control);
        if (MilliDegrees <= Degrees) {
            const bool Between = LastDegrees > 0 && Degrees > LastDegrees;
            return Between ? LastDuty + (Duty - LastDuty) * (MilliDegrees - LastDegrees) / (Degrees - LastDegrees)
                           : Duty;
        }
        LastDegrees = Degrees;
        LastDuty = Duty;
    }
    return LastDuty;
}

INT32 DutyOfFan(UINT8 FanItem)
{
    if (gFanStore.FullSpeed[FanItem - gFirstFanItem]) {
        return gFullDuty;
    }
    const FAN_SETTING* Setting = &gFanStore.Held[FanItem - gFirstFanItem];
    const FAN_CONTROL Control = ControlOfFan(gModel.Board->FanKind, FanItem);
    if (Control == CONTROL_FIXED_LEVEL || (Setting->CurveEnabled == 0 && Control != CONTROL_CURVE8)) {
        return DutyOfLevel(Setting->FixedLevel, CONTROL_FIXED_LEVEL);
    }
    // A fan without a sensor to follow is safe at full speed only.
    const UINT8 Source = SourceOfFan(*gModel.Board, FanItem);
    if (Source == gNoSource) {
        return gFullDuty;
    }
    return DutyOfCurve(Setting->CurveEnabled != 0 ? Setting : AutomaticFanSetting(), Control, MilliDegreesOf(Source));
}
