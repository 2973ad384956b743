// The starter's display on a machine whose every call can fail: whatever does, the machine gets its display, its tables
// and its memory back.
#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <vector>

#include "platform/board/ConsoleDisplay.h"
#include "platform/firmware/starter/Display.h"
#include "platform/firmware/starter/Lookups.h"
#include "platform/host/CurrentBoot.h"
#include "tests/firmware/MachineStandIns.h"
#include "uefi/LoadedImage.h"

// Where the linker puts the image's code begins and ends.
extern "C" const UINT8 __start_started_image[];
extern "C" const UINT8 __stop_started_image[];

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;
using GRAPHICS = EFI_GRAPHICS_OUTPUT_PROTOCOL;

UINT64 gCall;        // of those that may fail
UINT64 gFailing;     // the one that does; 0: none
bool gAllThatFollow; // fail too, but for those that give something back
const char* gFailed; // the name of the first that did

bool Fails(const char* Name, bool GivesBack)
{
    gCall++;
    const bool Now = gFailing != 0 && (gCall == gFailing || (gAllThatFollow && gCall > gFailing && !GivesBack));
    gFailed = Now && gFailed == nullptr ? Name : gFailed;
    return Now;
}

// A slot of a table that fails when its time has come.
template <auto Slot> struct FAILING;
template <typename TABLE, typename... ARGUMENTS, EFI_STATUS (*TABLE::*Slot)(ARGUMENTS...)> struct FAILING<Slot> {
    static inline EFI_STATUS (*True)(ARGUMENTS...);
    static inline const char* Name;
    static inline bool GivesBack;

    static EFI_STATUS Call(ARGUMENTS... Arguments)
    {
        return Fails(Name, GivesBack) ? EFI_DEVICE_ERROR : True(Arguments...);
    }
    static VOID Put(TABLE* Table, const char* TheName, bool Gives = false)
    {
        True = Table->*Slot;
        Name = TheName;
        GivesBack = Gives;
        Table->*Slot = Call;
    }
};

constexpr EFI_GRAPHICS_OUTPUT_MODE_INFORMATION gModes[] = {
    {0, 1280, 800, PixelBltOnly, {}, 1280},
    {0, 800, 600, PixelRedGreenBlueReserved8BitPerColor, {}, 832},
    {0, 2048, 1536, PixelBlueGreenRedReserved8BitPerColor, {}, 2048},
};
EFI_GRAPHICS_OUTPUT_MODE_INFORMATION gInformation;
EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE gMode;

EFI_STATUS QueryMode(GRAPHICS*, UINT32 Number, UINTN* Size, EFI_GRAPHICS_OUTPUT_MODE_INFORMATION** Information)
{
    VOID* Block = nullptr;
    if (Number >= std::size(gModes) || EfiError(gCurrentBoot->Pool.Allocate(sizeof(gModes[0]), nullptr, &Block))) {
        return EFI_INVALID_PARAMETER;
    }
    *Information = static_cast<EFI_GRAPHICS_OUTPUT_MODE_INFORMATION*>(Block);
    **Information = gModes[Number];
    *Size = sizeof(gModes[0]);
    return EFI_SUCCESS;
}

EFI_STATUS SetMode(GRAPHICS*, UINT32 Number)
{
    gMode.Mode = Number;
    gInformation = gModes[Number];
    return EFI_SUCCESS;
}

EFI_STATUS Blt(GRAPHICS*, PIXEL* Buffer, EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX, UINTN SourceY,
               UINTN X, UINTN Y, UINTN Width, UINTN Height, UINTN Delta)
{
    EXPECT_TRUE(X + Width <= gInformation.HorizontalResolution && Y + Height <= gInformation.VerticalResolution);
    static PIXEL Shown[2048]; // a copy, which a sanitizer watches: all of the block is there to be read
    for (UINTN Row = SourceY; Operation == EfiBltBufferToVideo && Row < SourceY + Height; Row++) {
        const UINTN Pitch = Delta == 0 ? Width * sizeof(PIXEL) : Delta;
        std::memcpy(Shown, reinterpret_cast<UINT8*>(Buffer) + Row * Pitch + SourceX * sizeof(PIXEL),
                    Width * sizeof(PIXEL));
    }
    return EFI_SUCCESS;
}

