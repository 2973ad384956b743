#include "platform/firmware/Clock.h"

#include "platform/firmware/Ports.h"
#include "uefi/CpuArch.h"

namespace {

constexpr UINT64 gFemtosecondsPerSecond = 1000000000000000ull;
constexpr UINT64 gMicrosecondsPerSecond = 1000000;
constexpr UINTN gMeasureMicroseconds = 20000;

EFI_CPU_ARCH_PROTOCOL* gCpu; // null: the time-stamp counter itself
UINT64 gTicksPerSecond = 1;
UINT64 gStartTicks;
UINT64 gLastMicroseconds;

UINT64 ReadTicks()
{
    UINT64 Ticks = 0;
    UINT64 Period = 0;
    if (gCpu == nullptr || EfiError(gCpu->GetTimerValue(gCpu, 0, &Ticks, &Period))) {
        return ReadTimeStamp();
    }
    return Ticks;
}

}

VOID StartClock(EFI_BOOT_SERVICES* Boot)
{
    gCpu = nullptr;
    gTicksPerSecond = 0;
    VOID* Interface = nullptr;
    if (!EfiError(Boot->LocateProtocol(&gEfiCpuArchProtocolGuid, nullptr, &Interface))) {
        auto* Cpu = static_cast<EFI_CPU_ARCH_PROTOCOL*>(Interface);
        UINT64 Ticks = 0;
        UINT64 Period = 0;
        if (!EfiError(Cpu->GetTimerValue(Cpu, 0, &Ticks, &Period)) && Period != 0) {
            gCpu = Cpu;
            gTicksPerSecond = gFemtosecondsPerSecond / Period;
        }
    }
    if (gTicksPerSecond == 0) {
        gCpu = nullptr;
        UINT64 Before = ReadTimeStamp();
        (void)Boot->Stall(gMeasureMicroseconds);
        gTicksPerSecond = (ReadTimeStamp() - Before) * (gMicrosecondsPerSecond / gMeasureMicroseconds);
    }
    if (gTicksPerSecond == 0) {
        gTicksPerSecond = 1;
    }
    gStartTicks = ReadTicks();
    gLastMicroseconds = 0;
}

UINT64 ReadMicroseconds()
{
    UINT64 Ticks = ReadTicks() - gStartTicks;
    // In two parts, so that the product doesn't overflow after some hours.
    UINT64 Now = Ticks / gTicksPerSecond * gMicrosecondsPerSecond +
                 Ticks % gTicksPerSecond * gMicrosecondsPerSecond / gTicksPerSecond;
    // The counters of two processors may stand apart by a little.
    if (Now > gLastMicroseconds) {
        gLastMicroseconds = Now;
    }
    return gLastMicroseconds;
}
