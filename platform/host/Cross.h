// For the functions that stand in front of a service: one way to let a failure that a script or a test wants take the
// service's place.
#pragma once

#include <cstring>

#include "platform/host/Boot.h"

// As a pointer neither null nor anywhere, as a number far out of every range.
constexpr UINT8 gGarbagePattern = 0xA5;

// An output whose size only the call knows.
struct OUTPUT_BYTES {
    VOID* Data;
    UINTN Size;
};

inline VOID Spoil(OUTPUT_BYTES Output)
{
    if (Output.Data != nullptr) {
        std::memset(Output.Data, gGarbagePattern, Output.Size);
    }
}

template <typename OUTPUT> VOID Spoil(OUTPUT* Output)
{
    // NOLINTNEXTLINE(bugprone-sizeof-expression): where the output is a pointer, that is what is overwritten
    Spoil(OUTPUT_BYTES{Output, sizeof(*Output)});
}

// The status of Service(), or, without calling it, the one that this call is to fail with. Outputs are the places that
// the service fills, for a failure that leaves garbage behind; any may be null.
template <typename SERVICE, typename... OUTPUT> EFI_STATUS Cross(CALL Call, SERVICE&& Service, OUTPUT... Outputs)
{
    EFI_STATUS Status;
    bool Garbage;
    if (!gBoot->Crossing.Overrides.TakeFailure(Call, &Status, &Garbage)) {
        return Service();
    }
    if (Garbage) {
        (Spoil(Outputs), ...);
    }
    return Status;
}

inline TRACE_LINE TraceCall(CALL Call) { return TraceCall(gBoot->Trace, Call); }
