#include "platform/firmware/starter/FineTime.h"

#include "platform/firmware/Clock.h"

namespace {

constexpr UINT32 gMicrosecondsPerSecond = 1000000;

decltype(EFI_RUNTIME_SERVICES::GetTime) gFirmwareGetTime;
UINT8 gSecond;    // as last told
UINT64 gSecondAt; // when it was told first

EFI_STATUS GetFineTime(EFI_TIME* Time, EFI_TIME_CAPABILITIES* Capabilities)
{
    const EFI_STATUS Status = gFirmwareGetTime(Time, Capabilities);
    if (EfiError(Status)) {
        return Status;
    }
    const UINT64 Now = ReadMicroseconds();
    if (Time->Second != gSecond) {
        gSecond = Time->Second;
        gSecondAt = Now;
    }
    // The two clocks may run a little apart: the second ends when the firmware says so.
    const UINT64 Since = Now - gSecondAt;
    const UINT64 Last = gMicrosecondsPerSecond - 1;
    Time->Nanosecond = static_cast<UINT32>(Since < Last ? Since : Last) * 1000;
    if (Capabilities != nullptr) {
        Capabilities->Resolution = gMicrosecondsPerSecond;
    }
    return EFI_SUCCESS;
}

} // namespace

bool RefineTime(EFI_BOOT_SERVICES* Boot, EFI_RUNTIME_SERVICES* Copy)
{
    EFI_TIME Time = {};
    EFI_TIME_CAPABILITIES Capabilities = {};
    if (EfiError(Copy->GetTime(&Time, &Capabilities)) || Capabilities.Resolution != 1) {
        return false;
    }
    StartClock(Boot);
    gSecond = Time.Second;
    gSecondAt = ReadMicroseconds();
    gFirmwareGetTime = Copy->GetTime;
    Copy->GetTime = GetFineTime;
    return true;
}
