// The firmware as a program sees it through the system table: text pictures, protocols, time, and what stands on handles.
#include <gtest/gtest.h>

#include <string>

#include "platform/board/ArtworkPack.h"
#include "platform/board/SimulatedBoard.h"
#include "platform/host/Boot.h"
#include "platform/host/SystemFont.h"
#include "platform/host/TextImage.h"
#include "uefi/Devices.h"

namespace {

constexpr EFI_HII_OUT_FLAGS gOneRow = EFI_HII_IGNORE_IF_NO_GLYPH | EFI_HII_IGNORE_LINE_BREAK;
constexpr EFI_GRAPHICS_OUTPUT_BLT_PIXEL gInk = {1, 2, 3, 4};
constexpr EFI_GRAPHICS_OUTPUT_BLT_PIXEL gPaper = {9, 8, 7, 6};
constexpr UINT32 gInkWord = 0x04030201;
constexpr UINT32 gPaperWord = 0x06070809;
constexpr EFI_GUID gSomeGuid = {0xAA, 0, 0, {}};

struct FirmwareTest : testing::Test {
    BOOT Boot{BOOT_OPTIONS{}};
    EFI_BOOT_SERVICES* Services = Boot.ConsoleTable.BootServices;
    EFI_HII_FONT_PROTOCOL* Font = nullptr;
    EFI_FONT_DISPLAY_INFO Colors = {gInk, gPaper, 7, {}};

    FirmwareTest()
    {
        Boot.Complaints.Quiet = true;
        VOID* Found;
        EXPECT_EQ(Services->LocateProtocol(&gEfiHiiFontProtocolGuid, nullptr, &Found), EFI_SUCCESS);
        Font = static_cast<EFI_HII_FONT_PROTOCOL*>(Found);
    }

