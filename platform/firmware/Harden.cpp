// What the compiler calls in images built with VENTARA_HARDEN: where a function's stack was written over, or where a
// check for undefined behaviour failed. Either says so on the debug console, with the place counted from the start of the
// image, and stops the machine with an invalid instruction, for which most firmwares print the registers.
//
// This finds mistakes; it keeps no attacker out, since the guard is the same in every image.
#include "platform/firmware/Report.h"

extern "C" {

extern const UINT8 __ImageBase;

// The names are the target's. The compiler mixes the guard with the stack pointer in each function that it protects.
UINT64 __security_cookie = 0x5e9a1c07b3d2f486;

[[noreturn]] VOID StopHardened(const CHAR8* Reason, UINT64 Detail, const VOID* Place)
{
    static bool Stopping = false;
    // The lines below are hardened too.
    if (!Stopping) {
        Stopping = true;
        Report("ventara: stopped by ");
        Report(Reason);
        Report(" ");
        ReportHex(Detail);
        Report(" at ");
        ReportHex(static_cast<UINT64>(static_cast<const UINT8*>(Place) - &__ImageBase));
        Report("\n");
    }
    __builtin_trap();
}

VOID __security_check_cookie(UINT64 Cookie)
{
    if (Cookie != __security_cookie) {
        StopHardened("a written-over stack", Cookie, __builtin_return_address(0));
    }
}

// Kind is the compiler's number of the check.
[[noreturn]] VOID StopAtUndefined(UINT8 Kind)
{
    StopHardened("undefined behaviour", Kind, __builtin_return_address(0));
}
}
