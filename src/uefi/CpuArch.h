// CPU architectural protocol, for its timer.
#pragma once

#include "uefi/Base.h"

constexpr EFI_GUID gEfiCpuArchProtocolGuid = {
    0x26BACCB1, 0x6F42, 0x11D4, {0xBC, 0xE7, 0x00, 0x80, 0xC7, 0x3C, 0x88, 0x81}};

struct EFI_CPU_ARCH_PROTOCOL {
    VOID* FlushDataCache;
    VOID* EnableInterrupt;
    VOID* DisableInterrupt;
    VOID* GetInterruptState;
    VOID* Init;
    VOID* RegisterInterruptHandler;
    // TimerPeriod receives femtoseconds a tick.
    EFI_STATUS (*GetTimerValue)(EFI_CPU_ARCH_PROTOCOL* This, UINT32 TimerIndex, UINT64* TimerValue,
                                UINT64* TimerPeriod);
    VOID* SetMemoryAttributes;
    UINT32 NumberOfTimers;
    UINT32 DmaBufferAlignment;
};
static_assert(offsetof(EFI_CPU_ARCH_PROTOCOL, GetTimerValue) == 48);
