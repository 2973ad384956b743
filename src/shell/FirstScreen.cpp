#include "shell/FirstScreen.h"

#include "fan/FanLegend.h"
#include "fan/FanPage.h"
#include "fan/InitialPage.h"
#include "graphics/Text.h"
#include "gui/core/Listeners.h"
#include "monitor/Captions.h"
#include "monitor/Readouts.h"
#include "monitor/Scales.h"
#include "shell/CommandButtons.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"

namespace {

constexpr UINT32 gGaugeCaptionX = 69;
constexpr UINT32 gGaugeCaptionY = 600;

VOID DrawText(UINT32 X, UINT32 Y, const CHAR16* Text, const PIXEL& Color, const PIXEL& Ground)
{
    (void)DrawString(X, Y, Text, DRAW_STRING_KEYED, &Color, &Ground, gGuiCore);
}

} // namespace

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
