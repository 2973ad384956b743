#include "tests/chips/ChipModel.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr UINT16 gIte = TRAIT_ITE;
constexpr UINT16 gNewest = TRAIT_ITE | TRAIT_BANKS | TRAIT_SHARED;
constexpr UINT16 gSwitched = TRAIT_ITE | TRAIT_SWITCHES | TRAIT_CERTAIN;
constexpr UINT16 gOpen = TRAIT_ITE | TRAIT_SWITCHES | TRAIT_STAYS_OPEN;
constexpr UINT16 gLocked = TRAIT_LOCK | TRAIT_CERTAIN;
constexpr UINT16 gIndexPorts[] = {0x2E, 0x4E};

// Registers by output or fan, from 1 on.
constexpr UINT16 gBanks[] = {0, 0x100, 0x200, 0x300, 0x800, 0x900, 0xA00, 0xB00};
constexpr UINT16 gSpeeds[] = {0, 0x4C0, 0x4C2, 0x4C4, 0x4C6, 0x4C8, 0x4CA, 0x4CE};
constexpr UINT16 gDutiesNow[] = {0, 0x01, 0x03, 0x11, 0x13, 0x15};
constexpr UINT16 gCountsLow[] = {0, 0x0D, 0x0E, 0x0F, 0x80, 0x82, 0x4C};
constexpr UINT16 gCountsHigh[] = {0, 0x18, 0x19, 0x1A, 0x81, 0x83, 0x4D};
constexpr UINT16 gControls[] = {0, 0x15, 0x16, 0x17, 0x7F, 0xA7, 0xAF};
constexpr UINT16 gDuties[] = {0, 0x63, 0x6B, 0x73, 0x7B, 0xA3, 0xAB};

constexpr UINT8 gPresentDuty = 0x66; // what the chip's own regulation has come to

UINT8 Low(UINT32 Word) { return static_cast<UINT8>(Word); }
UINT8 High(UINT32 Word) { return static_cast<UINT8>(Word >> 8); }
MACHINE_MODEL& MachineOf(PORTS* This) { return *reinterpret_cast<MACHINE_MODEL*>(This); }

} // namespace

// Name, id, traits, fans, outputs, voltages (0: it isn't known for certain what a step of theirs is), their step.
const std::vector<CHIP_FACTS> gChipFacts = {
    {"NCT6776", 0xC330, TRAIT_COUNTS | TRAIT_CERTAIN, 5, 3, 9, 800},
    {"NCT6779", 0xC560, TRAIT_CERTAIN, 5, 5, 15, 800},
    {"NCT6791", 0xC800, gLocked, 6, 6, 15, 800},
    {"NCT6792", 0xC910, gLocked, 6, 6, 15, 800},
    {"NCT6793", 0xD120, gLocked, 6, 6, 15, 800},
    {"NCT6795", 0xD350, gLocked, 6, 6, 15, 800},
    {"NCT6796", 0xD420, gLocked, 7, 7, 15, 800},
    {"NCT6797", 0xD450, gLocked, 7, 7, 15, 800},
    {"NCT6798", 0xD428, gLocked | TRAIT_RAILS, 7, 7, 15, 800},
    {"NCT6799", 0xD800, gLocked | TRAIT_RAILS, 7, 7, 18, 800},
    {"IT8603", 0x8603, gIte | TRAIT_CERTAIN, 3, 3, 10, 1200},
    {"IT8623", 0x8623, gIte | TRAIT_CERTAIN, 3, 3, 10, 1200},
    {"IT8606", 0x8606, gIte, 3, 3, 0, 0},
    {"IT8607", 0x8607, gIte, 3, 3, 0, 0},
    {"IT8613", 0x8613, gIte, 5, 5, 9, 1100},
    {"IT8620", 0x8620, gSwitched, 6, 6, 9, 1200},
    {"IT8622", 0x8622, gIte | TRAIT_SHARED, 5, 5, 10, 1200},
    {"IT8625", 0x8625, gNewest | TRAIT_SIXTH_AT_93, 6, 6, 10, 1100},
    {"IT8628", 0x8628, gSwitched, 6, 6, 10, 1200},
    {"IT8655", 0x8655, gNewest, 3, 3, 10, 1090},
    {"IT8665", 0x8665, gNewest | TRAIT_SIXTH_AT_93, 6, 6, 10, 1090},
    {"IT8686", 0x8686, gNewest, 6, 6, 10, 1200},
    {"IT8688", 0x8688, gNewest, 6, 6, 10, 1200},
    {"IT8689", 0x8689, gNewest, 6, 6, 10, 1200},
    {"IT8696", 0x8696, gNewest, 6, 6, 10, 1200},
    {"IT8698", 0x8698, gNewest, 6, 6, 10, 1200},
    {"IT8721", 0x8721, gSwitched, 5, 3, 9, 1200},
    {"IT8728", 0x8728, gSwitched, 5, 3, 9, 1200},
    {"IT8732", 0x8732, gSwitched, 4, 4, 9, 1090},
    {"IT8771", 0x8771, gSwitched, 3, 3, 9, 1200},
    {"IT8772", 0x8772, gSwitched, 3, 3, 9, 1200},
    {"IT8785", 0x8785, gSwitched, 3, 3, 9, 1200},
    {"IT8786", 0x8786, gSwitched, 3, 3, 9, 1200},
    {"IT8790", 0x8790, gOpen, 3, 3, 0, 0},
    {"IT8792", 0x8733, gOpen, 3, 3, 9, 1090},
    {"IT87952", 0x8695, gOpen, 3, 3, 9, 1090},
};

