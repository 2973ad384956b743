// A test image that stands in the starter's place: it starts the console again and again in one boot and says after each
// return what the firmware holds. Each start has a few commands typed and then Escape, by a keyboard of this image's own.
// Of the first start it says too what the console asked of the firmware until its first picture stood.
#include "platform/firmware/Report.h"
#include "platform/firmware/starter/Display.h"
#include "platform/firmware/starter/Volume.h"
#include "src/uefi/LoadedImage.h"
#include "tests/firmware/Inventory.h"
#include "uefi/GraphicsOutput.h"

namespace {

EFI_SYSTEM_TABLE* gTable;
EFI_HANDLE gSoak;

// --- Events, counted in the boot services table, which everybody on this machine calls through ---

decltype(EFI_BOOT_SERVICES::CreateEvent) gCreateEvent;
decltype(EFI_BOOT_SERVICES::CreateEventEx) gCreateEventEx;
decltype(EFI_BOOT_SERVICES::CloseEvent) gCloseEvent;
volatile UINT64 gCreated;
volatile UINT64 gClosed;

// --- What the console itself calls until it first waits ---

enum COUNTED_CALL { COUNTED_BLT, COUNTED_POOL, COUNTED_FREE, COUNTED_EVENT, COUNTED_LOCATE, COUNTED_CALLS };
constexpr const CHAR8* gCallNames[COUNTED_CALLS] = {"Blt ", " AllocatePool ", " FreePool ", " CreateEvent ",
                                                    " LocateProtocol "};

decltype(EFI_BOOT_SERVICES::AllocatePool) gAllocatePool;
decltype(EFI_BOOT_SERVICES::FreePool) gFreePool;
decltype(EFI_BOOT_SERVICES::LocateProtocol) gLocateProtocol;
decltype(EFI_BOOT_SERVICES::WaitForEvent) gWaitForEvent;
decltype(EFI_GRAPHICS_OUTPUT_PROTOCOL::Blt) gBlt;
const UINT8* gConsoleBase;
UINTN gConsoleSize;
bool gCounts;
volatile UINT64 gCalls[COUNTED_CALLS];

// Firmware and drivers call through the same table; only calls from inside the console's image count.
VOID Count(COUNTED_CALL Call, const VOID* Caller)
{
    const UINT8* From = static_cast<const UINT8*>(Caller);
    if (gCounts && From >= gConsoleBase && From < gConsoleBase + gConsoleSize) {
        gCalls[Call] = gCalls[Call] + 1;
    }
}

EFI_STATUS AllocateCounted(EFI_MEMORY_TYPE Type, UINTN Size, VOID** Buffer)
{
    Count(COUNTED_POOL, __builtin_return_address(0));
    return gAllocatePool(Type, Size, Buffer);
}

EFI_STATUS FreeCounted(VOID* Buffer)
{
    Count(COUNTED_FREE, __builtin_return_address(0));
    return gFreePool(Buffer);
}

EFI_STATUS LocateCounted(const EFI_GUID* Protocol, VOID* Registration, VOID** Interface)
{
    Count(COUNTED_LOCATE, __builtin_return_address(0));
    return gLocateProtocol(Protocol, Registration, Interface);
}

EFI_STATUS BltCounted(EFI_GRAPHICS_OUTPUT_PROTOCOL* This, EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer,
                      EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX, UINTN SourceY, UINTN DestinationX,
                      UINTN DestinationY, UINTN Width, UINTN Height, UINTN Delta)
{
    Count(COUNTED_BLT, __builtin_return_address(0));
    return gBlt(This, Buffer, Operation, SourceX, SourceY, DestinationX, DestinationY, Width, Height, Delta);
}

EFI_STATUS WaitAfterCounting(UINTN Number, EFI_EVENT* Events, UINTN* Index)
{
    gCounts = gCounts && (__builtin_return_address(0) < gConsoleBase ||
                          __builtin_return_address(0) >= gConsoleBase + gConsoleSize);
    return gWaitForEvent(Number, Events, Index);
}

VOID CountCallsOf(EFI_HANDLE Image)
{
    VOID* Interface = nullptr;
    if (!EfiError(gTable->BootServices->HandleProtocol(Image, &gEfiLoadedImageProtocolGuid, &Interface))) {
        const auto* Loaded = static_cast<EFI_LOADED_IMAGE_PROTOCOL*>(Interface);
        gConsoleBase = static_cast<const UINT8*>(Loaded->ImageBase);
        gConsoleSize = Loaded->ImageSize;
        gCounts = true;
    }
}

VOID ReportCalls()
{
    gCounts = false;
    Report("soak: calls: ");
    for (UINTN Call = 0; Call < COUNTED_CALLS; Call++) {
        Report(gCallNames[Call]);
        ReportDecimal(gCalls[Call]);
    }
    Report("\n");
}

EFI_STATUS CreateCountedEvent(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, VOID* Context, EFI_EVENT* Event)
{
    Count(COUNTED_EVENT, __builtin_return_address(0));
    const EFI_STATUS Status = gCreateEvent(Type, NotifyTpl, Notify, Context, Event);
    if (!EfiError(Status)) {
        gCreated = gCreated + 1;
    }
    return Status;
}

EFI_STATUS CreateCountedEventEx(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, const VOID* Context,
                                const EFI_GUID* Group, EFI_EVENT* Event)
{
    Count(COUNTED_EVENT, __builtin_return_address(0));
    const EFI_STATUS Status = gCreateEventEx(Type, NotifyTpl, Notify, Context, Group, Event);
    if (!EfiError(Status)) {
        gCreated = gCreated + 1;
    }
    return Status;
}

EFI_STATUS CloseCountedEvent(EFI_EVENT Event)
{
    const EFI_STATUS Status = gCloseEvent(Event);
    if (!EfiError(Status)) {
        gClosed = gClosed + 1;
    }
    return Status;
}

VOID SealTable(EFI_TABLE_HEADER* Header)
{
    Header->CRC32 = 0;
    UINT32 Sum = 0;
    (void)gTable->BootServices->CalculateCrc32(Header, Header->HeaderSize, &Sum);
    Header->CRC32 = Sum;
}

VOID CountCalls()
{
    EFI_BOOT_SERVICES* Boot = gTable->BootServices;
    gCreateEvent = Boot->CreateEvent;
    gCreateEventEx = Boot->CreateEventEx;
    gCloseEvent = Boot->CloseEvent;
    gAllocatePool = Boot->AllocatePool;
    gFreePool = Boot->FreePool;
    gLocateProtocol = Boot->LocateProtocol;
    gWaitForEvent = Boot->WaitForEvent;
    Boot->AllocatePool = AllocateCounted;
    Boot->FreePool = FreeCounted;
    Boot->LocateProtocol = LocateCounted;
    Boot->WaitForEvent = WaitAfterCounting;
    VOID* Graphics = nullptr;
    if (!EfiError(gLocateProtocol(&gEfiGraphicsOutputProtocolGuid, nullptr, &Graphics))) {
        gBlt = static_cast<EFI_GRAPHICS_OUTPUT_PROTOCOL*>(Graphics)->Blt;
        static_cast<EFI_GRAPHICS_OUTPUT_PROTOCOL*>(Graphics)->Blt = BltCounted;
    }
    Boot->CreateEvent = CreateCountedEvent;
    Boot->CreateEventEx = CreateCountedEventEx;
    Boot->CloseEvent = CloseCountedEvent;
    SealTable(&Boot->Hdr);
}

// --- The keyboard ---

constexpr CHAR16 gTyped[] = u"fdcFDC";
constexpr UINTN gTurnsPerKey = 4;

EFI_SIMPLE_TEXT_INPUT_PROTOCOL gKeyboard;
UINTN gTurn;      // of the present start
UINTN gKeysTyped; // before Escape

EFI_STATUS TypeNextKey(EFI_SIMPLE_TEXT_INPUT_PROTOCOL*, EFI_INPUT_KEY* Key)
{
    gTurn++;
    if (gTurn % gTurnsPerKey != 0) {
        return EFI_NOT_READY;
    }
    const UINTN Stroke = gTurn / gTurnsPerKey - 1;
    *Key = {};
    if (Stroke < gKeysTyped) {
        Key->UnicodeChar = gTyped[Stroke];
    } else {
        Key->ScanCode = SCAN_ESC;
    }
    return EFI_SUCCESS;
}

VOID AttachKeyboard()
{
    gKeyboard = *gTable->ConIn;
    gKeyboard.ReadKeyStroke = TypeNextKey;
    gTable->ConIn = &gKeyboard;
    SealTable(&gTable->Hdr);
}

// --- Rounds ---

EFI_STATUS RunImage(const CHAR16* Path, bool CountsCalls = false)
{
    EFI_HANDLE Image = nullptr;
    EFI_STATUS Status = EFI_SUCCESS;
    if (LoadVolumeImage(gTable, gSoak, Path, &Image, &Status) != LOAD_DONE) {
        return EfiError(Status) ? Status : EFI_LOAD_ERROR;
    }
    if (CountsCalls) {
        CountCallsOf(Image);
    }
    return gTable->BootServices->StartImage(Image, nullptr, nullptr);
}

VOID ReportNumber(const CHAR8* Name, UINT64 Number)
{
    Report(Name);
    ReportDecimal(Number);
}

VOID ReportHoldings(UINTN Start)
{
    ReportNumber("soak: start ", Start);
    ReportNumber(": pages ", CountFreePages(gTable->BootServices));
    ReportNumber(" handles ", CountHandles(gTable->BootServices, nullptr));
    ReportNumber(" created ", gCreated);
    ReportNumber(" closed ", gClosed);
    ReportNumber(" turns ", gTurn);
}

}

extern "C" EFI_STATUS SoakEntry(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable)
{
    gTable = SystemTable;
    gSoak = ImageHandle;
    (void)SystemTable->BootServices->SetWatchdogTimer(0, 0, 0, nullptr);
    if (OpenDisplay(SystemTable) != DISPLAY_READY) {
        Report("soak: no display\n");
        return EFI_UNSUPPORTED;
    }
    CountCalls();
    ReportStatus("soak: driver: ", RunImage(u"\\ventara-board.efi"));
    AttachKeyboard();
    ReportHoldings(0);
    Report("\n");
    constexpr UINTN Letters = sizeof(gTyped) / sizeof(gTyped[0]) - 1;
    for (UINTN Start = 1;; Start++) {
        gTurn = 0;
        gKeysTyped = Start % (Letters + 1);
        const EFI_STATUS Status = RunImage(u"\\ventara.efi", Start == 1);
        if (Start == 1) {
            ReportCalls();
        }
        ReportHoldings(Start);
        ReportStatus(" returned ", Status);
    }
}