EFI_STATUS Sum(VOID* Data, UINTN Size, UINT32* Crc32)
{
    *Crc32 = 7;
    for (UINTN At = 0; At < Size; At++) {
        *Crc32 = *Crc32 * 31 + static_cast<const UINT8*>(Data)[At];
    }
    return EFI_SUCCESS;
}

VOID Seal(EFI_BOOT_SERVICES* Services)
{
    UINT32 Crc32 = 0;
    Services->Hdr.CRC32 = 0;
    (void)Sum(Services, sizeof(*Services), &Crc32);
    Services->Hdr.CRC32 = Crc32;
}

// The machine's clock chip: whole seconds, a hundredth longer than the processor's.
EFI_STATUS ReadClockChip(EFI_TIME* Time, EFI_TIME_CAPABILITIES* Capabilities)
{
    FillCalendar(1790000000 + gMicroseconds / 1010000, 0, Time);
    if (Capabilities != nullptr) {
        *Capabilities = {.Resolution = 1, .Accuracy = 50000000, .SetsToZero = 1};
    }
    return EFI_SUCCESS;
}

struct STARTED {
    bool HandsOverTheRecordsTable; // as the firmware should, or its own
    EFI_SYSTEM_TABLE* Table;
    EFI_LOADED_IMAGE_PROTOCOL Loaded;
    UINTN Runs;
    bool Layered;           // the image found a display of 1024 by 768
    bool OthersFoundTheirs; // while it ran, the firmware's own callers found the firmware's
    VOID (*ReadClock)(EFI_RUNTIME_SERVICES* Services);
} gStarted;

// The image: ends with a status of its own.
__attribute__((section("started_image"), noinline)) EFI_STATUS RunImage(EFI_SYSTEM_TABLE* Table)
{
    VOID* Interface = nullptr;
    const EFI_STATUS Status = Table->BootServices->LocateProtocol(&gEfiGraphicsOutputProtocolGuid, nullptr, &Interface);
    if (!EfiError(Status)) {
        auto* Graphics = static_cast<GRAPHICS*>(Interface);
        const auto* Information = Graphics->Mode->Info;
        gStarted.Layered = Information->HorizontalResolution == 1024 && Information->VerticalResolution == 768 &&
                           Graphics->Mode->FrameBufferBase != 0;
        PIXEL Color = {1, 2, 3, 0};
        (void)Graphics->Blt(Graphics, &Color, EfiBltVideoFill, 0, 0, 7, 7, 1, 1, 0);
        (void)Graphics->Blt(Graphics, &Color, EfiBltVideoFill, 0, 0, 100, 100, 500, 500, 0);
    }
    if (gStarted.ReadClock != nullptr) {
        gStarted.ReadClock(Table->RuntimeServices);
    }
    return EFI_ABORTED;
}

EFI_STATUS StartImage(EFI_HANDLE, UINTN*, CHAR16**)
{
    gStarted.Runs++;
    VOID* Interface = nullptr;
    const EFI_STATUS Status =
        gStarted.Table->BootServices->LocateProtocol(&gEfiGraphicsOutputProtocolGuid, nullptr, &Interface);
    gStarted.OthersFoundTheirs = EfiError(Status) || Interface == &gCurrentBoot->Protocols.GraphicsOutput;
    return RunImage(gStarted.HandsOverTheRecordsTable ? gStarted.Loaded.SystemTable : gStarted.Table);
}

// The machine, and the image that it has loaded.
struct STARTER {
    BOOT Boot{BOOT_OPTIONS{}};
    EFI_HANDLE Image = nullptr;
    EFI_BOOT_SERVICES Before;
    UINTN EventsBefore;