UINT16 CHIP_MODEL::Base() const
{
    const UINT8* const Device = &Configuration[MonitorDevice()];
    return static_cast<UINT16>((Device[0x60] << 8 | Device[0x61]) & ~7);
}

bool CHIP_MODEL::AnswersAtBase() const
{
    return Facts != nullptr && Base() != 0 && (Configuration[MonitorDevice() | 0x30] & 1) != 0 &&
           !(Is(TRAIT_LOCK) && (Configuration[0x28] & 0x10) != 0);
}

bool CHIP_MODEL::IsShared() const { return Is(TRAIT_SHARED) && (Configuration[0x4F3] & 4) != 0; }

UINT16 CHIP_MODEL::Selected() const
{
    const int Bank = !Is(TRAIT_ITE) ? Monitor[BankAt()] & 15 : Is(TRAIT_BANKS) ? Monitor[BankAt()] >> 5 : 0;
    return static_cast<UINT16>(Index == BankAt() ? Index : Bank << 8 | Index);
}

VOID CHIP_MODEL::PowerOn(const CHIP_FACTS& Of, UINT16 Base)
{
    *this = {};
    Facts = &Of;
    Id = Of.Id;
    // Pins: as fans, all of them. The engine that shares registers runs.
    using BYTES = std::vector<std::pair<UINT16, UINT8>>;
    const BYTES Pins = Is(TRAIT_ITE) ? BYTES{{0x726, 0x30}, {0x729, 0x80}, {0x4F3, 0x46}}
                                     : BYTES{{0x1C, Is(TRAIT_COUNTS) ? UINT8{3} : UINT8{0}}, {0x2D, 3}};
    for (const auto& [At, Value] : Pins) {
        Configuration[At] = Value;
    }
    UINT8* const Device = &Configuration[MonitorDevice()];
    Device[0x30] = 1;
    Device[0x60] = High(Base);
    Device[0x61] = Low(Base);
    // Monitoring; of ITE also: what 06 has beside the bank, tachometers, outputs that obey a duty with the right polarity,
    // inputs, and the kinds of the three temperatures. Of Nuvoton also: identity, and the sources of temperatures.
    const BYTES Start = Is(TRAIT_ITE)
                            ? BYTES{{0x00, 0x11}, {0x06, 0x0A}, {0x0B, 0x08}, {0x0C, 0x37}, {0x13, 0x77},
                                    {0x14, 0x80}, {0x50, 0xFF}, {0x51, 0xD8}, {0x58, 0x90}, {0x77, 0x3F}}
                            : BYTES{{0x40, 1},  {0x4F, 0xA3}, {0x58, 0xC1}, {0x5D, 1},   {0x621, 1}, {0x622, 2},
                                    {0x623, 3}, {0x624, 12},  {0x625, 14},  {0x626, 15}, {0xC27, 16}};
    for (const auto& [At, Value] : Start) {
        Monitor[At] = Value;
    }
    for (UINT8 Output = 1; Output <= Of.Outputs; Output++) {
        static constexpr UINT8 NuvotonPoints[] = {42, 51, 63, 74, 0, 0, 0x60, 0x80, 0xA0, 0xC0};
        Monitor[DutyAt(Output)] = gPresentDuty;
        if (Is(TRAIT_ITE)) {
            Monitor[ControlAt(Output)] = static_cast<UINT8>(0x80 | Output % 3);
        } else {
            UINT8* const Bytes = &Monitor[gBanks[Output]];
            Bytes[0x00] = Output == 1 ? (Is(TRAIT_COUNTS) ? 12 : 16) : Output == 2 ? 1 : 2; // follows
            Bytes[0x02] = 0x42;                                                             // curve
            Bytes[0x05] = 0x33;                                                             // floor
            Bytes[0x35] = 90;                                                               // critical
            Bytes[0x36] = 1;
            Bytes[0x37] = 0xFF;
            std::memcpy(&Monitor[PointsAt(Output)], NuvotonPoints, sizeof(NuvotonPoints));
        }
    }
    for (UINT8 Sensor = 0; Sensor < (Is(TRAIT_ITE) ? 6 : 26); Sensor++) {
        SetTemperature(Sensor, 31 + 2 * Sensor);
    }
    for (UINT8 Fan = 1; Fan <= Of.Fans; Fan++) {
        (void)SetFan(Fan, static_cast<UINT16>(700 + 25 * Fan));
    }
    for (UINT8 Input = 0; Input < Of.Voltages; Input++) {
        (void)SetVoltage(Input, static_cast<UINT8>(100 + 5 * Input));
    }
    MayChange[BankAt()] = !Is(TRAIT_ITE) ? 0xFF : Is(TRAIT_BANKS) ? 0xE0 : 0;
}

