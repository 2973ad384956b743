// The ways to a machine's sensor chips: I/O ports, the configuration space of the first PCI device, the processor's own
// registers. Whoever reads chips goes through such a record, on firmware into the machine, in tests into a model of it.
//
// Nothing here fails: where no device answers, a read gives all ones and a write is lost, as on a machine. A model
// register that the processor lacks would stop the machine; CPUID has to be asked before.
#pragma once

#include "uefi/Base.h"

struct CPUID_REGISTERS {
    UINT32 Eax;
    UINT32 Ebx;
    UINT32 Ecx;
    UINT32 Edx;
};

struct PORTS {
    UINT8 (*Read8)(PORTS* This, UINT16 Port);
    VOID (*Write8)(PORTS* This, UINT16 Port, UINT8 Value);
    // A double word of the configuration space of the PCI device at bus 0, device 0, function 0; Offset is a multiple of 4.
    UINT32 (*ReadBridge)(PORTS* This, UINT8 Offset);
    VOID (*WriteBridge)(PORTS* This, UINT8 Offset, UINT32 Value);
    CPUID_REGISTERS (*Cpuid)(PORTS* This, UINT32 Leaf, UINT32 Subleaf);
    UINT64 (*ReadMsr)(PORTS* This, UINT32 Register);
    // Around accesses that belong together, such as an index and its data: nothing else of the firmware runs between
    // Hold and Release. They don't nest.
    VOID (*Hold)(PORTS* This);
    VOID (*Release)(PORTS* This);
};
