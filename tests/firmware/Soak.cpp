// A test image that stands in the starter's place: it starts the console again and again in one boot and says after each
// return what the firmware holds. Each start has a few commands typed and then Escape, by a keyboard of this image's own.
#include "platform/firmware/Report.h"
#include "platform/firmware/starter/Display.h"
#include "platform/firmware/starter/Volume.h"
#include "tests/firmware/Inventory.h"

namespace {

EFI_SYSTEM_TABLE* gTable;
EFI_HANDLE gSoak;

// --- Events, counted in the boot services table, which everybody on this machine calls through ---

decltype(EFI_BOOT_SERVICES::CreateEvent) gCreateEvent;
decltype(EFI_BOOT_SERVICES::CreateEventEx) gCreateEventEx;
decltype(EFI_BOOT_SERVICES::CloseEvent) gCloseEvent;
volatile UINT64 gCreated;
volatile UINT64 gClosed;

EFI_STATUS CreateCountedEvent(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, VOID* Context, EFI_EVENT* Event)
{
    const EFI_STATUS Status = gCreateEvent(Type, NotifyTpl, Notify, Context, Event);
    if (!EfiError(Status)) {
        gCreated = gCreated + 1;
    }
    return Status;
}

EFI_STATUS CreateCountedEventEx(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY Notify, const VOID* Context,
                                const EFI_GUID* Group, EFI_EVENT* Event)
{
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

VOID CountEvents()
{
    EFI_BOOT_SERVICES* Boot = gTable->BootServices;
    gCreateEvent = Boot->CreateEvent;
    gCreateEventEx = Boot->CreateEventEx;
    gCloseEvent = Boot->CloseEvent;
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

EFI_STATUS RunImage(const CHAR16* Path)
{
    EFI_HANDLE Image = nullptr;
    EFI_STATUS Status = EFI_SUCCESS;
    if (LoadVolumeImage(gTable, gSoak, Path, &Image, &Status) != LOAD_DONE) {
        return EfiError(Status) ? Status : EFI_LOAD_ERROR;
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
    CountEvents();
    ReportStatus("soak: driver: ", RunImage(u"\\ventara-board.efi"));
    AttachKeyboard();
    ReportHoldings(0);
    Report("\n");
    constexpr UINTN Letters = sizeof(gTyped) / sizeof(gTyped[0]) - 1;
    for (UINTN Start = 1;; Start++) {
        gTurn = 0;
        gKeysTyped = Start % (Letters + 1);
        const EFI_STATUS Status = RunImage(u"\\ventara.efi");
        ReportHoldings(Start);
        ReportStatus(" returned ", Status);
    }
}
