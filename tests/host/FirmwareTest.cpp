// The firmware as a program sees it through the system table: protocols, time, and what stands on handles.
#include <gtest/gtest.h>

#include <string>

#include "platform/board/ArtworkPack.h"
#include "platform/board/SimulatedBoard.h"
#include "platform/host/Boot.h"
#include "uefi/Devices.h"

namespace {

constexpr EFI_GUID gSomeGuid = {0xAA, 0, 0, {}};

struct FirmwareTest : testing::Test {
    BOOT Boot{BOOT_OPTIONS{}};
    EFI_BOOT_SERVICES* Services = Boot.ConsoleTable.BootServices;

    FirmwareTest() { Boot.Complaints.Quiet = true; }
};

TEST_F(FirmwareTest, AProtocolIsFoundUntilItIsUninstalledOrHidden)
{
    int Interface = 0;
    EFI_HANDLE Handle = nullptr;
    VOID* Found;
    ASSERT_EQ(Services->InstallProtocolInterface(&Handle, &gSomeGuid, EFI_NATIVE_INTERFACE, &Interface), EFI_SUCCESS);
    EXPECT_EQ(Services->InstallProtocolInterface(&Handle, &gSomeGuid, EFI_NATIVE_INTERFACE, &Interface),
              EFI_INVALID_PARAMETER);
    ASSERT_EQ(Services->LocateProtocol(&gSomeGuid, nullptr, &Found), EFI_SUCCESS);
    EXPECT_EQ(Found, &Interface);
    EXPECT_EQ(Services->HandleProtocol(Handle, &gSomeGuid, &Found), EFI_SUCCESS);
    EXPECT_EQ(Services->HandleProtocol(Handle, &gEfiHiiFontProtocolGuid, &Found), EFI_UNSUPPORTED);
    EXPECT_EQ(Found, nullptr);
    EXPECT_EQ(Services->OpenProtocol(Handle, &gSomeGuid, &Found, Handle, nullptr, EFI_OPEN_PROTOCOL_GET_PROTOCOL),
              EFI_SUCCESS);
    EXPECT_EQ(Services->CloseProtocol(Handle, &gSomeGuid, Handle, nullptr), EFI_SUCCESS);
    EXPECT_EQ(Services->CloseProtocol(Handle, &gSomeGuid, Handle, nullptr), EFI_NOT_FOUND) << "closed already";
    EXPECT_EQ(Services->UninstallProtocolInterface(Handle, &gSomeGuid, &Found), EFI_NOT_FOUND) << "another interface";
    EXPECT_EQ(Services->UninstallProtocolInterface(Handle, &gSomeGuid, &Interface), EFI_SUCCESS);
    EXPECT_EQ(Services->LocateProtocol(&gSomeGuid, nullptr, &Found), EFI_NOT_FOUND);

    Boot.Handles.Hide(gEfiHiiFontProtocolGuid);
    EXPECT_EQ(Services->LocateProtocol(&gEfiHiiFontProtocolGuid, nullptr, &Found), EFI_NOT_FOUND);
}

TEST_F(FirmwareTest, WhatNobodyCallsIsRefusedInEveryTable)
{
    EFI_GUID Vendor = {};
    UINTN Size = 0;
    CHAR16 Name[1] = {};
    EXPECT_EQ(Services->ExitBootServices(nullptr, 0), EFI_UNSUPPORTED);
    EXPECT_EQ(Services->SetWatchdogTimer(0, 0, 0, nullptr), EFI_UNSUPPORTED);
    EXPECT_EQ(Boot.ConsoleTable.RuntimeServices->GetNextVariableName(&Size, Name, &Vendor), EFI_UNSUPPORTED);
    EXPECT_EQ(Boot.ConsoleTable.ConIn->Reset(Boot.ConsoleTable.ConIn, 0), EFI_UNSUPPORTED);
    EXPECT_EQ(Boot.ConsoleTable.StdErr->EnableCursor(Boot.ConsoleTable.StdErr, 1), EFI_UNSUPPORTED);
}

TEST_F(FirmwareTest, TimerCalendarAndStallFollowOneClock)
{
    VOID* Found;
    ASSERT_EQ(Services->LocateProtocol(&gEfiCpuArchProtocolGuid, nullptr, &Found), EFI_SUCCESS);
    EFI_CPU_ARCH_PROTOCOL* Processor = static_cast<EFI_CPU_ARCH_PROTOCOL*>(Found);
    UINT64 Before, After, Period;
    ASSERT_EQ(Processor->GetTimerValue(Processor, 0, &Before, &Period), EFI_SUCCESS);
    EXPECT_EQ(Services->Stall(86400ull * 1000000 + 300000), EFI_SUCCESS);
    ASSERT_EQ(Processor->GetTimerValue(Processor, 0, &After, &Period), EFI_SUCCESS);
    EXPECT_EQ(Period, 1000000u) << "femtoseconds a tick";
    EXPECT_EQ(After - Before, 86400300000000u);
    EFI_TIME Time;
    ASSERT_EQ(Boot.ConsoleTable.RuntimeServices->GetTime(&Time, nullptr), EFI_SUCCESS);
    EXPECT_EQ(Time.Year, 2026);
    EXPECT_EQ(Time.Month, 1);
    EXPECT_EQ(Time.Day, 2);
    EXPECT_EQ(Time.Second, 0);
    EXPECT_EQ(Time.Nanosecond, 300000000u);
    EXPECT_EQ(Processor->GetTimerValue(Processor, 1, &After, &Period), EFI_INVALID_PARAMETER);
}

TEST(BootTest, EachBootIsFreshAndItsBoardGivesBackWhatItTook)
{
    for (UINTN At = 0; At < gBoardNameCount; At++) {
        BOOT Boot{
            BOOT_OPTIONS{.Board = gBoardNames[At], .ArtworkPack = gArtworkPack, .ArtworkPackSize = gArtworkPackSize}};
        Boot.Complaints.Quiet = true;
        EXPECT_TRUE(Boot.Variables.All().empty());
        ASSERT_EQ(Boot.InstallBoard(), EFI_SUCCESS) << gBoardNames[At];
        VOID* Found;
        EXPECT_EQ(Boot.ConsoleTable.BootServices->LocateProtocol(&gHwServiceProtocolGuid, nullptr, &Found),
                  EFI_SUCCESS);
        UINT8 Byte = 1;
        (void)Boot.Variables.Set(u"A", &gSomeGuid, 2, 1, &Byte);
        Boot.RemoveBoard();
        EXPECT_EQ(Boot.Complaints.Lines, std::vector<std::string>());
        EXPECT_EQ(Boot.ConsoleTable.BootServices->LocateProtocol(&gHwServiceProtocolGuid, nullptr, &Found),
                  EFI_NOT_FOUND);
    }
    BOOT Boot{BOOT_OPTIONS{.Board = "none such", .ArtworkPack = gArtworkPack, .ArtworkPackSize = gArtworkPackSize}};
    EXPECT_EQ(Boot.InstallBoard(), EFI_INVALID_PARAMETER);
}

} // namespace
