// Super I/O chips: which one answers at a port, and its configuration registers.
//
// How a port is looked at, and what is never sent to it, stands in ChipBoard.h.
#pragma once

#include "platform/board/chips/Ports.h"

// Nothing else of the firmware runs while there is one.
struct HELD_MACHINE {
    explicit HELD_MACHINE(PORTS* ThePorts) : Ports(ThePorts) { Ports->Hold(Ports); }
    ~HELD_MACHINE() { Ports->Release(Ports); }
    HELD_MACHINE(const HELD_MACHINE&) = delete;
    HELD_MACHINE& operator=(const HELD_MACHINE&) = delete;
    PORTS* Ports;
};

enum CHIP_MAKER : UINT8 { MAKER_NUVOTON, MAKER_ITE };

enum SUPER_IO_STATE : UINT8 {
    SUPER_IO_NONE,    // nothing answers
    SUPER_IO_UNKNOWN, // something answers that isn't in the table, or not twice the same
    SUPER_IO_OFF,     // a known chip with its monitor switched off, or without an address for it
    SUPER_IO_FOUND,
};

struct SUPER_IO {
    PORTS* Ports;
    UINT16 Port; // 2E or 4E
    UINT16 Id;   // as in the facts' tables; what was read, for an unknown one
    UINT16 Base; // the monitor's, index at 5 and data at 6
    CHIP_MAKER Maker;
    const CHAR8* Name;
    bool ByKey; // it wasn't in its configuration mode already
};

SUPER_IO_STATE FindSuperIo(PORTS* Ports, UINT16 Port, SUPER_IO* Io);

// The configuration registers of a chip that has been found; all of it while the machine is held. OpenConfig opens them
// and selects a logical device, CloseConfig undoes both. Good is false when another chip answers than was found: then
// nothing has been selected, and nothing may be written.
struct CONFIG_VISIT {
    bool Good;
    UINT8 Selected; // the device that was selected before
};
CONFIG_VISIT OpenConfig(const SUPER_IO& Io, UINT8 LogicalDevice);
VOID CloseConfig(const SUPER_IO& Io, const CONFIG_VISIT& Visit);
UINT8 ReadConfig(const SUPER_IO& Io, UINT8 Register);
// Reads it twice: false where the two differ, as by a foreign access in between, or are all ones, as from a chip that has
// gone. For what decides where is written, or is written back.
bool ReadConfigTwice(const SUPER_IO& Io, UINT8 Register, UINT8* Value);
VOID WriteConfig(const SUPER_IO& Io, UINT8 Register, UINT8 Value);

constexpr UINT8 gNuvotonMonitor = 0x0B; // logical devices
constexpr UINT8 gIteMonitor = 0x04;
constexpr UINT8 gItePins = 0x07;
