#include "fan/FanChart.h"

#include "fan/FanPage.h"
#include "graphics/GraphicProtocol.h"
#include "gui/core/GUICore.h"
#include "gui/PageBar.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"

namespace {

// Starts the chart over from the picture of the control beneath. False when there is no such control.
bool LayGround(const FAN_PAGE* Page, FAN_PAGE_LAYOUT Layout)
{
    const bool OnFrame = Layout == FAN_LAYOUT_CURVE8 || (LayoutHasFrame(Layout) && PageBoxIsChecked(Page));
    if (Layout == FAN_LAYOUT_NONE || !(OnFrame ? PageHasFrame(Page) : PageHasSlider(Page))) {
        return false;
    }
    const PIXEL* Picture = OnFrame ? Page->Frame.WorkImage : Page->Slider.Canvas;
    const GUI_RECT& Rect = OnFrame ? Page->Frame.Rect : Page->Slider.Rect;
    const LINE_CHART* Chart = Page->Chart;
    if (Rect.Width < Chart->Rect.Width || Rect.Height < Chart->Rect.Height) {
        // What a smaller control doesn't cover holds the last drawing, which may be another page's.
        FillPixels(Chart->Pixels, static_cast<UINTN>(Chart->Rect.Width) * Chart->Rect.Height, gPanelColor);
    }
    (void)OverlayBlt(Picture, static_cast<INT32>(Rect.Width), static_cast<INT32>(Rect.Height), Chart->Pixels,
                     Chart->Rect.Width, Chart->Rect.Height, 0, 0, nullptr, nullptr, 0);
    return true;
}

VOID ShowChart(const FAN_PAGE* Page, FAN_PAGE_LAYOUT Layout)
{
    LINE_CHART* Chart = Page->Chart;
    // Either may be in hand: a command can change the ground during a drag.
    const bool NothingInHand = Page->Frame.ActiveNode == gNoActiveNode && Page->Slider.Dragging != 1;
    if (Layout == FAN_LAYOUT_SLIDER ? gGuiCore->MouseState == NOEVENT : NothingInHand) {
        (void)ShowLineChart(Chart);
    } else if (Layout == FAN_LAYOUT_CURVE8) { // Screen gets the picture even during a drag
        (void)PasteBlt(Chart->Pixels, Chart->Rect.Width, Chart->Rect.Height, Chart->Rect.X, Chart->Rect.Y,
                       gGuiCore->Screen);
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
    const FAN_PAGE_LAYOUT Layout = LayoutNow(Page);
    if (Page->Chart == nullptr || !LayGround(Page, Layout)) {
        return;
    }
    UINT64 Speed = 0;
    UINT8 Present = 0;
    if (EfiError(gHwService->GetItemValue(gHwService, Page->ItemId, &Speed, &Present))) {
        Speed = 0;
    }
    (void)PushLineChartSample(Page->Chart, Speed, gGlobalVariable.CurrentTemperature);
    (void)DrawLineChart(Page->Chart);
    ShowChart(Page, Layout);
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
