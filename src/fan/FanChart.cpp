#include "fan/FanChart.h"

#include "fan/FanPage.h"
#include "graphics/GraphicProtocol.h"
#include "gui/core/GUICore.h"
#include "gui/PageBar.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"

namespace {

// Which control lies under the chart, and when the chart is to be seen.
enum CHART_GROUND : UINT8 {
    GROUND_NONE,
    GROUND_FRAME_PASTED, // the frame; Screen gets the picture even during a drag
    GROUND_FRAME,        // the frame, unless a node or the thumb is in hand
    GROUND_SLIDER,       // the slider, unless one of them is
    GROUND_SLIDER_ALONE, // the slider, while the mouse is at rest
};

// Item 5 is asked for at every tick; the other pages go by their layout.
CHART_GROUND GroundOf(const FAN_PAGE* Page)
{
    FAN_PAGE_LAYOUT Layout = Page->Layout;
    if (Page == FindFanPage(5)) {
        const UINT8 Kind = AskFanKind();
        Layout = Kind == 1 ? FAN_LAYOUT_CURVE8 : Kind == 0 ? FAN_LAYOUT_CURVE6 : FAN_LAYOUT_NONE;
    }
    switch (Layout) {
    case FAN_LAYOUT_CURVE8:
        return GROUND_FRAME_PASTED;
    case FAN_LAYOUT_CURVE6:
    case FAN_LAYOUT_CURVE6_SLIDER:
        return PageBoxIsChecked(Page) ? GROUND_FRAME : GROUND_SLIDER;
    case FAN_LAYOUT_SLIDER:
        return GROUND_SLIDER_ALONE;
    case FAN_LAYOUT_NONE:
        break;
    }
    return GROUND_NONE;
}

// Starts the chart over from the picture of the control beneath. False when there is no such control.
bool LayGround(const FAN_PAGE* Page, CHART_GROUND Ground)
{
    const bool OnFrame = Ground == GROUND_FRAME_PASTED || Ground == GROUND_FRAME;
    if (Ground == GROUND_NONE || !(OnFrame ? PageHasFrame(Page) : PageHasSlider(Page))) {
        return false;
    }
    const PIXEL* Picture = OnFrame ? Page->Frame.WorkImage : Page->Slider.Canvas;
    const GUI_RECT& Rect = OnFrame ? Page->Frame.Rect : Page->Slider.Rect;
    const LINE_CHART* Chart = Page->Chart;
    (void)OverlayBlt(Picture, static_cast<INT32>(Rect.Width), static_cast<INT32>(Rect.Height), Chart->Pixels,
                     Chart->Rect.Width, Chart->Rect.Height, 0, 0, nullptr, nullptr, 0);
    return true;
}

VOID ShowChart(const FAN_PAGE* Page, CHART_GROUND Ground)
{
    LINE_CHART* Chart = Page->Chart;
    // Either may be in hand: a command can change the ground during a drag.
    const bool NothingInHand = Page->Frame.ActiveNode == gNoActiveNode && Page->Slider.Dragging != 1;
    bool Visible = false;
    switch (Ground) {
    case GROUND_FRAME_PASTED:
        Visible = NothingInHand;
        if (!Visible) { // else showing it pastes it
            (void)PasteBlt(Chart->Pixels, Chart->Rect.Width, Chart->Rect.Height, Chart->Rect.X, Chart->Rect.Y,
                           gGuiCore->Screen);
        }
        break;
    case GROUND_FRAME:
    case GROUND_SLIDER:
        Visible = NothingInHand;
        break;
    case GROUND_SLIDER_ALONE:
        Visible = gGuiCore->MouseState == NOEVENT;
        break;
    case GROUND_NONE:
        break;
    }
    if (Visible) {
        (void)ShowLineChart(Chart);
    }
}

bool AnyPresent(UINTN First, UINTN Count)
{
    for (UINTN Item = First; Item < First + Count; Item++) {
        if (gItemPresent[Item] == 1) {
            return true;
        }
    }
    return false;
}

} // namespace

VOID FanChartTick()
{
    const UINT32 Source = gGlobalVariable.TemperatureSource;
    if (AnyPresent(gFirstTemperatureItem, gTemperatureItemCount) && Source < gTemperatureItemCount) {
        // Whatever the status says, the value stands as the service leaves it: a service that leaves the word alone
        // leaves the last temperature.
        UINT8 Present = 0;
        (void)gHwService->GetItemValue(gHwService, static_cast<UINT8>(Source), &gGlobalVariable.CurrentTemperature,
                                       &Present);
    }
    if (!AnyPresent(gFirstFanItem, gFanItemCount)) {
        return;
    }
    if (const FAN_PAGE* OnTop = FanPageOnTop()) {
        gGlobalVariable.SelectedFanItem = OnTop->ItemId;
    }
    if (FAN_PAGE* Page = FindFanPage(gGlobalVariable.SelectedFanItem)) {
        UpdateFanChart(Page);
    }
}

VOID UpdateFanChart(FAN_PAGE* Page)
{
    const CHART_GROUND Ground = GroundOf(Page);
    if (Page->Chart == nullptr || !LayGround(Page, Ground)) {
        return;
    }
    UINT64 Speed = 0;
    UINT8 Present = 0;
    if (EfiError(gHwService->GetItemValue(gHwService, Page->ItemId, &Speed, &Present))) {
        Speed = 0;
    }
    (void)PushLineChartSample(Page->Chart, Speed, gGlobalVariable.CurrentTemperature);
    (void)DrawLineChart(Page->Chart);
    ShowChart(Page, Ground);
}

EFI_STATUS OnTemperatureSourceSelected(EFI_EVENT, VOID* Context)
{
    const auto* Entry = static_cast<const PAGE_BAR_ENTRY*>(Context);
    gGlobalVariable.TemperatureSource = Entry->Index;
    const FAN_PAGE* Page = FindFanPage(gGlobalVariable.SelectedFanItem);
    if (Page != nullptr && Page->Chart != nullptr) {
        const LINE_CHART* Chart = Page->Chart;
        SetMem(Chart->Temperature.Samples, Chart->Rect.Width * sizeof(UINT32), 0);
    }
    return EFI_SUCCESS;
}