    STARTER()
    {
        GRAPHICS& Graphics = Boot.Protocols.GraphicsOutput;
        Graphics = {.QueryMode = QueryMode, .SetMode = SetMode, .Blt = Blt, .Mode = &gMode};
        gMode = {.MaxMode = std::size(gModes), .Info = &gInformation, .SizeOfInfo = sizeof(gInformation)};
        (void)SetMode(nullptr, 0);
        EFI_BOOT_SERVICES* Services = Boot.FirmwareTable.BootServices;
        Services->StartImage = StartImage;
        Services->UnloadImage = [](EFI_HANDLE) -> EFI_STATUS { return EFI_SUCCESS; };
        Services->CalculateCrc32 = Sum;
        Services->Hdr.HeaderSize = sizeof(*Services);
        Seal(Services);
        gStarted = {.HandsOverTheRecordsTable = true, .Table = &Boot.FirmwareTable, .Loaded = {}};
        gStarted.Loaded.SystemTable = &Boot.FirmwareTable;
        gStarted.Loaded.ImageBase = const_cast<UINT8*>(__start_started_image);
        gStarted.Loaded.ImageSize = static_cast<UINT64>(__stop_started_image - __start_started_image);
        (void)Boot.Handles.Install(&Image, &gEfiLoadedImageProtocolGuid, &gStarted.Loaded);
        Before = *Services;
        EventsBefore = Boot.Events.Count();
        gCall = gFailing = 0;
        gAllThatFollow = false;
        gFailed = nullptr;
    }
    VOID LetFail(UINT64 Failing, bool AllThatFollow)
    {
        using SERVICES = EFI_BOOT_SERVICES;
        SERVICES* Services = Boot.FirmwareTable.BootServices;
        GRAPHICS* Graphics = &Boot.Protocols.GraphicsOutput;
        FAILING<&SERVICES::AllocatePool>::Put(Services, "AllocatePool");
        FAILING<&SERVICES::FreePool>::Put(Services, "FreePool", true);
        FAILING<&SERVICES::LocateProtocol>::Put(Services, "LocateProtocol");
        FAILING<&SERVICES::HandleProtocol>::Put(Services, "HandleProtocol");
        FAILING<&SERVICES::LocateHandleBuffer>::Put(Services, "LocateHandleBuffer");
        FAILING<&SERVICES::InstallProtocolInterface>::Put(Services, "InstallProtocolInterface");
        FAILING<&SERVICES::UninstallProtocolInterface>::Put(Services, "UninstallProtocolInterface", true);
        FAILING<&SERVICES::CreateEvent>::Put(Services, "CreateEvent");
        FAILING<&SERVICES::SetTimer>::Put(Services, "SetTimer");
        FAILING<&SERVICES::CloseEvent>::Put(Services, "CloseEvent", true);
        FAILING<&SERVICES::CalculateCrc32>::Put(Services, "CalculateCrc32");
        FAILING<&GRAPHICS::QueryMode>::Put(Graphics, "QueryMode");
        FAILING<&GRAPHICS::SetMode>::Put(Graphics, "SetMode");
        FAILING<&GRAPHICS::Blt>::Put(Graphics, "Blt");
        Seal(Services);
        Before = *Services;
        gFailing = Failing;
        gAllThatFollow = AllThatFollow;
    }
    // As the starter goes through it: a start, the menu, another mode, the end.
    VOID Go()
    {
        PAGE Page = {};
        AddParagraph(&Page, u"Words");
        if (OpenDisplay(&Boot.FirmwareTable) == DISPLAY_READY) {
            const EFI_STATUS Status = StartWithLookups(&Boot.FirmwareTable, Image);
            EXPECT_EQ(Status, gStarted.Runs == 0 ? EFI_DEVICE_ERROR : EFI_ABORTED);
            EXPECT_EQ(gStarted.Layered, gStarted.Runs == 1) << "it never runs on the display as it is";
        }
        ShowPage(&Page);
        (void)NextDisplayMode();
        CloseDisplay();
    }
    VOID ExpectAsBefore()
    {
        const std::string Failed = gFailed == nullptr ? "" : gFailed;
        EFI_BOOT_SERVICES* Services = Boot.FirmwareTable.BootServices;
        EXPECT_EQ(std::memcmp(Services, &Before, sizeof(Before)), 0) << "the table of the boot services";
        EXPECT_TRUE(Boot.Pool.Held(0).empty() || Failed == "FreePool");
        EXPECT_TRUE(Boot.Events.Count() == EventsBefore || Failed == "CloseEvent");
        VOID* Interface = nullptr;
        EXPECT_TRUE(EfiError(Boot.Handles.Locate(&gConsoleDisplayGuid, &Interface)) ||
                    Failed == "UninstallProtocolInterface");
        EXPECT_TRUE(gMode.Mode == 0 || Failed == "SetMode" || gAllThatFollow);
    }
};