VOID CHIP_MODEL::AllowUpTo(UINT8 Last)
{
    for (UINT8 Output = 1; Is(TRAIT_CERTAIN) && Output <= Last; Output++) {
        MayChange[DutyAt(Output)] = 0xFF;
        MayChange[ControlAt(Output)] = Is(TRAIT_ITE) ? 0x80 : 0xF0;
        for (UINT16 Point = 0; Point < 4 && !Is(TRAIT_ITE); Point++) {
            MayChange[PointsAt(Output) + Point] = MayChange[PointsAt(Output) + 6 + Point] = 0xFF;
        }
        if (Is(TRAIT_SWITCHES) && Output <= 3) {
            MayChange[0x13] |= static_cast<UINT8>(1 << (Output - 1));
        }
    }
}

UINT32 CHIP_MODEL::SetFan(UINT8 Fan, UINT16 Count)
{
    if (Is(TRAIT_ITE)) {
        const bool Other = Fan == 6 && Is(TRAIT_SIXTH_AT_93);
        Monitor[Other ? 0x93 : gCountsLow[Fan]] = Low(Count);
        Monitor[Other ? 0x94 : gCountsHigh[Fan]] = High(Count);
        return 1350000u / (2u * Count);
    }
    if (Is(TRAIT_COUNTS)) {
        Monitor[0x62E + 2 * Fan] = Low(static_cast<UINT32>(Count >> 5));
        Monitor[0x62F + 2 * Fan] = Count & 0x1F;
        return 1350000u / Count;
    }
    Monitor[gSpeeds[Fan]] = High(Count);
    Monitor[gSpeeds[Fan] + 1] = Low(Count);
    return Count;
}

