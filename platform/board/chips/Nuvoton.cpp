// NCT6776 to NCT6799. Registers are 0xBNN, bank and offset.
#include "platform/board/chips/Chip.h"

namespace {

constexpr struct KIND {
    UINT16 Id;
    UINT8 Fans;
    UINT8 Outputs;
    UINT8 Voltages;
    UINT32 DoubleVoltages; // bit n: input n has steps of 16 mV, not 8
    bool Lock;             // the monitor's ports can be locked
    bool Newest;           // sources of 6798 and 6799
} gKinds[] = {
    {0xC330, 5, 3, 9, 0x18C, false, false}, // NCT6776, which has older maps
    {0xC560, 5, 5, 15, 0x18C, false, false}, {0xC800, 6, 6, 15, 0x18C, true, false},
    {0xC910, 6, 6, 15, 0x18C, true, false},  {0xD120, 6, 6, 15, 0x18C, true, false},
    {0xD350, 6, 6, 15, 0x18C, true, false},  {0xD420, 7, 7, 15, 0x18C, true, false},
    {0xD450, 7, 7, 15, 0x18C, true, false},  {0xD428, 7, 7, 15, 0xF8C, true, true},
    {0xD800, 7, 7, 18, 0x10F8C, true, true},
};
constexpr UINT16 g6776 = 0xC330;
constexpr UINT16 g6791 = 0xC800;
constexpr UINT16 g6792 = 0xC910;
constexpr UINT8 gFirstUnsure = 6; // fan from which on it isn't certain with NCT6793 and later that it exists

constexpr UINT8 gLockRegister = 0x28; // of the configuration, with the monitor selected
constexpr UINT8 gLockBit = 0x10;

constexpr UINT16 gMonitorControl = 0x040;
constexpr UINT16 gBatteryControl = 0x05D;
constexpr UINT8 gBatteryInput = 8;

// By fan. The bank of an output's registers, the duty that it has now, the temperature that it follows (0: unconfirmed),
// and its speed.
constexpr UINT16 gOutputBanks[] = {0x100, 0x200, 0x300, 0x800, 0x900, 0xA00, 0xB00};
constexpr UINT16 gDutiesNow[] = {0x001, 0x003, 0x011, 0x013, 0x015, 0xA09, 0xB09};
constexpr UINT16 gFollowed[] = {0x073, 0x075, 0x077, 0x079, 0x07B, 0x07D, 0};
constexpr UINT16 gFollowedBySeventh = 0x4A0; // a byte
constexpr UINT16 gSpeeds[] = {0x4C0, 0x4C2, 0x4C4, 0x4C6, 0x4C8, 0x4CA, 0x4CE};
constexpr UINT16 gOldCounts[] = {0x630, 0x632, 0x634, 0x636, 0x638};

// In an output's bank.
constexpr UINT16 gSource = 0x00;
constexpr UINT8 gSourceBits = 0x1F;
constexpr UINT16 gMode = 0x02;
constexpr UINT16 gFloor = 0x05;
constexpr UINT16 gDuty = 0x09;
constexpr UINT16 gPointDegrees = 0x21;
constexpr UINT16 gPointDuty = 0x27;
constexpr UINT16 gCriticalDegrees = 0x35;
constexpr UINT16 gCriticalSwitch = 0x36;
constexpr UINT16 gCriticalDuty = 0x37;

constexpr UINT8 gModeBits = 0x70;
constexpr UINT8 gSmartFan4 = 0x40;
constexpr UINT8 gModeTop = 0x80; // goes when the mode is set; what it means is unconfirmed

// Temperatures that a chip measures whatever its fans follow, best first for each place.
constexpr UINT8 gBoard = 1;
constexpr UINT8 gChipset = 2;
enum SINCE : UINT8 { SINCE_6776, SINCE_6779, SINCE_6798 };
constexpr struct DIRECT {
    UINT16 Register;
    REGISTER_FORM Form;
    UINT8 Place;
    const CHAR8* Name;
    SINCE Since;
} gDirect[] = {
    {0x490, FORM_DEGREES, gBoard, "SYSTIN", SINCE_6779},  {0x409, FORM_EIGHTHS, 0, "TSI", SINCE_6776},
    {0x491, FORM_DEGREES, 0, "CPUTIN", SINCE_6779},       {0x492, FORM_DEGREES, gBoard, "AUXTIN0", SINCE_6779},
    {0x493, FORM_DEGREES, gBoard, "AUXTIN1", SINCE_6779}, {0x494, FORM_DEGREES, gBoard, "AUXTIN2", SINCE_6779},
    {0x495, FORM_DEGREES, gBoard, "AUXTIN3", SINCE_6779}, {0x496, FORM_DEGREES, gBoard, "AUXTIN4", SINCE_6798},
    {0x401, FORM_DEGREES, gChipset, "PCH", SINCE_6776},
};

// Values that the chip takes from a source of choice: value, its form, where the source's number stands, and where bit 0
// says that it is off (0: nowhere).
constexpr struct MONITORED {
    UINT16 Value;
    REGISTER_FORM Form;
    UINT16 Source;
    UINT16 Off;
} gOldMonitored[] = {{0x027, FORM_DEGREES, 0x621, 0x018},      {0x150, FORM_HALF_DEGREES, 0x622, 0x152},
                     {0x250, FORM_HALF_DEGREES, 0x623, 0x252}, {0x62B, FORM_DEGREES, 0x624, 0x628},
                     {0x62C, FORM_DEGREES, 0x625, 0x629},      {0x62D, FORM_DEGREES, 0x626, 0x62A}},
  gMonitored[] = {{0x027, FORM_DEGREES, 0x621, 0}, {0x150, FORM_HALF_DEGREES, 0x622, 0},
                  {0x670, FORM_DEGREES, 0xC26, 0}, {0x672, FORM_DEGREES, 0xC27, 0},
                  {0x674, FORM_DEGREES, 0xC28, 0}, {0x676, FORM_DEGREES, 0xC29, 0},
                  {0x678, FORM_DEGREES, 0xC2A, 0}, {0x67A, FORM_DEGREES, 0xC2B, 0}};
constexpr UINTN gMonitoredOfOlder = 2;

// Sources that are looked for among these: their number on NCT6776 and on the newer chips, 0 where they are measured in
// a register of their own.
constexpr struct {
    UINT8 Old;
    UINT8 New;
    UINT8 Place;
    const CHAR8* Name;
} gSources[] = {{12, 16, 0, "PECI"}, {1, 0, gBoard, "SYSTIN"}, {2, 0, 0, "CPUTIN"}, {3, 0, gBoard, "AUXTIN"}};

// Names of the inputs where they are known, NCT6798 and 6799; and what of them the console has a place for.
constexpr const CHAR8* gInputNames[] = {"CPUVC", "VIN1", "AVSB", "3VCC", "VIN0", "VIN8", "VIN4", "3VSB", "VBAT",
                                        "VTT",   "VIN5", "VIN6", "VIN2", "VIN3", "VIN7", "VIN9", "VHIF", "VIN10"};
constexpr struct {
    UINT8 Input;
    UINT8 Place;
} gInputPlaces[] = {{0, 0}, {9, 1}, {3, 2}};
constexpr UINT16 gOldInputs[] = {0x020, 0x021, 0x022, 0x023, 0x024, 0x025, 0x026, 0x550, 0x551};
constexpr UINT32 gStep = 8000; // microvolts

const KIND& KindOf(const CHIP& Chip)
{
    for (const KIND& Kind : gKinds) {
        if (Kind.Id == Chip.Monitor.Io.Id) {
            return Kind;
        }
    }
    return gKinds[0];
}

bool IsOld(const CHIP& Chip) { return Chip.Monitor.Io.Id == g6776; }

UINT8 BitOf(UINT8 Fan) { return static_cast<UINT8>(1u << (Fan - 1)); }

VOID Have(UINT8* Fans, UINT8 Fan, bool Present)
{
    if (Present) {
        *Fans |= BitOf(Fan);
    }
}

// Fans and outputs whose pins aren't used for something else. 6 and 7 of the newer chips hang on more bits than are
// known; they count as there if something turns.
VOID FindFans(CHIP* Chip)
{
    const SUPER_IO& Io = Chip->Monitor.Io;
    const KIND& Kind = KindOf(*Chip);
    Chip->Fans = Chip->Outputs = 3;
    if (Io.Id == g6776) {
        const UINT8 Pins = ReadConfig(Io, 0x30);
        const bool Pin27 = (ReadConfig(Io, 0x27) & 0x80) != 0;
        const UINT8 Pins1C = ReadConfig(Io, 0x1C);
        const bool Third = (Pins & 0x80) != 0 ? Pin27 : (ReadConfig(Io, 0x24) & 0x40) == 0;
        Have(&Chip->Fans, 3, Third);
        Have(&Chip->Outputs, 3, Third);
        Have(&Chip->Fans, 4, (Pins & 0x40) != 0 ? Pin27 : (Pins1C & 1) != 0);
        Have(&Chip->Fans, 5, (Pins & 0x20) != 0 ? Pin27 : (Pins1C & 2) != 0);
        return;
    }
    const UINT8 Pins1C = ReadConfig(Io, 0x1C);
    for (UINT8 Fan = 3; Fan <= 5; Fan++) {
        Have(&Chip->Fans, Fan, (Pins1C >> (Fan + 2) & 1) == 0);
        Have(&Chip->Outputs, Fan, (Pins1C >> (Fan - 3) & 1) == 0);
    }
    if (Io.Id == g6791 || Io.Id == g6792) {
        const UINT8 Pins2D = ReadConfig(Io, 0x2D);
        const bool Free = Io.Id == g6791 || (ReadConfig(Io, 0x2F) & 8) == 0;
        Have(&Chip->Fans, 6, Free && (Pins2D & 2) != 0);
        Have(&Chip->Outputs, 6, Free && (Pins2D & 1) != 0);
        return;
    }
    for (UINT8 Fan = gFirstUnsure; Fan <= Kind.Fans; Fan++) {
        Have(&Chip->Fans, Fan, true);
        Have(&Chip->Outputs, Fan, true);
    }
}

bool Open(CHIP* Chip)
{
    const SUPER_IO& Io = Chip->Monitor.Io;
    Chip->Monitor.Banked = true;
    {
        const HELD_MACHINE Held(Io.Ports);
        const CONFIG_VISIT Visit = OpenConfig(Io, gNuvotonMonitor);
        if (Visit.Good) {
            FindFans(Chip);
            UINT8 Lock = 0;
            Chip->WasLocked = KindOf(*Chip).Lock && ReadConfigTwice(Io, gLockRegister, &Lock) && (Lock & gLockBit) != 0;
            if (Chip->WasLocked) {
                WriteConfig(Io, gLockRegister, static_cast<UINT8>(Lock & ~gLockBit));
            }
        }
        CloseConfig(Io, Visit);
        if (!Visit.Good) {
            return false;
        }
    }
    const MONITOR_VISIT Visit(Chip->Monitor);
    const UINT8 Control = Visit.Read(gMonitorControl);
    return Control != 0xFF && (Control & 1) != 0;
}

VOID Close(const CHIP& Chip)
{
    const SUPER_IO& Io = Chip.Monitor.Io;
    if (!Chip.WasLocked) {
        return;
    }
    const HELD_MACHINE Held(Io.Ports);
    const CONFIG_VISIT Visit = OpenConfig(Io, gNuvotonMonitor);
    UINT8 Lock = 0;
    if (Visit.Good && ReadConfigTwice(Io, gLockRegister, &Lock)) {
        WriteConfig(Io, gLockRegister, static_cast<UINT8>(Lock | gLockBit));
    }
    CloseConfig(Io, Visit);
}

CHIP_SENSOR Temperature(UINT8 Index, UINT8 Place, REGISTER_FORM Form, UINT16 Register)
{
    return {.Kind = READING_TEMPERATURE,
            .Chip = Index,
            .Fan = 0,
            .Place = Place,
            .Value = {.Form = Form, .Register = Register, .Low = static_cast<UINT16>(Register + 1), .Scale = 0},
            .Name = {},
            .Label = {}};
}

VOID ListTemperatures(const CHIP& Chip, UINT8 Index, SENSOR_LIST* List)
{
    const MONITOR_VISIT Visit(Chip.Monitor);
    const bool Old = IsOld(Chip);
    const bool Newest = KindOf(Chip).Newest;
    const MONITORED* Rows = Old ? gOldMonitored : gMonitored;
    const UINTN Count = Old      ? sizeof(gOldMonitored) / sizeof(MONITORED)
                        : Newest ? sizeof(gMonitored) / sizeof(MONITORED)
                                 : gMonitoredOfOlder;
    for (const auto& Source : gSources) {
        const UINT8 Wanted = Old ? Source.Old : Source.New;
        bool Listed = Wanted == 0;
        for (UINTN Row = 0; Row < Count && !Listed; Row++) {
            const MONITORED& Value = Rows[Row];
            Listed = (Visit.Read(Value.Source) & gSourceBits) == Wanted &&
                     (Value.Off == 0 || (Visit.Read(Value.Off) & 1) == 0);
            if (Listed) {
                AddSensor(List, Temperature(Index, Source.Place, Value.Form, Value.Value), Source.Name, -1, nullptr);
            }
        }
    }
    const SINCE Since = Old ? SINCE_6776 : Newest ? SINCE_6798 : SINCE_6779;
    for (const DIRECT& Row : gDirect) {
        if (Row.Since <= Since) {
            AddSensor(List, Temperature(Index, Row.Place, Row.Form, Row.Register), Row.Name, -1, nullptr);
        }
    }
}

VOID ListVoltages(const CHIP& Chip, UINT8 Index, SENSOR_LIST* List)
{
    const KIND& Kind = KindOf(Chip);
    const MONITOR_VISIT Visit(Chip.Monitor);
    const bool Battery = (Visit.Read(gBatteryControl) & 1) != 0;
    for (UINT8 Input = 0; Input < Kind.Voltages; Input++) {
        UINT16 Register = static_cast<UINT16>(0x480 + Input);
        if (Input > 15) {
            Register = static_cast<UINT16>(0x470 + Input - 16);
        } else if (IsOld(Chip)) {
            Register = gOldInputs[Input];
        }
        const UINT32 Step = gStep << (Kind.DoubleVoltages >> Input & 1);
        CHIP_SENSOR Sensor = {.Kind = READING_VOLTAGE,
                              .Chip = Index,
                              .Fan = 0,
                              .Place = gNoPlace,
                              .Value = {.Form = FORM_VOLTAGE, .Register = Register, .Low = 0, .Scale = Step},
                              .Name = {},
                              .Label = {}};
        for (const auto& Row : gInputPlaces) {
            Sensor.Place = Row.Input == Input ? Row.Place : Sensor.Place;
        }
        if (Input != gBatteryInput || Battery) {
            AddSensor(List, Sensor, "in", Input, Kind.Newest ? gInputNames[Input] : nullptr);
        }
    }
}

VOID List(const CHIP& Chip, UINT8 Index, SENSOR_LIST* List)
{
    ListTemperatures(Chip, Index, List);
    const KIND& Kind = KindOf(Chip);
    for (UINT8 Fan = 1; Fan <= Kind.Fans; Fan++) {
        if ((Chip.Fans & BitOf(Fan)) != 0) {
            const UINT16 Register = IsOld(Chip) ? gOldCounts[Fan - 1] : gSpeeds[Fan - 1];
            const CHIP_SENSOR Sensor = {.Kind = READING_FAN,
                                        .Chip = Index,
                                        .Fan = Fan,
                                        .Place = gNoPlace,
                                        .Value = {.Form = IsOld(Chip) ? FORM_COUNT13 : FORM_SPEED,
                                                  .Register = Register,
                                                  .Low = static_cast<UINT16>(Register + 1),
                                                  .Scale = 0},
                                        .Name = {},
                                        .Label = {}};
            const bool Sure = Fan < gFirstUnsure || Chip.Monitor.Io.Id == g6791 || Chip.Monitor.Io.Id == g6792;
            INT32 Speed = 0;
            if (Sure || (ReadNumber(MONITOR_VISIT(Chip.Monitor), Sensor.Value, &Speed) && Speed > 0)) {
                AddSensor(List, Sensor, "fan", Fan, nullptr);
            }
        }
    }
    ListVoltages(Chip, Index, List);
}

// Whether the curve of an output would follow something: a source is selected, and it measures. Where the register of
// what an output follows is unconfirmed, the firmware's own use of the curve tells it.
bool FollowsTemperature(const CHIP& Chip, const MONITOR_VISIT& Visit, UINT8 Fan, UINT8 Mode)
{
    if ((Visit.Read(gOutputBanks[Fan - 1] + gSource) & gSourceBits) == 0) {
        return false;
    }
    UINT16 Followed = gFollowed[Fan - 1];
    REGISTER_FORM Form = FORM_HALF_DEGREES;
    if (Fan == 6 && Chip.Monitor.Io.Id == g6791) {
        Followed = 0;
    } else if (Fan == 7 && KindOf(Chip).Newest) {
        Followed = gFollowedBySeventh;
        Form = FORM_DEGREES;
    }
    if (Followed == 0) {
        return (Mode & gModeBits) == gSmartFan4;
    }
    INT32 Degrees = 0;
    return ReadNumber(Visit, {.Form = Form, .Register = Followed, .Low = static_cast<UINT16>(Followed + 1), .Scale = 0},
                      &Degrees);
}

FAN_MEANS_OF_CHIP DescribeFan(const CHIP& Chip, UINT8 Fan)
{
    const KIND& Kind = KindOf(Chip);
    FAN_MEANS_OF_CHIP Means = {};
    Means.ModeBits = gModeBits;
    Means.CurveMode = gSmartFan4;
    Means.ClearedBits = gModeTop;
    if (Fan > Kind.Outputs || (Chip.Outputs & BitOf(Fan)) == 0) {
        Means.WhyNot = "its chip tells the speed alone";
        return Means;
    }
    const MONITOR_VISIT Visit(Chip.Monitor);
    const UINT16 Bank = gOutputBanks[Fan - 1];
    const UINT8 Mode = Visit.Read(Bank + gMode);
    const UINT8 Number = (Mode & gModeBits) >> 4;
    if (Number == 3 || Number > 4) {
        Means.WhyNot = "it is in a mode that isn't known";
    }
    Means.Floor = Visit.Read(Bank + gFloor);
    Means.CriticalDegrees = Visit.Read(Bank + gCriticalDegrees);
    const bool OwnDuty = !IsOld(Chip) && (Visit.Read(Bank + gCriticalSwitch) & 1) != 0;
    Means.CriticalDuty = OwnDuty ? Visit.Read(Bank + gCriticalDuty) : UINT8{255};
    // The lowest column has to be below the critical temperature with all four nodes.
    Means.HasCurve =
        Means.CriticalDegrees >= DegreesOfColumn(1) + gCurveNodes && FollowsTemperature(Chip, Visit, Fan, Mode);
    return Means;
}

FAN_STATE ReadFan(const CHIP& Chip, UINT8 Fan)
{
    const MONITOR_VISIT Visit(Chip.Monitor);
    const UINT16 Bank = gOutputBanks[Fan - 1];
    FAN_STATE State = {};
    State.Mode = Visit.Read(Bank + gMode);
    State.Duty = Visit.Read(Bank + gDuty);
    State.Switch = 1;
    for (UINT8 Point = 0; Point < gCurveNodes; Point++) {
        State.Degrees[Point] = Visit.Read(static_cast<UINT16>(Bank + gPointDegrees + Point));
        State.PointDuty[Point] = Visit.Read(static_cast<UINT16>(Bank + gPointDuty + Point));
    }
    return State;
}

UINT8 ReadDuty(const CHIP& Chip, UINT8 Fan) { return MONITOR_VISIT(Chip.Monitor).Read(gDutiesNow[Fan - 1]); }

VOID WriteFan(const CHIP& Chip, UINT8 Fan, const FAN_STATE& Wanted)
{
    const FAN_STATE Now = ReadFan(Chip, Fan);
    const MONITOR_VISIT Visit(Chip.Monitor);
    const UINT16 Bank = gOutputBanks[Fan - 1];
    for (UINT8 Point = 0; Point < gCurveNodes; Point++) {
        if (Now.Degrees[Point] != Wanted.Degrees[Point]) {
            Visit.Write(static_cast<UINT16>(Bank + gPointDegrees + Point), Wanted.Degrees[Point]);
        }
        if (Now.PointDuty[Point] != Wanted.PointDuty[Point]) {
            Visit.Write(static_cast<UINT16>(Bank + gPointDuty + Point), Wanted.PointDuty[Point]);
        }
    }
    // In its own modes the chip overwrites the duty; whether it takes one there is unconfirmed, so that a fan which
    // leaves them gets it on both sides of the mode.
    const bool Fixed = (Wanted.Mode & gModeBits) == 0;
    if (Fixed || ((Now.Mode & gModeBits) == 0 && Now.Duty != Wanted.Duty)) {
        Visit.Write(Bank + gDuty, Wanted.Duty);
    }
    if (Now.Mode != Wanted.Mode) {
        Visit.Write(Bank + gMode, Wanted.Mode);
    }
    if (Fixed) {
        Visit.Write(Bank + gDuty, Wanted.Duty);
    }
}

} // namespace

const CHIP_DRIVER gNuvotonDriver = {Open, List, DescribeFan, ReadFan, ReadDuty, WriteFan, Close};