TEST(StarterDisplay, IsFoundByTheImageAloneOnEitherRoadAndLeavesNothingBehind)
{
    for (const bool Record : {true, false}) {
        STARTER Starter;
        gStarted.HandsOverTheRecordsTable = Record;
        ASSERT_EQ(OpenDisplay(&Starter.Boot.FirmwareTable), DISPLAY_READY);
        EXPECT_EQ(gMode.Mode, 0u) << "the panel's own";
        EXPECT_EQ(StartWithLookups(&Starter.Boot.FirmwareTable, Starter.Image), EFI_ABORTED);
        EXPECT_TRUE(gStarted.Layered);
        EXPECT_TRUE(gStarted.OthersFoundTheirs);
        CloseDisplay();
        Starter.ExpectAsBefore();
    }
}

// A display's identification data, which name its own size.
struct NAMED_SIZE {
    UINT8 Bytes[128] = {};
    EFI_EDID_ACTIVE_PROTOCOL Active = {.SizeOfEdid = sizeof(Bytes), .Edid = Bytes};

    NAMED_SIZE(UINT32 Width, UINT32 Height)
    {
        Bytes[54] = 1; // the pixel clock
        Bytes[56] = static_cast<UINT8>(Width);
        Bytes[58] = static_cast<UINT8>(Width >> 8 << 4);
        Bytes[59] = static_cast<UINT8>(Height);
        Bytes[61] = static_cast<UINT8>(Height >> 8 << 4);
    }
};

TEST(StarterDisplay, GoesByTheSizeOfTheDisplayThatItShowsOnAndNotOfAnother)
{
    struct {
        const char* Story;
        bool Own;
        UINTN Others; // larger ones
        UINT32 Wanted;
    } const Cases[] = {
        {"its own", true, 1, 1}, {"the only one there is", false, 1, 2}, {"one of two that may be meant", false, 2, 0}};
    for (const auto& Case : Cases) {
        STARTER Starter;
        HANDLES& Handles = Starter.Boot.Handles;
        NAMED_SIZE Own(800, 600), Large(2048, 1536);
        for (UINTN Other = 0; Other < Case.Others; Other++) {
            EFI_HANDLE Handle = nullptr;
            (void)Handles.Install(&Handle, &gEfiEdidActiveProtocolGuid, &Large.Active);
        }
        // The display comes last.
        GRAPHICS* Graphics = &Starter.Boot.Protocols.GraphicsOutput;
        (void)Handles.Uninstall(Handles.Find(&gEfiGraphicsOutputProtocolGuid).at(0), &gEfiGraphicsOutputProtocolGuid,
                                Graphics);
        EFI_HANDLE Display = nullptr;
        (void)Handles.Install(&Display, &gEfiGraphicsOutputProtocolGuid, Graphics);
        if (Case.Own) {
            (void)Handles.Install(&Display, &gEfiEdidActiveProtocolGuid, &Own.Active);
        }
        ASSERT_EQ(OpenDisplay(&Starter.Boot.FirmwareTable), DISPLAY_READY);
        EXPECT_EQ(gMode.Mode, Case.Wanted) << Case.Story;
        CloseDisplay();
        Starter.ExpectAsBefore();
    }
}