VOID CHIP_MODEL::SetTemperature(UINT8 Sensor, INT32 Degrees)
{
    const UINT8 Value = static_cast<UINT8>(Degrees); // the half degrees of the words stay 0
    if (Is(TRAIT_ITE)) {
        Monitor[0x29 + Sensor] = Value;
        return;
    }
    static constexpr UINT16 Monitored[] = {0x027, 0x150, 0x250, 0x62B, 0x62C, 0x62D}; // their sources: 6:21 and so on
    static constexpr UINT16 Direct[] = {0x400, 0x401, 0x402, 0x404, 0x405, 0x406, 0x407, 0x408};
    for (UINT16 At = 0; At < (Is(TRAIT_COUNTS) ? 6 : 2); At++) {
        if (Monitor[0x621 + At] == Sensor) {
            Monitor[Monitored[At]] = Value;
        }
    }
    for (UINT16 At = 0; Is(TRAIT_RAILS) && At < 6; At++) {
        Monitor[0x670 + 2 * At] = Monitor[0xC26 + At] == Sensor ? Value : Monitor[0x670 + 2 * At];
    }
    for (UINT8 Output = 1; Output <= Facts->Outputs; Output++) {
        if ((Monitor[gBanks[Output]] & 0x1F) == Sensor) {
            Monitor[Output == 7 ? 0x4A0 : 0x071 + 2 * Output] = Value;
        }
    }
    if (Is(TRAIT_COUNTS) ? Sensor >= 15 && Sensor <= 17 : Sensor >= 18 && Sensor <= 25) {
        Monitor[Direct[Sensor - (Is(TRAIT_COUNTS) ? 14 : 18)]] = Value;
    } else if (!Is(TRAIT_COUNTS) && Sensor >= 1 && Sensor <= 6) {
        Monitor[0x48F + Sensor] = Value;
    }
}

UINT32 CHIP_MODEL::SetVoltage(UINT8 Input, UINT8 Steps)
{
    static constexpr UINT16 Few[] = {0x550, 0x551};
    static constexpr UINT16 Last[] = {0x48F, 0x470, 0x471};
    Monitor[Is(TRAIT_ITE)      ? (Input == 9 ? 0x2F : 0x20 + Input)
            : Is(TRAIT_COUNTS) ? (Input < 7 ? 0x20 + Input : Few[Input - 7])
                               : (Input < 15 ? 0x480 + Input : Last[Input - 15])] = Steps;
    const bool Doubled = Is(TRAIT_ITE) ? Input >= 7 && Input <= 9
                                       : Input == 2 || Input == 3 || Input == 7 || Input == 8 ||
                                             (Is(TRAIT_RAILS) && ((Input >= 9 && Input <= 11) || Input == 16));
    return (Steps * Facts->Step * (Doubled ? 2u : 1u) + 50) / 100;
}

UINT16 CHIP_MODEL::ControlAt(UINT8 Output) const { return Is(TRAIT_ITE) ? gControls[Output] : gBanks[Output] | 0x02; }
UINT16 CHIP_MODEL::DutyAt(UINT8 Output) const { return Is(TRAIT_ITE) ? gDuties[Output] : gBanks[Output] | 0x09; }
UINT16 CHIP_MODEL::PointsAt(UINT8 Output) const { return gBanks[Output] | 0x21; }

