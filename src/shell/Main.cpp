#include "shell/Main.h"

#include "controls/DragDropFrame.h"
#include "controls/Slider.h"
#include "fan/FanChart.h"
#include "fan/FanLegend.h"
#include "gui/PointerEngine.h"
#include "monitor/AllFans.h"
#include "monitor/InformationPages.h"
#include "monitor/Readouts.h"
#include "monitor/ScaleHighlights.h"
#include "shell/contract/Board.h"
#include "shell/CommandLine.h"
#include "shell/Stages.h"
#include "support/Pool.h"
#include "support/Shell.h"
#include "uefi/Hii.h"

namespace {

// Periods of the timers in units of 100 ns; a zero ends the table.
constexpr UINT64 gTimerPeriods[] = {
    50000000, // 5 s: nothing is tied to it
    2000000,  // 200 ms: the sampling tick
    20000000, // 2 s: nothing is tied to it
    0,
};
constexpr UINTN gTimerCount = 4;
static_assert(sizeof(gTimerPeriods) / sizeof(gTimerPeriods[0]) == gTimerCount);
constexpr UINTN gTickIndex = 1;

EFI_EVENT gEvents[gTimerCount] = {}; // the last stays empty: reaching it is what ends a wait at once
EFI_EVENT gWaitArray[gTimerCount] = {};
UINTN gEventCount = 0; // events of a wait, and the loop's running flag: the loop ends when it is 0
UINTN gEventIndex = 0;

VOID CreateTimers()
{
    for (UINTN Index = 0; gTimerPeriods[Index] != 0; Index++) {
        (void)CreateEvent(EVT_TIMER, TPL_CALLBACK, nullptr, nullptr, &gEvents[Index]);
        (void)gBS->SetTimer(gEvents[Index], TimerPeriodic, gTimerPeriods[Index]);
    }
    for (UINTN Index = 0; Index < gTimerCount; Index++) {
        gWaitArray[Index] = gEvents[Index];
    }
    gEventCount = gTimerCount;
}

VOID CloseTimers()
{
    for (UINTN Index = 0; gTimerPeriods[Index] != 0; Index++) {
        CloseIfAny(gEvents[Index]);
        gEvents[Index] = nullptr;
    }
}

VOID OnTick()
{
    FanChartTick();
    if (gGuiCore->LeftButton == 1) {
        return; // the gauges stand still while the button is down
    }
    SampleVoltage();
    PaintNextGauge();
}

using FAN_COMMAND = EFI_STATUS (*)(EFI_EVENT Event, VOID* Context);

FAN_COMMAND CommandOfKey(CHAR16 Character)
{
    switch (Character) {
    case u'f':
    case u'F':
        return AllFansFullSpeed;
    case u'd':
    case u'D':
        return AllFansDefault;
    case u'c':
    case u'C':
        return AllFansCancel;
    default:
        return nullptr;
    }
}

VOID HandleKey()
{
    EFI_INPUT_KEY& Key = gGuiCore->Key;
    (void)gST->ConIn->ReadKeyStroke(gST->ConIn, &Key);
    if (Key.ScanCode == 0 && Key.UnicodeChar == 0) {
        return;
    }
    if (Key.ScanCode == SCAN_ESC) {
        gGuiCore->ExitRequested = 1;
    }
    const FAN_COMMAND Command = CommandOfKey(Key.UnicodeChar);
    if (Command != nullptr) {
        (void)Command(nullptr, nullptr);
        RefreshFanLegend();
    }
    Key = {};
}

VOID TakeTurn()
{
    (void)gBS->WaitForEvent(gEventCount, gWaitArray, &gEventIndex);
    (void)ScanPointerTargets();
    RunWantedPage();
    UpdatePointer();
    UpdateReadouts();
    (void)DragDropFrameDispatch();
    UpdateScaleHighlights();
    (void)SliderStep();
    if (gEventIndex == gTickIndex) {
        OnTick();
    }
    HandleKey();
    if (gGuiCore->ExitRequested == 1 || gGuiCore->RightButton == 1) {
        gEventCount = 0;
    }
}

} // namespace

extern "C" EFI_STATUS _ModuleEntryPoint(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable)
{
    RunLibraryConstructors(ImageHandle, SystemTable);
    const EFI_STATUS Status = MonitorMain(ImageHandle, SystemTable);
    RunLibraryDestructors(ImageHandle);
    // The firmware keeps the events of an image that has returned, and would run functions that are gone with it.
    CloseLeftLinkEvents();
    return Status;
}

VOID RunLibraryConstructors(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable)
{
    gImageHandle = ImageHandle;
    gST = SystemTable;
    gBS = SystemTable->BootServices;
    gRT = SystemTable->RuntimeServices;

    static constexpr const EFI_GUID* HiiProtocols[] = {
        &gEfiHiiStringProtocolGuid, &gEfiHiiDatabaseProtocolGuid, &gEfiHiiConfigRoutingProtocolGuid,
        &gEfiHiiFontProtocolGuid,   &gEfiHiiImageProtocolGuid,
    };
    for (const EFI_GUID* Guid : HiiProtocols) {
        VOID* Interface = nullptr;
        (void)gBS->LocateProtocol(Guid, nullptr, &Interface);
    }
    (void)BindShellProtocols();
}

VOID RunLibraryDestructors(EFI_HANDLE) { ReleaseShellProtocols(); }

EFI_STATUS MonitorMain(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable)
{
    gST = SystemTable;
    gBS = SystemTable->BootServices;
    gRT = SystemTable->RuntimeServices;
    gImageHandle = ImageHandle;

    if (EfiError(LocateProtocols())) {
        ReleasePool(gSavedScreen);
        return EFI_PROTOCOL_ERROR;
    }
    if (!ParseCommandLine()) {
        ReleasePool(gSavedScreen);
        return EFI_SUCCESS;
    }
    if (EfiError(CreateGuiCore())) {
        ReleasePool(gSavedScreen);
        return EFI_PROTOCOL_ERROR;
    }
    CreateTimers();
    StartConsole();
    while (gEventCount != 0) {
        TakeTurn();
    }
    CloseTimers();
    StopConsole();
    return EFI_SUCCESS;
}
