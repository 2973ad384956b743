#include "support/StatusText.h"

namespace {

constexpr const CHAR8* gStatusTexts[] = {
    // Without the error bit: the status is the index.
    "Success",
    "Warning Unknown Glyph",
    "Warning Delete Failure",
    "Warning Write Failure",
    "Warning Buffer Too Small",
    // With the error bit: code 1 follows the last warning.
    "Load Error",
    "Invalid Parameter",
    "Unsupported",
    "Bad Buffer Size",
    "Buffer Too Small",
    "Not Ready",
    "Device Error",
    "Write Protected",
    "Out of Resources",
    "Volume Corrupt",
    "Volume Full",
    "No Media",
    "Media changed",
    "Not Found",
    "Access Denied",
    "No Response",
    "No mapping",
    "Time out",
    "Not started",
    "Already started",
    "Aborted",
    "ICMP Error",
    "TFTP Error",
    "Protocol Error",
};
constexpr UINTN gLastWarning = 4;
constexpr UINTN gLastError = sizeof(gStatusTexts) / sizeof(gStatusTexts[0]) - 1 - gLastWarning;
static_assert(gLastError == 24);

} // namespace

const CHAR8* StatusText(EFI_STATUS Status)
{
    if (!EfiError(Status)) {
        return Status <= gLastWarning ? gStatusTexts[Status] : nullptr;
    }
    const UINTN Code = Status & ~gEfiErrorBit;
    return Code >= 1 && Code <= gLastError ? gStatusTexts[gLastWarning + Code] : nullptr;
}