MACHINE_MODEL::MACHINE_MODEL()
{
    Ports.Read8 = [](PORTS* This, UINT16 Port) { return MachineOf(This).Read(Port); };
    Ports.Write8 = [](PORTS* This, UINT16 Port, UINT8 Value) { MachineOf(This).Write(Port, Value); };
    Ports.ReadBridge = [](PORTS* This, UINT8 Offset) {
        MACHINE_MODEL& Machine = MachineOf(This);
        const auto Node = Machine.Nodes.find(Machine.Bridge[0x60 / 4]);
        return Offset != 0x64 ? Machine.Bridge[Offset / 4] : Node == Machine.Nodes.end() ? 0xFFFFFFFF : Node->second;
    };
    Ports.WriteBridge = [](PORTS* This, UINT8 Offset, UINT32 Value) {
        MACHINE_MODEL& Machine = MachineOf(This);
        const bool Allowed = Offset == 0x60 && (Machine.Bridge[0] & 0xFFFF) == 0x1022 && Machine.Held;
        Machine.Faults += Allowed ? "" : "write to the bridge\n";
        Machine.Bridge[Offset / 4] = Value;
    };
    Ports.Cpuid = [](PORTS* This, UINT32 Leaf, UINT32) { return MachineOf(This).Leaves[Leaf]; };
    Ports.ReadMsr = [](PORTS* This, UINT32 Register) {
        MACHINE_MODEL& Machine = MachineOf(This);
        Machine.Faults += Machine.Msrs.contains(Register) ? "" : "a missing model register stops the machine\n";
        return Machine.Msrs[Register];
    };
    Ports.Hold = [](PORTS* This) {
        MACHINE_MODEL& Machine = MachineOf(This);
        Machine.Faults += Machine.Held ? "Hold within Hold\n" : "";
        Machine.Held = true;
        for (CHIP_MODEL& Chip : Machine.Chips) {
            if (Machine.Intruder && Chip.Facts != nullptr) {
                Chip.Index ^= 0x35;
                Chip.Monitor[Chip.BankAt()] ^= 0x25 & Chip.MayChange[Chip.BankAt()];
            }
        }
    };
    Ports.Release = [](PORTS* This) {
        MachineOf(This).Faults += MachineOf(This).Held ? "" : "Release without Hold\n";
        MachineOf(This).Held = false;
    };
}

CHIP_MODEL& MACHINE_MODEL::Fit(UINT8 Place, UINT16 Id)
{
    // A chip of nobody's table has the key that its id sounds like.
    const CHIP_FACTS* Facts = (Id >> 8) >= 0x86 && (Id >> 8) <= 0x88 ? &gChipFacts[10] : &gChipFacts[0];
    for (const CHIP_FACTS& Known : gChipFacts) {
        Facts = Known.Id == (Known.Traits & TRAIT_ITE ? Id : Id & 0xFFF8) ? &Known : Facts;
    }
    Chips[Place].PowerOn(*Facts, Place == 0 ? 0xA40 : 0xA60);
    Chips[Place].Id = Id;
    Slots[Place].Chip = Place;
    Slots[Place].Open = Slots[Place].WasOpen = Chips[Place].Is(TRAIT_STAYS_OPEN);
    return Chips[Place];
}

VOID MACHINE_MODEL::BecomeIntel(UINT32 LastLeaf, UINT32 Features, UINT32 Sensors, const std::map<UINT32, UINT64>& Has)
{
    Leaves = {
        {0, {LastLeaf, 0x756E6547, 0x6C65746E, 0x49656E69}}, {1, {0x906E9, 0, Features, 0}}, {6, {Sensors, 0, 0, 0}}};
    Msrs = Has;
    Bridge[0] = 0x591F8086;
}

VOID MACHINE_MODEL::BecomeAmd(UINT8 Family, UINT8 Model, UINT32 Temperature)
{
    const UINT32 Parts = static_cast<UINT32>((Family - 0x0F) << 20 | (Model >> 4) << 16 | 0xF00 | (Model & 15) << 4);
    Leaves = {{0, {1, 0x68747541, 0x444D4163, 0x69746E65}}, {1, {Parts, 0, 0, 0}}};
    Nodes = {{0x59800, Temperature}};
    Bridge[0] = 0x14501022;
    Bridge[0x60 / 4] = 0x12345678; // somebody's
}

bool MACHINE_MODEL::IsClosed() const
{
    return !Held && Slots[0].Open == Slots[0].WasOpen && Slots[1].Open == Slots[1].WasOpen;
}

std::string MACHINE_MODEL::KeysAt(UINT8 Place) const
{
    std::string Text;
    for (const CHIP_WRITE& Write : Writes) {
        char Byte[8];
        std::snprintf(Byte, sizeof(Byte), " %02X", Write.Value);
        const bool Looks = Write.Value == 0x20 || Write.Value == 0x21; // for an id
        Text += Write.Port == gIndexPorts[Place] && Write.Kind == WRITE_KEY && !Looks ? Byte : "";
    }
    return Text;
}