TEST(StarterDisplay, TakesTheNextBestModeWhereOneCantBeSetAndKeepsThePersonsChoice)
{
    STARTER Starter;
    Starter.Boot.Protocols.GraphicsOutput.SetMode = [](GRAPHICS* Graphics, UINT32 Number) {
        return Number == 0 && gMode.Mode != 1 ? EFI_DEVICE_ERROR : SetMode(Graphics, Number);
    };
    ASSERT_EQ(OpenDisplay(&Starter.Boot.FirmwareTable), DISPLAY_READY);
    EXPECT_EQ(gMode.Mode, 2u) << "with room for the console, of those that can be set";
    ASSERT_EQ(NextDisplayMode(), DISPLAY_READY);
    EXPECT_EQ(gMode.Mode, 1u) << "past the one that can't";
    ASSERT_EQ(OpenDisplay(&Starter.Boot.FirmwareTable), DISPLAY_READY);
    EXPECT_EQ(gMode.Mode, 1u);
    CloseDisplay();
    EXPECT_EQ(gMode.Mode, 0u);
}

TEST(StarterClock, TellsTheImageMicrosecondsWhereTheFirmwareTellsSeconds)
{
    STARTER Starter;
    const auto FirmwaresOwn = Starter.Boot.FirmwareTable.RuntimeServices->GetTime;
    Starter.Boot.FirmwareTable.RuntimeServices->GetTime = ReadClockChip;
    gStarted.ReadClock = [](EFI_RUNTIME_SERVICES* Services) {
        UINT64 Before = 0;
        EFI_TIME_CAPABILITIES Capabilities = {};
        for (int Reading = 0; Reading < 5000; Reading++) {
            gMicroseconds += 700;
            EFI_TIME Time = {};
            ASSERT_EQ(Services->GetTime(&Time, &Capabilities), EFI_SUCCESS);
            const UINT64 Now = (Time.Minute * 60ull + Time.Second) * 1000000000 + Time.Nanosecond;
            ASSERT_GE(Now, Before) << "reading " << Reading;
            ASSERT_TRUE(Now > Before || Time.Nanosecond == 999999000) << "reading " << Reading;
            Before = Now;
        }
        EXPECT_EQ(Capabilities.Resolution, 1000000u);
        EXPECT_EQ(Capabilities.SetsToZero, 1);
    };
    EXPECT_EQ(StartWithLookups(&Starter.Boot.FirmwareTable, Starter.Image), EFI_ABORTED);
    EXPECT_EQ(Starter.Boot.FirmwareTable.RuntimeServices->GetTime, ReadClockChip) << "the firmware's table";

    // A clock that tells parts of a second stays the image's.
    Starter.Boot.FirmwareTable.RuntimeServices->GetTime = FirmwaresOwn;
    gStarted.ReadClock = [](EFI_RUNTIME_SERVICES* Services) { EXPECT_EQ(Services, gStarted.Table->RuntimeServices); };
    gStarted.Loaded.SystemTable = &Starter.Boot.FirmwareTable;
    EXPECT_EQ(StartWithLookups(&Starter.Boot.FirmwareTable, Starter.Image), EFI_ABORTED);
    Starter.ExpectAsBefore();
}

TEST(StarterDisplay, GivesEverythingBackWhicheverCallFails)
{
    for (const bool AllThatFollow : {false, true}) {
        for (UINT64 Failing = 1;; Failing += AllThatFollow ? 5 : 1) {
            STARTER Starter;
            Starter.LetFail(Failing, AllThatFollow);
            Starter.Go();
            if (gFailed == nullptr) {
                EXPECT_GT(Failing, 40u);
                break;
            }
            SCOPED_TRACE(testing::Message()
                         << "call " << Failing << ", " << gFailed << (AllThatFollow ? " and on" : ""));
            gFailing = 0;
            Starter.ExpectAsBefore();
            if (HasFailure()) {
                break;
            }
        }
    }
}

} // namespace
