// ITE's chips with 16-bit counters and 8-bit duties. All registers are those of bank 0.
//
// A chip of this maker regulates by one slope, which the four nodes of a page don't say, so that its fans have a duty
// alone here; and where boards are known to ignore it, where the registers are shared, or where two sources disagree,
// they are only read.
#include "platform/board/chips/Chip.h"

namespace {

constexpr struct KIND {
    UINT16 Id;
    UINT8 Fans;
    UINT8 Temperatures;
    UINT16 Step;      // of a voltage, in tens of microvolts; 0: not known for certain
    UINT8 EngineBits; // of the SMBus engine that shares the registers
    bool Banked;
    bool Control; // a duty is certain to be taken
    bool OnOff;   // outputs 1 to 3 have a mode beside duty and curve
    bool Input9;
} gKinds[] = {
    // clang-format off
    {0x8603, 3, 3, 1200, 0, false, true, false, true},  {0x8606, 3, 3, 0, 0, false, false, false, false},
    {0x8607, 3, 3, 0, 0, false, false, false, false}, {0x8613, 5, 3, 1100, 0, false, false, false, false},
    {0x8620, 6, 6, 1200, 0, false, true, true, false},  {0x8622, 5, 4, 1200, 6, false, false, false, true},
    {0x8623, 3, 3, 1200, 0, false, true, false, true},  {0x8625, 6, 6, 1100, 6, true, false, false, true},
    {0x8628, 6, 6, 1200, 0, false, true, true, false},  {0x8655, 3, 6, 1090, 4, true, false, false, true},
    {0x8665, 6, 6, 1090, 4, true, false, false, true},  {0x8686, 6, 6, 1200, 6, true, false, false, true},
    {0x8688, 6, 6, 1200, 6, true, false, false, true},  {0x8689, 6, 6, 1200, 6, true, false, false, true},
    {0x8696, 6, 6, 1200, 6, true, false, false, false}, {0x8698, 6, 6, 1200, 6, true, false, false, false},
    {0x8721, 5, 3, 1200, 0, false, true, true, false},  {0x8728, 5, 3, 1200, 0, false, true, true, false},
    {0x8732, 4, 3, 1090, 0, false, true, true, false},  {0x8771, 3, 3, 1200, 0, false, true, true, false},
    {0x8772, 3, 3, 1200, 0, false, true, true, false},  {0x8785, 3, 3, 1200, 0, false, true, true, false},
    {0x8786, 3, 3, 1200, 0, false, true, true, false},  {0x8790, 3, 3, 0, 0, false, false, true, false},
    {0x8733, 3, 3, 1090, 0, false, false, true, false}, {0x8695, 3, 3, 1090, 0, false, false, true, false},
    // clang-format on
};

constexpr UINT16 gConfiguration = 0x00;
constexpr UINT8 gRunning = 0x01;
constexpr UINT8 gNotMonitor = 0x80; // a monitor has 0 here
constexpr UINT16 gVendor = 0x58;
constexpr UINT8 gVendorMark = 0x90;

constexpr UINT16 gMoreFans = 0x0B; // bit 3: fan 6 of 8625 and 8665
constexpr UINT16 gFanSwitches = 0x0C;
constexpr UINT16 gOutputModes = 0x13; // bits 6:4 tachometer 1 to 3 on, bits 2:0 output 1 to 3 by duty or curve
constexpr UINT16 gPolarity = 0x14;
constexpr UINT8 gPolarityBits = 0x87; // all clear: a duty counts backwards

// By fan.
constexpr UINT16 gCountsLow[] = {0x0D, 0x0E, 0x0F, 0x80, 0x82, 0x4C};
constexpr UINT16 gCountsHigh[] = {0x18, 0x19, 0x1A, 0x81, 0x83, 0x4D};
constexpr UINT16 gSixthLow = 0x93; // of 8625 and 8665
constexpr UINT16 gSixthHigh = 0x94;
constexpr UINT16 gControls[] = {0x15, 0x16, 0x17, 0x7F, 0xA7, 0xAF};
constexpr UINT16 gDuties[] = {0x63, 0x6B, 0x73, 0x7B, 0xA3, 0xAB};
constexpr UINT8 gAutomatic = 0x80;
constexpr UINT8 gSwitchedOutputs = 3;

constexpr UINT16 gTemperatures[] = {0x29, 0x2A, 0x2B, 0x2C, 0x2D, 0x2E};
constexpr UINT16 gTemperatureKinds = 0x51;
constexpr UINT16 gMoreTemperatures = 0x77; // bit pairs of 4 to 6: 2 or 3 is a temperature
constexpr UINT16 gInputSwitches = 0x50;
constexpr UINT16 gInputs[] = {0x20, 0x21, 0x22, 0x23, 0x24, 0x25, 0x26, 0x27, 0x28, 0x2F};

const KIND& KindOf(const CHIP& Chip)
{
    for (const KIND& Kind : gKinds) {
        if (Kind.Id == Chip.Monitor.Io.Id) {
            return Kind;
        }
    }
    return gKinds[0];
}

bool IsOneOf(UINT16 Id, const UINT16* Ids, UINTN Count)
{
    for (UINTN Index = 0; Index < Count; Index++) {
        if (Ids[Index] == Id) {
            return true;
        }
    }
    return false;
}

// Pins that are used for something else, with the logical device of the pins selected.
VOID FindFans(CHIP* Chip)
{
    const SUPER_IO& Io = Chip->Monitor.Io;
    const UINT8 Pins25 = ReadConfig(Io, 0x25);
    const UINT8 Pins26 = ReadConfig(Io, 0x26);
    const UINT8 Pins27 = ReadConfig(Io, 0x27);
    const UINT8 Pins28 = ReadConfig(Io, 0x28);
    const UINT8 Pins29 = ReadConfig(Io, 0x29);
    constexpr UINT16 AllPins[] = {0x8620, 0x8628, 0x8686, 0x8688, 0x8689};
    constexpr UINT16 Fans45[] = {0x8721, 0x8728};
    const bool All = IsOneOf(Io.Id, AllPins, sizeof(AllPins) / sizeof(AllPins[0]));
    const auto Lacks = [](UINT8 Fan, bool Missing) { return Missing ? 1u << (Fan - 1) : 0u; };

    UINT32 NoFans = Lacks(2, (Pins29 & 0x04) != 0) | Lacks(3, (Pins27 & 0x80) != 0);
    UINT32 NoOutputs = Lacks(2, (Pins29 & 0x02) != 0) | Lacks(3, (Pins27 & 0x40) != 0);
    if (All || IsOneOf(Io.Id, Fans45, sizeof(Fans45) / sizeof(Fans45[0]))) {
        NoFans |= Lacks(4, (Pins26 & 0x20) == 0) | Lacks(5, (Pins26 & 0x10) == 0);
    }
    if (IsOneOf(Io.Id, Fans45, sizeof(Fans45) / sizeof(Fans45[0]))) {
        NoOutputs |= Lacks(4, true) | Lacks(5, true); // they have five tachometers and three outputs
    }
    if (All) {
        const UINT32 No6 = Lacks(6, (Pins29 & 0x80) == 0);
        NoFans |= No6;
        NoOutputs |= Lacks(4, (Pins28 & 0x04) != 0) | Lacks(5, (Pins25 & 0x40) != 0) | No6;
    }
    const UINT32 There = (1u << KindOf(*Chip).Fans) - 1;
    Chip->Fans = static_cast<UINT8>(There & ~NoFans);
    Chip->Outputs = static_cast<UINT8>(There & ~NoOutputs);
    Chip->DoubleIn3 = (ReadConfig(Io, 0x2C) & 1) != 0;
}

bool Open(CHIP* Chip)
{
    const SUPER_IO& Io = Chip->Monitor.Io;
    const KIND& Kind = KindOf(*Chip);
    Chip->Monitor.Banked = Kind.Banked;
    Chip->Monitor.EngineBits = Kind.EngineBits;
    {
        const HELD_MACHINE Held(Io.Ports);
        const CONFIG_VISIT Visit = OpenConfig(Io, gItePins);
        if (Visit.Good) {
            FindFans(Chip);
        }
        CloseConfig(Io, Visit);
        if (!Visit.Good) {
            return false;
        }
    }
    const MONITOR_VISIT Visit(Chip->Monitor);
    const UINT8 Configuration = Visit.Read(gConfiguration);
    if ((Configuration & gNotMonitor) != 0 || (Configuration & gRunning) == 0 || Visit.Read(gVendor) != gVendorMark) {
        return false;
    }
    // Tachometers that are switched off.
    const UINT8 Modes = Visit.Read(gOutputModes);
    const UINT8 Switches = Visit.Read(gFanSwitches);
    const bool Sixth = Io.Id == 0x8625 || Io.Id == 0x8665 ? (Visit.Read(gMoreFans) & 8) != 0 : (Switches & 4) != 0;
    const UINT8 On = static_cast<UINT8>((Modes >> 4 & 7) | ((Switches & 0x10) != 0 ? 8 : 0) |
                                        ((Switches & 0x20) != 0 ? 0x10 : 0) | (Sixth ? 0x20 : 0));
    Chip->Fans = Chip->Fans & On;
    return true;
}

CHIP_SENSOR Sensor(READING_KIND Kind, UINT8 Index, REGISTER_FORM Form, UINT16 Register, UINT16 Low, UINT32 Scale)
{
    return {.Kind = Kind,
            .Chip = Index,
            .Fan = 0,
            .Place = gNoPlace,
            .Value = {.Form = Form, .Register = Register, .Low = Low, .Scale = Scale},
            .Name = {},
            .Label = {}};
}

VOID List(const CHIP& Chip, UINT8 Index, SENSOR_LIST* List)
{
    const KIND& Kind = KindOf(Chip);
    const MONITOR_VISIT Visit(Chip.Monitor);
    const UINT8 Kinds = Visit.Read(gTemperatureKinds);
    const UINT8 More = Visit.Read(gMoreTemperatures);
    const bool Always = Chip.Monitor.Io.Id == 0x8655 || Chip.Monitor.Io.Id == 0x8665;
    for (UINT8 At = 0; At < Kind.Temperatures; At++) {
        const bool Digital = At < 3 && Kinds >> 6 == At + 1;
        const bool On = At < 3 ? Digital || (Kinds & (1u << At | 8u << At)) != 0
                               : Always || Kind.Temperatures == 4 || (More >> (2 * (At - 3)) & 3) >= 2;
        if (On) {
            CHIP_SENSOR Temperature = Sensor(READING_TEMPERATURE, Index, FORM_DEGREES, gTemperatures[At], 0, 0);
            Temperature.Place = Digital ? 0 : 1; // the digital one is the processor's
            AddSensor(List, Temperature, "temp", At + 1, nullptr);
        }
    }
    for (UINT8 Fan = 1; Fan <= Kind.Fans; Fan++) {
        if ((Chip.Fans >> (Fan - 1) & 1) != 0) {
            const bool Other = Fan == 6 && (Chip.Monitor.Io.Id == 0x8625 || Chip.Monitor.Io.Id == 0x8665);
            CHIP_SENSOR Tachometer = Sensor(READING_FAN, Index, FORM_COUNT16, Other ? gSixthHigh : gCountsHigh[Fan - 1],
                                            Other ? gSixthLow : gCountsLow[Fan - 1], 0);
            Tachometer.Fan = Fan;
            AddSensor(List, Tachometer, "fan", Fan, nullptr);
        }
    }
    const UINT8 Inputs = Visit.Read(gInputSwitches);
    const UINT8 InputCount = Kind.Input9 ? 10 : 9;
    for (UINT8 Input = 0; Input < InputCount; Input++) {
        // The two highest are always measured; rails inside are halved in front of their input.
        const bool Double = Input >= 7 || (Input == 3 && Chip.DoubleIn3);
        if (Kind.Step != 0 && (Input >= 8 || (Inputs >> Input & 1) != 0)) {
            CHIP_SENSOR Voltage = Sensor(READING_VOLTAGE, Index, FORM_VOLTAGE, gInputs[Input], 0,
                                         Kind.Step * (Double ? UINT32{20} : UINT32{10}));
            Voltage.Place = Input == 0 ? UINT8{0} : gNoPlace;
            AddSensor(List, Voltage, "in", Input, nullptr);
        }
    }
}

bool HasSwitch(const CHIP& Chip, UINT8 Fan) { return KindOf(Chip).OnOff && Fan <= gSwitchedOutputs; }

FAN_MEANS_OF_CHIP DescribeFan(const CHIP& Chip, UINT8 Fan)
{
    FAN_MEANS_OF_CHIP Means = {};
    Means.ModeBits = gAutomatic;
    const MONITOR_VISIT Visit(Chip.Monitor);
    if ((Chip.Outputs >> (Fan - 1) & 1) == 0 || (Fan == 6 && (Visit.Read(gMoreFans) & 8) == 0)) {
        Means.WhyNot = "its chip tells the speed alone";
    } else if (!KindOf(Chip).Control) {
        Means.WhyNot = "whether this chip takes a setting isn't certain";
    } else if ((Visit.Read(gPolarity) & gPolarityBits) == 0) {
        Means.WhyNot = "its chip counts a duty backwards";
    }
    return Means;
}

FAN_STATE ReadFan(const CHIP& Chip, UINT8 Fan)
{
    const MONITOR_VISIT Visit(Chip.Monitor);
    FAN_STATE State = {};
    State.Mode = Visit.Read(gControls[Fan - 1]);
    State.Duty = Visit.Read(gDuties[Fan - 1]);
    State.Switch = !HasSwitch(Chip, Fan) || (Visit.Read(gOutputModes) >> (Fan - 1) & 1) != 0 ? 1 : 0;
    return State;
}

UINT8 ReadDuty(const CHIP& Chip, UINT8 Fan) { return MONITOR_VISIT(Chip.Monitor).Read(gDuties[Fan - 1]); }

VOID WriteFan(const CHIP& Chip, UINT8 Fan, const FAN_STATE& Wanted)
{
    const FAN_STATE Now = ReadFan(Chip, Fan);
    const MONITOR_VISIT Visit(Chip.Monitor);
    const bool Fixed = (Wanted.Mode & gAutomatic) == 0;
    // The duty can be written in the mode for it alone. A fan that goes back to its chip gets its former one before.
    if (Fixed && Now.Mode != Wanted.Mode) {
        Visit.Write(gControls[Fan - 1], Wanted.Mode);
    }
    if (Fixed || ((Now.Mode & gAutomatic) == 0 && Now.Duty != Wanted.Duty)) {
        Visit.Write(gDuties[Fan - 1], Wanted.Duty);
    }
    if (HasSwitch(Chip, Fan) && Now.Switch != Wanted.Switch) {
        const UINT8 Modes = Visit.Read(gOutputModes);
        const UINT8 Bit = static_cast<UINT8>(1u << (Fan - 1));
        if (Visit.Read(gOutputModes) == Modes) { // it holds what other fans have, too
            Visit.Write(gOutputModes, static_cast<UINT8>((Modes & ~Bit) | (Wanted.Switch != 0 ? Bit : 0)));
        }
    }
    if (!Fixed && Now.Mode != Wanted.Mode) {
        Visit.Write(gControls[Fan - 1], Wanted.Mode);
    }
}

} // namespace

const CHIP_DRIVER gIteDriver = {Open, List, DescribeFan, ReadFan, ReadDuty, WriteFan, [](const CHIP&) {}};