// Below 30 the configuration has one set of registers; ITE's pins belong to a device all the same.
UINT8* MACHINE_MODEL::ConfigurationOf(SLOT& Slot)
{
    CHIP_MODEL& Chip = Chips[Slot.Chip];
    const bool Common = Slot.Index < (Chip.Is(TRAIT_ITE) ? 0x23 : 0x30);
    return &Chip.Configuration[Common ? Slot.Index : (Slot.Device & 31) << 8 | Slot.Index];
}

UINT8 MACHINE_MODEL::Read(UINT16 Port)
{
    Faults += Held ? "" : "read of a port that nobody holds\n";
    ReadCount++;
    if (BeforeRead) {
        BeforeRead();
    }
    if (ReadCount >= OnesFrom && ReadCount < OnesTo) {
        return 0xFF;
    }
    for (SLOT& Slot : Slots) {
        const UINT16 IndexPort = gIndexPorts[&Slot - Slots];
        if (Slot.Chip < 0 || !Slot.Open || (Port & ~1) != IndexPort) {
            continue;
        }
        CHIP_MODEL& Chip = Chips[Slot.Chip];
        const UINT16 Id = Chip.Id;
        if (Port == IndexPort + 1 && Slot.Index == 0x21 && Chip.NextId != 0) {
            Chip.Id = Chip.NextId;
        }
        return Port == IndexPort    ? Slot.Index
               : Slot.Index == 0x07 ? Slot.Device
               : Slot.Index == 0x20 ? High(Id)
               : Slot.Index == 0x21 ? Low(Id)
                                    : *ConfigurationOf(Slot);
    }
    for (CHIP_MODEL& Chip : Chips) {
        if (!Chip.AnswersAtBase() || (Port != Chip.Base() + 5 && Port != Chip.Base() + 6)) {
            continue;
        }
        const UINT16 Register = Chip.Selected();
        for (UINT8 Output = 1; !Chip.Is(TRAIT_ITE) && Output < 6 && Output <= Chip.Facts->Outputs; Output++) {
            if (Port == Chip.Base() + 6 && Register == gDutiesNow[Output]) {
                return Chip.IsAutomatic(Output) ? gPresentDuty : Chip.Monitor[Chip.DutyAt(Output)];
            }
        }
        return Port == Chip.Base() + 5 ? Chip.Index
                                       : static_cast<UINT8>(Chip.Monitor[Register] ^ (Chip.IsShared() ? 0xA5 : 0));
    }
    return 0xFF;
}

// A write that isn't allowed is a fault, and has its effect all the same.
bool MACHINE_MODEL::Commit(const CHIP_WRITE& Write)
{
    Writes.push_back(Write);
    if ((!IsAllowed(Write) || !Held) && Faults.size() < 2000) {
        static constexpr const char* Kinds[] = {"key", "select", "configuration", "monitor", "lost"};
        char Text[120];
        std::snprintf(Text, sizeof(Text), "%s write of %02X over %02X to port %X: chip %d, register %03X, held %d\n",
                      Kinds[Write.Kind], Write.Value, Write.Before, Write.Port, Write.Chip, Write.Register, Held);
        Faults += Text;
    }
    return !(LosesWrite && LosesWrite(Write));
}

