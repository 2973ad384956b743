// The starter, BOOTX64.EFI: brings a machine into the state that the console expects, starts it from its own volume, and
// says in words what is in the way when it can't. Once the console has returned, it offers what comes next.
#include "platform/firmware/BoardControl.h"
#include "platform/firmware/Report.h"
#include "platform/firmware/starter/Display.h"
#include "platform/firmware/starter/Lookups.h"
#include "platform/firmware/starter/Volume.h"
#include "shell/contract/Services.h"

namespace {

constexpr const CHAR16* gConsolePath = u"\\ventara.efi";
constexpr const CHAR16* gDriverPath = u"\\ventara-board.efi";

EFI_SYSTEM_TABLE* gTable;
EFI_HANDLE gStarter;
EFI_HANDLE gDriver; // the board driver while the starter has it loaded
bool gToldBoard;    // what the driver found has been on the screen
bool gFansAllowed;  // by the user, until the starter ends

// For how long what was found stays on the screen before the console, in steps of 50 ms.
constexpr UINTN gBoardSteps = 40;
constexpr UINTN gBoardStep = 50000;

// The page as progress lines, so that a log holds what the screen said.
VOID ReportPage(const PAGE* Page)
{
    for (UINTN Row = 0; Row < Page->RowCount; Row++) {
        Report("ventara: | ");
        CHAR8 Text[2] = {0, 0};
        for (const CHAR16* At = Page->Rows[Row]; *At != 0; At++) {
            Text[0] = *At < 0x80 ? static_cast<CHAR8>(*At) : '?';
            Report(Text);
        }
        Report("\n");
    }
}

EFI_INPUT_KEY WaitForKey()
{
    EFI_SIMPLE_TEXT_INPUT_PROTOCOL* Keyboard = gTable->ConIn;
    EFI_INPUT_KEY Key = {};
    for (;;) {
        UINTN Index = 0;
        (void)gTable->BootServices->WaitForEvent(1, &Keyboard->WaitForKey, &Index);
        if (!EfiError(Keyboard->ReadKeyStroke(Keyboard, &Key))) {
            return Key;
        }
    }
}

// What was typed before a question was on the screen is no answer to it.
VOID DropKeys()
{
    EFI_INPUT_KEY Key = {};
    while (!EfiError(gTable->ConIn->ReadKeyStroke(gTable->ConIn, &Key))) {
    }
}

// A problem's page gets its last line, is shown, and waits for a key.
VOID TellProblem(PAGE* Page)
{
    AddGap(Page);
    AddParagraph(Page, u"Press any key to go on.");
    DropKeys();
    ShowPage(Page);
    ReportPage(Page);
    Report("ventara: problem\n");
    (void)WaitForKey();
}

// A status' name for a page, in the room given.
const CHAR16* DescribeStatus(EFI_STATUS Status, CHAR16 (&Room)[32])
{
    const CHAR8* Name = NameStatus(Status);
    if (Name == nullptr) {
        Name = "a status of its own";
    }
    CHAR16* At = Room;
    while (*Name != 0 && At < Room + 31) {
        *At++ = static_cast<CHAR16>(*Name++);
    }
    *At = 0;
    return Room;
}

bool PrepareDisplay()
{
    DISPLAY_RESULT Result = OpenDisplay(gTable);
    PAGE Page = {};
    switch (Result) {
    case DISPLAY_READY:
        return true;
    case DISPLAY_NO_GRAPHICS:
        AddParagraph(&Page, u"This firmware drives no graphics display. Attach a display to the machine's graphics "
                            u"adapter, switch the machine off and on, and start again.");
        break;
    case DISPLAY_NO_MODE:
        AddParagraph(&Page, u"The display offers no mode of 640 by 480 pixels or more that can be set. Connect it to "
                            u"another output or attach another display, and start again.");
        break;
    case DISPLAY_NO_MEMORY:
        AddParagraph(&Page,
                     u"There is not enough memory for the picture of the screen. Give the machine more memory and "
                     u"start again.");
        break;
    }
    TellProblem(&Page);
    return false;
}

VOID TellLoadProblem(LOAD_RESULT Result, const CHAR16* Path, EFI_STATUS Status)
{
    PAGE Page = {};
    CHAR16 Room[32];
    const CHAR16* Name = DescribeStatus(Status, Room);
    switch (Result) {
    case LOAD_DONE:
        return;
    case LOAD_NO_VOLUME:
        AddParagraph(&Page, u"The volume that this starter was read from can't be opened (", Name,
                     u"). If it is a stick, see that it is plugged in, and start again.");
        break;
    case LOAD_MISSING:
        AddParagraph(&Page, u"The file ", Path,
                     u" is missing on the volume that this starter was read from. Copy it "
                     u"there and start again.");
        break;
    case LOAD_UNREADABLE:
        AddParagraph(&Page, u"The file ", Path, u" can't be read (", Name,
                     u"). The volume may be failing: write it anew, or take another, and start again.");
        break;
    case LOAD_DAMAGED:
        AddParagraph(&Page, u"The file ", Path, u" is damaged or isn't made for this machine (", Name,
                     u"). Copy it to the volume anew and start again.");
        break;
    case LOAD_REFUSED:
        AddParagraph(&Page, u"Secure Boot refuses the file ", Path,
                     u". Sign the file with a key that this firmware "
                     u"trusts, or switch Secure Boot off in the firmware's set-up, and start again.");
        break;
    case LOAD_NO_MEMORY:
        AddParagraph(&Page, u"There is not enough memory to load the file ", Path,
                     u". Give the machine more memory and "
                     u"start again.");
        break;
    }
    TellProblem(&Page);
}

// True when the board's services are there, from the firmware or from the driver.
bool PrepareBoard()
{
    VOID* Interface = nullptr;
    if (!EfiError(gTable->BootServices->LocateProtocol(&gHwServiceProtocolGuid, nullptr, &Interface))) {
        return true;
    }
    EFI_HANDLE Driver = nullptr;
    EFI_STATUS Status = EFI_SUCCESS;
    LOAD_RESULT Result = LoadVolumeImage(gTable, gStarter, gDriverPath, &Driver, &Status);
    ReportStatus("ventara: board driver loaded: ", Status);
    if (Result != LOAD_DONE) {
        TellLoadProblem(Result, gDriverPath, Status);
        return false;
    }
    Status = gTable->BootServices->StartImage(Driver, nullptr, nullptr);
    ReportStatus("ventara: board driver started: ", Status);
    if (!EfiError(Status)) {
        gDriver = Driver;
        return true;
    }
    if (Status == EFI_SECURITY_VIOLATION) {
        (void)gTable->BootServices->UnloadImage(Driver);
        TellLoadProblem(LOAD_REFUSED, gDriverPath, Status);
        return false;
    }
    PAGE Page = {};
    CHAR16 Room[32];
    AddParagraph(&Page, u"The board driver ", gDriverPath, u" ended with \"", DescribeStatus(Status, Room),
                 u"\", so the board's services are missing. Copy the driver to the volume anew and start again.");
    TellProblem(&Page);
    return false;
}

// Null where the services are the firmware's own.
const BOARD_CONTROL* FindBoardControl()
{
    VOID* Interface = nullptr;
    const EFI_STATUS Status = gTable->BootServices->LocateProtocol(&gBoardControlGuid, nullptr, &Interface);
    return EfiError(Status) ? nullptr : static_cast<const BOARD_CONTROL*>(Interface);
}

VOID AddFindings(PAGE* Page, const BOARD_CONTROL* Control)
{
    for (UINTN Line = 0; Line < Control->Report->Count; Line++) {
        AddParagraph(Page, Control->Report->Lines[Line]);
    }
    AddGap(Page);
    if (Control->Simulated != 0) {
        AddParagraph(Page,
                     u"The console shows a simulated board instead: every number on it is invented, and no fan of "
                     u"this machine is read or set.");
    } else if (gFansAllowed) {
        AddParagraph(Page, u"The console sets the fans that can be set.");
    } else {
        AddParagraph(Page, u"Everything is only read",
                     Control->Report->SettableFans > 0 ? u"; the menu after the console lets it set fans." : u".");
    }
}

// Before the first console, for as long as it takes to see that there is something. The menu shows it again.
VOID TellBoard()
{
    const BOARD_CONTROL* Control = FindBoardControl();
    if (Control == nullptr || gToldBoard) {
        return;
    }
    gToldBoard = true;
    Control->AllowFans(0); // it may have been loaded, and told otherwise, by a starter before this one
    PAGE Page = {};
    AddFindings(&Page, Control);
    if (Control->HearsKeys != 0) {
        AddParagraph(&Page, u"Without a mouse: Tab, Space, the arrows, and G to take hold. F12 takes a picture.");
    }
    AddParagraph(&Page, u"The console follows; any key goes on at once.");
    DropKeys();
    ShowPage(&Page);
    ReportPage(&Page);
    EFI_INPUT_KEY Key = {};
    for (UINTN Step = 0; Step < gBoardSteps && EfiError(gTable->ConIn->ReadKeyStroke(gTable->ConIn, &Key)); Step++) {
        (void)gTable->BootServices->Stall(gBoardStep);
    }
    ShowBootScreen();
}

VOID StartConsole()
{
    EFI_HANDLE Console = nullptr;
    EFI_STATUS Status = EFI_SUCCESS;
    LOAD_RESULT Result = LoadVolumeImage(gTable, gStarter, gConsolePath, &Console, &Status);
    if (Result != LOAD_DONE) {
        ReportStatus("ventara: not loaded: ", Status);
        TellLoadProblem(Result, gConsolePath, Status);
        return;
    }
    Report("ventara: starting\n");
    Status = StartWithLookups(gTable, Console);
    ReportStatus("ventara: returned ", Status);
    if (!EfiError(Status)) {
        return;
    }
    if (Status == EFI_SECURITY_VIOLATION) {
        (void)gTable->BootServices->UnloadImage(Console);
        TellLoadProblem(LOAD_REFUSED, gConsolePath, Status);
        return;
    }
    PAGE Page = {};
    CHAR16 Room[32];
    AddParagraph(&Page, u"The console ended with \"", DescribeStatus(Status, Room), u"\".",
                 Status == EFI_PROTOCOL_ERROR ? u" A service of the firmware or of the board that it needs is missing; "
                                                u"the board driver on this volume may be of another version."
                                              : u"");
    TellProblem(&Page);
}

VOID RunConsole()
{
    if (PrepareDisplay() && PrepareBoard()) {
        TellBoard();
        StartConsole();
    }
}

enum CHOICE : UINT8 { CHOICE_START, CHOICE_BOOT_MENU, CHOICE_RESET };

bool CanFansBeSet()
{
    const BOARD_CONTROL* Control = FindBoardControl();
    return Control != nullptr && Control->Report->SettableFans > 0;
}

VOID ShowMenu()
{
    PAGE Page = {};
    AddParagraph(&Page, u"Enter   start the console again");
    if (CanFansBeSet()) {
        AddParagraph(&Page, u"S       ",
                     gFansAllowed ? u"only read the fans again; what was set stays"
                                  : u"let the console set fans; until then it only reads them");
    }
    if (FindBoardControl() != nullptr) {
        AddParagraph(&Page, u"I       what was found of this machine's sensors");
    }
    AddParagraph(&Page, u"V       another mode of the display", DescribeDisplayMode()[0] != 0 ? u"; now it is " : u"",
                 DescribeDisplayMode());
    AddParagraph(&Page, u"B       go on to the firmware's boot menu");
    AddParagraph(&Page, u"R       reset the machine");
    const BOARD_CONTROL* Control = FindBoardControl();
    if (Control != nullptr && Control->TakenHome[0] != 0) {
        AddGap(&Page);
        AddParagraph(&Page, u"F12: ", Control->TakenHome);
        ReportPage(&Page);
    }
    if (CanFansBeSet()) {
        AddGap(&Page);
        AddParagraph(
            &Page, gFansAllowed ? u"The console sets fans: " : u"With S ",
            u"each change on a fan's page goes into its chip at once and stays there until the machine is "
            u"switched off. A fan at a fixed level follows no temperature. A pump looks like any fan: leave its "
            u"page alone, or name it in \\ventara.ini. Default and Cancel give back what the fans had.");
    }
    ShowPage(&Page);
    Report("ventara: menu\n");
}

VOID AllowFans()
{
    if (CanFansBeSet()) {
        gFansAllowed = !gFansAllowed;
        FindBoardControl()->AllowFans(gFansAllowed ? 1 : 0);
    }
}

VOID ShowFindings()
{
    if (const BOARD_CONTROL* Control = FindBoardControl()) {
        PAGE Page = {};
        AddFindings(&Page, Control);
        AddParagraph(&Page, u"Press any key to go back.");
        ShowPage(&Page);
        ReportPage(&Page);
        (void)WaitForKey();
    }
}

CHOICE AskWhatNext()
{
    DropKeys();
    ShowMenu();
    for (;;) {
        switch (WaitForKey().UnicodeChar) {
        case CHAR_CARRIAGE_RETURN:
            return CHOICE_START;
        case u'b':
        case u'B':
            return CHOICE_BOOT_MENU;
        case u'r':
        case u'R':
            return CHOICE_RESET;
        case u'v':
        case u'V':
            (void)NextDisplayMode();
            ShowMenu();
            break;
        case u's':
        case u'S':
            AllowFans();
            ShowMenu();
            break;
        case u'i':
        case u'I':
            ShowFindings();
            ShowMenu();
            break;
        default:
            break;
        }
    }
}

}

extern "C" EFI_STATUS StarterEntry(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable)
{
    gTable = SystemTable;
    gStarter = ImageHandle;
    Report("ventara: starter\n");
    // The firmware arms a watchdog of five minutes for what it boots, and a console runs longer than that.
    (void)SystemTable->BootServices->SetWatchdogTimer(0, 0, 0, nullptr);
    for (;;) {
        RunConsole();
        CHOICE Choice = AskWhatNext();
        if (Choice == CHOICE_RESET) {
            Report("ventara: reset\n");
            SystemTable->RuntimeServices->ResetSystem(EfiResetCold, EFI_SUCCESS, 0, nullptr);
        }
        if (Choice == CHOICE_BOOT_MENU) {
            break;
        }
    }
    // What the firmware boots next gets the machine without the simulated board.
    if (gDriver != nullptr) {
        ReportStatus("ventara: board driver unloaded: ", SystemTable->BootServices->UnloadImage(gDriver));
    }
    CloseDisplay();
    Report("ventara: boot menu\n");
    // A boot option that returns success makes the firmware show its menu.
    return EFI_SUCCESS;
}