    static UINT32 Word(const EFI_IMAGE_OUTPUT* Image, UINTN X, UINTN Y)
    {
        return reinterpret_cast<const UINT32*>(Image->Image.Bitmap)[Y * Image->Width + X];
    }
    VOID Release(EFI_IMAGE_OUTPUT* Image)
    {
        EXPECT_EQ(Services->FreePool(Image->Image.Bitmap), EFI_SUCCESS);
        EXPECT_EQ(Services->FreePool(Image), EFI_SUCCESS);
    }
};

TEST_F(FirmwareTest, WithoutRowInformationThePictureHasTheTextsSizeAndIsInkOrPaperEverywhere)
{
    EFI_IMAGE_OUTPUT* Image = nullptr;
    ASSERT_EQ(Font->StringToImage(Font, gOneRow, u"I1\n\x4E00x", &Colors, &Image, 0, 0, nullptr, nullptr, nullptr),
              EFI_SUCCESS);
    EXPECT_EQ(Image->Width, 3 * 8) << "the line break and the character without a glyph are passed over";
    EXPECT_EQ(Image->Height, 19);
    const UINT8* Glyph = SystemFontGlyph(u'1');
    ASSERT_NE(Glyph, nullptr);
    UINTN Ink = 0;
    for (UINTN Y = 0; Y < 19; Y++) {
        for (UINTN X = 0; X < 8; X++) {
            const bool Set = ((Glyph[Y] >> (7 - X)) & 1) != 0;
            EXPECT_EQ(Word(Image, 8 + X, Y), Set ? gInkWord : gPaperWord);
            Ink += Set ? 1 : 0;
        }
    }
    EXPECT_GT(Ink, 8u);
    Release(Image);
    EXPECT_TRUE(Boot.Pool.Held(0).empty());
}

TEST_F(FirmwareTest, WithRowInformationThePictureIsWideAndTheFirstRowTellsWhereTheTextIs)
{
    EFI_IMAGE_OUTPUT* Image = nullptr;
    EFI_HII_ROW_INFO* Rows = nullptr;
    UINTN Count = 0;
    ASSERT_EQ(Font->StringToImage(Font, gOneRow | EFI_HII_OUT_FLAG_WRAP, u"3300", &Colors, &Image, 0, 0, &Rows, &Count,
                                  nullptr),
              EFI_SUCCESS);
    EXPECT_EQ(Image->Width, 800);
    EXPECT_EQ(Image->Height, 600);
    EXPECT_EQ(Count, 1u);
    EXPECT_EQ(Rows[0].LineWidth, 32u);
    EXPECT_EQ(Rows[0].LineHeight, 19u);
    EXPECT_EQ(Rows[0].StartIndex, 0u);
    EXPECT_EQ(Rows[0].EndIndex, 3u);
    EXPECT_EQ(Word(Image, 31, 18), gPaperWord);
    EXPECT_EQ(Word(Image, 32, 18), 0u) << "beside the text nothing is painted";
    EXPECT_EQ(Services->FreePool(Rows), EFI_SUCCESS);
    Release(Image);

    // An empty string is a row without a width.
    Image = nullptr;
    ASSERT_EQ(Font->StringToImage(Font, gOneRow, u"", &Colors, &Image, 0, 0, &Rows, &Count, nullptr), EFI_SUCCESS);
    EXPECT_EQ(Count, 1u);
    EXPECT_EQ(Rows[0].LineWidth, 0u);
    EXPECT_EQ(Services->FreePool(Rows), EFI_SUCCESS);
    Release(Image);
}

TEST(LowTextPictures, AreAsHighAsTheirRows)
{
    BOOT_OPTIONS Options;
    Options.LowTextPictures = true;
    BOOT Boot(Options);
    EFI_IMAGE_OUTPUT* Image = nullptr;
    EFI_HII_ROW_INFO* Rows = nullptr;
    UINTN Count = 0;
    ASSERT_EQ(RenderString(Boot, EFI_HII_IGNORE_IF_NO_GLYPH, u"33\n00", nullptr, &Image, 0, 0, &Rows, &Count, nullptr),
              EFI_SUCCESS);
    EXPECT_EQ(Image->Width, 800);
    EXPECT_EQ(Image->Height, 2 * 19);
    EXPECT_EQ(Boot.Pool.Find(Image->Image.Bitmap)->Size, 800 * 2 * 19 * sizeof(UINT32));
    EXPECT_EQ(Count, 2u);
    for (VOID* Block : {static_cast<VOID*>(Image->Image.Bitmap), static_cast<VOID*>(Image), static_cast<VOID*>(Rows)}) {
        EXPECT_EQ(Boot.ConsoleTable.BootServices->FreePool(Block), EFI_SUCCESS);
    }
}

TEST_F(FirmwareTest, TextWithoutPoolLeavesNothingBehindWhicheverAllocationFails)
{
    for (UINT64 Nth = 1; Nth <= 3; Nth++) {
        Boot.Pool.BeginStart(1);
        Boot.Pool.FailOnly = Nth;
        EFI_IMAGE_OUTPUT* Image = nullptr;
        EFI_HII_ROW_INFO* Rows = nullptr;
        UINTN Count = 0;
        EXPECT_EQ(Font->StringToImage(Font, gOneRow, u"A", &Colors, &Image, 0, 0, &Rows, &Count, nullptr),
                  EFI_OUT_OF_RESOURCES);
        EXPECT_EQ(Image, nullptr);
        EXPECT_EQ(Rows, nullptr);
        EXPECT_TRUE(Boot.Pool.Held(1).empty()) << Nth;
    }
}

TEST_F(FirmwareTest, FlagsThatContradictEachOtherAreRefused)
{
    for (const EFI_HII_OUT_FLAGS Flags :
         {EFI_HII_OUT_FLAG_CLIP_CLEAN_X, EFI_HII_OUT_FLAG_CLIP_CLEAN_Y, EFI_HII_OUT_FLAG_TRANSPARENT,
          EFI_HII_OUT_FLAG_WRAP | EFI_HII_OUT_FLAG_CLIP | EFI_HII_OUT_FLAG_CLIP_CLEAN_X, EFI_HII_DIRECT_TO_SCREEN}) {
        EFI_IMAGE_OUTPUT* Image = nullptr;
        EXPECT_EQ(Font->StringToImage(Font, Flags, u"A", &Colors, &Image, 0, 0, nullptr, nullptr, nullptr),
                  EFI_INVALID_PARAMETER)
            << Flags;
    }
}

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
    EXPECT_EQ(Services->UninstallProtocolInterface(Handle, &gSomeGuid, &Found), EFI_NOT_FOUND) << "another interface";
    EXPECT_EQ(Services->UninstallProtocolInterface(Handle, &gSomeGuid, &Interface), EFI_SUCCESS);
    EXPECT_EQ(Services->LocateProtocol(&gSomeGuid, nullptr, &Found), EFI_NOT_FOUND);

    Boot.Handles.Hide(gEfiHiiFontProtocolGuid);
    EXPECT_EQ(Services->LocateProtocol(&gEfiHiiFontProtocolGuid, nullptr, &Found), EFI_NOT_FOUND);
}

TEST_F(FirmwareTest, AProtocolThatIsOpenExclusivelyStays)
{
    int Interface = 0;
    EFI_HANDLE Handle = nullptr;
    EFI_HANDLE Agent = &Interface;
    VOID* Found;
    ASSERT_EQ(Services->InstallProtocolInterface(&Handle, &gSomeGuid, EFI_NATIVE_INTERFACE, &Interface), EFI_SUCCESS);
    ASSERT_EQ(Services->OpenProtocol(Handle, &gSomeGuid, &Found, Agent, nullptr, EFI_OPEN_PROTOCOL_EXCLUSIVE),
              EFI_SUCCESS);
    EXPECT_EQ(Services->OpenProtocol(Handle, &gSomeGuid, &Found, Boot.BeginStart(), nullptr,
                                     EFI_OPEN_PROTOCOL_BY_DRIVER),
              EFI_ACCESS_DENIED);
    EXPECT_EQ(Services->UninstallProtocolInterface(Handle, &gSomeGuid, &Interface), EFI_ACCESS_DENIED);
    EXPECT_EQ(Services->CloseProtocol(Handle, &gSomeGuid, Agent, nullptr), EFI_SUCCESS);
    EXPECT_EQ(Services->CloseProtocol(Handle, &gSomeGuid, Agent, nullptr), EFI_NOT_FOUND);
    EXPECT_EQ(Services->UninstallProtocolInterface(Handle, &gSomeGuid, &Interface), EFI_SUCCESS);
}