bool MACHINE_MODEL::IsAllowed(const CHIP_WRITE& Write)
{
    const CHIP_MODEL& Chip = Chips[Write.Chip];
    const UINT8 Changed = Write.Before ^ Write.Value;
    const bool Known = Write.Kind == WRITE_LOST ||
                       (Chip.Facts != nullptr && Chip.Facts->Id == (Chip.Is(TRAIT_ITE) ? Chip.Id : Chip.Id & 0xFFF8));
    switch (Write.Kind) {
    case WRITE_KEY:
        return true;
    case WRITE_SELECT: // not a key, for one that stays open and can be seen
        return !Chip.Is(TRAIT_STAYS_OPEN) || Write.Port > 0x4F || ReadCount >= OnesFrom || Chip.Id == 0xFFFF ||
               (Write.Value != 0x87 && Write.Value != 0xAA && Write.Value != 0x55 && Write.Value > 0x02);
    case WRITE_CONFIGURATION:
        if (Write.Register == 0x02) {
            return Chip.Is(TRAIT_ITE) && !Chip.Is(TRAIT_STAYS_OPEN) && Write.Value == 0x02;
        }
        return Known &&
               (Write.Register == 0x07 || (Write.Register == 0x4F3 && Chip.Is(TRAIT_SHARED) && (Changed & ~6) == 0) ||
                (Write.Register == 0xB28 && Chip.Is(TRAIT_LOCK) && (Changed & ~0x10) == 0));
    case WRITE_MONITOR: {
        const auto Bits = Chip.MayChange.find(Write.Register);
        return Known && !Chip.IsShared() && Bits != Chip.MayChange.end() && (Changed & ~Bits->second) == 0;
    }
    default: // a chip that has been left gets the second of the two ways to leave, too
        return (Write.Port == 0x2F || Write.Port == 0x4F) && Write.Value == 0x02;
    }
}

VOID MACHINE_MODEL::Write(UINT16 Port, UINT8 Value)
{
    for (SLOT& Slot : Slots) {
        const UINT8 Place = static_cast<UINT8>(&Slot - Slots);
        const UINT8 Number = Slot.Chip < 0 ? 0 : static_cast<UINT8>(Slot.Chip);
        const bool Nuvoton = Slot.Chip >= 0 && !Chips[Number].Is(TRAIT_ITE);
        if (Port == gIndexPorts[Place] && Slot.Open && !(Nuvoton && Value == 0xAA)) {
            Slot.Index = Commit({WRITE_SELECT, Port, Number, 0, Slot.Index, Value}) ? Value : Slot.Index;
            return;
        }
        if (Port == gIndexPorts[Place]) {
            (void)Commit({WRITE_KEY, Port, Number, 0, 0, Value});
            Slot.Keys = Slot.Keys << 8 | Value;
            Slot.Open = Slot.Chip >= 0 && (Nuvoton ? (Slot.Keys & 0xFFFF) == 0x8787
                                                   : Slot.Keys == (Place == 0 ? 0x87015555u : 0x870155AAu));
            return;
        }
        if (Port != gIndexPorts[Place] + 1 || !Slot.Open) {
            continue;
        }
        UINT8* const Register = Slot.Index == 0x07 ? &Slot.Device : ConfigurationOf(Slot);
        const UINT16 At = static_cast<UINT16>(Slot.Index < 0x20 ? Slot.Index : Slot.Device << 8 | Slot.Index);
        if (Commit({WRITE_CONFIGURATION, Port, Number, At, *Register, Value})) {
            Slot.Open = !(Slot.Index == 0x02 && !Nuvoton && (Value & 2) != 0);
            *Register = Slot.Open ? Value : *Register;
        }
        return;
    }
    for (CHIP_MODEL& Chip : Chips) {
        const UINT8 Number = static_cast<UINT8>(&Chip - Chips);
        if (!Chip.AnswersAtBase() || (Port != Chip.Base() + 5 && Port != Chip.Base() + 6)) {
            continue;
        }
        const bool Selects = Port == Chip.Base() + 5;
        const UINT16 At = Chip.Selected();
        UINT8* const Register = Selects ? &Chip.Index : &Chip.Monitor[At];
        if (Commit({Selects ? WRITE_SELECT : WRITE_MONITOR, Port, Number, At, *Register, Value})) {
            *Register = Value;
        }
        for (UINT8 Output = 1; Output <= Chip.Facts->Outputs && !Chip.TakesDutyAlways; Output++) {
            UINT8& Duty = Chip.Monitor[Chip.DutyAt(Output)];
            Duty = Chip.IsAutomatic(Output) ? gPresentDuty : Duty;
        }
        return;
    }
    (void)Commit({WRITE_LOST, Port, 0, 0, 0, Value});
}
