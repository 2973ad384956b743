#include "platform/firmware/driver/MachinePorts.h"

#include "platform/firmware/Ports.h"

namespace {

constexpr UINT16 gBridgeAddressPort = 0xCF8;
constexpr UINT16 gBridgeDataPort = 0xCFC;
constexpr UINT32 gFirstDevice = 0x80000000; // bus 0, device 0, function 0

EFI_BOOT_SERVICES* gServices;
EFI_TPL gFormerLevel;

// No timer, and so no notify function of the firmware's, runs meanwhile. Code below the system can still come in between.
struct HIGH_LEVEL {
    HIGH_LEVEL() : Former(gServices->RaiseTPL(TPL_HIGH_LEVEL)) {}
    ~HIGH_LEVEL() { gServices->RestoreTPL(Former); }
    HIGH_LEVEL(const HIGH_LEVEL&) = delete;
    HIGH_LEVEL& operator=(const HIGH_LEVEL&) = delete;
    EFI_TPL Former;
};

// Address and data belong together, and whoever was between its own two gets its address back.
template <typename ACCESS> VOID AccessBridge(UINT8 Offset, ACCESS Access)
{
    const HIGH_LEVEL High;
    const UINT32 Before = ReadPort32(gBridgeAddressPort);
    WritePort32(gBridgeAddressPort, gFirstDevice | (Offset & 0xFCu));
    Access();
    WritePort32(gBridgeAddressPort, Before);
}

PORTS gMachine = {
    .Read8 = [](PORTS*, UINT16 Port) { return ReadPort(Port); },
    .Write8 = [](PORTS*, UINT16 Port, UINT8 Value) { WritePort(Port, Value); },
    .ReadBridge =
        [](PORTS*, UINT8 Offset) {
            UINT32 Value = 0;
            AccessBridge(Offset, [&Value] { Value = ReadPort32(gBridgeDataPort); });
            return Value;
        },
    .WriteBridge = [](PORTS*, UINT8 Offset,
                      UINT32 Value) { AccessBridge(Offset, [Value] { WritePort32(gBridgeDataPort, Value); }); },
    .Cpuid =
        [](PORTS*, UINT32 Leaf, UINT32 Subleaf) {
            CPUID_REGISTERS Registers;
            asm volatile("cpuid"
                         : "=a"(Registers.Eax), "=b"(Registers.Ebx), "=c"(Registers.Ecx), "=d"(Registers.Edx)
                         : "a"(Leaf), "c"(Subleaf));
            return Registers;
        },
    .ReadMsr = [](PORTS*, UINT32 Register) -> UINT64 {
        UINT32 Low;
        UINT32 High;
        asm volatile("rdmsr" : "=a"(Low), "=d"(High) : "c"(Register));
        return static_cast<UINT64>(High) << 32 | Low;
    },
    .Hold = [](PORTS*) { gFormerLevel = gServices->RaiseTPL(TPL_HIGH_LEVEL); },
    .Release = [](PORTS*) { gServices->RestoreTPL(gFormerLevel); },
};

} // namespace

PORTS* OpenMachinePorts(EFI_BOOT_SERVICES* BootServices)
{
    gServices = BootServices;
    return &gMachine;
}
