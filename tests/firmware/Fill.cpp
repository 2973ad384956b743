// A test image that stands in the starter's place: it fills the firmware's variable store to the last byte, what lives on
// and what is lost at a reset alike, and then starts the starter from the volume's root.
#include "platform/firmware/Report.h"
#include "platform/firmware/starter/Volume.h"

namespace {

constexpr EFI_GUID gFillGuid = {0x9c1b7a54, 0x2d0e, 0x4c63, {0x8f, 0x11, 0x3a, 0x70, 0xd5, 0x42, 0x6b, 0xe9}};
constexpr UINTN gLargest = 1024; // bytes of a variable; every firmware takes that
UINT8 gBytes[gLargest];

// Stores variables of that size until one is refused. Gives the bytes stored.
UINTN Fill(EFI_RUNTIME_SERVICES* Runtime, UINT32 Attributes, UINTN Size, UINT32* Number)
{
    UINTN Stored = 0;
    for (;;) {
        CHAR16 Name[] = u"Fill0000";
        for (UINTN Digit = 0; Digit < 4; Digit++) {
            Name[4 + Digit] = static_cast<CHAR16>(u'A' + ((*Number >> (4 * Digit)) & 15));
        }
        if (EfiError(Runtime->SetVariable(Name, &gFillGuid, Attributes, Size, gBytes))) {
            return Stored;
        }
        Stored += Size;
        (*Number)++;
    }
}

VOID FillStore(EFI_RUNTIME_SERVICES* Runtime, const CHAR8* Kind, UINT32 Attributes, UINT32* Number)
{
    UINTN Stored = 0;
    for (UINTN Size = gLargest; Size > 0; Size /= 4) {
        Stored += Fill(Runtime, Attributes, Size, Number);
    }
    Report("fill: ");
    Report(Kind);
    Report(": ");
    ReportDecimal(Stored);
    Report("\n");
}

}

extern "C" EFI_STATUS FillEntry(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable)
{
    UINT32 Number = 0;
    EFI_RUNTIME_SERVICES* Runtime = SystemTable->RuntimeServices;
    FillStore(Runtime, "kept", EFI_VARIABLE_NON_VOLATILE | EFI_VARIABLE_BOOTSERVICE_ACCESS, &Number);
    FillStore(Runtime, "lost at a reset", EFI_VARIABLE_BOOTSERVICE_ACCESS, &Number);
    EFI_HANDLE Starter = nullptr;
    EFI_STATUS Status = EFI_SUCCESS;
    if (LoadVolumeImage(SystemTable, ImageHandle, u"\\start.efi", &Starter, &Status) != LOAD_DONE) {
        ReportStatus("fill: no starter: ", Status);
        return EFI_LOAD_ERROR;
    }
    return SystemTable->BootServices->StartImage(Starter, nullptr, nullptr);
}
