// The board driver, ventara-board.efi: installs a board's services on firmware that has none, with the artwork that it
// carries and the machine's own pointing devices. The board is the machine's sensor chips where there are some that are
// known, and else the simulation. Unloading it takes everything away again.
#include "platform/board/ArtworkPack.h"
#include "platform/board/BoardServices.h"
#include "platform/board/HandKeys.h"
#include "platform/board/SimulatedBoard.h"
#include "platform/firmware/BoardControl.h"
#include "platform/firmware/Clock.h"
#include "platform/firmware/Report.h"
#include "platform/firmware/VolumeFile.h"
#include "platform/firmware/driver/MachinePorts.h"
#include "platform/firmware/pointer/MachinePointer.h"
#include "src/uefi/LoadedImage.h"

namespace {

constexpr const CHAR16* gWishesPath = u"\\ventara.ini";

// Said on the console's own screen, since whoever comes later hasn't seen the starter's.
constexpr const CHAR16* gSimulationCaption = u"Voltages - a simulation: all numbers here are invented";

EFI_BOOT_SERVICES* gBootServices;
EFI_HANDLE gServices;
EFI_HANDLE gControlHandle;
CHIP_REPORT gFound;
BOARD_WISHES gWishes;
const CHAR16* (*gSimulationName)(BOARD_SOURCE* This, UINT8 Item);

VOID AllowFans(BOOLEAN Allowed);
BOARD_CONTROL gControl = {.Report = &gFound, .Simulated = 0, .AllowFans = AllowFans, .HearsKeys = 0, .TakenHome = u""};

VOID AllowFans(BOOLEAN Allowed)
{
    if (gControl.Simulated == 0) {
        AllowChipFans(Allowed != 0);
        Report(Allowed != 0 ? "ventara: fans may be set\n" : "ventara: fans are read alone\n");
    }
}

// A console never sends such a record; whoever tests one on a virtual machine sees here that it did.
VOID ReportRefusal(UINT8 FanItem, const CHAR8* Fault)
{
    Report("ventara: board refused a setting of fan ");
    ReportDecimal(FanItem);
    Report(": ");
    Report(Fault);
    Report("\n");
}

// The volume that the driver came from; the starter's, where the firmware doesn't tell it. Null for none.
EFI_HANDLE FindVolume(EFI_BOOT_SERVICES* Boot, const EFI_LOADED_IMAGE_PROTOCOL* Image)
{
    VOID* Interface = nullptr;
    if (Image->DeviceHandle == nullptr && Image->ParentHandle != nullptr &&
        !EfiError(Boot->HandleProtocol(Image->ParentHandle, &gEfiLoadedImageProtocolGuid, &Interface))) {
        return static_cast<const EFI_LOADED_IMAGE_PROTOCOL*>(Interface)->DeviceHandle;
    }
    return Image->DeviceHandle;
}

// What a report of the machine says of it beside what the firmware tells everybody.
VOID DescribeMachine(REPORT_TEXT* Text)
{
    DescribeMachinePointer(Text);
    AddText(Text, "\nSensor chips\n");
    for (UINTN Line = 0; Line < gFound.Count; Line++) {
        AddText(Text, "  ");
        AddText(Text, gFound.Lines[Line]);
        AddText(Text, "\n");
    }
    AddText(Text, gControl.Simulated != 0 ? "  The board below is a simulation.\n" : "");
}

VOID NoteTakenHome(const CHAR16* Words)
{
    gControl.TakenHome = Words;
    Report("ventara: taken home\n");
}

// The user's file on a volume. An empty one where there is none.
FILE_BYTES ReadWishesFile(EFI_BOOT_SERVICES* Boot, EFI_HANDLE Volume)
{
    FILE_BYTES Bytes = {};
    EFI_STATUS Status = EFI_NOT_FOUND;
    if (Volume != nullptr && ReadVolumeFile(Boot, Volume, gWishesPath, &Bytes, &Status) != LOAD_DONE) {
        Bytes = {};
    }
    ReportStatus("ventara: ventara.ini: ", Status);
    return Bytes;
}

BOARD_SOURCE* OpenSimulation()
{
    BOARD_SOURCE* Board = OpenSimulatedBoard(nullptr, 1, ReadMicroseconds());
    gSimulationName = Board->NameOf;
    Board->NameOf = [](BOARD_SOURCE* This, UINT8 Item) -> const CHAR16* {
        return Item == STRING_GAUGE_CAPTION ? gSimulationCaption : gSimulationName(This, Item);
    };
    return Board;
}

BOARD_SOURCE* OpenBoard(EFI_BOOT_SERVICES* Boot, EFI_HANDLE Volume)
{
    const FILE_BYTES File = ReadWishesFile(Boot, Volume);
    const auto* Text = static_cast<const CHAR8*>(File.Data);
    ReadBoardWishes(Text, File.Size, &gWishes, nullptr, nullptr);
    const CHIP_BOARD_OPTIONS Options = {.SetFans = false, .Wishes = &gWishes};
    BOARD_SOURCE* Board = OpenChipBoard(OpenMachinePorts(Boot), &Options, &gFound);
    // Once more, for the mistakes in it: what was found comes first.
    ReadBoardWishes(
        Text, File.Size, &gWishes, [](VOID*, UINT32 Line, const CHAR8* What) { ReportWishFault(&gFound, Line, What); },
        nullptr);
    if (File.Data != nullptr) {
        (void)Boot->FreePool(File.Data);
    }
    gControl.Simulated = Board == nullptr ? 1 : 0;
    Report(Board == nullptr ? "ventara: simulated board\n" : "ventara: board of chips\n");
    return Board == nullptr ? OpenSimulation() : Board;
}

VOID CloseBoard()
{
    CloseMachinePointer();
    CloseChipBoard();
}

EFI_STATUS UnloadDriver(EFI_HANDLE)
{
    EFI_STATUS Status = UninstallBoardServices(gServices);
    ReportStatus("ventara: board services removed: ", Status);
    if (EfiError(Status)) {
        return Status;
    }
    (void)gBootServices->UninstallProtocolInterface(gControlHandle, &gBoardControlGuid, &gControl);
    CloseBoard();
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
    gBootServices = Boot;
    auto* Image = static_cast<EFI_LOADED_IMAGE_PROTOCOL*>(Interface);
    const TAKE_HOME Home = {.Volume = FindVolume(Boot, Image), .Describe = DescribeMachine, .Told = NoteTakenHome};
    const BOARD_OPTIONS Options = {
        .Board = OpenBoard(Boot, Home.Volume),
        .Generation = 0,
        .Microseconds = ReadMicroseconds,
        .StrokeClock = ReadMicroseconds,
        .Pointer = Pointer,
        .ArtworkPack = gArtworkPack,
        .ArtworkPackSize = gArtworkPackSize,
        .Refused = ReportRefusal,
        .Home = &Home,
    };
    Status = InstallBoardServices(SystemTable, &Options, &gServices);
    ReportStatus("ventara: board services installed: ", Status);
    if (EfiError(Status)) {
        CloseBoard();
        return Status;
    }
    gControl.HearsKeys = HearsHandKeys() ? 1 : 0;
    // Without it the console works all the same, and sets no fan.
    (void)Boot->InstallProtocolInterface(&gControlHandle, &gBoardControlGuid, EFI_NATIVE_INTERFACE, &gControl);
    Image->Unload = UnloadDriver;
    return EFI_SUCCESS;
}
