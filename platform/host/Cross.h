// For the functions that stand in front of a service: one way to let a script's failure take the service's place.
#pragma once

#include "platform/host/Boot.h"

// The status of Service(), or, without calling it, the one that a script gave to this call.
template <typename SERVICE> EFI_STATUS Cross(CALL Call, SERVICE&& Service)
{
    EFI_STATUS Status;
    return gBoot->Crossing.Overrides.TakeFailure(Call, &Status) ? Status : Service();
}

inline TRACE_LINE TraceCall(CALL Call) { return TraceCall(gBoot->Trace, Call); }
