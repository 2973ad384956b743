// A machine with Super I/O chips behind PORTS, made of what the chips' data sheets say: keys, configuration registers, a
// monitor behind an index and a data port, banks, the processor; and of what goes wrong on machines.
//
// It judges as well: whatever a driver must not do is a sentence in Faults as soon as it happens.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/board/chips/Ports.h"

enum CHIP_TRAIT : UINT16 {
    TRAIT_ITE = 1,           // of this maker; else of Nuvoton
    TRAIT_COUNTS = 2,        // Nuvoton: a fan is a count of 13 bits, voltages and temperatures lie elsewhere
    TRAIT_LOCK = 4,          // Nuvoton: a configuration bit hides the monitor
    TRAIT_RAILS = 8,         // Nuvoton: four more voltages are in steps of twice the size
    TRAIT_STAYS_OPEN = 16,   // ITE: configuration mode is on from the start and has to stay
    TRAIT_BANKS = 32,        // ITE: register 06 selects a bank
    TRAIT_SWITCHES = 64,     // ITE: outputs 1 to 3 have an on/off mode in register 13
    TRAIT_SIXTH_AT_93 = 128, // ITE: where fan 6 counts
    TRAIT_SHARED = 256,      // ITE: an engine of its own moves the index unless configuration register F3 says no
    TRAIT_CERTAIN = 512,     // it is known for certain how its outputs are set
};

struct CHIP_FACTS {
    const char* Name;
    UINT16 Id, Traits;
    UINT8 Fans, Outputs, Voltages;
    UINT16 Step; // of a voltage, in hundredths of a millivolt
};
extern const std::vector<CHIP_FACTS> gChipFacts;

// A register's number is its bank, or its logical device in the configuration, in front of its offset: 0x4C0 is 4:C0.
// Fans and outputs count from 1, voltages and temperatures of ITE from 0, those of Nuvoton are sources' numbers.
struct CHIP_MODEL {
    const CHIP_FACTS* Facts = nullptr; // null: there is no such chip
    UINT16 Id = 0;                     // what it answers with first
    UINT16 NextId = 0;                 // and from the second time on, unless 0
    bool TakesDutyAlways = false;      // Nuvoton: a duty written in an automatic mode is kept for later
    UINT8 Index = 0;
    UINT8 Configuration[0x2000] = {};
    UINT8 Monitor[0x1000] = {};
    std::map<UINT16, UINT8> MayChange; // bits of registers of the monitor that may be written; bank selects are in it

    bool Is(CHIP_TRAIT Trait) const { return (Facts->Traits & Trait) != 0; }
    UINT16 MonitorDevice() const { return Is(TRAIT_ITE) ? 0x400 : 0xB00; }
    UINT8 BankAt() const { return Is(TRAIT_ITE) ? 0x06 : 0x4E; } // a register with the bank in some bits
    UINT16 Base() const;
    bool AnswersAtBase() const;
    bool IsShared() const; // the engine is at work: what is read isn't what was asked for
    // That of the index in the bank selected.
    UINT16 Selected() const;

    // All of it as a board's firmware leaves it: monitoring, every fan there, turning and under a curve, and each sensor
    // with a number of its own.
    VOID PowerOn(const CHIP_FACTS& Facts, UINT16 Base);
    // From now on the registers of outputs may be written, from the first to that one, where it is certain how.
    VOID AllowUpTo(UINT8 Last);

    // Put a number into the registers, and say what it is in units of the console: revolutions a minute, whole degrees,
    // millivolts. Count is the register's own.
    UINT32 SetFan(UINT8 Fan, UINT16 Count);
    VOID SetTemperature(UINT8 Sensor, INT32 Degrees);
    UINT32 SetVoltage(UINT8 Input, UINT8 Steps);

    UINT16 ControlAt(UINT8 Output) const; // with the mode
    UINT16 DutyAt(UINT8 Output) const;
    UINT16 PointsAt(UINT8 Output) const; // Nuvoton: four temperatures, and the duties 6 behind
    bool IsAutomatic(UINT8 Output) const { return (Monitor[ControlAt(Output)] & (Is(TRAIT_ITE) ? 0x80 : 0x70)) != 0; }
};

// What a write was to the machine.
enum WRITE_KIND : UINT8 { WRITE_KEY, WRITE_SELECT, WRITE_CONFIGURATION, WRITE_MONITOR, WRITE_LOST };
struct CHIP_WRITE {
    WRITE_KIND Kind;
    UINT16 Port;
    UINT8 Chip;
    UINT16 Register;
    UINT8 Before, Value;
};

struct MACHINE_MODEL {
    PORTS Ports; // first
    CHIP_MODEL Chips[2];
    // A place where a Super I/O answers: 2E and 4E. Both may have one chip.
    struct SLOT {
        int Chip = -1;
        bool Open = false, WasOpen = false;
        UINT8 Index = 0, Device = 0;
        UINT32 Keys = 0; // the last four bytes
    } Slots[2];
    std::map<UINT32, CPUID_REGISTERS> Leaves; // of CPUID
    std::map<UINT32, UINT64> Msrs;            // a read of any other stops the machine
    std::map<UINT32, UINT32> Nodes;           // AMD: registers behind the bridge
    UINT32 Bridge[64] = {};                   // its configuration space

    UINT64 ReadCount = 0;
    UINT64 OnesFrom = ~0ull; // reads of ports from this number on, and before the other, give all ones
    UINT64 OnesTo = 0;
    std::function<VOID()> BeforeRead;                  // ReadCount is its number
    std::function<bool(const CHIP_WRITE&)> LosesWrite; // true: the write has no effect
    bool Intruder = false;                             // somebody moves index and bank while nobody holds them

    bool Held = false;
    std::vector<CHIP_WRITE> Writes;
    std::string Faults; // a line each

    MACHINE_MODEL();
    // The chip of that id at the first or second place, with its monitor at A40 or A60.
    CHIP_MODEL& Fit(UINT8 Place, UINT16 Id);
    VOID BecomeIntel(UINT32 LastLeaf, UINT32 Features, UINT32 Sensors, const std::map<UINT32, UINT64>& Msrs);
    VOID BecomeAmd(UINT8 Family, UINT8 Model, UINT32 Temperature);
    // Each configuration as open as it was, and nothing held.
    bool IsClosed() const;
    // Bytes written to the index port of a place while no configuration was open there.
    std::string KeysAt(UINT8 Place) const;

private:
    UINT8 Read(UINT16 Port);
    VOID Write(UINT16 Port, UINT8 Value);
    UINT8* ConfigurationOf(SLOT& Slot);
    bool IsAllowed(const CHIP_WRITE& Write);
    bool Commit(const CHIP_WRITE& Write);
};
