// The board driver, ventara-board.efi: installs the simulated board's services on firmware that has none, with the
// artwork that it carries and the machine's own pointing devices. Unloading it takes everything away again.
#include "platform/board/ArtworkPack.h"
#include "platform/board/BoardServices.h"
#include "platform/board/SimulatedBoard.h"
#include "platform/firmware/Clock.h"
#include "platform/firmware/Report.h"
#include "platform/firmware/pointer/MachinePointer.h"
#include "src/uefi/LoadedImage.h"

namespace {

EFI_HANDLE gServices;

// A console never sends such a record; whoever tests one on a virtual machine sees here that it did.
VOID ReportRefusal(UINT8 FanItem, const CHAR8* Fault)
{
    Report("ventara: board refused a setting of fan ");
    ReportDecimal(FanItem);
    Report(": ");
    Report(Fault);
    Report("\n");
}

EFI_STATUS UnloadDriver(EFI_HANDLE)
{
    EFI_STATUS Status = UninstallBoardServices(gServices);
    ReportStatus("ventara: board services removed: ", Status);
    if (EfiError(Status)) {
        return Status;
    }
    CloseMachinePointer();
    return EFI_SUCCESS;
}

}

extern "C" EFI_STATUS DriverEntry(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable)
{
    EFI_BOOT_SERVICES* Boot = SystemTable->BootServices;
    VOID* Interface = nullptr;
    // A second copy, or a board that has the services: two of each would leave it to chance which one the console finds.
    if (!EfiError(Boot->LocateProtocol(&gHwServiceProtocolGuid, nullptr, &Interface))) {
        return EFI_ALREADY_STARTED;
    }
    EFI_STATUS Status = Boot->HandleProtocol(ImageHandle, &gEfiLoadedImageProtocolGuid, &Interface);
    if (EfiError(Status)) {
        return Status;
    }
    StartClock(Boot);
    POINTER_SOURCE* Pointer = nullptr;
    Status = OpenMachinePointer(SystemTable, ImageHandle, &Pointer);
    if (EfiError(Status)) {
        return Status;
    }
    const BOARD_OPTIONS Options = {
        .Board = OpenSimulatedBoard(nullptr, 1, ReadMicroseconds()),
        .Generation = 0,
        .Microseconds = ReadMicroseconds,
        .Pointer = Pointer,
        .ArtworkPack = gArtworkPack,
        .ArtworkPackSize = gArtworkPackSize,
        .Refused = ReportRefusal,
    };
    Status = InstallBoardServices(SystemTable, &Options, &gServices);
    ReportStatus("ventara: board services installed: ", Status);
    if (EfiError(Status)) {
        CloseMachinePointer();
        return Status;
    }
    static_cast<EFI_LOADED_IMAGE_PROTOCOL*>(Interface)->Unload = UnloadDriver;
    return EFI_SUCCESS;
}
