#include "platform/board/chips/ProcessorTemperature.h"

#include "platform/board/chips/SuperIo.h"

namespace {

constexpr UINT32 gThermalLeaf = 6;
constexpr UINT32 gCoreSensor = 1u << 0;
constexpr UINT32 gPackageSensor = 1u << 6;
constexpr UINT32 gVirtual = 1u << 31; // of leaf 1, ECX

constexpr UINT32 gCoreStatus = 0x19C;
constexpr UINT32 gPackageStatus = 0x1B1;
constexpr UINT32 gTarget = 0x1A2;
constexpr UINT64 gReadingValid = 1u << 31;
constexpr INT32 gUsualLimit = 100;

constexpr UINT16 gAmd = 0x1022;
constexpr UINT8 gSmnIndex = 0x60;
constexpr UINT8 gSmnData = 0x64;
constexpr UINT32 gReportedTemperature = 0x00059800;

// Processors whose control value lies above their temperature; all of family 17h.
constexpr struct {
    const CHAR8* Name;
    INT32 Offset;
} gOffsets[] = {
    {"1600X", 20}, {"1700X", 20}, {"1800X", 20}, {"2700X", 10}, {"Threadripper 19", 27}, {"Threadripper 29", 27},
};

bool Mentions(const CHAR8* Text, UINTN Length, const CHAR8* Part)
{
    for (UINTN Index = 0; Index < Length; Index++) {
        UINTN Same = 0;
        while (Part[Same] != 0 && Index + Same < Length && Text[Index + Same] == Part[Same]) {
            Same++;
        }
        if (Part[Same] == 0) {
            return true;
        }
    }
    return false;
}

INT32 ReadOffset(PORTS* Ports)
{
    CHAR8 Name[48] = {};
    if (Ports->Cpuid(Ports, 0x80000000, 0).Eax < 0x80000004) {
        return 0;
    }
    for (UINT32 Part = 0; Part < 3; Part++) {
        const CPUID_REGISTERS Leaf = Ports->Cpuid(Ports, 0x80000002 + Part, 0);
        const UINT32 Words[] = {Leaf.Eax, Leaf.Ebx, Leaf.Ecx, Leaf.Edx};
        for (UINTN Byte = 0; Byte < 16; Byte++) {
            Name[Part * 16 + Byte] = static_cast<CHAR8>(Words[Byte / 4] >> Byte % 4 * 8 & 0xFF);
        }
    }
    for (const auto& Row : gOffsets) {
        if (Mentions(Name, sizeof(Name), Row.Name)) {
            return Row.Offset;
        }
    }
    return 0;
}

bool IsVendor(const CPUID_REGISTERS& Leaf, const CHAR8* Name)
{
    const UINT32 Words[] = {Leaf.Ebx, Leaf.Edx, Leaf.Ecx};
    for (UINTN Byte = 0; Byte < 12; Byte++) {
        if (static_cast<CHAR8>(Words[Byte / 4] >> Byte % 4 * 8 & 0xFF) != Name[Byte]) {
            return false;
        }
    }
    return true;
}

VOID FindIntel(PROCESSOR* Processor, UINT32 LastLeaf)
{
    PORTS* Ports = Processor->Ports;
    const UINT32 Sensors = LastLeaf < gThermalLeaf ? 0 : Ports->Cpuid(Ports, gThermalLeaf, 0).Eax;
    Processor->Limit = gUsualLimit;
    if ((Sensors & gPackageSensor) != 0) {
        Processor->Sensor = PROCESSOR_INTEL_PACKAGE;
        const INT32 Limit = static_cast<INT32>(Ports->ReadMsr(Ports, gTarget) >> 16 & 0xFF);
        Processor->Limit = Limit == 0 ? gUsualLimit : Limit;
    } else if ((Sensors & gCoreSensor) != 0) {
        // Not all of these have the register of the limit, and asking for one that isn't there stops the machine.
        Processor->Sensor = PROCESSOR_INTEL_CORE;
    }
}

VOID FindAmd(PROCESSOR* Processor)
{
    PORTS* Ports = Processor->Ports;
    const UINT32 Signature = Ports->Cpuid(Ports, 1, 0).Eax;
    const UINT32 Base = Signature >> 8 & 0xF;
    const UINT32 Family = Base == 0xF ? Base + (Signature >> 20 & 0xFF) : Base;
    if (Family >= 0x17 && Family <= 0x1A && (Ports->ReadBridge(Ports, 0) & 0xFFFF) == gAmd) {
        Processor->Sensor = PROCESSOR_AMD;
        Processor->Offset = Family == 0x17 ? ReadOffset(Ports) : 0;
    }
}

bool ReadAmd(const PROCESSOR& Processor, INT32* MilliDegrees)
{
    PORTS* Ports = Processor.Ports;
    UINT32 Value;
    {
        const HELD_MACHINE Held(Ports);
        const UINT32 Before = Ports->ReadBridge(Ports, gSmnIndex);
        Ports->WriteBridge(Ports, gSmnIndex, gReportedTemperature);
        Value = Ports->ReadBridge(Ports, gSmnData);
        Ports->WriteBridge(Ports, gSmnIndex, Before);
    }
    if (Value == 0 || Value == 0xFFFFFFFF) {
        return false;
    }
    // Two marks for a scale that begins at -49 degrees.
    const bool Shifted = (Value & 1u << 19) != 0 || (Value >> 16 & 3) == 3;
    const INT32 Control = static_cast<INT32>(Value >> 21) * 125 - (Shifted ? 49000 : 0);
    const INT32 Degrees = Control - Processor.Offset * 1000;
    *MilliDegrees = Degrees < 0 ? 0 : Degrees;
    return true;
}

} // namespace

PROCESSOR FindProcessor(PORTS* Ports)
{
    PROCESSOR Processor = {};
    Processor.Ports = Ports;
    const CPUID_REGISTERS First = Ports->Cpuid(Ports, 0, 0);
    if (First.Eax == 0 || (Ports->Cpuid(Ports, 1, 0).Ecx & gVirtual) != 0) {
        return Processor;
    }
    if (IsVendor(First, "GenuineIntel")) {
        FindIntel(&Processor, First.Eax);
    } else if (IsVendor(First, "AuthenticAMD") || IsVendor(First, "HygonGenuine")) {
        FindAmd(&Processor);
    }
    return Processor;
}

bool ReadProcessor(const PROCESSOR& Processor, INT32* MilliDegrees)
{
    PORTS* Ports = Processor.Ports;
    if (Processor.Sensor == PROCESSOR_NONE) {
        return false;
    }
    if (Processor.Sensor == PROCESSOR_AMD) {
        return ReadAmd(Processor, MilliDegrees);
    }
    const bool Package = Processor.Sensor == PROCESSOR_INTEL_PACKAGE;
    const UINT64 Status = Ports->ReadMsr(Ports, Package ? gPackageStatus : gCoreStatus);
    if (!Package && (Status & gReadingValid) == 0) {
        return false; // the package's has no such mark
    }
    *MilliDegrees = (Processor.Limit - static_cast<INT32>(Status >> 16 & 0x7F)) * 1000;
    return true;
}
