// The example of a board's own hardware service does what docs/board-services.md says of it: the console runs on it.
#include "tests/console/ConsoleBench.h"

extern "C" EFI_STATUS InstallMinimalService(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable);

namespace {

// Starts the console on a machine where the example's service stands in the place of the simulated board's.
EFI_STATUS StartOnMinimalService(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* ConsoleTable)
{
    EFI_SYSTEM_TABLE* Firmware = &gBoot->FirmwareTable;
    EFI_BOOT_SERVICES* Services = Firmware->BootServices;
    const std::vector<EFI_HANDLE> Boards = gBoot->Handles.Find(&gHwServiceProtocolGuid);
    VOID* Simulated = nullptr;
    EXPECT_EQ(Boards.size(), 1u);
    EXPECT_EQ(Services->LocateProtocol(&gHwServiceProtocolGuid, nullptr, &Simulated), EFI_SUCCESS);
    EXPECT_EQ(Services->UninstallProtocolInterface(Boards[0], &gHwServiceProtocolGuid, Simulated), EFI_SUCCESS);
    EXPECT_EQ(InstallMinimalService(ImageHandle, Firmware), EFI_SUCCESS);

    std::string Error;
    IMAGE_ENTRY_POINT Entry = nullptr;
    VOID* Image = LoadImage(VENTARA_CONSOLE_IMAGE, &Entry, &Error);
    EXPECT_NE(Image, nullptr) << Error;
    const EFI_STATUS Status = Image == nullptr ? EFI_LOAD_ERROR : Entry(ImageHandle, ConsoleTable);
    UnloadImage(Image);

    VOID* Minimal = nullptr;
    EXPECT_EQ(Services->LocateProtocol(&gHwServiceProtocolGuid, nullptr, &Minimal), EFI_SUCCESS);
    EXPECT_EQ(Services->UninstallProtocolInterface(ImageHandle, &gHwServiceProtocolGuid, Minimal), EFI_SUCCESS);
    EFI_HANDLE Board = Boards[0];
    EXPECT_EQ(Services->InstallProtocolInterface(&Board, &gHwServiceProtocolGuid, EFI_NATIVE_INTERFACE, Simulated),
              EFI_SUCCESS);
    return Status;
}

TEST(MinimalService, CarriesTheConsoleThroughACurveAndAllCommands)
{
    SCENE Scene;
    Scene.Options.Entry = StartOnMinimalService;
    Scene.Ticks(3);
    Scene.Drag(577, 337, {{606, 307}}); // the third node to 75 degrees and 87.5%
    Scene.Key("f").Ticks(3).Key("d").Ticks(3).Key("c").Ticks(3).Screenshot("end");
    const RUN Run = Scene.Play();

    EXPECT_EQ(Run.Session.Statuses, std::vector<EFI_STATUS>{EFI_SUCCESS});
    EXPECT_EQ(Run.Settings(4), std::vector<std::string>{Record("01 0a 08 04 01 02 04 07 08 00 01")});
    EXPECT_EQ(Run.Named("SetAllFansFullSpeed").size(), 1u);
    EXPECT_EQ(Run.Named("LoadDefaultFanSettings").size(), 1u);
    EXPECT_EQ(Run.Named("RestoreFanSettings").size(), 1u);
    // The speed followed the commands: 4 of 8 steps, all of it, and 4 of 8 again.
    std::vector<UINT64> Speeds;
    for (const CALL_LINE& Call : Run.Named("GetItemValue")) {
        if (Call.Number("item") == 4 && (Speeds.empty() || Speeds.back() != Call.Number("value"))) {
            Speeds.push_back(Call.Number("value"));
        }
    }
    EXPECT_EQ(Speeds, (std::vector<UINT64>{1200, 2400, 1200}));
    // No message line of the console or of the firmware: nothing of the service was found wanting.
    EXPECT_EQ(Run.Session.OutputText + Run.Session.ErrorText, "");
}

} // namespace
