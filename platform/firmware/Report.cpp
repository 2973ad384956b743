#include "platform/firmware/Report.h"

#include "platform/firmware/Ports.h"

namespace {

constexpr UINT16 gDebugPort = 0x402;
// What the debug console answers when its port is read. On a machine without one the bus floats at 0xFF, and since the
// port may belong to something else there, nothing is ever written to it.
constexpr UINT8 gDebugPortMark = 0xE9;

struct STATUS_NAME {
    EFI_STATUS Status;
    const CHAR8* Name;
};

constexpr STATUS_NAME gStatusNames[] = {
    {EFI_SUCCESS, "Success"},
    {EFI_LOAD_ERROR, "Load Error"},
    {EFI_INVALID_PARAMETER, "Invalid Parameter"},
    {EFI_UNSUPPORTED, "Unsupported"},
    {EFI_NOT_READY, "Not Ready"},
    {EFI_DEVICE_ERROR, "Device Error"},
    {EFI_OUT_OF_RESOURCES, "Out of Resources"},
    {EFI_VOLUME_CORRUPTED, "Volume Corrupt"},
    {EFI_NO_MEDIA, "No Media"},
    {EFI_NOT_FOUND, "Not Found"},
    {EFI_ACCESS_DENIED, "Access Denied"},
    {EFI_ABORTED, "Aborted"},
    {EFI_PROTOCOL_ERROR, "Protocol Error"},
    {EFI_SECURITY_VIOLATION, "Security Violation"},
};

VOID ReportDigits(UINT64 Number, UINT64 Base)
{
    CHAR8 Digits[24];
    UINTN At = sizeof(Digits) - 1;
    Digits[At] = 0;
    do {
        Digits[--At] = "0123456789abcdef"[Number % Base];
        Number /= Base;
    } while (Number != 0);
    Report(&Digits[At]);
}

}

VOID Report(const CHAR8* Text)
{
    if (ReadPort(gDebugPort) != gDebugPortMark) {
        return;
    }
    for (; *Text != 0; Text++) {
        WritePort(gDebugPort, static_cast<UINT8>(*Text));
    }
}

VOID ReportHex(UINT64 Number)
{
    Report("0x");
    ReportDigits(Number, 16);
}

VOID ReportDecimal(UINT64 Number) { ReportDigits(Number, 10); }

VOID ReportStatus(const CHAR8* Text, EFI_STATUS Status)
{
    Report(Text);
    if (const CHAR8* Name = NameStatus(Status)) {
        Report(Name);
    } else {
        ReportHex(Status);
    }
    Report("\n");
}

const CHAR8* NameStatus(EFI_STATUS Status)
{
    for (const STATUS_NAME& Row : gStatusNames) {
        if (Row.Status == Status) {
            return Row.Name;
        }
    }
    return nullptr;
}
