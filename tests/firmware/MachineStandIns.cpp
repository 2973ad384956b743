// What the machine's pointer finds on a machine without a keyboard controller, whose ports float, under the hosted clock.
#include "tests/firmware/MachineStandIns.h"

#include "platform/firmware/Ports.h"

namespace {

UINT8 ReadFloatingPort(UINT16) { return 0xFF; }
VOID WriteFloatingPort(UINT16, UINT8) {}

}

#define ReadPort ReadFloatingPort
#define WritePort WriteFloatingPort
#include "platform/firmware/pointer/MachinePointer.cpp"

UINT64 gMicroseconds;
std::string gReported;

VOID StartClock(EFI_BOOT_SERVICES*) {}
UINT64 ReadMicroseconds() { return gMicroseconds; }
VOID Report(const CHAR8* Text) { gReported += Text; }
VOID ReportDecimal(UINT64 Number) { gReported += std::to_string(Number); }
