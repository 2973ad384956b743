#include "shell/Main.h"

#include "controls/CheckBox.h"
#include "controls/DragDropFrame.h"
#include "controls/LineChart.h"
#include "controls/Slider.h"
#include "fan/FanChart.h"
#include "fan/FanLegend.h"
#include "fan/FanOutline.h"
#include "fan/FanPage.h"
#include "graphics/GraphicProtocol.h"
#include "gui/PageBar.h"
#include "gui/PointerEngine.h"
#include "gui/core/Listeners.h"
#include "monitor/AllFans.h"
#include "monitor/Captions.h"
#include "monitor/InformationPages.h"
#include "monitor/Readouts.h"
#include "monitor/ScaleHighlights.h"
#include "monitor/Scales.h"
#include "shell/contract/Board.h"
#include "shell/CommandButtons.h"
#include "shell/CommandLine.h"
#include "shell/FirstScreen.h"
#include "shell/Ventaraframe.h"
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

constexpr UINTN gLastStall = 300000; // microseconds: the last picture stands a moment before the firmware goes on

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
        if (gEvents[Index] != nullptr) {
            (void)gBS->CloseEvent(gEvents[Index]);
            gEvents[Index] = nullptr;
        }
    }
}

VOID AddScaleListeners()
{
    AddDragDropListener(PaintScalesIdle, L_HOLD_TO_RELEASE);
    AddDragDropListener(PaintScalesActive, L_HOLD);
    AddSliderListener(PaintScalesIdle, L_HOLD_TO_RELEASE);
    AddSliderListener(PaintScalesActive, L_HOLD);
    AddDragDropListener(PaintCaptionsIdle, L_HOLD_TO_RELEASE);
    AddDragDropListener(PaintCaptionsActive, L_HOLD);
    AddSliderListener(PaintCaptionsIdle, L_HOLD_TO_RELEASE);
    AddSliderListener(PaintCaptionsActive, L_HOLD);
}

// Everything up to the first turn of the loop, in its fixed order.
VOID StartConsole()
{
    CreateTimers();
    CreateScreenFrame(&gArtworkFileGuid);
    PasteScreenFrame();
    LoadReadoutBackdrops();
    LoadSettingsAndCapabilities();
    CreateCommandButtons();
    CreateScaleFonts();
    AddScaleListeners();
    LoadCaptions();
    CreateVoltageGauges();
    CreateFanPages();
    FreeScreenFrame();
    ClearPanel();
    (void)gGraphicsOutput->Blt(gGraphicsOutput, gGuiCore->Screen, EfiBltBufferToVideo, 0, 0, 0, 0, gScreenWidth,
                               gScreenHeight, 0);
    CopyMem(gGuiCore->Background, gGuiCore->Screen, gScreenBytes);
    PaintFirstScreen();

    gGuiCore->TimerPeriod = 0;
    gGuiCore->PressDuration = 0;
    gGuiCore->StartTicks = 0;
    (void)gCpuArch->GetTimerValue(gCpuArch, 0, &gGuiCore->StartTicks, &gGuiCore->TimerPeriod);
    gGuiCore->LastTicks = gGuiCore->StartTicks;
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

VOID DestroyFanControls()
{
    for (FAN_PAGE& Page : gFanPage) {
        if (Page.ItemId >= 4 && Page.ItemId <= 8) {
            (void)DestroyDragDropFrame(&Page.Frame);
        }
    }
    for (FAN_PAGE& Page : gFanPage) {
        if (Page.ItemId >= 5) {
            (void)DestroySlider(&Page.Slider);
        }
    }
    for (FAN_PAGE& Page : gFanPage) {
        (void)DestroyLineChart(Page.Chart);
        Page.Chart = nullptr;
    }
    for (CHECK_BOX_COMPONENT*& Radio : gTemperatureRadio) {
        (void)DestroyCheckBox(Radio);
        Radio = nullptr;
    }
    for (FAN_PAGE& Page : gFanPage) {
        (void)DestroyCheckBox(Page.CheckBox);
        Page.CheckBox = nullptr;
    }
    (void)DestroyPageBar(gFanPageBar);
    gFanPageBar = nullptr;
    (void)DestroyPageBar(gTemperaturePageBar);
    gTemperaturePageBar = nullptr;
    DestroyCommandButtons();
    for (FAN_PAGE& Page : gFanPage) {
        DestroyButton(Page.Tab);
        Page.Tab = nullptr;
    }
}

VOID StopConsole()
{
    CloseTimers();
    DestroyVoltageGauges();
    DestroyFanControls();
    DestroyScaleFonts();
    FreeFanLegend();
    FreeCaptions();
    FreeReadoutBackdrops();
    FreePanelTitle();
    if (gShellConsole && gST->ConOut != nullptr) {
        (void)gST->ConOut->ClearScreen(gST->ConOut);
    }
    CloseShellInterface();
    StoreSettings();
    (void)DestroyGuiCore();
    ReleasePool(gSavedScreen);
    (void)gBS->Stall(gLastStall);
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
    StartConsole();
    while (gEventCount != 0) {
        TakeTurn();
    }
    StopConsole();
    return EFI_SUCCESS;
}
