#include "shell/Stages.h"

#include "fan/FanLegend.h"
#include "fan/FanOutline.h"
#include "fan/FanPage.h"
#include "fan/InitialPage.h"
#include "graphics/Text.h"
#include "gui/core/Listeners.h"
#include "monitor/Captions.h"
#include "monitor/Readouts.h"
#include "monitor/Scales.h"
#include "shell/CommandButtons.h"
#include "shell/CommandLine.h"
#include "shell/Ventaraframe.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "support/Shell.h"

namespace {

constexpr UINTN gLastStall = 300000; // microseconds: the last picture stands a moment before the firmware goes on

constexpr UINT32 gGaugeCaptionX = 69;
constexpr UINT32 gGaugeCaptionY = 600;

VOID DrawText(UINT32 X, UINT32 Y, const CHAR16* Text, const PIXEL& Color, const PIXEL& Ground)
{
    (void)DrawString(X, Y, Text, DRAW_STRING_KEYED, &Color, &Ground, gGuiCore);
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

// Everything for the first time, once all controls exist and Background is taken.
VOID PaintFirstScreen()
{
    for (UINTN Index = 0; Index < gVoltageItemCount; Index++) {
        (void)DrawVoltageGauge(gVoltageGauge[Index], 1, Index == gVoltageItemCount - 1 ? 1 : 0);
    }
    PaintScalesIdle();
    PaintCaptionsIdle();
    SelectInitialPage();
    PaintCommandButtons();

    CHAR16* Caption = gHwService->GetItemString(gHwService, STRING_GAUGE_CAPTION);
    DrawText(gGaugeCaptionX, gGaugeCaptionY, Caption, gHeadingColor, gHeadingBackColor);
    FreePool(Caption);

    PaintPanelTitle();

    for (const READOUT& Readout : gReadout) {
        if (gItemPresent[Readout.Item] == 1) {
            DrawText(Readout.NumberX + gReadoutNumberWidth, Readout.Y + gReadoutTextY, Readout.Unit, gLabelColor,
                     gLabelBackColor);
        }
    }
    (void)CreateFanLegend();
    AddDragDropListener(RefreshFanLegend, L_HOLD_TO_RELEASE);
    AddSliderListener(RefreshFanLegend, L_HOLD_TO_RELEASE);
}

} // namespace

VOID StartConsole()
{
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

VOID StopConsole()
{
    DestroyVoltageGauges();
    DestroyFanPages();
    DestroyCommandButtons();
    DestroyFanTabs();
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
