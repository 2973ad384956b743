// A test image that stands in the starter's place and says on the debug console what it finds: that the console ends when
// the board's services are missing, and that the board driver can be loaded and unloaded again and again without anything
// of it staying behind.
#include "platform/firmware/Report.h"
#include "platform/firmware/starter/Display.h"
#include "platform/firmware/starter/Volume.h"
#include "src/uefi/UsbIo.h"
#include "shell/contract/Services.h"
#include "tests/firmware/Inventory.h"

namespace {

constexpr const EFI_GUID* gServices[] = {
    &gHwServiceProtocolGuid,   &gCursorServiceProtocolGuid, &gRequiredServiceProtocolGuid, &gFloatMathProtocolGuid,
    &gImageLookupProtocolGuid, &gImageSectionProtocolGuid,  &gImageDecoderProtocolGuid,    &gDrawPrimitivesProtocolGuid,
};

EFI_SYSTEM_TABLE* gTable;
EFI_HANDLE gProbe;

EFI_STATUS RunImage(const CHAR16* Path, EFI_HANDLE* Image)
{
    EFI_STATUS Status = EFI_SUCCESS;
    if (LoadVolumeImage(gTable, gProbe, Path, Image, &Status) != LOAD_DONE) {
        return EfiError(Status) ? Status : EFI_LOAD_ERROR;
    }
    return gTable->BootServices->StartImage(*Image, nullptr, nullptr);
}

VOID ReportServices(const CHAR8* When)
{
    UINTN Present = 0;
    for (const EFI_GUID* Service : gServices) {
        Present += CountHandles(gTable->BootServices, Service);
    }
    Report("probe: services ");
    Report(When);
    Report(": ");
    ReportDecimal(Present);
    Report("\n");
}

VOID TryDriver()
{
    UINTN Bindings = CountHandles(gTable->BootServices, &gEfiDriverBindingProtocolGuid);
    EFI_HANDLE Driver = nullptr;
    ReportStatus("probe: driver started: ", RunImage(u"\\ventara-board.efi", &Driver));
    ReportServices("while loaded");
    EFI_HANDLE Second = nullptr;
    ReportStatus("probe: second copy: ", RunImage(u"\\ventara-board.efi", &Second));
    ReportServices("with a second copy");
    ReportStatus("probe: driver unloaded: ", gTable->BootServices->UnloadImage(Driver));
    ReportServices("after unloading");
    Report("probe: drivers left behind: ");
    ReportDecimal(CountHandles(gTable->BootServices, &gEfiDriverBindingProtocolGuid) - Bindings);
    Report("\n");
    Report("probe: free pages: ");
    ReportDecimal(CountFreePages(gTable->BootServices));
    Report("\n");
}

}

extern "C" EFI_STATUS ProbeEntry(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable)
{
    gTable = SystemTable;
    gProbe = ImageHandle;
    if (OpenDisplay(SystemTable) != DISPLAY_READY) {
        Report("probe: no display\n");
        return EFI_UNSUPPORTED;
    }
    EFI_HANDLE Console = nullptr;
    ReportStatus("probe: console without a board: ", RunImage(u"\\ventara.efi", &Console));
    for (UINTN Round = 0; Round < 4; Round++) {
        TryDriver();
    }
    Report("probe: done\n");
    CloseDisplay();
    return EFI_SUCCESS;
}
