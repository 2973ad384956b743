// An image that stands in the starter's place: starts the console again and again, and says on the debug console how long
// a start and a turn at rest take on this firmware and display, and where the time goes. tools/firmware_bench.py boots it
// and makes tables of what it says.
//
// The console is given tables of its own, so that calls of the firmware among itself aren't counted. It is left alone, as
// it is at rest, for some seconds a play, and is then told to leave by an Escape. Times are those of the time-stamp
// counter; a busy host lengthens them, so that the least of several is nearest to the truth.
//
// On a display with the layer that shows the picture in its own size the console is played without the layer too: it is
// given a display that sends each block to the firmware's by itself.
#include "bench/TurnClock.h"
#include "platform/board/ConsoleDisplay.h"
#include "platform/firmware/Ports.h"
#include "platform/firmware/Report.h"
#include "platform/firmware/starter/Display.h"
#include "platform/firmware/starter/Lookups.h"
#include "platform/firmware/starter/Volume.h"
#include "shell/contract/Screen.h"
#include "src/uefi/LoadedImage.h"

namespace {

constexpr UINTN gPlays = 5; // of each kind
constexpr UINTN gLeadTurns = 300;
constexpr UINTN gRound = 14;    // turns at rest repeat themselves after so many
constexpr UINTN gTickIndex = 1; // of the event that a tick's wait ends by
constexpr UINTN gWindows = 6;   // pieces of a play in which turns are counted
constexpr UINT64 gWindow = 500; // milliseconds

EFI_SYSTEM_TABLE* gTable;
EFI_HANDLE gBench;
UINT64 gTicksPerMillisecond;

// The tables of the console.
EFI_SYSTEM_TABLE gConsoleTable;
EFI_BOOT_SERVICES gConsoleServices;
EFI_RUNTIME_SERVICES gConsoleRuntime;

// --- A play ---

struct TURNS {
    UINT64 Count;
    SPLIT Split; // of all
};

struct WINDOW {
    UINT64 Turns;
    UINT64 Time;
    TURNS Rest;
};

struct PLAY {
    bool Timed;      // by PutTimers; else only start and turns are
    bool ShowsFirst; // the first picture isn't whole yet
    UINT64 Turn;
    UINT64 Since; // begin of the start, of a window
    bool Ticked;  // the turn under way is a tick's
    bool Leaves;
    UINT64 Start;
    SPLIT StartSplit;
    UINT64 Singles; // blocks of one pixel in the start, and their time
    UINT64 SinglesTime;
    UINTN WindowCount;
    WINDOW Windows[gWindows];
    UINT64 Least[gRound]; // the shortest turn of each place in the round
    TURNS Ticks;
};
PLAY gPlay;

decltype(EFI_BOOT_SERVICES::WaitForEvent) gWait;
decltype(EFI_SIMPLE_TEXT_INPUT_PROTOCOL::ReadKeyStroke) gReadKey;
decltype(EFI_GRAPHICS_OUTPUT_PROTOCOL::Blt) gBlt;

UINT64 SumOf(const SPLIT& Split)
{
    UINT64 Sum = 0;
    for (const UINT64 Time : Split.Time) {
        Sum += Time;
    }
    return Sum;
}

VOID AddTurn(TURNS* To, const SPLIT& Split)
{
    To->Count++;
    for (UINTN Place = 0; Place < PLACE_COUNT; Place++) {
        To->Split.Time[Place] += Split.Time[Place];
        To->Split.Calls[Place] += Split.Calls[Place];
    }
}

VOID TakeTurn(WINDOW* Window)
{
    const SPLIT& Split = ReadSplit();
    if (gPlay.Ticked) {
        AddTurn(&gPlay.Ticks, Split);
        return;
    }
    AddTurn(&Window->Rest, Split);
    UINT64& Least = gPlay.Least[gPlay.Turn % gRound];
    const UINT64 Time = SumOf(Split);
    Least = Least == 0 ? Time : Smaller(Least, Time);
}

// Between two turns.
VOID EndTurn()
{
    const UINT64 Now = ReadBenchTime();
    if (gPlay.ShowsFirst) {
        gPlay.ShowsFirst = false;
        gPlay.Start = Now - gPlay.Since;
        gPlay.StartSplit = ReadSplit();
    } else if (gPlay.Turn > gLeadTurns) {
        WINDOW& Window = gPlay.Windows[gPlay.WindowCount];
        TakeTurn(&Window);
        Window.Turns++;
        Window.Time = Now - gPlay.Since;
        if (Window.Time >= gWindow * gTicksPerMillisecond) {
            gPlay.WindowCount++;
            gPlay.Since = Now;
            gPlay.Leaves = gPlay.WindowCount == gWindows;
        }
    } else if (gPlay.Turn == gLeadTurns) {
        gPlay.Since = Now;
    }
    gPlay.Turn++;
}

EFI_STATUS WaitBetweenTurns(UINTN Count, EFI_EVENT* Events, UINTN* Index)
{
    if (!gPlay.Leaves) {
        EndTurn();
    }
    RestartSplit();
    const EFI_STATUS Status = gWait(Count, Events, Index);
    gPlay.Ticked = *Index == gTickIndex;
    return Status;
}

EFI_STATUS ReadKeyOrEscape(EFI_SIMPLE_TEXT_INPUT_PROTOCOL* This, EFI_INPUT_KEY* Key)
{
    if (!gPlay.Leaves) {
        return gReadKey(This, Key);
    }
    *Key = {.ScanCode = SCAN_ESC, .UnicodeChar = 0};
    return EFI_SUCCESS;
}

EFI_STATUS BltAndCount(EFI_GRAPHICS_OUTPUT_PROTOCOL* This, EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer,
                       EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX, UINTN SourceY, UINTN DestinationX,
                       UINTN DestinationY, UINTN Width, UINTN Height, UINTN Delta)
{
    const bool IsSingle = gPlay.ShowsFirst && Width == 1 && Height == 1;
    const UINT64 Since = IsSingle ? ReadBenchTime() : 0;
    const EFI_STATUS Status =
        gBlt(This, Buffer, Operation, SourceX, SourceY, DestinationX, DestinationY, Width, Height, Delta);
    if (IsSingle) {
        gPlay.Singles++;
        gPlay.SinglesTime += ReadBenchTime() - Since;
    }
    return Status;
}

// --- What is said ---

VOID ReportNumbers(const UINT64* Numbers, UINTN Count)
{
    for (UINTN Index = 0; Index < Count; Index++) {
        Report(" ");
        ReportDecimal(Numbers[Index]);
    }
}

// "bench: WAY WHAT OF time ... calls ..."
VOID ReportSplit(const CHAR8* Way, const CHAR8* What, UINT64 Of, const SPLIT& Split)
{
    Report("bench: ");
    Report(Way);
    Report(What);
    ReportNumbers(&Of, 1);
    ReportNumbers(Split.Time, PLACE_COUNT);
    ReportNumbers(Split.Calls, PLACE_COUNT);
    Report("\n");
}

VOID ReportPlay(const CHAR8* Way)
{
    if (gPlay.Timed) {
        ReportSplit(Way, " start", 1, gPlay.StartSplit);
        for (const WINDOW& Window : gPlay.Windows) {
            ReportSplit(Way, " rest", Window.Rest.Count, Window.Rest.Split);
        }
        ReportSplit(Way, " tick", gPlay.Ticks.Count, gPlay.Ticks.Split);
        return;
    }
    UINT64 Least = 0;
    for (const UINT64 Each : gPlay.Least) {
        Least += Each;
    }
    const UINT64 Plain[] = {gPlay.Start, gPlay.Singles, gPlay.SinglesTime, Least / gRound};
    Report("bench: ");
    Report(Way);
    Report(" plain");
    ReportNumbers(Plain, sizeof(Plain) / sizeof(Plain[0]));
    for (const WINDOW& Window : gPlay.Windows) {
        const UINT64 Numbers[] = {Window.Turns, Window.Time};
        ReportNumbers(Numbers, sizeof(Numbers) / sizeof(Numbers[0]));
    }
    Report("\n");
}

// --- Playing ---

EFI_GRAPHICS_OUTPUT_PROTOCOL* FindGraphics()
{
    VOID* Interface = nullptr;
    (void)gTable->BootServices->LocateProtocol(&gEfiGraphicsOutputProtocolGuid, nullptr, &Interface);
    return static_cast<EFI_GRAPHICS_OUTPUT_PROTOCOL*>(Interface);
}

EFI_STATUS LoadImage(const CHAR16* Path, EFI_HANDLE* Image)
{
    EFI_STATUS Status = EFI_SUCCESS;
    const bool Loaded = LoadVolumeImage(gTable, gBench, Path, Image, &Status) == LOAD_DONE;
    return Loaded || EfiError(Status) ? Status : EFI_LOAD_ERROR;
}

// Gives the image the console's tables.
EFI_STATUS GiveTables(EFI_HANDLE Image)
{
    VOID* Interface = nullptr;
    const EFI_STATUS Status = gTable->BootServices->HandleProtocol(Image, &gEfiLoadedImageProtocolGuid, &Interface);
    if (!EfiError(Status)) {
        static_cast<EFI_LOADED_IMAGE_PROTOCOL*>(Interface)->SystemTable = &gConsoleTable;
    }
    return Status;
}

// Starts the console once and reports. Tables says what it finds, but for the tables themselves.
bool Play(const CHAR8* Way, bool Timed, TIMED_TABLES Tables)
{
    EFI_HANDLE Image = nullptr;
    EFI_STATUS Status = LoadImage(u"\\ventara.efi", &Image);
    if (!EfiError(Status)) {
        Status = GiveTables(Image);
    }
    if (EfiError(Status)) {
        ReportStatus("bench: console: ", Status);
        return false;
    }
    ShowBootScreen(); // as the starter leaves the display
    gConsoleServices = *gTable->BootServices;
    gConsoleRuntime = *gTable->RuntimeServices;
    gConsoleTable = *gTable;
    gConsoleTable.BootServices = &gConsoleServices;
    gConsoleTable.RuntimeServices = &gConsoleRuntime;
    Tables.Console = &gConsoleTable;
    Tables.Finder = gTable->BootServices;
    if (Timed) {
        PutTimers(Tables);
    }
    gWait = gConsoleServices.WaitForEvent;
    gConsoleServices.WaitForEvent = WaitBetweenTurns;
    gReadKey = gTable->ConIn->ReadKeyStroke;
    gTable->ConIn->ReadKeyStroke = ReadKeyOrEscape;
    gBlt = Tables.Shown->Blt;
    Tables.Shown->Blt = Timed ? gBlt : BltAndCount;

    gPlay = {};
    gPlay.Timed = Timed;
    gPlay.ShowsFirst = true;
    gPlay.Since = ReadBenchTime();
    RestartSplit();
    Status = StartWithLookups(&gConsoleTable, Image);

    Tables.Shown->Blt = gBlt;
    gTable->ConIn->ReadKeyStroke = gReadKey;
    RemoveTimers();
    ReportPlay(Way);
    if (EfiError(Status)) {
        ReportStatus("bench: console returned ", Status);
    }
    return !EfiError(Status);
}

bool PlayWays(const CHAR8* Way, const TIMED_TABLES& Tables)
{
    for (UINTN Index = 0; Index < 2 * gPlays; Index++) {
        if (!Play(Way, Index % 2 != 0, Tables)) {
            return false;
        }
    }
    return true;
}

// A display whose blocks go to the firmware's one by one, of which the console believes that its pixels lie in memory.
EFI_GRAPHICS_OUTPUT_PROTOCOL* gAdapter;

EFI_STATUS PassOn(EFI_GRAPHICS_OUTPUT_PROTOCOL*, EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer,
                  EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX, UINTN SourceY, UINTN DestinationX,
                  UINTN DestinationY, UINTN Width, UINTN Height, UINTN Delta)
{
    return gAdapter->Blt(gAdapter, Buffer, Operation, SourceX, SourceY, DestinationX, DestinationY, Width, Height,
                         Delta);
}

bool PlayDisplays()
{
    VOID* Interface = nullptr;
    gAdapter = FindGraphics();
    EFI_HII_FONT_PROTOCOL* Font = nullptr;
    if (!EfiError(gTable->BootServices->LocateProtocol(&gEfiHiiFontProtocolGuid, nullptr, &Interface))) {
        Font = static_cast<EFI_HII_FONT_PROTOCOL*>(Interface);
    }
    const CONSOLE_DISPLAY* Layer = nullptr;
    if (!EfiError(gTable->BootServices->LocateProtocol(&gConsoleDisplayGuid, nullptr, &Interface))) {
        Layer = static_cast<const CONSOLE_DISPLAY*>(Interface);
    }
    // A font of our own stands in memory that can't be written.
    EFI_HII_FONT_PROTOCOL OwnFont = {};
    if (Layer != nullptr && Layer->Font != Font) {
        OwnFont = *Layer->Font;
        Font = &OwnFont;
        ReplaceLookup(&gEfiHiiFontProtocolGuid, Font);
    }
    if (Layer == nullptr || Layer->Graphics == gAdapter) {
        return PlayWays("as-it-is", {.Console = nullptr, .Finder = nullptr, .Shown = gAdapter, .Font = Font});
    }
    if (!PlayWays(
            "layer",
            {.Console = nullptr, .Finder = nullptr, .Shown = Layer->Graphics, .Adapter = gAdapter, .Font = Font})) {
        return false;
    }
    if (Layer->PanelWidth != gScreenWidth || Layer->PanelHeight != gScreenHeight) {
        return true;
    }
    EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE Mode = *Layer->Graphics->Mode;
    EFI_GRAPHICS_OUTPUT_PROTOCOL Direct = *Layer->Graphics;
    Direct.Blt = PassOn;
    Direct.Mode = &Mode;
    ReplaceLookup(&gEfiGraphicsOutputProtocolGuid, &Direct);
    const bool Played = PlayWays(
        "no-layer", {.Console = nullptr, .Finder = nullptr, .Shown = &Direct, .Adapter = gAdapter, .Font = Font});
    ReplaceLookup(&gEfiGraphicsOutputProtocolGuid, Layer->Graphics);
    return Played;
}

// Against the firmware's own wait, the shortest of some: a busy host lengthens them.
UINT64 MeasureTicksPerMillisecond()
{
    constexpr UINTN Milliseconds = 50;
    UINT64 Least = ~UINT64{0};
    for (UINTN Index = 0; Index < 5; Index++) {
        const UINT64 Since = ReadBenchTime();
        (void)gTable->BootServices->Stall(Milliseconds * 1000);
        Least = Smaller(Least, ReadBenchTime() - Since);
    }
    return Least / Milliseconds;
}

} // namespace

UINT64 ReadBenchTime() { return ReadTimeStamp(); }

extern "C" EFI_STATUS BenchEntry(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable)
{
    gTable = SystemTable;
    gBench = ImageHandle;
    (void)SystemTable->BootServices->SetWatchdogTimer(0, 0, 0, nullptr);
    if (OpenDisplay(SystemTable) != DISPLAY_READY) {
        Report("bench: no display\n");
        return EFI_UNSUPPORTED;
    }
    EFI_HANDLE Driver = nullptr;
    EFI_STATUS Status = LoadImage(u"\\ventara-board.efi", &Driver);
    if (!EfiError(Status)) {
        Status = SystemTable->BootServices->StartImage(Driver, nullptr, nullptr);
    }
    if (EfiError(Status)) {
        ReportStatus("bench: driver: ", Status);
        return Status;
    }
    gTicksPerMillisecond = MeasureTicksPerMillisecond();
    Report("bench: clock ");
    ReportDecimal(gTicksPerMillisecond);
    Report("\nbench: places");
    for (const CHAR8* Name : gPlaceNames) {
        Report(" ");
        Report(Name);
    }
    Report("\n");
    Report(PlayDisplays() ? "bench: done\n" : "bench: failed\n");
    return EFI_SUCCESS;
}
