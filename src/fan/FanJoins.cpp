#include "fan/FanJoins.h"

#include "fan/FanLegend.h"
#include "fan/Fan_Ctrl_Function.h"
#include "gui/PageBar.h"
#include "gui/core/Listeners.h"

namespace {

enum JOIN_KIND : UINT8 {
    JOIN_SETTING,     // the reading of the setting into page and box
    JOIN_LINK,        // a link of the box
    JOIN_TARGET,      // a target of the tab
    JOIN_FRAME_DROP,  // the page's listener for the end of a node's drag
    JOIN_SLIDER_DROP, // and of the thumb's
};
enum PAGE_PART : UINT8 { PART_NONE, PART_PAGE, PART_BOX, PART_FRAME, PART_SLIDER };
// The last is for a page that lacks its box.
enum JOIN_GATE : UINT8 { GATE_NONE, GATE_CHECKED, GATE_UNCHECKED, GATE_NO_BOX };

// One call when the page is built. The links' rows are also what a command on all fans runs in place of a click.
struct FAN_JOIN {
    JOIN_KIND What;
    CHECK_BOX_LINK_KIND LinkKind = CHECK_BOX_LINK_INSIDE;
    PAGE_PART Context = PART_NONE; // given to Notify. With one, a page that lacks it or the component has no such join
    EFI_EVENT_NOTIFY Notify = nullptr;
    PAGE_PART Mirror = PART_NONE; // whose Linked takes the box's state; PART_NONE: a byte that nothing reads
    PAGE_PART Component = PART_NONE;
    JOIN_GATE Gate = GATE_NONE; // state of the box in which the tab switches the component on
};

constexpr FAN_JOIN Link(CHECK_BOX_LINK_KIND Kind, PAGE_PART Context, EFI_EVENT_NOTIFY Notify,
                        PAGE_PART Mirror = PART_NONE, PAGE_PART Component = PART_NONE)
{
    return {JOIN_LINK, Kind, Context, Notify, Mirror, Component};
}

constexpr FAN_JOIN Target(PAGE_PART Context, EFI_EVENT_NOTIFY Notify, PAGE_PART Component, JOIN_GATE Gate = GATE_NONE)
{
    return {.What = JOIN_TARGET, .Context = Context, .Notify = Notify, .Component = Component, .Gate = Gate};
}

EFI_STATUS OnFanFrameShown(EFI_EVENT Event, VOID* Context);

constexpr FAN_JOIN gSetting = {.What = JOIN_SETTING};
constexpr FAN_JOIN gFrameDrop = {.What = JOIN_FRAME_DROP};
constexpr FAN_JOIN gSliderDrop = {.What = JOIN_SLIDER_DROP};
constexpr FAN_JOIN gWriteChecked = Link(CHECK_BOX_LINK_CHECKED, PART_PAGE, OnCurveChecked);
constexpr FAN_JOIN gWriteUnchecked = Link(CHECK_BOX_LINK_UNCHECKED, PART_PAGE, OnCurveUnchecked);
constexpr FAN_JOIN gRefreshFrame = Link(CHECK_BOX_LINK_INSIDE, PART_FRAME, OnDragDropRefresh, PART_FRAME);
constexpr FAN_JOIN gRefreshLegend = Link(CHECK_BOX_LINK_INSIDE, PART_NONE, RefreshFanLegend, PART_FRAME);
constexpr FAN_JOIN gSwapFrame = Link(CHECK_BOX_LINK_CHECKED, PART_FRAME, OnDragDropRefresh, PART_FRAME, PART_FRAME);
constexpr FAN_JOIN gSwapSlider = Link(CHECK_BOX_LINK_UNCHECKED, PART_SLIDER, OnSliderRefresh, PART_SLIDER, PART_SLIDER);
constexpr FAN_JOIN gTabBox = Target(PART_BOX, SetCheckBoxState, PART_BOX);
constexpr FAN_JOIN gTabFrame = Target(PART_PAGE, OnFanFrameShown, PART_FRAME);
constexpr FAN_JOIN gTabSlider = Target(PART_SLIDER, OnSliderRefresh, PART_SLIDER);
constexpr FAN_JOIN gTabLegend = Target(PART_NONE, RefreshFanLegend, PART_FRAME);
constexpr FAN_JOIN gTabLegendOverSlider = Target(PART_NONE, RefreshFanLegend, PART_SLIDER);
// The box repaints the two that it swaps. Without one the page is of the slider alone, and the tab has to.
constexpr FAN_JOIN gTabFrameIfChecked = Target(PART_FRAME, nullptr, PART_FRAME, GATE_CHECKED);
constexpr FAN_JOIN gTabSliderIfUnchecked = Target(PART_SLIDER, nullptr, PART_SLIDER, GATE_UNCHECKED);
constexpr FAN_JOIN gTabSliderWithoutBox = Target(PART_SLIDER, OnSliderRefresh, PART_SLIDER, GATE_NO_BOX);

// clang-format off
constexpr FAN_JOIN gCurve8Joins[] = {
    gWriteUnchecked, gWriteChecked, gTabFrame,      gTabBox,    gSetting,
    gRefreshFrame,   gFrameDrop,    gRefreshLegend, gTabLegend,
};
constexpr FAN_JOIN gCurve6Joins[] = {
    gSetting,  gRefreshFrame, gWriteUnchecked, gWriteChecked, gTabBox,
    gTabFrame, gFrameDrop,    gRefreshLegend,  gTabLegend,
};
constexpr FAN_JOIN gCurve6SliderJoins[] = {
    gSetting,           gSwapFrame,            gSwapSlider,          gWriteUnchecked, gWriteChecked,  gTabBox,
    gTabFrameIfChecked, gTabSliderIfUnchecked, gTabSliderWithoutBox, gFrameDrop,      gSliderDrop,
    gRefreshLegend,     gTabLegend,
};
// clang-format on
constexpr FAN_JOIN gSliderJoins[] = {gTabSlider, gSliderDrop, gTabLegendOverSlider};

struct JOINS {
    const FAN_JOIN* Rows;
    UINTN Count;
};

template <UINTN Count> constexpr JOINS List(const FAN_JOIN (&Rows)[Count]) { return {Rows, Count}; }

// By layout.
constexpr JOINS gJoins[] = {
    {nullptr, 0}, List(gCurve8Joins), List(gCurve6Joins), List(gCurve6SliderJoins), List(gSliderJoins),
};
static_assert(sizeof(gJoins) / sizeof(gJoins[0]) == FAN_LAYOUT_SLIDER + 1);

VOID ReadSettingIntoBox(FAN_PAGE* Page)
{
    (void)ReadFanSetting(Page, &Page->Setting);
    if (Page->CheckBox != nullptr) {
        Page->CheckBox->State = Page->Setting.CurveEnabled != 0 ? 1 : 0;
    }
}

// Shows the frame as the page's box stands, its nodes or none. The box's links bring the state to the frame too, but the
// firmware chooses whether it runs them before this.
VOID ShowFanFrame(FAN_PAGE* Page)
{
    if (Page->CheckBox != nullptr) {
        Page->Frame.Linked = Page->CheckBox->State;
    }
    ShowDragDropFrame(&Page->Frame);
}

EFI_STATUS OnFanFrameShown(EFI_EVENT, VOID* Context)
{
    ShowFanFrame(static_cast<FAN_PAGE*>(Context));
    return EFI_SUCCESS;
}

// What a join's columns name, on one page.
struct PART {
    bool Missing;
    VOID* Record;
    UINT32 Id; // of its component; 0 for none
    UINT8* Linked;
};

PART PartOf(FAN_PAGE* Page, PAGE_PART Which)
{
    CHECK_BOX_COMPONENT* Box = Page->CheckBox;
    switch (Which) {
    case PART_PAGE:
        return {false, Page, 0, nullptr};
    case PART_BOX:
        return {Box == nullptr, Box, Box != nullptr ? Box->Id : 0, nullptr};
    case PART_FRAME:
        return {!PageHasFrame(Page), &Page->Frame, Page->Frame.Id, &Page->Frame.Linked};
    case PART_SLIDER:
        return {!PageHasSlider(Page), &Page->Slider, Page->Slider.FrameId, &Page->Slider.Linked};
    case PART_NONE:
        break;
    }
    return {false, nullptr, 0, &Page->LinkByte};
}

bool JoinIsLeftOut(FAN_PAGE* Page, const FAN_JOIN& Join)
{
    if (Join.Gate != GATE_NONE && (Join.Gate == GATE_NO_BOX) == (Page->CheckBox != nullptr)) {
        return true;
    }
    return Join.Context != PART_NONE && (PartOf(Page, Join.Context).Missing || PartOf(Page, Join.Component).Missing);
}

VOID MakeJoin(FAN_PAGE* Page, const FAN_JOIN& Join)
{
    if (JoinIsLeftOut(Page, Join)) {
        return;
    }
    VOID* Context = PartOf(Page, Join.Context).Record;
    const UINT16 ComponentId = static_cast<UINT16>(PartOf(Page, Join.Component).Id);
    const bool ByBox = Join.Gate == GATE_CHECKED || Join.Gate == GATE_UNCHECKED;
    const FAN_PAGE_LISTENERS& Listeners = gFanPageListeners[IndexOfFanPage(Page)];
    switch (Join.What) {
    case JOIN_SETTING:
        ReadSettingIntoBox(Page);
        break;
    case JOIN_LINK:
        (void)AddCheckBoxLink(Page->CheckBox, Context, Join.Notify, Join.LinkKind, PartOf(Page, Join.Mirror).Linked,
                              ComponentId);
        break;
    case JOIN_TARGET:
        (void)AddPageBarTarget(Page->Tab, Context, Join.Notify, ComponentId, ByBox ? &Page->CheckBox->State : nullptr,
                               Join.Gate == GATE_CHECKED ? 1 : 0);
        break;
    case JOIN_FRAME_DROP:
        AddDragDropListener(Listeners.OnFrameDrop, L_HOLD_TO_RELEASE);
        break;
    case JOIN_SLIDER_DROP:
        AddSliderListener(Listeners.OnSliderDrop, L_HOLD_TO_RELEASE);
        break;
    }
}

// What a click on the page's box runs, in the order of its links; without a click those alone that paint the frame. A
// frame that a click repaints is shown here even when it isn't live: a command may have changed it.
VOID RunBoxLinks(FAN_PAGE* Page, bool Clicked)
{
    const CHECK_BOX_LINK_KIND Now = PageBoxIsChecked(Page) ? CHECK_BOX_LINK_CHECKED : CHECK_BOX_LINK_UNCHECKED;
    const JOINS& Joins = gJoins[Page->Layout];
    for (UINTN Index = 0; Index < Joins.Count; Index++) {
        const FAN_JOIN& Join = Joins.Rows[Index];
        if (Join.What != JOIN_LINK || JoinIsLeftOut(Page, Join)) {
            continue;
        }
        const bool PaintsFrame = Join.Context == PART_FRAME;
        if (Join.LinkKind == Now && (Clicked || PaintsFrame)) {
            (void)Join.Notify(nullptr, PartOf(Page, Join.Context).Record);
        } else if (Join.LinkKind == CHECK_BOX_LINK_INSIDE && PaintsFrame) {
            ShowFanFrame(Page);
        }
    }
}

} // namespace

VOID JoinFanPage(FAN_PAGE* Page)
{
    const JOINS& Joins = gJoins[Page->Layout];
    for (UINTN Index = 0; Index < Joins.Count; Index++) {
        MakeJoin(Page, Joins.Rows[Index]);
    }
}

VOID ApplyFanBox(FAN_PAGE* Page, bool Clicked)
{
    if (Page->CheckBox != nullptr) {
        ShowCheckBoxState(Page->CheckBox);
        RunBoxLinks(Page, Clicked);
    }
}
