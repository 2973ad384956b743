#include "monitor/AllFans.h"

#include "fan/FanPage.h"
#include "fan/Fan_Ctrl_Function.h"
#include "shell/contract/Board.h"

namespace {

// The thumb's place on the top row: anything less than half a row below the control's upper edge.
constexpr UINT16 gTopRowOffset = 19;

// How far a fan's controls follow a command. Fan 5's share is its kind's.
enum COMMAND_SHARE : UINT8 {
    SHARE_CURVE,       // box, frame and nodes
    SHARE_BOX_SLIDER,  // box and slider; the nodes keep the places that the user gave them
    SHARE_HELD_SLIDER, // the same for a fan 5 of 6 rows
    SHARE_SLIDER,      // slider alone, and only if the fan is present
    SHARE_NONE,
};

COMMAND_SHARE ShareOf(const FAN_PAGE* Page, UINT8 Kind)
{
    switch (gFirstFanItem + IndexOfFanPage(Page)) {
    case 4:
        return SHARE_CURVE;
    case 5:
        return Kind == 1 ? SHARE_CURVE : Kind == 0 ? SHARE_HELD_SLIDER : SHARE_NONE;
    case 6:
    case 7:
    case 8:
        return SHARE_BOX_SLIDER;
    default:
        return SHARE_SLIDER;
    }
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

VOID RestoreSlider(FAN_PAGE* Page)
{
    if (PageHasSlider(Page)) {
        (void)SetSliderLevel(&Page->Slider, LegalFixedLevel(Page->Setting.FixedLevel, Page->Slider.Rows));
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

VOID RepaintPageOnTop(UINT8 Kind, bool IsCancel, bool ByButton)
{
    FAN_PAGE* Page = FanPageOnTop();
    if (Page == nullptr) {
        return;
    }
    switch (ShareOf(Page, Kind)) {
    case SHARE_CURVE:
        if (PageHasFrame(Page)) {
            ShowDragDropFrame(&Page->Frame);
        }
        DrawBox(Page);
        break;
    case SHARE_HELD_SLIDER:
        DrawBox(Page);
        ApplyFanBox(Page, ByButton);
        break;
    case SHARE_BOX_SLIDER:
        DrawBox(Page);
        ApplyFanBox(Page, ByButton);
        // After Full speed and Default the slider is repainted even over a frame that has come to the front; the next
        // tick of the chart brings the right control back. That is meant.
        if (Page->Layout == FAN_LAYOUT_CURVE6_SLIDER && !(IsCancel && PageBoxIsChecked(Page))) {
            RepaintSlider(Page);
        }
        break;
    case SHARE_SLIDER:
        RepaintSlider(Page);
        break;
    case SHARE_NONE:
        break;
    }
}

// --- Following what the service holds ---

VOID FollowSetting(FAN_PAGE* Page, COMMAND_SHARE Share)
{
    if (Share == SHARE_NONE || (Share == SHARE_SLIDER && !IsPresent(Page))) {
        return;
    }
    (void)ReadFanSetting(Page, &Page->Setting);
    const UINT8 State = Page->Setting.CurveEnabled != 0 ? 1 : 0;
    switch (Share) {
    case SHARE_CURVE:
        SetBox(Page, State);
        Page->Frame.Linked = State;
        RestoreFanNodes(Page);
        break;
    case SHARE_HELD_SLIDER:
        SetBox(Page, State);
        RestoreFanNodes(Page);
        break;
    case SHARE_BOX_SLIDER:
        SetBox(Page, State);
        RestoreSlider(Page);
        break;
    case SHARE_SLIDER:
        RestoreSlider(Page);
        break;
    case SHARE_NONE:
        break;
    }
}

EFI_STATUS RunReadBackCommand(EFI_STATUS (*Command)(HW_SERVICE_PROTOCOL*), bool IsCancel, bool ByButton)
{
    const UINT8 Kind = AskFanKind();
    const EFI_STATUS Status = Command(gHwService);
    for (FAN_PAGE& Page : gFanPage) {
        FollowSetting(&Page, ShareOf(&Page, Kind));
    }
    RepaintPageOnTop(Kind, IsCancel, ByButton);
    return Status;
}

} // namespace

EFI_STATUS AllFansFullSpeed(EFI_EVENT Event, VOID*)
{
    const UINT8 Kind = AskFanKind();
    for (FAN_PAGE& Page : gFanPage) {
        const COMMAND_SHARE Share = ShareOf(&Page, Kind);
        if (Share == SHARE_SLIDER && !IsPresent(&Page)) {
            continue;
        }
        SetBox(&Page, 0); // fan 5's box falls whatever its kind
        if (Share == SHARE_CURVE) {
            Page.Frame.Linked = 0;
        } else if (Share != SHARE_NONE) {
            RaiseSlider(&Page);
        }
    }
    RepaintPageOnTop(Kind, false, Event != nullptr);
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