TEST_F(FirmwareTest, ListsTellHowMuchRoomTheyNeed)
{
    UINTN Size = 8;
    EFI_HANDLE Handles[16];
    EXPECT_EQ(Services->LocateHandle(ByProtocol, &gEfiBlockIoProtocolGuid, nullptr, &Size, Handles),
              EFI_BUFFER_TOO_SMALL);
    EXPECT_EQ(Size, 3 * sizeof(EFI_HANDLE));
    EXPECT_EQ(Services->LocateHandle(ByProtocol, &gEfiBlockIoProtocolGuid, nullptr, &Size, Handles), EFI_SUCCESS);
    EXPECT_EQ(Services->LocateHandle(ByProtocol, &gSomeGuid, nullptr, &Size, Handles), EFI_NOT_FOUND);

    UINT8 Map[1024];
    UINTN Key, DescriptorSize;
    UINT32 Version;
    Size = 40;
    EXPECT_EQ(Services->GetMemoryMap(&Size, reinterpret_cast<EFI_MEMORY_DESCRIPTOR*>(Map), &Key, &DescriptorSize,
                                     &Version),
              EFI_BUFFER_TOO_SMALL);
    EXPECT_EQ(Size % DescriptorSize, 0u);
    EXPECT_EQ(Services->GetMemoryMap(&Size, reinterpret_cast<EFI_MEMORY_DESCRIPTOR*>(Map), &Key, &DescriptorSize,
                                     &Version),
              EFI_SUCCESS);
}

// Counts the hardware addresses among the device paths by walking each to its end.
UINTN CountNetworkAddresses(BOOT& Boot)
{
    UINTN Count = 0;
    for (const EFI_HANDLE Handle : Boot.Handles.Find(&gEfiDevicePathProtocolGuid)) {
        VOID* Path;
        EXPECT_EQ(Boot.ConsoleTable.BootServices->HandleProtocol(Handle, &gEfiDevicePathProtocolGuid, &Path),
                  EFI_SUCCESS);
        const UINT8* Node = static_cast<const UINT8*>(Path);
        while (Node[0] != END_DEVICE_PATH_TYPE) {
            if (Node[0] == MESSAGING_DEVICE_PATH && Node[1] == MSG_MAC_ADDR_DP) {
                EXPECT_EQ(Node[36], 1) << "an Ethernet card";
                Count++;
            }
            Node += Node[2] + Node[3] * 256;
        }
        EXPECT_EQ(Node[1], END_ENTIRE_DEVICE_PATH_SUBTYPE);
    }
    return Count;
}

TEST_F(FirmwareTest, TheMachineHasNoNetworkCard) { EXPECT_EQ(CountNetworkAddresses(Boot), 0u); }

TEST(NetworkTest, AMachineWithANetworkCardShowsItsAddressInADevicePath)
{
    BOOT Boot{BOOT_OPTIONS{.WithNetwork = true}};
    EXPECT_EQ(CountNetworkAddresses(Boot), 1u);
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

TEST_F(FirmwareTest, WaitingForAKeyEndsWhenOneIsPressed)
{
    EFI_SIMPLE_TEXT_INPUT_PROTOCOL* Input = Boot.ConsoleTable.ConIn;
    EXPECT_EQ(Services->CheckEvent(Input->WaitForKey), EFI_NOT_READY);
    Boot.Consoles.Press(0, u'x');
    EXPECT_EQ(Services->CheckEvent(Input->WaitForKey), EFI_SUCCESS);
    EFI_INPUT_KEY Key;
    EXPECT_EQ(Input->ReadKeyStroke(Input, &Key), EFI_SUCCESS);
    EXPECT_EQ(Key.UnicodeChar, u'x');
    EXPECT_EQ(Input->ReadKeyStroke(Input, &Key), EFI_NOT_READY);
    EXPECT_EQ(Key.UnicodeChar, 0);
}

TEST(BootTest, EachBootIsFreshAndItsBoardGivesBackWhatItTook)
{
    for (UINTN At = 0; At < gBoardNameCount; At++) {
        BOOT Boot{BOOT_OPTIONS{
            .Board = gBoardNames[At], .ArtworkPack = gArtworkPack, .ArtworkPackSize = gArtworkPackSize}};
        Boot.Complaints.Quiet = true;
        EXPECT_EQ(Boot.Variables.Count(), 0u);
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
