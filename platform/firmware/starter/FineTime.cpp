#include "platform/firmware/starter/FineTime.h"

#include "platform/firmware/Clock.h"

namespace {

constexpr UINT32 gMicrosecondsPerSecond = 1000000;

const EFI_RUNTIME_SERVICES* gFirmware;
EFI_TIME gTold; // by the firmware
EFI_TIME_CAPABILITIES gCapabilities;
UINT64 gToldAt;
bool gTelling;

bool SameTime(const EFI_TIME& A, const EFI_TIME& B)
{
    return A.Second == B.Second && A.Minute == B.Minute && A.Hour == B.Hour && A.Day == B.Day && A.Month == B.Month &&
           A.Year == B.Year;
}

EFI_STATUS GetFineTime(EFI_TIME* Time, EFI_TIME_CAPABILITIES* Capabilities)
{
    if (Time == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    const UINT64 Now = ReadMicroseconds();
    if (!gTelling || Now - gToldAt >= gMicrosecondsPerSecond) {
        EFI_TIME Fresh = {};
        const EFI_STATUS Status = gFirmware->GetTime(&Fresh, &gCapabilities);
        if (EfiError(Status)) {
            return Status;
        }
        // The processor's second may be a little shorter than the clock's: then its last microsecond lasts.
        if (!gTelling || !SameTime(Fresh, gTold)) {
            gTold = Fresh;
            gToldAt = Now;
            gTelling = true;
        }
    }
    const UINT64 Since = Now - gToldAt;
    const UINT64 Last = gMicrosecondsPerSecond - 1;
    *Time = gTold;
    Time->Nanosecond = static_cast<UINT32>(Since < Last ? Since : Last) * 1000;
    if (Capabilities != nullptr) {
        *Capabilities = gCapabilities;
        Capabilities->Resolution = gMicrosecondsPerSecond;
    }
    return EFI_SUCCESS;
}

} // namespace

bool TellsWholeSeconds(const EFI_RUNTIME_SERVICES* Firmware)
{
    EFI_TIME Time = {};
    EFI_TIME_CAPABILITIES Capabilities = {};
    return !EfiError(Firmware->GetTime(&Time, &Capabilities)) && Capabilities.Resolution == 1;
}

VOID PutFineTime(EFI_BOOT_SERVICES* Boot, const EFI_RUNTIME_SERVICES* Firmware, EFI_RUNTIME_SERVICES* Copy)
{
    StartClock(Boot);
    gFirmware = Firmware;
    gTelling = false;
    Copy->GetTime = GetFineTime;
}
