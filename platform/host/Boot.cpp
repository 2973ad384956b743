#include "platform/host/Boot.h"

#include <cstdio>
#include <cstdlib>

#include "platform/board/ArtworkPack.h"
#include "platform/board/BootScreen.h"
#include "platform/board/SimulatedBoard.h"
#include "platform/host/CurrentBoot.h"
#include "platform/host/FirmwareTables.h"
#include "platform/host/HostText.h"
#include "uefi/LoadedImage.h"

BOOT* gCurrentBoot = nullptr;

namespace {

constexpr UINT64 gSystemTableSignature = 0x5453595320494249;
constexpr UINT32 gRevision = 0x00020046; // 2.70
CHAR16 gFirmwareVendor[] = u"Ventara hosted firmware";

UINT64 ReadMicroseconds() { return gCurrentBoot->Clock.Microseconds(); }

VOID ReadPointer(POINTER_SOURCE* This, INT64* X, INT64* Y, UINT8* Left, UINT8* Right)
{
    const POINTER_STATE& State = reinterpret_cast<HOST_POINTER*>(This)->State;
    *X = State.X;
    *Y = State.Y;
    *Left = State.Left;
    *Right = State.Right;
}

VOID PlacePointer(POINTER_SOURCE* This, INT64 X, INT64 Y)
{
    POINTER_STATE& State = reinterpret_cast<HOST_POINTER*>(This)->State;
    State.X = X;
    State.Y = Y;
}

VOID ToldHome(const CHAR16* Words)
{
    const std::string Line = ToUtf8(Words);
    gCurrentBoot->TakenHome += Line + "\n";
    if (gCurrentBoot->Consoles.Echo) {
        std::fprintf(stderr, "ventara: %s\n", Line.c_str());
    }
}

} // namespace

BOOT::BOOT(const BOOT_OPTIONS& Options)
    : Clock(Options.VirtualClock), Pool(&Complaints), Events(&Clock, &Complaints), Display(Options.Panel),
      Volume(Options.Folder), MonotonicCount(Options.CountAtStart), mOptions(Options)
{
    if (gCurrentBoot != nullptr) {
        std::abort(); // the tables' functions could only serve one of the two
    }
    gCurrentBoot = this;
    Trace.Clock = &Clock;
    Consoles.Echo = Options.EchoConsoles;
    Pointer.Source = {.Read = ReadPointer, .SetLimits = nullptr, .Close = nullptr, .Place = PlacePointer};
    for (const EFI_GUID& Guid : Options.Hidden) {
        Handles.Hide(Guid);
    }

    FillBootServices(&mBootServices);
    FillRuntimeServices(&mRuntimeServices);
    FillTextInput(&mTextInput);
    FillTextInputEx(&mTextInputEx);
    FillTextOutput(&mTextOutput, false);
    FillTextOutput(&mErrorOutput, true);
    FirmwareTable = {};
    FirmwareTable.Hdr = {gSystemTableSignature, gRevision, sizeof(EFI_SYSTEM_TABLE), 0, 0};
    FirmwareTable.FirmwareVendor = gFirmwareVendor;
    FirmwareTable.FirmwareRevision = 1;
    FirmwareTable.ConIn = &mTextInput;
    (void)Handles.Install(&FirmwareTable.ConsoleInHandle, &gEfiSimpleTextInputExProtocolGuid, &mTextInputEx);
    FirmwareTable.ConOut = &mTextOutput;
    FirmwareTable.StdErr = &mErrorOutput;
    FirmwareTable.RuntimeServices = &mRuntimeServices;
    FirmwareTable.BootServices = &mBootServices;
    ConsoleTable = FirmwareTable;
    Console.CoverSystemTable(&ConsoleTable);

    Protocols.Fill(&Display.Mode);
    if (NeedsDisplayLayer(&Display.Mode)) {
        OpenLayer();
    }
    Protocols.Install(Handles);
    Machine.InstallDevices(Handles, Options.WithNetwork);
}

// The layer stands in the display's place on its handle, with the boot screen on it, as the starter leaves it on a
// machine.
VOID BOOT::OpenLayer()
{
    if (EfiError(OpenDisplayLayer(FirmwareTable.BootServices, &Protocols.GraphicsOutput, &mLayer))) {
        Complaints.Add("the display of %u by %u can't show the console", Display.Width(), Display.Height());
        return;
    }
    std::vector<EFI_GRAPHICS_OUTPUT_BLT_PIXEL> Screen(UINTN{BOOT_SCREEN_WIDTH} * BOOT_SCREEN_HEIGHT);
    PaintBootScreen(Screen.data());
    (void)mLayer->Graphics.Blt(&mLayer->Graphics, Screen.data(), EfiBltBufferToVideo, 0, 0, 0, 0, BOOT_SCREEN_WIDTH,
                               BOOT_SCREEN_HEIGHT, 0);
    Protocols.Shown = &mLayer->Graphics;
    mLayerBlocks = Pool.Held(0).size();
}

VOID BOOT::SettleDisplay()
{
    if (mLayer != nullptr) {
        FlushDisplayLayer(mLayer);
    }
}

BOOT::~BOOT()
{
    RemoveBoard();
    CloseDisplayLayer(mLayer);
    gCurrentBoot = nullptr;
}

EFI_STATUS BOOT::InstallBoard()
{
    BOARD_OPTIONS Wanted = {};
    Wanted.Board = mOptions.Source != nullptr
                       ? mOptions.Source
                       : OpenSimulatedBoard(mOptions.Board.c_str(), mOptions.Seed, ReadMicroseconds());
    Wanted.Generation = mOptions.Generation;
    Wanted.Microseconds = ReadMicroseconds;
    Wanted.Pointer = &Pointer.Source;
    Wanted.ArtworkPack = mOptions.ArtworkPack;
    Wanted.ArtworkPackSize = mOptions.ArtworkPackSize;
    TAKE_HOME Home = {.Volume = nullptr, .Describe = nullptr, .Told = ToldHome};
    (void)Handles.Install(&Home.Volume, &gEfiSimpleFileSystemProtocolGuid, &Volume.FileSystem);
    Wanted.Home = &Home;
    return InstallBoardServices(&FirmwareTable, &Wanted, &mBoardHandle);
}

VOID BOOT::RemoveBoard()
{
    if (mBoardHandle == nullptr) {
        return;
    }
    const EFI_STATUS Status = UninstallBoardServices(mBoardHandle);
    mBoardHandle = nullptr;
    ResetArtwork(); // what a script changed is not for the next board
    if (EfiError(Status)) {
        Complaints.Add("the board's services couldn't be taken away: %llx", Status);
    }
    const std::vector<POOL_BLOCK> Held = Pool.Held(0);
    for (UINTN Index = mLayerBlocks; Index < Held.size(); Index++) {
        const POOL_BLOCK& Block = Held[Index];
        Complaints.Add("the board's services left %s", DescribeBlock(Block).c_str());
    }
}

EFI_HANDLE BOOT::BeginStart()
{
    Trace.Start++;
    Pool.BeginStart(Trace.Start);
    Crossing.BeginStart(Trace);
    EFI_HANDLE Image = nullptr;
    // A loaded image has a protocol that says so; nobody here asks for more of it than that it is there.
    (void)Handles.Install(&Image, &gEfiLoadedImageProtocolGuid, nullptr);
    return Image;
}
