// The processor's port instructions and its time-stamp counter.
#pragma once

#include "uefi/Base.h"

inline UINT8 ReadPort(UINT16 Port)
{
    UINT8 Value;
    asm volatile("inb %1, %0" : "=a"(Value) : "Nd"(Port));
    return Value;
}

inline VOID WritePort(UINT16 Port, UINT8 Value) { asm volatile("outb %0, %1" : : "a"(Value), "Nd"(Port)); }

inline UINT32 ReadPort32(UINT16 Port)
{
    UINT32 Value;
    asm volatile("inl %1, %0" : "=a"(Value) : "Nd"(Port));
    return Value;
}

inline VOID WritePort32(UINT16 Port, UINT32 Value) { asm volatile("outl %0, %1" : : "a"(Value), "Nd"(Port)); }

inline UINT64 ReadTimeStamp()
{
    UINT32 Low;
    UINT32 High;
    asm volatile("rdtsc" : "=a"(Low), "=d"(High));
    return (static_cast<UINT64>(High) << 32) | Low;
}
