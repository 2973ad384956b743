// A test image that stands in the starter's place and says on the debug console what it finds:
// that the console leaves the screen alone when the board's services are missing, and that the board driver can be
// loaded and unloaded again and again without anything of it staying behind.
#include "platform/firmware/Report.h"
#include "platform/firmware/starter/Display.h"
#include "platform/firmware/starter/Volume.h"
#include "src/uefi/UsbIo.h"
#include "shell/contract/Services.h"
#include "tests/firmware/Inventory.h"
#include "uefi/GraphicsOutput.h"

namespace {

constexpr UINTN gScreenPixels = 1024 * 768;

struct SERVICE {
    const CHAR8* Name;
    const EFI_GUID* Guid;
};
constexpr SERVICE gServices[] = {
    {"HW_SERVICE_PROTOCOL", &gHwServiceProtocolGuid},
    {"CURSOR_SERVICE_PROTOCOL", &gCursorServiceProtocolGuid},
    {"the service that is never called", &gRequiredServiceProtocolGuid},
    {"FLOAT_MATH_PROTOCOL", &gFloatMathProtocolGuid},
    {"IMAGE_LOOKUP_PROTOCOL", &gImageLookupProtocolGuid},
    {"IMAGE_SECTION_PROTOCOL", &gImageSectionProtocolGuid},
    {"IMAGE_DECODER_PROTOCOL", &gImageDecoderProtocolGuid},
    {"DRAW_PRIMITIVES_PROTOCOL", &gDrawPrimitivesProtocolGuid},
};

EFI_SYSTEM_TABLE* gTable;
EFI_HANDLE gProbe;

VOID* AllocateBlock(UINTN Size)
{
    VOID* Block = nullptr;
    return EfiError(gTable->BootServices->AllocatePool(EfiBootServicesData, Size, &Block)) ? nullptr : Block;
}

bool TakeScreen(EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Pixels)
{
    VOID* Interface = nullptr;
    if (EfiError(gTable->BootServices->LocateProtocol(&gEfiGraphicsOutputProtocolGuid, nullptr, &Interface))) {
        return false;
    }
    auto* Graphics = static_cast<EFI_GRAPHICS_OUTPUT_PROTOCOL*>(Interface);
    return !EfiError(Graphics->Blt(Graphics, Pixels, EfiBltVideoToBltBuffer, 0, 0, 0, 0, 1024, 768, 0));
}

EFI_STATUS RunImage(const CHAR16* Path, EFI_HANDLE* Image)
{
    EFI_STATUS Status = EFI_SUCCESS;
    if (LoadVolumeImage(gTable, gProbe, Path, Image, &Status) != LOAD_DONE) {
        return EfiError(Status) ? Status : EFI_LOAD_ERROR;
    }
    return gTable->BootServices->StartImage(*Image, nullptr, nullptr);
}

VOID TryConsoleWithoutBoard()
{
    auto* Before = static_cast<EFI_GRAPHICS_OUTPUT_BLT_PIXEL*>(AllocateBlock(gScreenPixels * 4));
    auto* After = static_cast<EFI_GRAPHICS_OUTPUT_BLT_PIXEL*>(AllocateBlock(gScreenPixels * 4));
    if (Before == nullptr || After == nullptr || !TakeScreen(Before)) {
        Report("probe: no picture of the screen\n");
        return;
    }
    EFI_HANDLE Console = nullptr;
    ReportStatus("probe: console without a board: ", RunImage(u"\\ventara.efi", &Console));
    UINTN Different = 0;
    if (TakeScreen(After)) {
        for (UINTN Index = 0; Index < gScreenPixels; Index++) {
            if (Before[Index].Blue != After[Index].Blue || Before[Index].Green != After[Index].Green ||
                Before[Index].Red != After[Index].Red) {
                Different++;
            }
        }
        Report("probe: pixels changed: ");
        ReportDecimal(Different);
        Report("\n");
    }
    (void)gTable->BootServices->FreePool(Before);
    (void)gTable->BootServices->FreePool(After);
}

VOID ReportServices(const CHAR8* When)
{
    UINTN Present = 0;
    for (const SERVICE& Service : gServices) {
        UINTN Count = CountHandles(gTable->BootServices, Service.Guid);
        Present += Count;
        if (Count > 1) {
            Report("probe: more than one ");
            Report(Service.Name);
            Report("\n");
        }
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
    TryConsoleWithoutBoard();
    for (UINTN Round = 0; Round < 4; Round++) {
        TryDriver();
    }
    Report("probe: done\n");
    CloseDisplay();
    return EFI_SUCCESS;
}
