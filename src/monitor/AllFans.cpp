#include "monitor/AllFans.h"

#include "fan/FanJoins.h"
#include "fan/Fan_Ctrl_Function.h"
#include "shell/contract/Board.h"

namespace {

// The thumb's place on the top row: anything less than half a row below the control's upper edge.
constexpr UINT16 gTopRowOffset = 19;

// The layouts by which a command goes, those of fans that aren't there among them: asked of the board once a command.
struct FAN_LAYOUTS {
    FAN_PAGE_LAYOUT Of[gFanItemCount];
};

FAN_LAYOUTS LayoutsNow()
{
    FAN_LAYOUTS Layouts = {};
    for (const FAN_PAGE& Page : gFanPage) {
        Layouts.Of[IndexOfFanPage(&Page)] = LayoutNow(&Page);
    }
    return Layouts;
}

bool IsPresent(const FAN_PAGE* Page) { return gItemPresent[gFirstFanItem + IndexOfFanPage(Page)] == 1; }

// State is written directly, so that on pages not on top no link runs and no setting goes out.
VOID SetBox(FAN_PAGE* Page, UINT8 State)
{
    if (Page->CheckBox != nullptr) {
        Page->CheckBox->State = State;
    }
}

VOID RaiseSlider(FAN_PAGE* Page)
{
    if (PageHasSlider(Page)) {
        (void)SetSliderPosition(&Page->Slider, gTopRowOffset);
    }
}

// --- Repainting the page on top ---

VOID DrawBox(FAN_PAGE* Page)
{
    if (Page->CheckBox != nullptr) {
        DrawCheckBox(PageBoxIsChecked(Page) ? CHECK_BOX_CHECKED : CHECK_BOX_UNCHECKED, Page->CheckBox);
    }
}

VOID RepaintSlider(FAN_PAGE* Page)
{
    if (PageHasSlider(Page)) {
        (void)RefreshSlider(&Page->Slider);
    }
}

VOID RepaintPageOnTop(const FAN_LAYOUTS& Layouts, bool IsCancel, bool ByButton)
{
    FAN_PAGE* Page = FanPageOnTop();
    if (Page == nullptr) {
        return;
    }
    switch (Layouts.Of[IndexOfFanPage(Page)]) {
    case FAN_LAYOUT_CURVE8:
        if (PageHasFrame(Page)) {
            ShowDragDropFrame(&Page->Frame);
        }
        DrawBox(Page);
        break;
    case FAN_LAYOUT_CURVE6:
        DrawBox(Page);
        ApplyFanBox(Page, ByButton);
        break;
    case FAN_LAYOUT_CURVE6_SLIDER:
        DrawBox(Page);
        ApplyFanBox(Page, ByButton);
        // After Full speed and Default the slider is repainted even over a frame that has come to the front; the next
        // tick of the chart brings the right control back. That is meant.
        if (!(IsCancel && PageBoxIsChecked(Page))) {
            RepaintSlider(Page);
        }
        break;
    case FAN_LAYOUT_SLIDER:
        RepaintSlider(Page);
        break;
    case FAN_LAYOUT_NONE:
        break;
    }
}

// --- Following what the service holds ---

VOID FollowSetting(FAN_PAGE* Page, FAN_PAGE_LAYOUT Layout)
{
    if (Layout == FAN_LAYOUT_NONE || (Layout == FAN_LAYOUT_SLIDER && !IsPresent(Page))) {
        return;
    }
    (void)ReadFanSetting(Page, &Page->Setting);
    const UINT8 State = Page->Setting.CurveEnabled != 0 ? 1 : 0;
    SetBox(Page, State);
    if (Layout == FAN_LAYOUT_CURVE8) {
        Page->Frame.Linked = State;
    }
    RestoreFanNodes(Page);
}

EFI_STATUS RunReadBackCommand(EFI_STATUS (*Command)(HW_SERVICE_PROTOCOL*), bool IsCancel, bool ByButton)
{
    const FAN_LAYOUTS Layouts = LayoutsNow();
    const EFI_STATUS Status = Command(gHwService);
    for (FAN_PAGE& Page : gFanPage) {
        FollowSetting(&Page, Layouts.Of[IndexOfFanPage(&Page)]);
    }
    RepaintPageOnTop(Layouts, IsCancel, ByButton);
    return Status;
}

} // namespace

EFI_STATUS AllFansFullSpeed(EFI_EVENT Event, VOID*)
{
    const FAN_LAYOUTS Layouts = LayoutsNow();
    for (FAN_PAGE& Page : gFanPage) {
        const FAN_PAGE_LAYOUT Layout = Layouts.Of[IndexOfFanPage(&Page)];
        if (Layout == FAN_LAYOUT_SLIDER && !IsPresent(&Page)) {
            continue;
        }
        SetBox(&Page, 0); // fan 5's box falls whatever its kind
        if (Layout == FAN_LAYOUT_CURVE8) {
            Page.Frame.Linked = 0;
        } else if (Layout != FAN_LAYOUT_NONE) {
            RaiseSlider(&Page);
        }
    }
    RepaintPageOnTop(Layouts, false, Event != nullptr);
    return gHwService->SetAllFansFullSpeed(gHwService);
}

EFI_STATUS AllFansDefault(EFI_EVENT Event, VOID*)
{
    return RunReadBackCommand(gHwService->LoadDefaultFanSettings, false, Event != nullptr);
}

EFI_STATUS AllFansCancel(EFI_EVENT Event, VOID*)
{
    return RunReadBackCommand(gHwService->RestoreFanSettings, true, Event != nullptr);
}
